// The frame in which the unit runs: of this page's own origin, since a unit is handed elements of
// its document, but barred from navigating the page, from dialogs, and from windows of its own.

const FRAME_TEXT = "<!DOCTYPE html><html><head><style>html, body, #slot, #video { margin: 0; " +
  "width: 100%; height: 100%; overflow: hidden } #slot, #video { position: absolute; top: 0; " +
  "left: 0 }</style></head><body><video id=\"video\" playsinline webkit-playsinline></video>" +
  "<div id=\"slot\"></div></body></html>";
const SANDBOX = "allow-scripts allow-same-origin allow-forms";
// A click opens something within this time, in milliseconds; a unit by itself opens nothing.
const CLICK_MS = 5000;

const stage = {
  /** @type {HTMLIFrameElement | null} */
  frame: null,
  /** @type {Document | null} */
  inside: null,
  /** @type {HTMLVideoElement | null} */
  video: null,
  /** @type {HTMLElement | null} */
  slot: null,
  touchedAt: -CLICK_MS,
  gestures: 0
};

function makeFrame() {
  const frame = document.createElement("iframe");
  frame.setAttribute("allow", "autoplay; fullscreen");
  frame.setAttribute("sandbox", SANDBOX);
  document.body.appendChild(frame);
  const inside = /** @type {Document} */ (frame.contentDocument);
  inside.open();
  inside.write(FRAME_TEXT);
  inside.close();
  stage.frame = frame;
  stage.inside = inside;
  stage.video = /** @type {HTMLVideoElement} */ (inside.getElementById("video"));
  stage.slot = inside.getElementById("slot");
  stage.video.muted = settings.autoplay === "muted";
  frame.addEventListener("load", checkFrame);
  catchClicks(/** @type {Window} */ (frame.contentWindow), inside);
}

/**
 * @param {Window} scope
 * @param {Document} inside
 */
function catchClicks(scope, inside) {
  listenForClicks(inside);
  scope.open = (address) => {
    openClick(plainText(address));
    // Units look for a window, and take to other ways where there is none.
    return /** @type {any} */ ({ closed: false, focus() {}, blur() {}, close() {} });
  };
}

// Harmless when repeated. A unit that writes its document anew takes the listeners away.
/** @param {Document} inside */
function listenForClicks(inside) {
  for (const type of ["pointerdown", "pointerup", "touchend", "mousedown", "click", "keydown"]) {
    inside.addEventListener(type, noteGesture, true);
  }
  inside.addEventListener("click", onLinkClick);
}

/** @param {Event} event */
function onLinkClick(event) {
  attempt(() => catchLink(event));
}

/** @param {Event} event */
function noteGesture(event) {
  if (event.isTrusted) {
    stage.gestures += 1;
    stage.touchedAt = Date.now();
  }
}

/** @param {Event} event */
function catchLink(event) {
  const target = /** @type {Element} */ (event.target);
  const link = target.closest && target.closest("a[href]");
  const address = link && /** @type {HTMLAnchorElement} */ (link).href;
  if (address && !event.defaultPrevented && !/^javascript:/i.test(address)) {
    event.preventDefault();
    openClick(address);
  }
}

/**
 * What the unit would open in a window is the app's to open.
 * @param {string} text
 */
function openClick(text) {
  const url = addressOf(text, CLICK_SCHEMES);
  if (url && !ad.hasEnded && Date.now() - stage.touchedAt < CLICK_MS) {
    openOutside("Open", { url });
  }
}

/**
 * @param {string} name of the message
 * @param {{ url: string }} details
 */
function openOutside(name, details) {
  if (!tellApp(name, details) && details.url) {
    openWindow(details.url, "_blank", "noopener");
  }
}

function frameWindow() { return stage.frame && stage.frame.contentWindow; }

/**
 * Loads the unit's script.
 * @param {string} url
 * @returns {Promise<void>}
 */
function loadScript(url) {
  const address = webAddressOf(url);
  if (!address) {
    return Promise.reject(failure(901, "no address of a unit: " + url));
  }
  return askInTurn(address, loadScriptOnce);
}

/**
 * @param {string} address
 * @returns {Promise<void>}
 */
function loadScriptOnce(address) {
  return new Promise((resolve, reject) => {
    const { inside } = stage;
    if (!inside) {
      return;  // the ad has ended
    }
    const script = inside.createElement("script");
    script.onload = () => resolve();
    script.onerror = () => reject(failure(901, "cannot load the unit " + address));
    script.src = address;
    inside.body.appendChild(script);
  });
}

// A unit may navigate its frame away, or empty it, or the page.
function isFrameLost() {
  const { frame, inside } = stage;
  if (!frame || !inside) {
    return false;
  }
  return !frame.contentWindow || frame.contentDocument !== inside || !frame.isConnected ||
    !inside.body || !inside.body.firstElementChild;
}

/** Whether a video of the unit has moved on since it was asked last. */
const videoTimes = new WeakMap();
function hasVideoMoved() {
  let hasMoved = false;
  const videos = (stage.inside && stage.inside.querySelectorAll("video, audio")) || [];
  for (let i = 0; i < videos.length; ++i) {
    const time = /** @type {HTMLMediaElement} */ (videos[i]).currentTime;
    hasMoved = hasMoved || videoTimes.get(videos[i]) !== time;
    videoTimes.set(videos[i], time);
  }
  return hasMoved;
}

function removeFrame() {
  const { frame, video } = stage;
  attempt(() => video && video.pause());
  attempt(() => frame && frame.removeEventListener("load", checkFrame));
  attempt(() => frame && removeElement(frame));
  stage.frame = stage.inside = stage.video = stage.slot = null;
}
