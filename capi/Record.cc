// The record for C: how it is parsed, read and asked.

#include <algorithm>
#include <memory>
#include <new>
#include <string_view>

#include "capi/Boundary.h"
#include "capi/Objects.h"
#include "capi/Options.h"
#include "capi/Values.h"
#include "tamzo/base/Version.h"
#include "tamzo/vast/ErrorCodes.h"
#include "tamzo/vast/RecordJson.h"
#include "tamzo/vast/TamzoVastAd.h"

using tamzo::Text;
using tamzo::capi::give;
using tamzo::capi::guarded;

struct tamzo_vast_ad : tamzo::capi::Handle {
  explicit tamzo_vast_ad(std::shared_ptr<tamzo::TamzoVastAd> of)
      : record(std::move(of)), values(*record) {}

  std::shared_ptr<tamzo::TamzoVastAd> record;
  tamzo::capi::Values values;
};

namespace {

std::shared_ptr<tamzo::TamzoVastAd> parsed(const void* bytes, std::size_t length,
                                           const tamzo_vast_options* options) {
  const Text vast(std::string_view(length == 0 ? "" : static_cast<const char*>(bytes), length));
  return options == nullptr ? tamzo::TamzoVastAd::initWithVast(vast)
                            : tamzo::TamzoVastAd::initWithVast(vast, options->forParse());
}

Text pageOf(tamzo::TamzoVastAd& record, const tamzo_vast_options* options) {
  return options == nullptr ? record.getVideoWAPView() : record.getVideoWAPView(options->host);
}

// Where `item` stands; the count where it does not.
template <typename Item>
std::size_t indexOf(const Item* const* items, std::size_t count, const Item* item) noexcept {
  return static_cast<std::size_t>(std::find(items, items + count, item) - items);
}

const tamzo_vast_companion* companionForSlot(const tamzo_vast_ad& ad, std::size_t index,
                                             std::int32_t width, std::int32_t height) {
  const auto& companions = ad.record->companionAds()->at(index);
  const auto* best = companions == nullptr ? nullptr : companions->bestForSlot(width, height);
  return best == nullptr
             ? nullptr
             : ad.values.companionAds->items[index]->items[best - companions->companions().data()];
}

}  // namespace

std::uint32_t tamzo_vast_abi() { return TAMZO_VAST_ABI; }

const char* tamzo_vast_version() { return TAMZO_VERSION; }

tamzo_vast_text tamzo_vast_text_of(const char* characters) {
  return {characters, characters == nullptr ? 0 : std::string_view(characters).size()};
}

const char* tamzo_vast_status_name(int32_t status) {
  switch (status) {
    case TAMZO_VAST_OK:
      return "ok";
    case TAMZO_VAST_INVALID_ARGUMENT:
      return "invalid argument";
    case TAMZO_VAST_NO_MEMORY:
      return "no memory";
    case TAMZO_VAST_HOOK_FAILED:
      return "hook failed";
    case TAMZO_VAST_NO_PAGE:
      return "no page";
    default:
      return "";
  }
}

tamzo_vast_text tamzo_vast_error_name(int32_t code) {
  const tamzo::VastError* error = tamzo::findVastError(code);
  return error == nullptr ? tamzo_vast_text{nullptr, 0}
                          : tamzo_vast_text{error->name.data(), error->name.size()};
}

tamzo_vast_text tamzo_vast_error_cause(int32_t code) {
  const tamzo::VastError* error = tamzo::findVastError(code);
  return error == nullptr ? tamzo_vast_text{nullptr, 0}
                          : tamzo_vast_text{error->cause.data(), error->cause.size()};
}

size_t tamzo_vast_error_count() { return tamzo::vastErrors().size(); }

int32_t tamzo_vast_error_code_at(size_t index) {
  const auto errors = tamzo::vastErrors();
  return index < errors.size() ? errors[index].code : -1;
}

tamzo_vast_status tamzo_vast_parse(const void* bytes, size_t length,
                                   const tamzo_vast_options* options, tamzo_vast_ad** ad) {
  TAMZO_MAY_BE_NULL(options);
  return give(tamzo::capi::isUnreadable(bytes, length), ad, [&] {
    auto record = parsed(bytes, length, options);
    if (record == nullptr) {
      return TAMZO_VAST_NO_MEMORY;
    }
    *ad = new tamzo_vast_ad(std::move(record));
    return TAMZO_VAST_OK;
  });
}

void tamzo_vast_ad_release(tamzo_vast_ad* ad) {
  if (!TAMZO_IS_NULL(ad)) {
    delete ad;
  }
}

tamzo_vast_status tamzo_vast_ad_as_json(const tamzo_vast_ad* ad, bool is_indented,
                                        tamzo_vast_string** json) {
  return give(TAMZO_IS_NULL(ad), json, [&] {
    const auto layout = is_indented ? tamzo::JsonLayout::indented : tamzo::JsonLayout::compact;
    *json = new tamzo_vast_string(tamzo::recordAsJson(*ad->record, layout));
    return TAMZO_VAST_OK;
  });
}

const tamzo_vast_companion_ad* tamzo_vast_ad_most_suitable_companion(const tamzo_vast_ad* ad) {
  if (TAMZO_IS_NULL(ad) || ad->values.companionAds == nullptr) {
    return nullptr;
  }
  const auto& all = *ad->record->companionAds();
  const auto best = std::find(all.begin(), all.end(), ad->record->getMostSuitableCompanion());
  return best == all.end() ? nullptr : ad->values.companionAds->items[best - all.begin()];
}

tamzo_vast_status tamzo_vast_ad_companion_for_slot(const tamzo_vast_ad* ad,
                                                   const tamzo_vast_companion_ad* companions,
                                                   int32_t width, int32_t height,
                                                   const tamzo_vast_companion** companion) {
  return give(TAMZO_IS_NULL(ad) || companions == nullptr, companion, [&] {
    const tamzo_vast_companion_ads* all = ad->values.companionAds;
    const std::size_t at = all == nullptr ? 0 : indexOf(all->items, all->count, companions);
    if (all == nullptr || at == all->count) {
      return TAMZO_VAST_INVALID_ARGUMENT;
    }
    *companion = companionForSlot(*ad, at, width, height);
    return TAMZO_VAST_OK;
  });
}

tamzo_vast_status tamzo_vast_ad_get_image_ad(tamzo_vast_ad* ad, const tamzo_vast_element* node) {
  const bool isNull = TAMZO_IS_NULL(ad) || TAMZO_IS_NULL(node);
  return guarded([&] {
    if (isNull) {
      return TAMZO_VAST_INVALID_ARGUMENT;
    }
    const auto before = ad->record->iconMap();
    try {
      ad->record->getImageAd(node->node);
      if (ad->record->iconMap() == nullptr) {
        throw std::bad_alloc();
      }
      ad->values.readIconMap(*ad->record);
    } catch (...) {
      ad->record->setIconMap(before);
      throw;
    }
    return TAMZO_VAST_OK;
  });
}

tamzo_vast_status tamzo_vast_ad_get_page(tamzo_vast_ad* ad, const tamzo_vast_options* options,
                                         tamzo_vast_string** page) {
  TAMZO_MAY_BE_NULL(options);
  return give(TAMZO_IS_NULL(ad), page, [&] {
    const Text made = pageOf(*ad->record, options);
    ad->values.readPage(*ad->record);
    if (!made.hasCharacters()) {
      return TAMZO_VAST_NO_PAGE;
    }
    *page = new tamzo_vast_string(made);
    return TAMZO_VAST_OK;
  });
}

#define TAMZO_PROPERTY(type, name, setter, when, initial)                               \
  decltype(tamzo::capi::Values::name) tamzo_vast_ad_##name(const tamzo_vast_ad* ad) {   \
    return TAMZO_IS_NULL(ad) ? decltype(tamzo::capi::Values::name){} : ad->values.name; \
  }
#include "vast/TamzoVastAdProperties.def"
#undef TAMZO_PROPERTY
