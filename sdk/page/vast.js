// The documents of the ad.

// As many as the SDK's parser follows.
const MAX_WRAPPERS = 5;

const SEPARATOR = "\u001f";

/**
 * What the SDK filled into the page, as it stands, between separators: a character that no XML
 * document can hold, so that none of the values can.
 * @param {string} text
 */
function splitValues(text) {
  const pieces = text.split(SEPARATOR);
  const known = pieces.length > 3 ? pieces.length - 3 : 1;
  const [moatData = "", partnerCode = ""] = pieces.slice(known);
  return { tag: pieces.slice(0, known).join(SEPARATOR), moatData, partnerCode };
}

/** @type {Element[]} what the app has of Wrappers, the Wrappers in order, then the InLine */
const chain = [];

/** @type {string[]} whom to tell of an error, as far as documents were read */
const errorUrls = [];

/** @param {Element} from the root or the ad */
function addErrorUrls(from) {
  findAll(from, "Error").map(textOf).forEach((url) => errorUrls.push(url));
}

/**
 * Adds what a document has to `chain` and `errorUrls`.
 * @param {string} text
 */
function addDocument(text) {
  const root = parseXml(text);
  if (root.nodeName !== "VAST") {
    throw failure(100, "the tag is no VAST document");
  }
  const ad = findAll(root, "Ad/Wrapper").concat(findAll(root, "Ad/InLine"))[0];
  if (!ad) {
    addErrorUrls(root);
    throw failure(303, "the VAST document holds no ad");
  }
  addErrorUrls(ad);
  readMacros(ad);
  chain.push(ad);
  return ad;
}

/**
 * @param {string} tag
 * @param {boolean} isUrl
 */
async function readChain(tag, isUrl) {
  const { wrappers } = settings;
  if (isUrl && wrappers) {
    attempt(() => addDocument(wrappers));
  }
  let ad = addDocument(isUrl ? await fetchText(fillMacros(tag.trim())) : tag);
  for (let count = 1; ad.nodeName === "Wrapper"; ++count) {
    if (count > MAX_WRAPPERS) {
      throw failure(302, "too many Wrappers");
    }
    const next = textOf(findAll(ad, "VASTAdTagURI")[0]);
    if (!next) {
      throw failure(300, "a Wrapper without a tag URL");
    }
    ad = addDocument(await fetchText(fillMacros(next)));
  }
  return ad;
}

/** @param {Element} file */
function isUnit(file) {
  return file.getAttribute("apiFramework") === "VPAID" &&
    file.getAttribute("type") === "application/javascript" && textOf(file) !== "";
}

/**
 * The Linear that is played, and the address of its unit.
 * @param {Element} inLine
 */
function findUnit(inLine) {
  for (const linear of findAll(inLine, "Creatives/Creative/Linear")) {
    const file = findAll(linear, "MediaFiles/MediaFile")
      .concat(findAll(linear, "MediaFiles/InteractiveCreativeFile")).filter(isUnit)[0];
    if (file) {
      return { url: fillMacros(textOf(file)), linear };
    }
  }
  throw failure(403, "the ad holds no JavaScript VPAID unit");
}

/** @type {{ [name: string]: string }} */
const ENTITIES = { lt: "<", gt: ">", amp: "&", quot: "\"", apos: "'" };

/** @param {string} name as in "lt" or "#x3C" */
function characterOf(name) {
  const code = /^#x/i.test(name) ? parseInt(name.slice(2), 16) : parseInt(name.slice(1), 10);
  return ENTITIES[name] || attempt(() => String.fromCodePoint(code)) || "";
}

/** @param {Element} linear */
function adParametersOf(linear) {
  const element = findAll(linear, "AdParameters")[0];
  const text = rawTextOf(element);
  const isEncoded = element && /^\s*(true|1)\s*$/i.test(element.getAttribute("xmlEncoded") || "");
  return isEncoded
    ? text.replace(/&(lt|gt|amp|quot|apos|#\d{1,7}|#x[\da-f]{1,6});/gi,
      (all, name) => characterOf(name) || all)
    : text;
}

/**
 * Seconds of "HH:MM:SS", also with a fraction; -1 when it is none.
 * @param {string} text
 */
function secondsOf(text) {
  const found = /^\s*(\d+):(\d+):(\d+(?:\.\d+)?)\s*$/.exec(text);
  return found ? Number(found[1]) * 3600 + Number(found[2]) * 60 + Number(found[3]) : -1;
}
