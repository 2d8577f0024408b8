// Calls of the unit. Whatever it throws, or lacks, stays here.

const EVENTS = ["AdLoaded", "AdStarted", "AdStopped", "AdError", "AdImpression", "AdVideoStart",
  "AdVideoFirstQuartile", "AdVideoMidpoint", "AdVideoThirdQuartile", "AdVideoComplete",
  "AdPaused", "AdPlaying", "AdSkipped", "AdClickThru", "AdInteraction", "AdUserAcceptInvitation",
  "AdUserMinimize", "AdUserClose", "AdVolumeChange", "AdExpandedChange", "AdSizeChange",
  "AdSkippableStateChange", "AdLinearChange", "AdDurationChange", "AdRemainingTimeChange", "AdLog"];
const DESIRED_BITRATE = 800;  // kilobits a second

/** @type {any} what getVPAIDAd() gave */
let unit = null;
/** @type {[number, number]} */
let unitSize = [0, 0];

/**
 * A call that the ad cannot do without.
 * @param {any} object
 * @param {string} method
 * @param {unknown[]} parameters
 */
function callOrFail(object, method, parameters) {
  try {
    return object[method](...parameters);
  } catch (thrown) {
    throw failure(901, `${method} failed: ${messageOf(thrown)}`);
  }
}

/**
 * A call that the unit may fail, or not know.
 * @param {string} method
 * @param {unknown[]} [parameters]
 */
function askUnit(method, parameters) {
  return attempt(() => (unit && typeof unit[method] === "function"
    ? unit[method](...(parameters || [])) : undefined));
}

/** @type {Set<string>} */
const beingAsked = new Set();

/**
 * The same of a getter. Some tell of the very event that has them asked: they are not asked anew
 * meanwhile.
 * @param {string} getter
 */
function askValue(getter) {
  if (beingAsked.has(getter)) {
    return undefined;
  }
  beingAsked.add(getter);
  const value = askUnit(getter);
  beingAsked.delete(getter);
  return value;
}

/** @param {string} method */
function askNumber(method) {
  const value = askValue(method);
  return typeof value === "number" && isFinite(value) ? value : -1;
}

function makeUnit() {
  unit = callOrFail(frameWindow(), "getVPAIDAd", []);
  const version = plainText(callOrFail(unit, "handshakeVersion", ["2.0"]));
  if (!/^[12]\b/.test(version)) {
    throw failure(901, "the unit speaks VPAID " + version.slice(0, 100));
  }
  for (const name of EVENTS) {
    attempt(() => unit.subscribe(
      (/** @type {unknown[]} */ ...parameters) => onUnitEvent(name, parameters), name, window));
  }
}

/** @param {string} adParameters */
function initUnit(adParameters) {
  unitSize = pageSize();
  callOrFail(unit, "initAd", [unitSize[0], unitSize[1], "normal", DESIRED_BITRATE,
    { AdParameters: adParameters },
    { slot: stage.slot, videoSlot: stage.video,
      videoSlotCanAutoPlay: settings.autoplay !== "none" }]);
}

/** @returns {[number, number]} the last one known where a unit has damaged the page */
function pageSize() {
  return attempt(() => [window.innerWidth, window.innerHeight]) || unitSize;
}

// A unit is not asked to take a new size before it has loaded.
function passSize() {
  unitSize = pageSize();
  askUnit("resizeAd", [unitSize[0], unitSize[1], "normal"]);
}

// How much has been played, in seconds; -1 when nobody can tell.
let hasTime = false;
function askPosition() {
  const remaining = askNumber("getAdRemainingTime");
  const asked = askNumber("getAdDuration");
  const duration = asked > 0 ? asked : tracking.duration;
  tracking.duration = tracking.duration > 0 ? tracking.duration : duration;
  hasTime = hasTime || remaining > 0;  // some say 0 throughout
  if (hasTime && remaining >= 0 && duration > 0) {
    return Math.max(duration - remaining, 0);
  }
  const video = attempt(() => stage.video && stage.video.currentTime);
  return video || -1;
}
