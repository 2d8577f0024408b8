// What the app may set, in window.tamzoSettings, before the page's script runs.

// All limits of the page, in milliseconds.
const LIMITS = {
  fetch: 8000,      // for each document of the chain
  unit: 8000,       // for the unit's script
  register: 4000,   // from there until it has defined getVPAIDAd
  load: 8000,       // from initAd to AdLoaded
  start: 8000,      // from startAd to AdStarted
  stop: 3000,       // from stopAd, skipAd, AdSkipped or AdUserClose to AdStopped
  stall: 10000,     // while playing, without a sign of life; a quarter of the duration is added
  overall: 300000,  // from startAd to the end, time in which the page is hidden left out
  pixels: 1500      // the last message waits for pixels that are on their way
};

/** @type {TamzoSettings} */
const given = window.tamzoSettings && typeof window.tamzoSettings === "object"
  ? window.tamzoSettings : {};

const settings = {
  // "auto": plays once it is loaded and seen. "call": when tamzoAd.start() was called.
  start: given.start === "call" ? "call" : "auto",
  // What the web view plays without a gesture: "sound", "muted" or "none".
  autoplay: given.autoplay === "muted" || given.autoplay === "none" ? given.autoplay : "sound",
  session: plainText(given.session) || randomDigits() + randomDigits(),
  // A VAST document of what Wrappers hold that stand before the tag; null when the app keeps it.
  wrappers: typeof given.wrappers === "string" ? given.wrappers : null,
  macros: Object.assign({}, given.macros)
};

for (const name of /** @type {(keyof typeof LIMITS)[]} */ (Object.keys(LIMITS))) {
  const own = propertyOf(given.limits, name);
  if (typeof own === "number" && own > 0) {
    LIMITS[name] = own;
  }
}

// Eight of them, as IAB VAST has it for a cache-buster.
function randomDigits() {
  return String(Math.floor(10000000 + Math.random() * 90000000));
}
