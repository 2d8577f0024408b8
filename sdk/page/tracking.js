// Which pixels are fired when.

// The VAST tracking events of a VPAID event that counts once.
/** @type {{ [name: string]: string[] }} */
const ONCE = {
  AdLoaded: ["loaded"],
  AdImpression: ["Impression"],
  AdStarted: ["creativeView"],
  AdVideoStart: ["start"],
  AdVideoFirstQuartile: ["firstQuartile"],
  AdVideoMidpoint: ["midpoint"],
  AdVideoThirdQuartile: ["thirdQuartile"],
  AdVideoComplete: ["complete"],
  AdSkipped: ["skip"],
  AdUserAcceptInvitation: ["acceptInvitation", "acceptInvitationLinear"],
  AdUserMinimize: ["minimize"],
  AdUserClose: ["close", "closeLinear"]
};
// And of one that may recur.
/** @type {{ [name: string]: string[] }} */
const EACH_TIME = { AdPaused: ["pause"], AdPlaying: ["resume"], AdClickThru: ["ClickTracking"] };
// How much of the ad has been played by then.
/** @type {{ [name: string]: number }} */
const PLAYED = {
  AdVideoFirstQuartile: 0.25, AdVideoMidpoint: 0.5, AdVideoThirdQuartile: 0.75, AdVideoComplete: 1
};

/** @typedef {{ url: string, id?: string, offset?: string }} Tracker */

/** @type {Map<string, Tracker[]>} by the keys that the record's `trackers` have */
const trackers = new Map();

const tracking = {
  duration: -1,   // in seconds; -1 while unknown
  /** @type {Set<string>} VPAID events that have happened */
  seen: new Set(),
  /** @type {Set<Tracker>} */
  progressFired: new Set(),
  isMuted: false,
  /** @type {boolean | null} */
  isExpanded: null,
  isViewableTold: false,
  tellsApp: false,  // the app has trackers of its own
  toldSecond: 0
};

let clickThrough = "";

/** @param {string} key @param {Tracker} tracker */
function addTracker(key, tracker) {
  const listed = trackers.get(key) || [];
  listed.push(tracker);
  trackers.set(key, listed);
}

/** @param {string} key @param {Element} from @param {string} path */
function addTrackers(key, from, path) {
  for (const element of findAll(from, path)) {
    if (textOf(element)) {
      addTracker(key, { url: textOf(element), id: element.getAttribute("id") || "" });
    }
  }
}

/** @param {Element} linear */
function addLinear(linear) {
  for (const element of findAll(linear, "TrackingEvents/Tracking")) {
    const url = textOf(element);
    if (url) {
      const offset = element.getAttribute("offset") || "";
      addTracker((element.getAttribute("event") || "").trim(), { url, offset });
    }
  }
  addTrackers("ClickTracking", linear, "VideoClicks/ClickTracking");
  addTrackers("CustomClickTracker", linear, "VideoClicks/CustomClick");
}

/**
 * Of the InLine the Linear that is played, of each Wrapper its first.
 * @param {Element} played
 */
function collectTrackers(played) {
  for (const element of chain) {
    addTrackers("Impression", element, "Impression");
    for (const key of ["Viewable", "NotViewable", "ViewUndetermined"]) {
      addTrackers(key, element, "ViewableImpression/" + key);
    }
    const isPlayed = element === chain[chain.length - 1];
    const linear = isPlayed ? played : findAll(element, "Creatives/Creative/Linear")[0];
    if (linear) {
      addLinear(linear);
    }
  }
  clickThrough = findAll(played, "VideoClicks/ClickThrough").map(textOf).filter(Boolean)[0] || "";
  tracking.duration = secondsOf(textOf(findAll(played, "Duration")[0]));
}

// For an app that has to fire those of documents which the page does not have.
function tellTrackers() {
  /** @type {{ [key: string]: string[] }} */
  const urls = Object.create(null);
  trackers.forEach((listed, key) => { urls[key] = listed.map((tracker) => tracker.url); });
  tracking.tellsApp = true;
  tellApp("Trackers", { urls });
}

/**
 * @param {string} key
 * @param {(tracker: Tracker) => boolean} [accepts]
 */
function fire(key, accepts) {
  for (const tracker of trackers.get(key) || []) {
    if (!accepts || accepts(tracker)) {
      attempt(() => firePixel(fillMacros(tracker.url)));
    }
  }
}

/**
 * Fires what is known of an event, and lets the app fire what it knows besides.
 * @param {string} key
 */
function fireEvent(key) {
  fire(key);
  if (tracking.tellsApp) {
    tellApp("Track", { event: key });
  }
}

/** @param {number} code */
function fireError(code) {
  for (const url of errorUrls) {
    attempt(() => firePixel(fillMacros(url, code)));
  }
}

/** @type {{ [name: string]: (parameters: unknown[]) => void }} */
const BESIDES = {
  AdVolumeChange: (parameters) => trackVolume(parameters[0]),
  AdInteraction: (parameters) => trackInteraction(plainText(parameters[0])),
  AdExpandedChange: () => trackExpansion(askValue("getAdExpanded")),
  AdUserMinimize: () => trackExpansion(false)
};

/**
 * @param {string} name of a VPAID event
 * @param {unknown[]} parameters
 */
function track(name, parameters) {
  const isFirst = !tracking.seen.has(name);
  tracking.seen.add(name);
  ((isFirst && ONCE[name]) || EACH_TIME[name] || []).forEach(fireEvent);
  if (BESIDES[name]) {
    BESIDES[name](parameters);
  }
  if (PLAYED[name] && tracking.duration > 0) {
    trackProgress(PLAYED[name] * tracking.duration);
  }
}

/** @param {unknown} told what the event itself says */
function trackVolume(told) {
  const asked = askValue("getAdVolume");
  const volume = typeof asked === "number" ? asked : told;
  if (typeof volume === "number" && (volume === 0) !== tracking.isMuted) {
    tracking.isMuted = volume === 0;
    fireEvent(tracking.isMuted ? "mute" : "unmute");
  }
}

/** @param {unknown} isExpanded */
function trackExpansion(isExpanded) {
  if (typeof isExpanded === "boolean" && isExpanded !== tracking.isExpanded) {
    tracking.isExpanded = isExpanded;
    fireEvent(isExpanded ? "expand" : "collapse");
  }
}

/** @param {string} id */
function trackInteraction(id) {
  fire("CustomClickTracker", (tracker) => !tracker.id || tracker.id === id);
  if (tracking.tellsApp) {
    tellApp("Track", { event: "CustomClickTracker", id });
  }
}

/** @param {number} position in seconds */
function trackProgress(position) {
  for (const tracker of trackers.get("progress") || []) {
    const offset = offsetOf(tracker.offset || "");
    if (offset >= 0 && offset <= position && !tracking.progressFired.has(tracker)) {
      tracking.progressFired.add(tracker);
      attempt(() => firePixel(fillMacros(tracker.url)));
    }
  }
  if (tracking.tellsApp && Math.floor(position) > tracking.toldSecond) {
    tracking.toldSecond = Math.floor(position);
    tellApp("Progress", { position: tracking.toldSecond, duration: tracking.duration });
  }
}

/** @param {string} text */
function offsetOf(text) {
  const percent = /^\s*(\d+(?:\.\d+)?)%\s*$/.exec(text);
  if (!percent) {
    return secondsOf(text);
  }
  return tracking.duration > 0 ? Number(percent[1]) / 100 * tracking.duration : -1;
}

/**
 * One of the three is fired for an ad that had an impression.
 * @param {"Viewable" | "NotViewable" | "ViewUndetermined"} key
 */
function trackViewable(key) {
  if (!tracking.isViewableTold && tracking.seen.has("AdImpression")) {
    tracking.isViewableTold = true;
    fireEvent(key);
  }
}
