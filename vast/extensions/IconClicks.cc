#include "tamzo/vast/TamzoVastAd.h"

#include <memory>
#include <string_view>

#include "tamzo/sdk/TamzoVastAdHelper.h"

namespace tamzo {

void TamzoVastAd::getImageAd(const DDXMLElement& node) {
  setIconMap(std::make_shared<IconMap>());
  const DDXMLElement icon = TamzoVastAdHelper::getFirstElement(node, "Icons.Icon");
  const auto store = [&](const char* key, std::string_view path) {
    if (const DDXMLElement element = TamzoVastAdHelper::getFirstElement(icon, path)) {
      iconMap()->insert_or_assign(key, element);
    }
  };
  store("iconClickTracking", "IconClicks.IconClickTracking");
  store("iconClickThrough", "IconClicks.IconClickThrough");
}

}  // namespace tamzo
