// Documents and pixels.

const CLICK_SCHEMES = ["http:", "https:", "market:", "itms-apps:", "itms-appss:", "tel:", "sms:",
  "mailto:"];

/**
 * The address that a text of the ad stands for, or "" when it is none that the page may use.
 * @param {string} text
 * @param {string[]} schemes
 */
function addressOf(text, schemes) {
  const url = attempt(() => new URL(text.trim(), text.trim().startsWith("//") ? BASE : undefined));
  return url && schemes.indexOf(url.protocol) >= 0 ? url.href : "";
}

/** @param {string} text */
function webAddressOf(text) { return addressOf(text, ["http:", "https:"]); }

/**
 * What to try in turn. A page that was loaded over https may not use http, or not always.
 * @param {string} address
 */
function attemptsFor(address) {
  return window.location.protocol === "https:" && address.startsWith("http:")
    ? [address.replace("http:", "https:"), address] : [address];
}

/**
 * What `ask` gives for the first of those that it does not fail for.
 * @template T
 * @param {string} address
 * @param {(address: string) => Promise<T>} ask
 * @returns {Promise<T>}
 */
function askInTurn(address, ask) {
  const [first, second] = attemptsFor(address);
  return second ? ask(first).catch(() => ask(second)) : ask(first);
}

/** @type {Set<XMLHttpRequest>} */
const fetches = new Set();

/**
 * @param {string} address
 * @returns {Promise<string>}
 */
function fetchOnce(address) {
  return new Promise((resolve, reject) => {
    const request = new XMLHttpRequest();
    const refuse = () => reject(failure(301, "cannot fetch " + address));
    request.onload = () =>
      (request.status >= 200 && request.status < 300 ? resolve(request.responseText) : refuse());
    request.onerror = request.ontimeout = refuse;
    request.onloadend = () => fetches.delete(request);
    request.open("GET", address);
    request.timeout = LIMITS.fetch;
    fetches.add(request);
    request.send();
  });
}

/** @param {string} url */
function fetchText(url) {
  const address = webAddressOf(url);
  if (!address) {
    return Promise.reject(failure(301, "no address to fetch: " + url));
  }
  return askInTurn(address, fetchOnce);
}

function abortFetches() {
  fetches.forEach((request) => request.abort());
}

// ---- Pixels ---------------------------------------------------------------------------------

const pixels = {
  pending: 0,
  /** @type {Set<HTMLImageElement>} kept from the garbage collector */
  images: new Set(),
  /** @type {(() => void) | null} */
  whenSettled: null
};

// A browser may end requests of a page that goes away, but not these; there is room for some only.
const MAX_KEPT_ALIVE = 20;

/**
 * @param {string} address
 * @returns {Promise<unknown>}
 */
function sendImage(address) {
  return new Promise((resolve) => {
    const image = new Image();
    pixels.images.add(image);
    image.onload = image.onerror = () => {
      pixels.images.delete(image);
      resolve(undefined);
    };
    image.src = address;
  });
}

/**
 * Every call is a request: an image of the same URL would be taken from the page's own memory.
 * @param {string} address
 * @returns {Promise<unknown>}
 */
function sendPixel(address) {
  return fetchUrl ? fetchUrl(address, {
    mode: "no-cors", credentials: "include", cache: "no-store",
    keepalive: pixels.pending <= MAX_KEPT_ALIVE
  }) : sendImage(address);
}

/** @param {string} url with its macros filled */
function firePixel(url) {
  const address = webAddressOf(url);
  if (!address) {
    return;
  }
  const [first, second] = attemptsFor(address);
  pixels.pending += 1;
  sendPixel(first).catch(() => second && sendImage(second)).then(settlePixel, settlePixel);
}

function settlePixel() {
  pixels.pending -= 1;
  if (pixels.pending === 0 && pixels.whenSettled) {
    pixels.whenSettled();
  }
}

/**
 * Calls `f` once, when no pixel is on its way any more or the limit has passed.
 * @param {number} limit
 * @param {() => void} f
 */
function afterPixels(limit, f) {
  let isCalled = false;
  const call = () => {
    if (!isCalled) {
      isCalled = true;
      f();
    }
  };
  if (pixels.pending === 0 || limit === 0) {
    call();
  } else {
    pixels.whenSettled = call;
    setTimer(call, limit);
  }
}
