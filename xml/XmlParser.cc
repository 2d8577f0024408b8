#include "xml/XmlParser.h"

#include <libxml/SAX2.h>
#include <libxml/parser.h>
#include <libxml/parserInternals.h>

#include <climits>
#include <cstring>
#include <new>
#include <string>
#include <unordered_map>

#include "xml/DocumentType.h"
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
// An entity that refers to an entity that refers to an entity …
constexpr int kMaxEntityNesting = 40;

constexpr const char* kTooManyAttributes = "an element with too many attributes";

/// Watches one parse and stops it where it leaves the bounds.
class Guard {
 public:
  static Guard& of(void* context) noexcept {
    return *static_cast<Guard*>(static_cast<xmlParserCtxt*>(context)->_private);
  }

  explicit Guard(xmlParserCtxt* parser) noexcept : parser_(parser) {}

  void stop(const char* reason) {
    if (reason_.empty()) {
      reason_ = reason;
    }
    stopped_ = true;
    xmlStopParser(parser_);
  }

  void failed(const xmlError* error) {
    if (error->code == XML_ERR_NO_MEMORY) {
      ranOutOfMemory_ = true;
    }
    // libxml2 would read on to the end to find more errors, at seconds a megabyte in places. One
    // is enough.
    if (error->level == XML_ERR_FATAL) {
      if (reason_.empty() && error->message != nullptr) {
        reason_ = "line " + std::to_string(error->line) + ": " + error->message;
        while (!reason_.empty() && reason_.back() == '\n') {
          reason_.pop_back();
        }
      }
      stopped_ = true;
      xmlStopParser(parser_);
    }
  }

  void declared() {
    if (++declarations_ > kMaxDeclarations) {
      stop("too many declarations in the document type");
    }
  }

  void referred(const xmlEntity* entity) {
    expandedBytes_ += expandedSize(entity, 0);
    if (expandedBytes_ > kMaxExpandedBytes) {
      stop("entities stand for too much text");
    }
  }

  void declaredAttribute() {
    mayDefaultAttributes_ = true;
    declared();
  }

  // Every element is given the defaults declared for its name: those of attributes only to be left
  // out again, those of namespaces to keep.
  void defaulted(std::size_t nodes, std::size_t bytes) {
    constexpr std::size_t kBytesOfNode = 128;
    expandedBytes_ += nodes * kBytesOfNode + bytes;
    if (expandedBytes_ > kMaxExpandedBytes) {
      stop("default attributes of too many elements");
    }
  }

  bool mayDefaultAttributes() const noexcept { return mayDefaultAttributes_; }
  void setRanOutOfMemory() noexcept { ranOutOfMemory_ = true; }
  bool ranOutOfMemory() const noexcept { return ranOutOfMemory_; }
  bool stopped() const noexcept { return stopped_; }
  const std::string& reason() const noexcept { return reason_; }

 private:
  std::size_t expandedSize(const xmlEntity* entity, int nesting);

  xmlParserCtxt* parser_;
  std::string reason_;
  std::unordered_map<const xmlEntity*, std::size_t> expandedSizes_;
  std::size_t expandedBytes_ = 0;
  int declarations_ = 0;
  bool mayDefaultAttributes_ = false;
  bool ranOutOfMemory_ = false;
  bool stopped_ = false;
};

std::size_t Guard::expandedSize(const xmlEntity* entity, int nesting) {
  if (entity->etype != XML_INTERNAL_GENERAL_ENTITY || entity->content == nullptr) {
    return 0;
  }
  if (nesting > kMaxEntityNesting) {
    return kMaxExpandedBytes + 1;
  }
  if (const auto known = expandedSizes_.find(entity); known != expandedSizes_.end()) {
    return known->second;
  }
  const std::string_view content(asChars(entity->content));
  std::size_t size = content.size();
  for (std::size_t at = content.find('&');
       at != std::string_view::npos && size <= kMaxExpandedBytes; at = content.find('&', at + 1)) {
    const std::size_t end = content.find(';', at);
    if (end == std::string_view::npos) {
      break;
    }
    const std::string name(content.substr(at + 1, end - at - 1));
    const auto* inner =
        xmlGetDocEntity(parser_->myDoc, reinterpret_cast<const xmlChar*>(name.c_str()));
    if (inner != nullptr) {
      size += expandedSize(inner, nesting + 1);
    }
  }
  expandedSizes_.emplace(entity, size);
  return size;
}

// Callbacks stand between C frames of libxml2, which an exception must not cross. The only one
// that can arise here is std::bad_alloc.
template <typename Work>
void guarded(void* context, Work work) noexcept {
  try {
    work(Guard::of(context));
  } catch (...) {
    Guard::of(context).setRanOutOfMemory();
    xmlStopParser(static_cast<xmlParserCtxt*>(context));
  }
}

void onError(void* context, xmlError* error) {
  guarded(context, [&](Guard& guard) { guard.failed(error); });
}

void checkNames(void* context) {
  if (xmlDictSize(static_cast<xmlParserCtxt*>(context)->dict) > kMaxNames) {
    guarded(context, [](Guard& guard) { guard.stop("too many different names"); });
  }
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

void onStartElement(void* context, const xmlChar* localName, const xmlChar* prefix,
                    const xmlChar* uri, int namespaceCount, const xmlChar** namespaces,
                    int attributeCount, int defaultedCount, const xmlChar** attributes) {
  xmlSAX2StartElementNs(context, localName, prefix, uri, namespaceCount, namespaces, attributeCount,
                        defaultedCount, attributes);
  checkNames(context);
  // A namespace that found no memory is passed over in silence, and the element would match paths
  // that it must not. In an entity a namespace that is missing says nothing: libxml2 does not see
  // those declared around the reference.
  const xmlParserCtxt& parser = *static_cast<xmlParserCtxt*>(context);
  const bool isInEntity = parser.depth > 0;
  if (uri != nullptr && parser.node != nullptr && parser.node->ns == nullptr && !isInEntity) {
    guarded(context, [](Guard& guard) { guard.setRanOutOfMemory(); });
  }
  if (Guard::of(context).mayDefaultAttributes()) {
    guarded(context, [&](Guard& guard) {
      countDefaults(guard, namespaceCount, namespaces, attributeCount, defaultedCount, attributes);
    });
  }
  // nsNr counts a prefix and an address for every declaration.
  if (parser.nsNr > 2 * kMaxNamespacesInScope) {
    guarded(context, [](Guard& guard) { guard.stop("too many namespace declarations"); });
  }
}

void onProcessingInstruction(void* context, const xmlChar* target, const xmlChar* data) {
  xmlSAX2ProcessingInstruction(context, target, data);
  checkNames(context);
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
    guarded(context, [](Guard& guard) { guard.stop("a parameter entity"); });
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
      guard.stop(kTooManyAttributes);
    }
    guard.declared();
  });
}

void onInternalSubset(void* context, const xmlChar* name, const xmlChar* publicId,
                      const xmlChar* systemId) {
  const xmlParserInput& input = *static_cast<xmlParserCtxt*>(context)->input;
  const std::string_view rest(asChars(input.cur), static_cast<std::size_t>(input.end - input.cur));
  if (rest.starts_with('[') && bytesOfStructure(rest.substr(1)) > kMaxStructureBytes) {
    guarded(context, [](Guard& guard) { guard.stop("a document type that is too long"); });
    return;
  }
  xmlSAX2InternalSubset(context, name, publicId, systemId);
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
  sax.attributeDecl = onAttributeDecl;
  sax.startElementNs = onStartElement;
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

void initLibraryOnce() {
  static const bool done = [] {
    xmlInitParser();
    return true;
  }();
  static_cast<void>(done);
}

std::shared_ptr<const XmlTree> refuse(XmlError* error, std::string_view reason) {
  if (error != nullptr) {
    error->message = reason;
  }
  return nullptr;
}

// IGNORE_ENC: the text is UTF-8 whatever its declaration says. COMPACT: short texts need no
// allocation of their own.
constexpr int kOptions = XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING |
                         XML_PARSE_COMPACT | XML_PARSE_IGNORE_ENC;

}  // namespace

std::shared_ptr<const XmlTree> parseXml(const Text& given, XmlError* error) {
  const std::string_view text = given;
  if (text.empty() || text.size() > static_cast<std::size_t>(INT_MAX)) {
    return refuse(error, text.empty() ? "the text is empty" : "the text is too long");
  }
  // libxml2 takes NUL for the end of its input, and for UTF-16 when it stands at the start.
  if (std::memchr(text.data(), '\0', text.size()) != nullptr) {
    return refuse(error, "a NUL character");
  }
  if (hasOversizedTag(text)) {
    return refuse(error, kTooManyAttributes);
  }
  // libxml2 reads up to a NUL. Most texts end with one and are read where they are.
  const std::string copy(given.isTerminated() ? std::string_view() : text);
  initLibraryOnce();
  const QuietLibrary quiet;

  const std::unique_ptr<xmlParserCtxt, FreeParser> parser(xmlNewParserCtxt());
  if (parser == nullptr) {
    throw std::bad_alloc();
  }
  readFrom(parser.get(), given.isTerminated() ? text : copy);
  Guard guard(parser.get());
  watch(parser.get(), guard);
  xmlCtxtUseOptions(parser.get(), kOptions);
  {
    const MemoryWatch reports(guard);
    xmlParseDocument(parser.get());
  }
  std::unique_ptr<xmlDoc, FreeDoc> doc(parser->myDoc);
  parser->myDoc = nullptr;

  if (guard.ranOutOfMemory()) {
    throw std::bad_alloc();
  }
  if (doc == nullptr || parser->wellFormed == 0 || guard.stopped()) {
    return refuse(error, guard.reason().empty() ? "no XML" : guard.reason());
  }
  auto tree = std::make_shared<const XmlTree>(doc.get());
  static_cast<void>(doc.release());
  if (error != nullptr) {
    error->message.clear();
  }
  return tree;
}

}  // namespace tamzo
