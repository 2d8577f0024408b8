// Messages to the app. docs/vpaid-page.md has the contract.

let sequence = 0;
let isOver = false;

/**
 * iOS takes an object, Android a text. Tells whether there is an app that takes it.
 * @param {string} name
 * @param {object} details
 */
function tellApp(name, details) {
  if (isOver) {
    return false;
  }
  sequence += 1;
  const place = { session: settings.session, sequence };
  const tell = findApp();
  attempt(() => tell && tell(name, details, place));
  return tell !== null;
}

/**
 * The message that no other follows.
 * @param {string} name
 * @param {object} details
 */
function tellLast(name, details) {
  tellApp(name, details);
  isOver = true;
}

/**
 * The app's side, once it has been found: a unit may take it off the page.
 * @type {((name: string, details: object, place: object) => void) | null}
 */
let app = null;

function findApp() {
  app = app || attempt(findHandler) || attempt(findBridge) || null;
  return app;
}

function findHandler() {
  const handler = window.webkit && window.webkit.messageHandlers &&
    window.webkit.messageHandlers.tamzo;
  if (!handler) {
    return null;
  }
  const post = handler.postMessage.bind(handler);
  return (/** @type {string} */ name, /** @type {object} */ details, /** @type {object} */ place) =>
    post(Object.assign({ name, details }, place));
}

function findBridge() {
  const bridge = window.TamzoBridge;
  if (!bridge || !bridge.onEvent) {
    return null;
  }
  const onEvent = bridge.onEvent.bind(bridge);
  return (/** @type {string} */ name, /** @type {object} */ details, /** @type {object} */ place) =>
    onEvent(name, JSON.stringify(Object.assign({}, details, place)));
}
