// The files of this folder are one script, and see each other's names: they are put one behind the
// other in the order that cmake/VpaidPage.cmake has.

// What the page takes from the browser. A unit runs in a frame of the page's own origin and can
// reach the page, so what its end depends on is taken before the unit loads, and locked.

const setTimer = window.setTimeout.bind(window);
const clearTimer = window.clearTimeout.bind(window);
const setTicker = window.setInterval.bind(window);
const clearTicker = window.clearInterval.bind(window);
const openWindow = window.open.bind(window);
const fetchUrl = window.fetch ? window.fetch.bind(window) : null;
const removeElement = Function.prototype.call.bind(Element.prototype.remove);
const hiddenGetter = Object.getOwnPropertyDescriptor(Document.prototype, "hidden");
// What addresses without a scheme are completed with.
const BASE = /^https?:/.test(document.baseURI) ? document.baseURI : "https://localhost/";

/** @returns {boolean} as the browser says, whatever a unit has put on the document */
const isHidden = hiddenGetter && hiddenGetter.get ? hiddenGetter.get.bind(document)
  : () => document.hidden;

/**
 * The value of `f()`, and undefined when it throws.
 * @template T
 * @param {() => T} f
 * @returns {T | undefined}
 */
function attempt(f) {
  try {
    return f();
  } catch (ignored) {
    return undefined;
  }
}

/** @param {string} name */
function lockGlobal(name) {
  const value = Reflect.get(window, name);
  Object.defineProperty(window, name, { value, writable: false, configurable: false });
  Object.freeze(value);
}

// Object.prototype is closed to additions alone: a frozen one would keep every object of the page
// from having a toString of its own. For Function.prototype alike.
function lockBuiltIns() {
  const listed = [Array, String, RegExp, Promise, Number, Map, Set, WeakMap, Date, URL];
  const iterator = Object.getPrototypeOf([][Symbol.iterator]());
  for (const value of listed) {
    Object.freeze(value.prototype);
  }
  Object.freeze(iterator);
  Object.freeze(Object.getPrototypeOf(iterator));
  Object.preventExtensions(Object.prototype);
  for (const name of ["call", "apply", "bind"]) {
    Object.defineProperty(Function.prototype, name, { writable: false, configurable: false });
  }
  ["Array", "String", "RegExp", "Promise", "Number", "Map", "Set", "WeakMap", "JSON", "Math",
    "Date", "Reflect", "URL", "Image", "XMLHttpRequest", "DOMParser", "Object", "isFinite",
    "parseInt", "encodeURIComponent"]
    .forEach((name) => attempt(() => lockGlobal(name)));
}

// The sandbox keeps the unit from these in its own name, but not in that of the page.
function lockDialogs() {
  for (const name of ["open", "alert", "confirm", "prompt", "print"]) {
    attempt(() => Object.defineProperty(window, name,
      { value: () => null, writable: false, configurable: false }));
  }
}

const MAX_TEXT = 4000;

/**
 * What a unit handed over, as a text that is safe to pass on.
 * @param {unknown} value
 */
function plainText(value) {
  const isNothing = value === undefined || value === null;
  return (attempt(() => (isNothing ? "" : String(value))) || "").slice(0, MAX_TEXT);
}

/**
 * A property of what a unit handed over, which may be anything and may throw.
 * @param {any} value
 * @param {string} name
 */
function propertyOf(value, name) {
  return attempt(() => value[name]);
}

/**
 * What a thrown value, or the argument of AdError, says.
 * @param {unknown} thrown
 */
function messageOf(thrown) {
  const own = propertyOf(thrown, "message");
  return typeof own === "string" ? own.slice(0, MAX_TEXT) : plainText(thrown);
}

/**
 * @param {number} code of IAB VAST's [ERRORCODE]
 * @param {string} message
 */
function failure(code, message) {
  return { vastCode: code, message };
}
