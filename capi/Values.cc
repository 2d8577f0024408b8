#include "capi/Values.h"

#include <utility>
#include <variant>
#include <vector>

#include "capi/Boundary.h"

namespace tamzo::capi {
namespace {

tamzo_vast_integer optional(const std::optional<std::int32_t>& number) noexcept {
  return {number.value_or(0), number.has_value()};
}

tamzo_vast_flag optional(const std::optional<bool>& flag) noexcept {
  return {flag.value_or(false), flag.has_value()};
}

// Writes what a record holds in the structs for C. One overload for each type of a property, and
// some for their parts.
class Converter {
 public:
  explicit Converter(Arena& arena) noexcept : arena_(arena) {}

  static tamzo_vast_text convert(const Text& text) noexcept { return viewOf(text); }
  static tamzo_vast_text convert(const MutableText& text) noexcept { return viewOf(text.asText()); }
  static bool convert(bool flag) noexcept { return flag; }
  static std::int32_t convert(std::int32_t number) noexcept { return number; }
  static double convert(double number) noexcept { return number; }
  static float convert(float number) noexcept { return number; }

  const tamzo_vast_texts* convert(const List<Text>& list) {
    return list == nullptr ? nullptr : texts(*list);
  }

  const tamzo_vast_duration* convert(const std::shared_ptr<TamzoAdDuration>& duration) {
    if (duration == nullptr) {
      return nullptr;
    }
    auto* out = arena_.make<tamzo_vast_duration>();
    *out = {convert(duration->text()), duration->durationInSeconds()};
    return out;
  }

  const tamzo_vast_trackers* convert(const std::shared_ptr<TrackerMap>& trackers) {
    return trackers == nullptr ? nullptr : eventsOf(*trackers);
  }

  const tamzo_vast_vpaid_xml* convert(const std::shared_ptr<TamzoVpaidXML>& vpaid) {
    if (vpaid == nullptr) {
      return nullptr;
    }
    auto* out = arena_.make<tamzo_vast_vpaid_xml>();
    out->vast_version = convert(vpaid->vastVersion());
    return out;
  }

  const tamzo_vast_media_files* convert(const List<std::shared_ptr<TamzoMediaFile>>& files) {
    return files == nullptr ? nullptr
                            : listOf<tamzo_vast_media_files, tamzo_vast_media_file>(*files);
  }

  const tamzo_vast_companion_ads* convert(const List<std::shared_ptr<TamzoCompanionAd>>& ads) {
    return ads == nullptr ? nullptr
                          : listOf<tamzo_vast_companion_ads, tamzo_vast_companion_ad>(*ads);
  }

  const tamzo_vast_verifications* convert(
      const List<std::shared_ptr<TamzoMeasurementProviderModel>>& providers) {
    return providers == nullptr
               ? nullptr
               : listOf<tamzo_vast_verifications, tamzo_vast_verification>(*providers);
  }

  const tamzo_vast_elements* convert(const List<std::shared_ptr<TamzoCard>>& cards) {
    return cards == nullptr ? nullptr : elementsOf(*cards);
  }
  const tamzo_vast_elements* convert(const List<std::shared_ptr<TamzoHotspot360Info>>& spots) {
    return spots == nullptr ? nullptr : elementsOf(*spots);
  }

  const tamzo_vast_named_elements* convert(const std::shared_ptr<IconMap>& icons) {
    return icons == nullptr ? nullptr
                            : listOf<tamzo_vast_named_elements, tamzo_vast_named_element>(*icons);
  }

  const tamzo_vast_extra_actions* convert(const TamzoExtraActions& actions) {
    if (actions.isNil()) {
      return nullptr;
    }
    if (actions.isList()) {
      return listOf<tamzo_vast_extra_actions, tamzo_vast_extra_action>(*actions.list());
    }
    auto* out = arena_.make<tamzo_vast_extra_actions>();
    out->json = arena_.keep(Text(actions.value().dump()));
    return out;
  }

 private:
  const tamzo_vast_texts* texts(const std::vector<Text>& list) {
    auto* items = arena_.make<tamzo_vast_text>(list.size());
    for (std::size_t at = 0; at < list.size(); ++at) {
      items[at] = arena_.keep(list[at]);
    }
    auto* out = arena_.make<tamzo_vast_texts>();
    *out = {list.size(), items};
    return out;
  }

  // The items stand one by one behind pointers, so that their struct may grow.
  template <typename Item, typename Entries>
  const Item* const* itemsOf(const Entries& entries) {
    auto* items = arena_.make<Item>(entries.size());
    auto* pointers = arena_.make<const Item*>(entries.size());
    std::size_t at = 0;
    for (const auto& entry : entries) {
      write(items[at], entry);
      pointers[at] = &items[at];
      ++at;
    }
    return pointers;
  }

  template <typename Out, typename Item, typename Entries>
  Out* listOf(const Entries& entries) {
    auto* out = arena_.make<Out>();
    out->count = entries.size();
    out->items = itemsOf<Item>(entries);
    return out;
  }

  template <typename Entries>
  const tamzo_vast_elements* elementsOf(const Entries& entries) {
    auto* items = arena_.make<const tamzo_vast_element*>(entries.size());
    for (std::size_t at = 0; at < entries.size(); ++at) {
      items[at] = entries[at] == nullptr ? nullptr : arena_.keep(entries[at]->node());
    }
    auto* out = arena_.make<tamzo_vast_elements>();
    *out = {entries.size(), items};
    return out;
  }

  const tamzo_vast_trackers* eventsOf(const TrackerMap& trackers) {
    auto* items = arena_.make<tamzo_vast_event>(trackers.size());
    auto* pointers = arena_.make<const tamzo_vast_event*>(trackers.size());
    std::size_t at = 0;
    for (const TrackerMap::Entry& entry : trackers) {
      items[at].name = arena_.keep(entry.name);
      if (entry.events != nullptr) {
        items[at].count = entry.events->size();
        items[at].items = itemsOf<tamzo_vast_tracker>(*entry.events);
      }
      pointers[at] = &items[at];
      ++at;
    }
    auto* out = arena_.make<tamzo_vast_trackers>();
    *out = {trackers.size(), pointers};
    return out;
  }

  // Entries are held by shared handles, of which a host may have put in null.
  template <typename Item, typename Entry>
  void write(Item& item, const std::shared_ptr<Entry>& entry) {
    if (entry != nullptr) {
      write(item, *entry);
    }
  }

  void write(tamzo_vast_tracker& item, const TamzoTrackerEvent& event) {
    item = {arena_.keep(event.url()), arena_.keep(event.offset())};
  }

  void write(tamzo_vast_media_file& item, const TamzoMediaFile& file) {
    item.url = arena_.keep(file.url());
    item.id = arena_.keep(file.id());
    item.delivery = arena_.keep(file.delivery());
    item.type = arena_.keep(file.type());
    item.codec = arena_.keep(file.codec());
    item.api_framework = arena_.keep(file.apiFramework());
    item.width = optional(file.width());
    item.height = optional(file.height());
    item.bitrate = optional(file.bitrate());
    item.min_bitrate = optional(file.minBitrate());
    item.max_bitrate = optional(file.maxBitrate());
    item.file_size = optional(file.fileSize());
    item.scalable = optional(file.scalable());
    item.maintain_aspect_ratio = optional(file.maintainAspectRatio());
  }

  void write(tamzo_vast_resource& item, const TamzoCompanion::StaticResource& resource) {
    item.url = arena_.keep(resource.url);
    item.type = arena_.keep(resource.creativeType);
  }

  void write(tamzo_vast_resource& item,
             const TamzoMeasurementProviderModel::JavaScriptResource& resource) {
    item.url = arena_.keep(resource.url);
    item.api_framework = arena_.keep(resource.apiFramework);
    item.browser_optional = optional(resource.browserOptional);
  }

  void write(tamzo_vast_resource& item,
             const TamzoMeasurementProviderModel::ExecutableResource& resource) {
    item.url = arena_.keep(resource.url);
    item.type = arena_.keep(resource.type);
    item.api_framework = arena_.keep(resource.apiFramework);
  }

  template <typename Entries>
  const tamzo_vast_resources* resources(const Entries& entries) {
    return listOf<tamzo_vast_resources, tamzo_vast_resource>(entries);
  }

  void write(tamzo_vast_companion& item, const TamzoCompanion& companion) {
    item.id = arena_.keep(companion.id());
    item.width = optional(companion.width());
    item.height = optional(companion.height());
    item.ad_slot_id = arena_.keep(companion.adSlotId());
    item.api_framework = arena_.keep(companion.apiFramework());
    item.alt_text = arena_.keep(companion.altText());
    item.static_resources = resources(companion.staticResources());
    item.iframe_resources = texts(companion.iframeResources());
    item.html_resources = texts(companion.htmlResources());
    item.click_through = arena_.keep(companion.clickThrough());
    item.click_tracking = texts(companion.clickTracking());
    item.trackers = eventsOf(companion.trackers());
  }

  void write(tamzo_vast_companion_ad& item, const TamzoCompanionAd& ad) {
    item.count = ad.companions().size();
    item.items = itemsOf<tamzo_vast_companion>(ad.companions());
  }

  void write(tamzo_vast_verification& item, const TamzoMeasurementProviderModel& provider) {
    item.vendor = arena_.keep(provider.vendor());
    item.javascript_resources = resources(provider.javaScriptResources());
    item.executable_resources = resources(provider.executableResources());
    item.verification_parameters = arena_.keep(provider.verificationParameters());
    item.trackers = eventsOf(provider.trackers());
  }

  void write(tamzo_vast_named_element& item, const IconMap::value_type& icon) {
    item.name = arena_.keep(Text(icon.first));
    item.element = arena_.keep(icon.second);
  }

  void write(tamzo_vast_extra_action& item, const TamzoExtraActions::Entry& entry) {
    if (const auto* icon = std::get_if<DDXMLElement>(&entry)) {
      item.icon = arena_.keep(*icon);
    } else {
      item.json = arena_.keep(Text(std::get<JsonValue>(entry).dump()));
    }
  }

  Arena& arena_;
};

}  // namespace

void* Arena::zeroed(std::size_t bytes) {
  return blocks_.emplace_front(std::make_unique<std::byte[]>(bytes)).get();
}

tamzo_vast_text Arena::keep(Text text) { return viewOf(texts_.emplace_front(std::move(text))); }

const tamzo_vast_element* Arena::keep(const DDXMLElement& element) {
  return element ? &elements_.emplace_front(element) : nullptr;
}

Values::Values(const TamzoVastAd& record) {
  Converter converter(arena_);
#define TAMZO_PROPERTY(type, property, setter, when, initial) \
  property = converter.convert(record.property());
#include "vast/TamzoVastAdProperties.def"
#undef TAMZO_PROPERTY
}

void Values::readIconMap(const TamzoVastAd& record) {
  Arena arena;
  iconMap = Converter(arena).convert(record.iconMap());
  iconArena_ = std::move(arena);
}

void Values::readPage(const TamzoVastAd& record) noexcept {
  vPaidHTML = viewOf(record.vPaidHTML());
}

}  // namespace tamzo::capi
