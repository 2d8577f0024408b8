#include "xml/XmlParser.h"

#include <libxml/SAX2.h>
#include <libxml/parser.h>
#include <libxml/parserInternals.h>

#include <climits>
#include <cstring>
#include <new>
#include <string>
#include <utility>

#include "tamzo/xml/DDXMLDocument.h"
#include "xml/DocumentType.h"
#include "xml/EntitySizes.h"
#include "xml/LostName.h"
#include "xml/QuietLibrary.h"
#include "xml/TagSize.h"
#include "xml/XmlTree.h"

namespace tamzo {
namespace {

// What libxml2 accepts is not always what it reads in time linear in its size. These bounds close
// the gaps; no ad response comes near any of them.

// libxml2 looks a prefix up in all the declarations in scope, one after another.
constexpr int kMaxNamespacesInScope = 256;
// Names are kept in a dictionary that stops growing; past this it is searched ever more slowly.
constexpr int kMaxNames = 16'384;
// Declarations in a DTD are chained in lists that are searched whenever one is added.
constexpr int kMaxDeclarations = 256;
// Declarations of elements, attributes and notations are read in time quadratic in their length,
// before any callback sees them.
constexpr std::size_t kMaxStructureBytes = 4096;
// What all entity references and defaulted attributes of a document stand for together.
constexpr std::size_t kMaxExpandedBytes = std::size_t{8} << 20U;

// What libxml2 does with the whole name of an element for each of its attributes: bytes of names,
// to a byte of text.
constexpr std::size_t kMaxNameBytes = 64;
// Different runs of white space that are kept in the dictionary, beside the names.
constexpr int kMaxBlanks = 1024;

/// A bound that a text went beyond, and what is said of it.
struct Bound {
  std::string_view id;
  const char* reason;
};
constexpr Bound kAttributes{"attributes", "an element with too many attributes"};
constexpr Bound kNamespaces{"namespaces", "too many namespace declarations"};
constexpr Bound kNames{"names", "too many different names"};
constexpr Bound kNodes{"nodes", "too many nodes"};
constexpr Bound kDeclarations{"declarations", "too many declarations in the document type"};
constexpr Bound kDocumentType{"document-type", "a document type that is too long"};
constexpr Bound kParameterEntities{"parameter-entities", "a parameter entity"};
constexpr Bound kEntities{"entities", "entities stand for too much text"};
constexpr Bound kLongNames{"long-names", "long names that cost too much"};
constexpr Bound kDefaults{"default-attributes", "default attributes of too many elements"};

bool holds(std::string_view text, std::string_view piece) noexcept {
  return text.find(piece) != std::string_view::npos;
}

// Which of libxml2's own bounds an error tells of, if any.
std::string_view boundOf(const xmlError& error) noexcept {
  const std::string_view message = error.message == nullptr ? "" : error.message;
  if (error.code == XML_ERR_ENTITY_LOOP) {
    return kEntities.id;
  }
  if (error.code == XML_ERR_INTERNAL_ERROR && holds(message, "xcessive depth")) {
    return "depth";
  }
  const bool isTooLong = error.code == XML_ERR_NAME_TOO_LONG || holds(message, "too long") ||
                         holds(message, "too big") || holds(message, "huge text");
  return isTooLong ? "length" : "";
}

/// Watches one parse and stops it where it leaves the bounds.
///
/// libxml2 reads what an entity stands for with a parser of its own, and what is referred to there
/// with another. All of them call here, and each must be stopped by itself: see `halt`.
class Guard {
 public:
  static Guard& of(void* context) noexcept {
    return *static_cast<Guard*>(static_cast<xmlParserCtxt*>(context)->_private);
  }

  Guard(xmlParserCtxt* parser, std::size_t textBytes, std::size_t maxNodes) noexcept
      : parser_(parser),
        maxNodes_(maxNodes),
        maxNameBytes_((std::size_t{1} << 20U) + kMaxNameBytes * textBytes) {}

  void stop(const Bound& bound) { stop(bound.reason, bound.id); }

  void failed(const xmlParserCtxt& parser, const xmlError& error) {
    const std::string_view bound = boundOf(error);
    // What libxml2 comes upon where it was stopped says nothing.
    const bool isLost = !stopped_ && isLostName(parser, error);
    if ((error.code == XML_ERR_NO_MEMORY && bound.empty()) || isLost) {
      ranOutOfMemory_ = true;
    }
    mayLackPrefixes_ = looksCloser_ = true;
    // What is forgiven is put into words all the same, names included.
    if (error.message != nullptr) {
      addNameBytes(std::strlen(error.message));
    }
    // libxml2 would read on to the end to find more errors, at seconds a megabyte in places. One
    // is enough.
    if (error.level == XML_ERR_FATAL || !bound.empty()) {
      stop(describe(error), bound);
    }
  }

  /// Ends what `parser` reads, this one or an inner one, when the parse has been stopped.
  void haltIfStopped(xmlParserCtxt* parser) const noexcept {
    if (stopped_ || ranOutOfMemory_) {
      halt(parser);
    }
  }

  void declared() {
    if (++declarations_ > kMaxDeclarations) {
      stop(kDeclarations);
    }
  }

  void referred(const xmlEntity* entity) {
    // Where it stands in an attribute: the reference, and the text that follows.
    addNodes(2);
    expandedBytes_ += entitySizes_.of(parser_->myDoc, entity, kMaxExpandedBytes);
    if (expandedBytes_ > kMaxExpandedBytes) {
      stop(kEntities);
    }
  }

  void declaredAttribute() {
    mayDefaultAttributes_ = looksCloser_ = true;
    declared();
  }

  // Every element is given the defaults declared for its name: those of attributes only to be left
  // out again, those of namespaces to keep.
  void defaulted(std::size_t nodes, std::size_t bytes) {
    constexpr std::size_t kBytesOfNode = 128;
    expandedBytes_ += nodes * kBytesOfNode + bytes;
    if (expandedBytes_ > kMaxExpandedBytes) {
      stop(kDefaults);
    }
  }

  /// True while there are not too many.
  bool countNodes(std::size_t count) noexcept {
    nodes_ += count;
    return nodes_ <= maxNodes_;
  }

  void addNodes(std::size_t count) {
    if (!countNodes(count)) {
      stop(kNodes);
    }
  }

  /// Counts the nodes of a tag; false when it must be looked at more closely. Called for every tag.
  bool isOrdinaryTag(std::size_t nodes, const xmlParserCtxt& parser) noexcept {
    return countNodes(nodes) && xmlDictSize(parser.dict) <= mostStrings_ && !looksCloser_ &&
           parser.nsNr <= 2 * kMaxNamespacesInScope;
  }

  void addNameBytes(std::size_t bytes) {
    nameBytes_ += bytes;
    if (nameBytes_ > maxNameBytes_) {
      stop(kLongNames);
    }
  }

  void checkNames(const xmlParserCtxt& parser) {
    if (xmlDictSize(parser.dict) > kMaxNames + blanks_) {
      stop(kNames);
    }
  }

  /// True once after an error: only then may an element lack a prefix that it has in the text.
  bool mayLackPrefixes() noexcept {
    looksCloser_ = mayDefaultAttributes_;
    return std::exchange(mayLackPrefixes_, false);
  }
  /// True once, when so much is in the dictionary that it matters which of it is white space.
  bool beginsToCountBlanks(const xmlParserCtxt& parser) noexcept {
    const bool begins = mostStrings_ == kMaxBlanks && xmlDictSize(parser.dict) > kMaxBlanks;
    mostStrings_ = begins ? kMaxNames : mostStrings_;
    return begins;
  }
  bool keepsBlanks() const noexcept { return blanks_ < kMaxBlanks; }
  void keptBlanks(int count) noexcept { blanks_ += count; }

  bool mayDefaultAttributes() const noexcept { return mayDefaultAttributes_; }
  void setRanOutOfMemory() noexcept { ranOutOfMemory_ = true; }
  bool ranOutOfMemory() const noexcept { return ranOutOfMemory_; }
  bool stopped() const noexcept { return stopped_; }
  std::size_t nodes() const noexcept { return nodes_; }
  std::size_t expandedBytes() const noexcept { return expandedBytes_; }
  std::string_view bound() const noexcept { return bound_; }
  const std::string& reason() const noexcept { return reason_; }

 private:
  void stop(std::string reason, std::string_view bound) {
    if (!stopped_) {
      reason_ = std::move(reason);
      bound_ = bound;
    }
    stopped_ = true;
    halt(parser_);
  }

  // libxml2's own way frees the text that an inner parser reads, which it may still point into.
  void halt(xmlParserCtxt* parser) const noexcept {
    if (parser == parser_) {
      xmlStopParser(parser);
      return;
    }
    parser->instate = XML_PARSER_EOF;
    parser->disableSAX = 1;
    parser->errNo = XML_ERR_USER_STOP;
    if (parser->input != nullptr) {
      parser->input->cur = parser->input->end;
    }
  }

  static std::string describe(const xmlError& error) {
    std::string text;
    if (error.message != nullptr) {
      text = "line " + std::to_string(error.line) + ": " + error.message;
    }
    while (!text.empty() && text.back() == '\n') {
      text.pop_back();
    }
    return text;
  }

  xmlParserCtxt* parser_;
  std::string reason_;
  std::string_view bound_;
  EntitySizes entitySizes_{kMaxEntityNesting};
  std::size_t expandedBytes_ = 0;
  std::size_t nodes_ = 0;
  std::size_t maxNodes_;
  std::size_t nameBytes_ = 0;
  std::size_t maxNameBytes_;
  int declarations_ = 0;
  int mostStrings_ = kMaxBlanks;
  int blanks_ = 0;
  bool mayDefaultAttributes_ = false;
  bool mayLackPrefixes_ = false;
  bool looksCloser_ = false;
  bool ranOutOfMemory_ = false;
  bool stopped_ = false;
};

// Callbacks stand between C frames of libxml2, which an exception must not cross. The only one
// that can arise here is std::bad_alloc.
template <typename Work>
void guarded(void* context, Work work) noexcept {
  Guard& guard = Guard::of(context);
  try {
    work(guard);
  } catch (...) {
    guard.setRanOutOfMemory();
  }
  guard.haltIfStopped(static_cast<xmlParserCtxt*>(context));
}

void onError(void* context, xmlError* error) {
  guarded(context,
          [&](Guard& guard) { guard.failed(*static_cast<xmlParserCtxt*>(context), *error); });
}

// Attributes come as name, prefix, address, begin and end of the value, defaulted ones last;
// declarations of namespaces as prefix and address, and there is no telling which are defaulted.
void countDefaults(Guard& guard, int namespaceCount, const xmlChar** namespaces, int attributeCount,
                   int defaultedCount, const xmlChar** attributes) {
  std::size_t bytes = 0;
  for (int i = 0; i < namespaceCount; ++i) {
    bytes += std::strlen(asChars(namespaces[2 * i + 1]));
  }
  for (int i = attributeCount - defaultedCount; i < attributeCount; ++i) {
    bytes += static_cast<std::size_t>(attributes[5 * i + 4] - attributes[5 * i + 3]);
  }
  const auto nodes =
      static_cast<std::size_t>(namespaceCount) + static_cast<std::size_t>(defaultedCount);
  guard.defaulted(nodes, bytes);
}

// libxml2 keeps short runs of white space between tags in the dictionary, where those that are ever
// different would pass for names and slow it down. Few are, so that after many it is told not to.
void appendBlanks(Guard& guard, xmlParserCtxt& parser, const xmlChar* text, int length) noexcept {
  if (guard.keepsBlanks()) {
    const int before = xmlDictSize(parser.dict);
    xmlSAX2Characters(&parser, text, length);
    guard.keptBlanks(xmlDictSize(parser.dict) - before);
  } else {
    const int isKeeping = parser.dictNames;
    parser.dictNames = 0;
    xmlSAX2Characters(&parser, text, length);
    parser.dictNames = isKeeping;
  }
}

// Called from when on the dictionary is large; most documents never come there.
void onCharacters(void* context, const xmlChar* text, int length) {
  constexpr int kLeastKept = 2 * sizeof(void*);
  constexpr int kMostKept = 60;
  if (length >= kLeastKept && length < kMostKept && *text <= ' ') {
    appendBlanks(Guard::of(context), *static_cast<xmlParserCtxt*>(context), text, length);
  } else {
    xmlSAX2Characters(context, text, length);
  }
}

// What libxml2 tells of a tag.
struct Tag {
  const xmlChar* localName;
  const xmlChar* prefix;
  const xmlChar* uri;
  int namespaceCount;
  const xmlChar** namespaces;
  int attributeCount;
  int defaultedCount;
  const xmlChar** attributes;
};

void lookCloser(Guard& guard, xmlParserCtxt& parser, const Tag& tag) {
  if (guard.stopped()) {
    return;
  }
  guard.addNodes(0);
  guard.checkNames(parser);
  if (guard.beginsToCountBlanks(parser)) {
    parser.sax->characters = parser.sax->ignorableWhitespace = onCharacters;
  }
  if (guard.mayLackPrefixes() &&
      hasLostPrefix(parser, tag.localName, tag.prefix, tag.uri, tag.attributes,
                    tag.attributeCount - tag.defaultedCount)) {
    guard.setRanOutOfMemory();
  }
  if (guard.mayDefaultAttributes()) {
    // Types of attributes are looked up by the names of both.
    guard.addNameBytes(static_cast<std::size_t>(tag.attributeCount) *
                       std::strlen(asChars(tag.localName)));
    countDefaults(guard, tag.namespaceCount, tag.namespaces, tag.attributeCount, tag.defaultedCount,
                  tag.attributes);
  }
  // nsNr counts a prefix and an address for every declaration.
  if (parser.nsNr > 2 * kMaxNamespacesInScope) {
    guard.stop(kNamespaces);
  }
}

void onStartElement(void* context, const xmlChar* localName, const xmlChar* prefix,
                    const xmlChar* uri, int namespaceCount, const xmlChar** namespaces,
                    int attributeCount, int defaultedCount, const xmlChar** attributes) {
  xmlSAX2StartElementNs(context, localName, prefix, uri, namespaceCount, namespaces, attributeCount,
                        defaultedCount, attributes);
  xmlParserCtxt& parser = *static_cast<xmlParserCtxt*>(context);
  const int nodes = 1 + namespaceCount + 2 * (attributeCount - defaultedCount);
  if (!Guard::of(context).isOrdinaryTag(static_cast<std::size_t>(nodes), parser)) {
    const Tag tag{localName,      prefix,         uri,       namespaceCount, namespaces,
                  attributeCount, defaultedCount, attributes};
    guarded(context, [&](Guard& guard) { lookCloser(guard, parser, tag); });
  }
  // A namespace that found no memory is passed over in silence, and the element would match paths
  // that it must not. In an entity a namespace that is missing says nothing: libxml2 does not see
  // those declared around the reference.
  if (uri != nullptr && parser.node != nullptr && parser.node->ns == nullptr && parser.depth == 0) {
    guarded(context, [](Guard& guard) { guard.setRanOutOfMemory(); });
  }
}

[[gnu::noinline]] void refuseNodes(void* context) noexcept {
  guarded(context, [](Guard& guard) { guard.stop(kNodes); });
}

void countNode(void* context) noexcept {
  if (!Guard::of(context).countNodes(1)) {
    refuseNodes(context);
  }
}

void onCdata(void* context, const xmlChar* text, int length) {
  countNode(context);
  xmlSAX2CDataBlock(context, text, length);
}

void onComment(void* context, const xmlChar* text) {
  countNode(context);
  xmlSAX2Comment(context, text);
}

void onProcessingInstruction(void* context, const xmlChar* target, const xmlChar* data) {
  xmlSAX2ProcessingInstruction(context, target, data);
  guarded(context, [context](Guard& guard) {
    guard.addNodes(1);
    guard.checkNames(*static_cast<xmlParserCtxt*>(context));
  });
}

xmlEntity* onGetEntity(void* context, const xmlChar* name) {
  xmlEntity* entity = xmlSAX2GetEntity(context, name);
  if (entity != nullptr) {
    guarded(context, [&](Guard& guard) { guard.referred(entity); });
  }
  return entity;
}

void onEntityDecl(void* context, const xmlChar* name, int type, const xmlChar* publicId,
                  const xmlChar* systemId, xmlChar* content) {
  if (type == XML_INTERNAL_PARAMETER_ENTITY || type == XML_EXTERNAL_PARAMETER_ENTITY) {
    // A kilobyte of these keeps libxml2 busy for minutes.
    guarded(context, [](Guard& guard) { guard.stop(kParameterEntities); });
    return;
  }
  xmlSAX2EntityDecl(context, name, type, publicId, systemId, content);
  const bool isKept = xmlGetDocEntity(static_cast<xmlParserCtxt*>(context)->myDoc, name) != nullptr;
  guarded(context, [&](Guard& guard) {
    if (!isKept) {
      guard.setRanOutOfMemory();
    }
    // Where the entity is referred to, its text is parsed as if it stood there.
    if (content != nullptr && hasOversizedTag(asChars(content))) {
      guard.stop(kAttributes);
    }
    guard.declared();
  });
}

std::string_view restOf(const xmlParserInput& input) noexcept {
  return {asChars(input.cur), static_cast<std::size_t>(input.end - input.cur)};
}

void onInternalSubset(void* context, const xmlChar* name, const xmlChar* publicId,
                      const xmlChar* systemId) {
  const xmlParserInput& input = *static_cast<xmlParserCtxt*>(context)->input;
  const std::string_view rest = restOf(input);
  if (rest.starts_with('[') && bytesOfStructure(rest.substr(1)) > kMaxStructureBytes) {
    guarded(context, [](Guard& guard) { guard.stop(kDocumentType); });
    return;
  }
  xmlSAX2InternalSubset(context, name, publicId, systemId);
}

// Called at the end of a document type, which only libxml2 can be trusted to find: the tags behind
// it have not been looked at. Nothing is loaded.
void onExternalSubset(void* context, const xmlChar*, const xmlChar*, const xmlChar*) {
  guarded(context, [context](Guard& guard) {
    if (hasOversizedTag(restOf(*static_cast<xmlParserCtxt*>(context)->input))) {
      guard.stop(kAttributes);
    }
  });
}

void onAttributeDecl(void* context, const xmlChar* element, const xmlChar* fullName, int type,
                     int defaultType, const xmlChar* defaultValue, xmlEnumeration* values) {
  xmlSAX2AttributeDecl(context, element, fullName, type, defaultType, defaultValue, values);
  guarded(context, [](Guard& guard) { guard.declaredAttribute(); });
}

void onUnparsedEntityDecl(void* context, const xmlChar* name, const xmlChar* publicId,
                          const xmlChar* systemId, const xmlChar* notation) {
  xmlSAX2UnparsedEntityDecl(context, name, publicId, systemId, notation);
  guarded(context, [](Guard& guard) { guard.declared(); });
}

void watch(xmlParserCtxt* parser, Guard& guard) noexcept {
  parser->_private = &guard;
  xmlSAXHandler& sax = *parser->sax;
  sax.serror = onError;
  sax.internalSubset = onInternalSubset;
  sax.externalSubset = onExternalSubset;
  sax.attributeDecl = onAttributeDecl;
  sax.startElementNs = onStartElement;
  sax.cdataBlock = onCdata;
  sax.comment = onComment;
  sax.processingInstruction = onProcessingInstruction;
  sax.getEntity = onGetEntity;
  sax.entityDecl = onEntityDecl;
  sax.unparsedEntityDecl = onUnparsedEntityDecl;
}

// Much that fails for want of memory is reported to nobody in particular, and the report would be
// gone with the next one: on this thread they all come here meanwhile.
class MemoryWatch {
 public:
  explicit MemoryWatch(Guard& guard) noexcept
      : handler_(xmlStructuredError), context_(xmlStructuredErrorContext) {
    xmlSetStructuredErrorFunc(&guard, onReport);
  }
  ~MemoryWatch() { xmlSetStructuredErrorFunc(context_, handler_); }
  MemoryWatch(const MemoryWatch&) = delete;
  MemoryWatch& operator=(const MemoryWatch&) = delete;

 private:
  static void onReport(void* guard, xmlError* error) noexcept {
    if (error->code == XML_ERR_NO_MEMORY) {
      static_cast<Guard*>(guard)->setRanOutOfMemory();
    }
  }

  xmlStructuredErrorFunc handler_;
  void* context_;
};

struct FreeParser {
  void operator()(xmlParserCtxt* parser) const noexcept { xmlFreeParserCtxt(parser); }
};
struct FreeDoc {
  void operator()(xmlDoc* doc) const noexcept { xmlFreeDoc(doc); }
};

// Makes `text` the parser's input without copying it; it must be followed by a NUL.
void readFrom(xmlParserCtxt* parser, std::string_view text) {
  xmlParserInput* input = xmlNewInputStream(parser);
  if (input == nullptr) {
    throw std::bad_alloc();
  }
  input->base = reinterpret_cast<const xmlChar*>(text.data());
  input->cur = input->base;
  input->end = input->base + text.size();
  input->length = static_cast<int>(text.size());
  if (inputPush(parser, input) < 0) {
    xmlFreeInputStream(input);
    throw std::bad_alloc();
  }
}

// IGNORE_ENC: the text is UTF-8 whatever its declaration says. COMPACT: short texts need no
// allocation of their own.
constexpr int kOptions = XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING |
                         XML_PARSE_COMPACT | XML_PARSE_IGNORE_ENC;

}  // namespace

std::shared_ptr<const XmlTree> XmlParser::refuse(std::string_view reason, std::string_view bound) {
  error_.message = reason;
  bound_ = bound;
  return nullptr;
}

std::shared_ptr<const XmlTree> XmlParser::parse(const Text& given) {
  const std::string_view text = given;
  error_.message.clear();
  bound_ = "";
  nodes_ = 0;
  if (text.empty()) {
    return refuse("the text is empty");
  }
  if (text.size() > static_cast<std::size_t>(INT_MAX)) {
    return refuse("the text is too long", "length");
  }
  // libxml2 takes NUL for the end of its input, and for UTF-16 when it stands at the start.
  if (std::memchr(text.data(), '\0', text.size()) != nullptr) {
    return refuse("a NUL character");
  }
  if (hasOversizedTag(text)) {
    return refuse(kAttributes.reason, kAttributes.id);
  }
  // libxml2 reads up to a NUL. Most texts end with one and are read where they are.
  const std::string copy(given.isTerminated() ? std::string_view() : text);
  const QuietLibrary quiet;

  const std::unique_ptr<xmlParserCtxt, FreeParser> parser(xmlNewParserCtxt());
  if (parser == nullptr) {
    throw std::bad_alloc();
  }
  readFrom(parser.get(), given.isTerminated() ? text : copy);
  Guard guard(parser.get(), text.size(), maxNodes_);
  watch(parser.get(), guard);
  xmlCtxtUseOptions(parser.get(), kOptions);
  {
    const MemoryWatch reports(guard);
    xmlParseDocument(parser.get());
  }
  std::unique_ptr<xmlDoc, FreeDoc> doc(parser->myDoc);
  parser->myDoc = nullptr;
  nodes_ = guard.nodes();

  if (guard.ranOutOfMemory()) {
    throw std::bad_alloc();
  }
  if (doc == nullptr || parser->wellFormed == 0 || guard.stopped()) {
    return refuse(guard.reason().empty() ? "no XML" : guard.reason(), guard.bound());
  }
  auto tree =
      std::make_shared<const XmlTree>(doc.get(), nodes_, text.size() + guard.expandedBytes());
  static_cast<void>(doc.release());
  return tree;
}

std::shared_ptr<DDXMLDocument> XmlParser::parseDocument(const Text& text) {
  auto tree = parse(text);
  // No conditional expression around `new`: clang 14 frees twice when what follows it throws.
  if (tree == nullptr) {
    return nullptr;
  }
  return std::shared_ptr<DDXMLDocument>(new DDXMLDocument(std::move(tree)));
}

}  // namespace tamzo
