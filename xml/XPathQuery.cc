#include "xml/XPathQuery.h"

#include <libxml/xpath.h>
#include <libxml/xpathInternals.h>

#include <algorithm>
#include <memory>
#include <new>
#include <string>

#include "xml/QuietLibrary.h"
#include "xml/XPathCost.h"

namespace tamzo {
namespace {

// Steps that one evaluation may take before it is given up.
constexpr unsigned long kMaxSteps = 50'000'000;
// What they may cost together where they do not all cost the same: comparisons of two nodes, or
// as many times 64 bytes of text.
constexpr double kMaxCost = 2e8;

unsigned long maxSteps(std::string_view expression, const XmlTree& tree) noexcept {
  const XPathCost cost = costOfSteps(expression);
  if (cost == XPathCost::even) {
    return kMaxSteps;
  }
  const auto bytes = static_cast<double>(tree.bytes());
  // Attributes, of which there are many, count for two.
  const double ofOne = static_cast<double>(tree.nodes()) / 2 +
                       (cost == XPathCost::byNode ? bytes / 64 : bytes * bytes);
  // None would mean that there is no limit.
  return static_cast<unsigned long>(
      std::clamp(kMaxCost / ofOne, 1.0, static_cast<double>(kMaxSteps)));
}

// libxml2 numbers the errors of XPath from there on.
constexpr int kTooManySteps = XML_XPATH_EXPRESSION_OK + static_cast<int>(XPATH_OP_LIMIT_EXCEEDED);

struct FreeContext {
  void operator()(xmlXPathContext* context) const noexcept { xmlXPathFreeContext(context); }
};
struct FreeObject {
  void operator()(xmlXPathObject* object) const noexcept { xmlXPathFreeObject(object); }
};

// Without a handler of its own libxml2 writes errors to standard error.
void keepFirstError(void* userData, xmlError* error) {
  auto& code = *static_cast<int*>(userData);
  code = code == 0 ? error->code : code;
}

std::string describe(int code) {
  if (code == 0) {
    return "the expression gives no nodes";
  }
  if (code == kTooManySteps) {
    return "the expression takes too many steps on a document of this size";
  }
  return "the expression cannot be evaluated (libxml2 error " + std::to_string(code) + ")";
}

}  // namespace

bool evaluateXPath(const XmlTree& tree, xmlNode* context, const XPath& path,
                   std::vector<xmlNode*>& found, XmlError* error) {
  const std::string expression(path.text());
  const QuietLibrary quiet;
  const std::unique_ptr<xmlXPathContext, FreeContext> evaluation(xmlXPathNewContext(tree.doc()));
  if (evaluation == nullptr) {
    throw std::bad_alloc();
  }
  tree.orderElements();
  int errorCode = 0;
  evaluation->error = keepFirstError;
  evaluation->userData = &errorCode;
  evaluation->opLimit = maxSteps(expression, tree);
  evaluation->node = context;

  const bool isText = expression.find('\0') == std::string::npos;
  const std::unique_ptr<xmlXPathObject, FreeObject> result(
      isText ? xmlXPathEval(asXml(expression), evaluation.get()) : nullptr);
  if (errorCode == XML_ERR_NO_MEMORY) {
    throw std::bad_alloc();
  }
  if (result == nullptr || result->type != XPATH_NODESET) {
    if (error != nullptr) {
      // Not every place that gives up says so.
      const bool isGivenUp = evaluation->opCount >= evaluation->opLimit;
      error->message = describe(isGivenUp ? kTooManySteps : errorCode);
    }
    return false;
  }
  if (result->nodesetval == nullptr) {
    return true;
  }
  xmlXPathNodeSetSort(result->nodesetval);
  for (int i = 0; i < result->nodesetval->nodeNr; ++i) {
    xmlNode* node = result->nodesetval->nodeTab[i];
    // A namespace node is a copy that goes with the result.
    if (node->type != XML_NAMESPACE_DECL) {
      found.push_back(node);
    }
  }
  return true;
}

}  // namespace tamzo
