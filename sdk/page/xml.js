// Reads XML as the SDK's parser does. That forgives what browsers refuse: prefixes that nobody
// declared, names with several colons, attributes of other namespaces in any state. Its page has
// lost the line breaks of the document, which may have stood between a name and an attribute; and a
// session id was filled in, which may hold an ampersand. So markup is written anew before a browser
// reads it. Linear in the text, whatever that is.

const NAME = /[^\s=/>"'<!?\d.-][^\s=/>"'<]*/y;
const ATTRIBUTE = /\s*([^\s=/>"'<]+)(?:\s*=\s*("[^"]*"|'[^']*'))?/y;
const TAG_END = /\s*(\/?)>/y;
const ASSIGNED = /\s*=\s*("[^"]*"|'[^']*')/y;
const PLAIN_ATTRIBUTE = /^(?!xmlns)[A-Za-z_][\w.-]*$/;
const REFERENCE = /&(#\d+;|#x[\dA-Fa-f]+;|[^\s&;<>"'#]+;)?/g;
const COMMENT = "<!-" + "-";  // in one piece it would mean something to the page
const PREDEFINED = ["lt;", "gt;", "amp;", "quot;", "apos;"];

/**
 * @typedef {{ name: string, attributes: string, joined?: string, place: number }} Tag
 *   `joined`: the value of an attribute whose name is run into the tag's.
 */

/**
 * @param {RegExp} pattern a sticky one
 * @param {string} text
 * @param {number} at
 */
function matchAt(pattern, text, at) {
  pattern.lastIndex = at;
  return pattern.exec(text);
}

class XmlRepair {
  /** @param {string} text */
  constructor(text) {
    this.text = text;
    this.at = 0;
    /** @type {string[]} */
    this.out = [];
    /** @type {Tag[]} */
    this.open = [];
    /** @type {string[]} */
    this.entities = PREDEFINED.slice();
  }

  run() {
    while (this.at < this.text.length) {
      const markup = this.text.indexOf("<", this.at);
      const end = markup < 0 ? this.text.length : markup;
      this.out.push(this.repairText(this.text.slice(this.at, end)));
      this.at = end;
      if (markup >= 0) {
        this.readMarkup();
      }
    }
    return this.out.join("");
  }

  readMarkup() {
    if (this.text.startsWith("<![CDATA[", this.at)) {
      this.out.push(this.take("]]>"));
    } else if (this.text.startsWith(COMMENT, this.at)) {
      this.take("-->");
    } else if (this.text.startsWith("<?", this.at)) {
      this.take("?>");
    } else if (this.text.startsWith("<!DOCTYPE", this.at)) {
      this.readDocumentType();
    } else if (this.text.startsWith("</", this.at)) {
      this.readEndTag();
    } else {
      this.readStartTag();
    }
  }

  /**
   * The text up to and with `end`.
   * @param {string} end
   */
  take(end) {
    const from = this.at;
    this.at = this.endOf(end, from);
    return this.text.slice(from, this.at);
  }

  /**
   * Where the next `end` ends.
   * @param {string} end
   * @param {number} from
   */
  endOf(end, from) {
    const found = this.text.indexOf(end, from);
    if (found < 0) {
      throw failure(100, "the tag is cut off");
    }
    return found + end.length;
  }

  // Of the declarations only those of entities matter.
  readDocumentType() {
    const type = this.text.slice(this.at, this.endOfDocumentType());
    const pattern = /<!ENTITY\s*([^\s"'%<>&;]+)\s*("[^"]*"|'[^']*')\s*>/g;
    let declared = "";
    for (let found = pattern.exec(type); found; found = pattern.exec(type)) {
      declared += `<!ENTITY ${found[1]} ${found[2]}>`;
      this.entities.push(found[1] + ";");
    }
    this.out.push(`<!DOCTYPE VAST [${declared}]>`);
    this.at += type.length;
  }

  // Behind the ">" that stands in no bracket, no quotes and no comment.
  endOfDocumentType() {
    const pattern = /"[^"]*"|'[^']*'|<!-{2}|[[\]>]/g;
    pattern.lastIndex = this.at;
    let depth = 0;
    for (let found = pattern.exec(this.text); found; found = pattern.exec(this.text)) {
      depth += found[0] === "[" ? 1 : found[0] === "]" ? -1 : 0;
      if (found[0] === COMMENT) {
        pattern.lastIndex = this.endOf("-->", pattern.lastIndex);
      } else if (found[0] === ">" && depth === 0) {
        return pattern.lastIndex;
      }
    }
    throw failure(100, "the tag is cut off");
  }

  readStartTag() {
    const name = matchAt(NAME, this.text, this.at + 1);
    if (!name) {
      throw failure(100, "the tag is no XML");
    }
    this.at += 1 + name[0].length;
    /** @type {Tag} */
    const tag = { name: name[0], attributes: "", place: this.out.length };
    const assigned = matchAt(ASSIGNED, this.text, this.at);
    if (assigned) {
      tag.joined = assigned[1];
      this.at += assigned[0].length;
    }
    const isEmpty = this.readAttributes(tag);
    this.out.push(startTag(tag, isEmpty));
    if (!isEmpty) {
      this.open.push(tag);
    }
  }

  /**
   * Tells whether the tag is that of an empty element.
   * @param {Tag} tag
   */
  readAttributes(tag) {
    let end = matchAt(TAG_END, this.text, this.at);
    while (!end) {
      const attribute = matchAt(ATTRIBUTE, this.text, this.at);
      if (!attribute) {
        throw failure(100, "the tag is no XML");
      }
      this.at += attribute[0].length;
      tag.attributes += this.attributeText(attribute[1], attribute[2]);
      end = matchAt(TAG_END, this.text, this.at);
    }
    this.at += end[0].length;
    return end[1] === "/";
  }

  readEndTag() {
    const name = this.take(">").slice(2, -1).trim();
    const tag = this.open.pop();
    if (tag && tag.joined && tag.name !== name && tag.name.startsWith(name)) {
      tag.attributes += this.attributeText(tag.name.slice(name.length), tag.joined);
      tag.name = name;
      this.out[tag.place] = startTag(tag, false);
    }
    this.out.push(`</${plainName(name)}>`);
  }

  /**
   * Attributes with a prefix mean nothing to the page.
   * @param {string} name
   * @param {string | undefined} value with its quotes
   */
  attributeText(name, value) {
    return value && PLAIN_ATTRIBUTE.test(name)
      ? ` ${name}=${this.repairReferences(value).replace(/</g, "&lt;")}` : "";
  }

  /** @param {string} text */
  repairText(text) {
    return this.repairReferences(text).replace(/]]>/g, "]]&gt;");
  }

  /** @param {string} text */
  repairReferences(text) {
    return text.replace(REFERENCE, (all, name) =>
      (name && (name[0] === "#" || this.entities.indexOf(name) >= 0) ? all
                                                                     : "&amp;" + (name || "")));
  }
}

/** @param {string} name */
function plainName(name) { return name.replace(/[^\w.-]/g, "_"); }

/**
 * @param {Tag} tag
 * @param {boolean} isEmpty
 */
function startTag(tag, isEmpty) {
  return `<${plainName(tag.name)}${tag.attributes}${isEmpty ? "/" : ""}>`;
}

/**
 * The root element of a document; its elements are in no namespace.
 * @param {string} text
 */
function parseXml(text) {
  const repaired = new XmlRepair(text.trim()).run();
  const root = new DOMParser().parseFromString(repaired, "text/xml").documentElement;
  const reports = root ? Array.from(root.getElementsByTagName("parsererror")) : [];
  // The browser's own report of a fault is in a namespace.
  if (!root || root.namespaceURI || reports.some((report) => report.namespaceURI)) {
    throw failure(100, "the tag is no XML");
  }
  return root;
}

/**
 * The elements that a path of names leads to.
 * @param {Element} from
 * @param {string} path
 */
function findAll(from, path) {
  return path.split("/").reduce((found, name) => found.reduce((children, parent) => {
    for (let child = parent.firstElementChild; child; child = child.nextElementSibling) {
      if (child.nodeName === name) {
        children.push(child);
      }
    }
    return children;
  }, /** @type {Element[]} */ ([])), [from]);
}

/** @param {Element | null | undefined} element */
function rawTextOf(element) { return (element && element.textContent) || ""; }

/** @param {Element | undefined} element */
function textOf(element) { return rawTextOf(element).trim(); }
