// Events of the unit: when each is taken, what it is to the pixels, and what the app is told.

// An ad that nobody was to see yet has had no impression, whatever its unit says before startAd.
const OF_PLAY = /^Ad(Started|Impression|Video.*)$/;

// Calls deep; an event may come from a unit whose stack is all but used up.
const STACK_NEEDED = 1000;

/**
 * Throws where there is no room for as many calls. Adds, since an engine may make a last call
 * without a place on the stack.
 * @param {number} depth
 * @returns {number}
 */
function needStack(depth) { return depth === 0 ? 1 : 1 + needStack(depth - 1); }

/** @type {[string, unknown[]][]} events that wait for room, in their order */
const late = [];

/**
 * @param {string} name
 * @param {unknown[]} parameters
 */
function onUnitEvent(name, parameters) {
  if (late.length === 0 && attempt(() => needStack(STACK_NEEDED))) {
    takeEvent(name, parameters);
    return;
  }
  if (late.length === 0) {
    setTimer(takeLate, 0);
  }
  late.push([name, parameters]);
}

function takeLate() {
  late.splice(0).forEach(([name, parameters]) => takeEvent(name, parameters));
}

/**
 * @param {string} name
 * @param {unknown[]} parameters
 */
function takeEvent(name, parameters) {
  if (ad.hasEnded) {
    return;
  }
  noteLife();
  if (name === "AdError") {
    endInError(failure(901, messageOf(parameters[0]) || "the unit failed"));
  } else if (name === "AdStopped") {
    ad.hasStopped = true;
    endWell();
  } else if (OF_PLAY.test(name) && !ad.hasStarted) {
    ad.early.push([name, parameters]);
  } else {
    passEvent(name, parameters);
  }
}

/**
 * @param {string} name
 * @param {unknown[]} parameters
 */
function passEvent(name, parameters) {
  watch.isPaused = name === "AdPaused" || (watch.isPaused && name !== "AdPlaying");
  attempt(() => track(name, parameters));
  if (name === "AdClickThru") {
    passClick(parameters);
  } else {
    tellApp(name, detailsOf(name, parameters));
  }
  if (name === "AdSkipped" || name === "AdUserClose") {
    expectEnd();
  }
  const waits = ad.waiting.get(name);
  if (waits) {
    waits();
  }
}

/**
 * @param {string} name
 * @param {unknown[]} parameters
 */
function detailsOf(name, parameters) {
  switch (name) {
    case "AdLog":
      return { message: messageOf(parameters[0]) };
    case "AdInteraction":
      return { id: plainText(parameters[0]) };
    default:
      return {};
  }
}

// Some units hand over one object instead of three values, and some write "false".
/** @param {unknown[]} parameters */
function passClick(parameters) {
  const [first] = parameters;
  const isObject = first !== null && typeof first === "object";
  const [url, id, handles] = isObject
    ? ["url", "id", "playerHandles"].map((name) => propertyOf(first, name)) : parameters;
  const playerHandles = typeof handles === "string" ? /^\s*(true|1|yes)\s*$/i.test(handles)
                                                    : Boolean(handles);
  const details = { url: clickAddress(plainText(url)), id: plainText(id), playerHandles };
  if (playerHandles) {
    openOutside("AdClickThru", details);
  } else {
    tellApp("AdClickThru", details);
  }
}

// The unit's own, else that of the ad.
/** @param {string} text */
function clickAddress(text) {
  const own = addressOf(fillMacros(text), CLICK_SCHEMES);
  return own || addressOf(fillMacros(clickThrough), CLICK_SCHEMES);
}
