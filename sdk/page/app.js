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
  return Boolean(attempt(() => tellHandler(name, details, place) ||
                               tellBridge(name, details, place)));
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
 * @param {string} name
 * @param {object} details
 * @param {object} place
 */
function tellHandler(name, details, place) {
  const handlers = window.webkit && window.webkit.messageHandlers;
  if (!handlers || !handlers.tamzo) {
    return false;
  }
  handlers.tamzo.postMessage(Object.assign({ name, details }, place));
  return true;
}

/**
 * @param {string} name
 * @param {object} details
 * @param {object} place
 */
function tellBridge(name, details, place) {
  if (!window.TamzoBridge || !window.TamzoBridge.onEvent) {
    return false;
  }
  window.TamzoBridge.onEvent(name, JSON.stringify(Object.assign({}, details, place)));
  return true;
}
