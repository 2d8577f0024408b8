#include "tamzo/vast/TamzoVastAd.h"

#include <memory>
#include <new>
#include <string_view>
#include <utility>

#include "tamzo/sdk/TamzoVastAdHelper.h"

namespace tamzo {
namespace {

std::shared_ptr<IconMap> iconClicks(const DDXMLElement& node) {
  auto clicks = std::make_shared<IconMap>();
  const DDXMLElement icon = TamzoVastAdHelper::getFirstElement(node, "Icons.Icon");
  const auto store = [&](const char* key, std::string_view path) {
    if (const DDXMLElement element = TamzoVastAdHelper::getFirstElement(icon, path)) {
      clicks->insert_or_assign(key, element);
    }
  };
  store("iconClickTracking", "IconClicks.IconClickTracking");
  store("iconClickThrough", "IconClicks.IconClickThrough");
  return clicks;
}

}  // namespace

void TamzoVastAd::getImageAd(const DDXMLElement& node) {
  std::shared_ptr<IconMap> clicks;
  try {
    clicks = iconClicks(node);
  } catch (const std::bad_alloc&) {
    clicks = nullptr;
  }
  // Last: `node` may be an element of the map that goes.
  setIconMap(std::move(clicks));
}

}  // namespace tamzo
