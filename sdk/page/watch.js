// Looks after the ad while it plays: an end must come, whatever the unit does.

const TICK_MS = 250;
// IAB and MRC call a video viewable that was seen for two seconds without a break.
const VIEWABLE_MS = 2000;

const watch = {
  /** @type {number} */
  ticker: 0,
  lastTick: 0,
  playing: 0,      // milliseconds, while the page is seen
  quiet: 0,        // since the last sign of life
  viewed: 0,       // seen and playing without a break
  remaining: -1,
  gestures: 0,
  isPaused: false
};

function startWatch() {
  watch.lastTick = Date.now();
  watch.ticker = setTicker(() => attempt(tick), TICK_MS);
}

function stopWatch() {
  clearTicker(watch.ticker);
}

function noteLife() {
  watch.quiet = 0;
}

// A longer gap is one in which the page slept.
function elapsedSinceTick() {
  const now = Date.now();
  const elapsed = Math.min(Math.max(now - watch.lastTick, 0), 4 * TICK_MS);
  watch.lastTick = now;
  return elapsed;
}

function tick() {
  const elapsed = elapsedSinceTick();
  checkFrame();
  if (isHidden()) {
    watch.viewed = 0;
    return;
  }
  watch.playing += elapsed;
  lookForLife(elapsed);
  trackView(elapsed);
  if (tracking.seen.has("AdVideoStart")) {
    trackProgress(askPosition());
  }
  checkLimits();
}

/** @param {number} elapsed */
function lookForLife(elapsed) {
  const remaining = askNumber("getAdRemainingTime");
  const isAlive = remaining !== watch.remaining || stage.gestures !== watch.gestures ||
    attempt(hasVideoMoved);
  watch.remaining = remaining;
  watch.gestures = stage.gestures;
  watch.quiet = isAlive || watch.isPaused ? 0 : watch.quiet + elapsed;
}

/** @param {number} elapsed */
function trackView(elapsed) {
  if (watch.isPaused || !tracking.seen.has("AdImpression")) {
    watch.viewed = 0;
    return;
  }
  watch.viewed += elapsed;
  if (watch.viewed >= VIEWABLE_MS) {
    trackViewable(document.visibilityState ? "Viewable" : "ViewUndetermined");
  }
}

function checkLimits() {
  const quarter = Math.max(tracking.duration, 0) * 250;
  if (watch.quiet >= LIMITS.stall + quarter) {
    endOverdue("the unit has gone quiet");
  } else if (watch.playing >= LIMITS.overall) {
    endOverdue("the ad ran too long");
  }
}

/**
 * An ad that was seen to its end has not failed.
 * @param {string} message
 */
function endOverdue(message) {
  if (tracking.seen.has("AdVideoComplete")) {
    endWell();
  } else {
    endInError(failure(901, message));
  }
}

function checkFrame() {
  if (attempt(isFrameLost) !== false) {
    endInError(failure(901, "the unit has left its frame"));
  } else {
    attempt(() => stage.inside && listenForClicks(stage.inside));
  }
}
