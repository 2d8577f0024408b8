// The life of one ad, from the page's values to the last message.

const ad = {
  hasEnded: false,
  hasStopped: false,      // AdStopped came
  isReady: false,         // AdLoaded came
  hasStarted: false,      // startAd was called
  mayStart: settings.start === "auto",
  isPausedByPage: false,
  /** @type {[string, unknown[]][]} events told too early */
  early: [],
  /** @type {(() => void) | null} tells the last message */
  finish: null,
  /** @type {Map<string, () => void>} what waits for an event of the unit */
  waiting: new Map(),
  /** @type {Set<number>} */
  timers: new Set()
};

// ---- Waiting --------------------------------------------------------------------------------

/**
 * @param {number} milliseconds
 * @param {() => void} f
 */
function after(milliseconds, f) {
  const timer = setTimer(() => {
    ad.timers.delete(timer);
    f();
  }, milliseconds);
  ad.timers.add(timer);
  return timer;
}

/**
 * Waits for `promise`, but not for ever. Of an ad that has ended nothing is ever awaited.
 * @template T
 * @param {Promise<T>} promise
 * @param {number} limit
 * @param {number} code
 * @param {string} what
 * @returns {Promise<T>}
 */
function within(promise, limit, code, what) {
  return new Promise((resolve, reject) => {
    const timer = after(limit, () => reject(failure(code, what + " took too long")));
    const settle = (/** @type {(value: any) => void} */ how) => (/** @type {any} */ value) => {
      clearTimer(timer);
      if (!ad.hasEnded) {
        how(value);
      }
    };
    promise.then(settle(resolve), settle(reject));
  });
}

/**
 * Asked for before the call that brings the event about, since a unit may answer at once.
 * @param {string[]} names any of which will do
 * @returns {Promise<void>}
 */
function eventOf(...names) {
  return new Promise((resolve) => names.forEach((name) => ad.waiting.set(name, resolve)));
}

/** @returns {Promise<void>} */
function registration() {
  return new Promise((resolve) => {
    const look = () => {
      if (typeof propertyOf(frameWindow(), "getVPAIDAd") === "function") {
        resolve();
      } else {
        after(50, look);
      }
    };
    look();
  });
}

// Until the app, and somebody to see it, are ready for the ad.
/** @type {(() => void) | null} */
let startWhenAllowed = null;

/** @returns {Promise<void>} */
function permission() {
  return new Promise((resolve) => {
    startWhenAllowed = resolve;
    lookForPermission();
  });
}

function lookForPermission() {
  const isSeen = !isHidden() || settings.start === "call";
  if (ad.mayStart && isSeen && startWhenAllowed) {
    startWhenAllowed();
  }
}

// ---- From the first call to the last --------------------------------------------------------

async function play() {
  const { tag, moatData, partnerCode } = splitValues(rawTextOf(document.getElementById("tag")));
  const isUrl = document.body.getAttribute("data-tag-is-url") === "true";
  const { url, linear } = findUnit(await readChain(tag, isUrl));
  collectTrackers(linear);
  if (isUrl && settings.wrappers === null) {
    tellTrackers();
  }
  await loadUnit(url);
  await initialise(adParametersOf(linear));
  tellApp("Moat", { data: objectOf(moatData), partnerCode });
  await permission();
  await start();
}

/** @param {string} url */
async function loadUnit(url) {
  if (ad.hasEnded) {
    throw failure(900, "stopped");
  }
  makeFrame();
  await within(loadScript(url), LIMITS.unit, 402, "loading the unit");
  await within(registration(), LIMITS.register, 901, "getVPAIDAd");
  makeUnit();
}

/** @param {string} adParameters */
async function initialise(adParameters) {
  const loaded = eventOf("AdLoaded");
  initUnit(adParameters);
  await within(loaded, LIMITS.load, 901, "AdLoaded");
  ad.isReady = true;
  if (pageSize().join() !== unitSize.join()) {
    passSize();  // the device was turned meanwhile
  }
  if (settings.autoplay === "muted") {
    tracking.isMuted = true;
    askUnit("setAdVolume", [0]);
  }
}

async function start() {
  const started = eventOf("AdStarted", "AdImpression", "AdVideoStart");
  ad.hasStarted = true;
  ad.early.splice(0).forEach(([name, parameters]) => takeEvent(name, parameters));
  callOrFail(unit, "startAd", []);
  await within(started, LIMITS.start, 901, "AdStarted");
  startWatch();
}

/**
 * For the app's measurement of the unit; {} where the ad server sent no JSON.
 * @param {string} text
 */
function objectOf(text) {
  return attempt(() => JSON.parse(text)) || {};
}

// ---- The app's calls ------------------------------------------------------------------------

/**
 * @param {string} method of VPAID
 * @param {unknown[]} parameters
 */
function callFromApp(method, ...parameters) {
  if (ad.hasEnded) {
    return undefined;
  }
  if (method === "pauseAd" || method === "resumeAd") {
    ad.isPausedByPage = false;
  }
  if (method === "stopAd" || (method === "skipAd" && maySkip())) {
    expectEnd();
  }
  const answer = askUnit(method, parameters);
  return typeof answer === "object" || typeof answer === "function" ? undefined : answer;
}

// A unit need not heed a skip that it does not offer.
function maySkip() {
  return unit && askUnit("getAdSkippableState") !== false;
}

const calls = {
  start() {
    ad.mayStart = true;
    lookForPermission();
  },
  pause() { callFromApp("pauseAd"); },
  resume() { callFromApp("resumeAd"); },
  skip() { callFromApp("skipAd"); },
  stop() { callFromApp("stopAd"); },
  call: callFromApp
};
Object.defineProperty(window, "tamzoAd", { value: Object.freeze(calls), enumerable: true });

// ---- The page -------------------------------------------------------------------------------

function onResize() {
  if (ad.isReady && !ad.hasEnded) {
    passSize();
  }
}

function onVisibility() {
  if (ad.hasEnded) {
    return;
  }
  lookForPermission();
  if (!ad.hasStarted) {
    return;
  }
  if (isHidden() && !watch.isPaused) {
    ad.isPausedByPage = true;
    askUnit("pauseAd");
  } else if (!isHidden() && ad.isPausedByPage) {
    ad.isPausedByPage = false;
    askUnit("resumeAd");
  }
}

// The unit got past the sandbox, or the app has taken the page away: nobody can tell, so that this
// is told, but counted as no error of the ad.
function onPageHide() {
  LIMITS.pixels = 0;  // the page has no more time
  end("AdError", { code: 900, message: "the page was left" }, 0);
  if (ad.finish) {
    ad.finish();
  }
}

// ---- The end --------------------------------------------------------------------------------

// Every way out, here, in the unit's events and in the watch, is endWell() or endInError(). Both
// are end(), which takes the ad down, waits for the last pixels, and gives the last message.

// AdStopped must follow. Not every unit knows.
function expectEnd() {
  after(unit && ad.isReady ? LIMITS.stop : 0, endWell);
}

function endWell() {
  end("AdStopped", {}, 0);
}

/** @param {any} error */
function endInError(error) {
  const own = propertyOf(error, "vastCode");
  const code = typeof own === "number" ? own : stage.frame ? 901 : 900;
  end("AdError", { code, message: messageOf(error) }, code);
}

/**
 * The one end. No step of it keeps the next from being taken, and the message is the last.
 * @param {string} name
 * @param {object} details
 * @param {number} errorCode 0 for none
 */
function end(name, details, errorCode) {
  if (ad.hasEnded) {
    return;
  }
  ad.hasEnded = true;
  const steps = [
    () => ad.timers.forEach(clearTimer),
    stopWatch,
    abortFetches,
    () => trackViewable("NotViewable"),
    () => errorCode && fireError(errorCode),
    () => ad.hasStopped || askUnit("stopAd"),  // a unit that hangs may still play sound
    () => { unit = null; },
    removeFrame,
    () => window.removeEventListener("resize", onResize),
    () => document.removeEventListener("visibilitychange", onVisibility)
  ];
  for (let i = 0; i < steps.length; ++i) {
    attempt(steps[i]);
  }
  ad.finish = () => {
    attempt(() => window.removeEventListener("pagehide", onPageHide));
    tellLast(name, details);
  };
  afterPixels(LIMITS.pixels, ad.finish);
}

// ---- The beginning --------------------------------------------------------------------------

document.addEventListener("DOMContentLoaded", () => {
  if (ad.hasEnded) {
    return;  // the app was quicker
  }
  startMacros();
  findApp();
  attempt(lockBuiltIns);
  attempt(lockDialogs);
  play().catch(endInError);
});
window.addEventListener("resize", onResize);
window.addEventListener("pagehide", onPageHide);
document.addEventListener("visibilitychange", onVisibility);
