// Ad categories, and which of them the app blocks.

#include "tamzo/vast/TamzoVastAd.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <unordered_set>

#include "tamzo/sdk/TamzoLogger.h"
#include "tamzo/sdk/TamzoState.h"

namespace tamzo {
namespace {

// The pieces between the commas, as they stand, empty ones included.
std::unordered_set<std::string_view> splitAtCommas(std::string_view text) {
  std::unordered_set<std::string_view> parts;
  std::size_t begin = 0;
  for (std::size_t comma = text.find(','); comma != std::string_view::npos;
       comma = text.find(',', begin)) {
    parts.insert(text.substr(begin, comma - begin));
    begin = comma + 1;
  }
  parts.insert(text.substr(begin));
  return parts;
}

// Only for a log line, in which every category is followed by a comma.
Text joinCategories(const NodeList& categories) {
  std::string joined;
  for (const DDXMLElement& category : categories) {
    joined += category.stringValue().view();
    joined += ',';
  }
  return Text(std::move(joined));
}

}  // namespace

void TamzoVastAd::updateCategory(const NodeList& nodes) {
  const NodeList categories = getArrayFromNode(nodes, "Category");
  if (categories.empty()) {
    return;
  }
  if (categoryArray() == nullptr) {
    setCategoryArray(makeList<Text>());
  }
  for (const DDXMLElement& category : categories) {
    categoryArray()->push_back(category.stringValue());
  }
  TAMZO_LOG("[Blocked ad category: %@] and [Vast Ad Category : %@]",
            TamzoState::getBlockedAdCategories(), joinCategories(categories));
  if (isCategoryBlocked(categoryArray())) {
    setErrorCode(kCategoryBlocked);
    TAMZO_LOG("Vast Ad Category is blocked");
  }
}

bool TamzoVastAd::isCategoryBlocked(const List<Text>& categories) {
  const Text blocked = TamzoState::getBlockedAdCategories();
  if (blocked.isNil() || categories == nullptr) {
    return false;
  }
  const auto parts = splitAtCommas(blocked);
  return std::any_of(categories->begin(), categories->end(), [&parts](const Text& category) {
    return !category.isNil() && parts.contains(category.view());
  });
}

}  // namespace tamzo
