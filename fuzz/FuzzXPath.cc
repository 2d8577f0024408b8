// Queries on a document. The first line of the input is an expression, the rest the document. A
// plain child path, which is walked, is asked once more in a form that goes to libxml2's evaluator:
// both must find the same nodes in the same order. Other expressions must end in an answer.

#include <algorithm>
#include <string>
#include <vector>

#include "fuzz/Fuzzing.h"
#include "tamzo/xml/DDXMLDocument.h"
#include "tamzo/xml/NodeList.h"
#include "tamzo/xml/XPath.h"

using namespace tamzo;
using namespace tamzo::fuzz;

namespace {

// Context elements to ask from; one would do, but more meet more shapes for little.
constexpr std::size_t kMostContexts = 24;
// Beyond some thousand steps the evaluator gives up, which the walk never does.
constexpr std::ptrdiff_t kMostSteps = 500;

void collect(const DDXMLElement& element, std::vector<DDXMLElement>& found) {
  for (DDXMLElement each = element; each && found.size() < kMostContexts;
       each = each.nextSiblingElement()) {
    found.push_back(each);
    collect(each.firstChildElement(), found);
  }
}

void read(const DDXMLElement& node) {
  require(static_cast<bool>(node), "a query found nil");
  require(!node.stringValue().isNil(), "a node without a text");
  require(!node.XMLString().isNil(), "a node that cannot be written");
  static_cast<void>(node.name());
  require(node.attributeForName("id").stringValue() == node.attributeValue("id"),
          "two ways to one attribute differ");
}

void requireSame(const NodeList& walked, const NodeList& evaluated) {
  require(!walked.isNil(), "a plain path gave nil");
  require(!evaluated.isNil(), "the evaluator gave nil for a plain path");
  require(walked.size() == evaluated.size(), "walk and evaluator find different numbers of nodes");
  for (std::size_t i = 0; i < walked.size(); ++i) {
    require(walked.at(i) == evaluated.at(i), "walk and evaluator find different nodes");
  }
}

void askPlainPath(const std::string& text, const std::vector<DDXMLElement>& contexts) {
  const XPath plain{std::string_view(text)};
  const std::string otherText =
      plain.isAbsolute() ? "/." + text : "self::*/" + std::string(plain.steps());
  const XPath other{std::string_view(otherText)};
  require(!other.isChildPath(), "the form for the evaluator is walked");
  for (const DDXMLElement& context : contexts) {
    const NodeList walked = context.nodesForXPath(plain);
    requireSame(walked, context.nodesForXPath(other));
    const DDXMLElement first = walked.empty() ? DDXMLElement() : walked.at(0);
    require(context.firstNodeForXPath(plain) == first, "the first node is not the first found");
    require(NodeList::of(context).firstMatch(plain) == first, "a list finds another first node");
    if (const std::string_view name = plain.text(); XPath::firstStep(name) == name) {
      require(context.firstChildren({&name, 1}).front() == first, "one pass finds another child");
    }
    std::for_each(walked.begin(), walked.end(), read);
  }
}

void askExpression(const std::string& text, const std::vector<DDXMLElement>& contexts) {
  const XPath path{std::string_view(text)};
  for (const DDXMLElement& context : contexts) {
    XmlError error;
    const NodeList found = context.nodesForXPath(path, &error);
    require(found.isNil() == !error.message.empty(), "nil without a reason, or a reason for nodes");
    std::for_each(found.begin(), found.end(), read);
    require(context.firstNodeForXPath(path) == (found.empty() ? DDXMLElement() : found.at(0)),
            "the first node is not the first found");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view rest = asText(data, size);
  const std::string expression(takeUpTo(rest, '\n'));
  XmlError error;
  const auto document = DDXMLDocument::initWithXMLString(Text(rest), 0, &error);
  require((document == nullptr) == !error.message.empty(), "no document without a reason");
  if (document == nullptr || std::count(expression.begin(), expression.end(), '/') > kMostSteps) {
    return 0;
  }
  std::vector<DDXMLElement> contexts;
  collect(document->rootElement(), contexts);
  if (XPath(std::string_view(expression)).isChildPath()) {
    askPlainPath(expression, contexts);
    const std::string other = "/." + expression;
    if (expression.front() == '/') {
      requireSame(document->nodesForXPath(XPath(std::string_view(expression))),
                  document->nodesForXPath(XPath(std::string_view(other))));
    }
  } else {
    contexts.resize(std::min<std::size_t>(contexts.size(), 3));
    askExpression(expression, contexts);
  }
  return 0;
}
