#include "xml/XPathQuery.h"

#include <libxml/xpath.h>
#include <libxml/xpathInternals.h>

#include <memory>
#include <new>
#include <string>

#include "xml/QuietLibrary.h"

namespace tamzo {
namespace {

// Steps that one evaluation may take before it is given up.
constexpr unsigned long kMaxOperations = 50'000'000;

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
  return code == 0
             ? "the expression gives no nodes"
             : "the expression cannot be evaluated (libxml2 error " + std::to_string(code) + ")";
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
  int errorCode = 0;
  evaluation->error = keepFirstError;
  evaluation->userData = &errorCode;
  evaluation->opLimit = kMaxOperations;
  evaluation->node = context;

  const bool isText = expression.find('\0') == std::string::npos;
  const std::unique_ptr<xmlXPathObject, FreeObject> result(
      isText ? xmlXPathEval(reinterpret_cast<const xmlChar*>(expression.c_str()), evaluation.get())
             : nullptr);
  if (errorCode == XML_ERR_NO_MEMORY) {
    throw std::bad_alloc();
  }
  if (result == nullptr || result->type != XPATH_NODESET) {
    if (error != nullptr) {
      error->message = describe(errorCode);
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
