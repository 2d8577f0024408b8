// The macros of URLs, as in IAB VAST. The SDK's parser has the same table for the tags it follows:
// what nobody here knows becomes -1, and what the standard does not list stays as it is.

// A macro's element in the ad server's own block; lists are separated by commas.
const BLOCK_TEXTS = {
  SERVERUA: "ServerUA", CLIENTUA: "ClientUA", DEVICEIP: "DeviceIp", OMIDPARTNER: "OMIDPartner",
  GDPRCONSENT: "GDPRConsent", CLICKTYPE: "ClickType"
};
const BLOCK_LISTS = {
  PLAYERCAPABILITIES: "PlayerCapability", INVENTORYSTATE: "InventoryState",
  VASTVERSIONS: "VastVersions", APIFRAMEWORKS: "APIFrameworks",
  VERIFICATIONVENDORS: "VerificationVendors", EXTENSIONS: "SupportedExtension",
  MEDIAMIME: "MimeType"
};
const UNKNOWN = ("ADCATEGORIES ADCOUNT ADPLAYHEAD ADSERVINGID ADTYPE APPBUNDLE ASSETURI " +
  "BLOCKEDADCATEGORIES BREAKMAXADLENGTH BREAKMAXADS BREAKMAXDURATION BREAKMINADLENGTH " +
  "BREAKPOSITION CLICKPOS CONTENTCAT CONTENTID CONTENTPLAYHEAD CONTENTURI DEVICEUA DOMAIN " +
  "DSAPARAMS DSAPUBRENDER DSAREQUIRED GPPSECTIONID GPPSTRING IFA IFATYPE LATLONG " +
  "LIMITADTRACKING MEDIAPLAYHEAD PLACEMENTTYPE PLAYBACKMETHODS PLAYERSIZE PLAYERSTATE " +
  "PODSEQUENCE REGULATIONS STOREID STOREURL TRANSACTIONID UNIVERSALADID").split(" ");

// What is filled in, in one URL; an ad server chooses both the values and how often they occur.
const MAX_FILLED = 1 << 20;

/** @type {Map<string, string>} each ready to be put into a URL */
const macros = new Map();

function startMacros() {
  for (const name of UNKNOWN.concat(Object.keys(BLOCK_TEXTS), Object.keys(BLOCK_LISTS))) {
    macros.set(name, "-1");
  }
  macros.set("SERVERSIDE", "0");
  macros.set("PAGEURL", "0");
  setAppMacros();
}

function setAppMacros() {
  for (const name of Object.keys(settings.macros)) {
    macros.set(name, encodeText(plainText(settings.macros[name])));
  }
}

/** @param {string} text */
function encodeText(text) {
  // Half a surrogate pair cannot be encoded.
  return attempt(() => encodeURIComponent(text)) || "-1";
}

/** @param {string} text */
function encodeList(text) {
  const pieces = text.split(",").map((piece) => piece.trim()).filter((piece) => piece);
  return pieces.map(encodeText).join(",") || "-1";
}

/**
 * Takes the values of a Wrapper's or InLine's blocks. A later block replaces an earlier one whole.
 * @param {Element} ad
 */
function readMacros(ad) {
  for (const extension of findAll(ad, "Extensions/Extension")) {
    const block = findAll(extension, "Tamzo")[0];
    if (block) {
      readBlock(block);
    }
  }
  const id = findAll(ad, "Creatives/Creative/UniversalAdId")[0];
  if (id) {
    const registry = id.getAttribute("idRegistry") || "";
    const value = id.getAttribute("idValue") || textOf(id);
    macros.set("UNIVERSALADID", encodeText(`${registry} ${value}`.trim()));
  }
  setAppMacros();
}

/** @param {Element} block */
function readBlock(block) {
  const valueOf = (/** @type {string} */ name) => rawTextOf(findAll(block, name)[0]);
  for (const [name, element] of Object.entries(BLOCK_TEXTS)) {
    macros.set(name, encodeText(valueOf(element)));
  }
  for (const [name, element] of Object.entries(BLOCK_LISTS)) {
    macros.set(name, encodeList(valueOf(element)));
  }
  const coppa = /^\s*[+-]?0*[YyTt1-9]/.test(valueOf("CoppaEnabled")) ? "coppa" : "";
  macros.set("REGULATIONS", encodeList(`${coppa},${valueOf("GDPRConsent") ? "gdpr" : ""}`));
}

function timestamp() {
  return encodeText(new Date().toISOString().replace("Z", "+00:00"));
}

/**
 * @param {string} url
 * @param {number} [errorCode] without one, [ERRORCODE] stays
 */
function fillMacros(url, errorCode) {
  const moment = new Map([["CACHEBUSTING", randomDigits()], ["TIMESTAMP", timestamp()]]);
  if (errorCode !== undefined) {
    moment.set("ERRORCODE", String(errorCode));
  }
  let filled = 0;
  return url.replace(/\[([A-Z]+)\]/g, (macro, name) => {
    const value = moment.has(name) ? moment.get(name) : macros.get(name);
    if (value === undefined || filled + value.length > MAX_FILLED) {
      return macro;
    }
    filled += value.length;
    return value;
  });
}
