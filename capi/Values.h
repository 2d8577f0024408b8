#pragma once

#include <cstddef>
#include <cstdint>
#include <forward_list>
#include <memory>

#include "capi/Objects.h"
#include "tamzo/tamzo_vast.h"
#include "tamzo/vast/TamzoVastAd.h"

namespace tamzo::capi {

/// What C gets for a property of each type. scripts/generate-record.py says the same to the header.
template <typename T>
struct InC;
// clang-format off
template <> struct InC<Text> { using Type = tamzo_vast_text; };
template <> struct InC<MutableText> { using Type = tamzo_vast_text; };
template <> struct InC<bool> { using Type = bool; };
template <> struct InC<std::int32_t> { using Type = std::int32_t; };
template <> struct InC<double> { using Type = double; };
template <> struct InC<float> { using Type = float; };
template <> struct InC<List<Text>> { using Type = const tamzo_vast_texts*; };
template <> struct InC<TamzoExtraActions> { using Type = const tamzo_vast_extra_actions*; };
template <> struct InC<std::shared_ptr<TamzoAdDuration>> { using Type = const tamzo_vast_duration*; };
template <> struct InC<std::shared_ptr<TrackerMap>> { using Type = const tamzo_vast_trackers*; };
template <> struct InC<std::shared_ptr<IconMap>> { using Type = const tamzo_vast_named_elements*; };
template <> struct InC<std::shared_ptr<TamzoVpaidXML>> { using Type = const tamzo_vast_vpaid_xml*; };
template <> struct InC<List<std::shared_ptr<TamzoCompanionAd>>> { using Type = const tamzo_vast_companion_ads*; };
template <> struct InC<List<std::shared_ptr<TamzoMediaFile>>> { using Type = const tamzo_vast_media_files*; };
template <> struct InC<List<std::shared_ptr<TamzoCard>>> { using Type = const tamzo_vast_elements*; };
template <> struct InC<List<std::shared_ptr<TamzoHotspot360Info>>> { using Type = const tamzo_vast_elements*; };
template <> struct InC<List<std::shared_ptr<TamzoMeasurementProviderModel>>> { using Type = const tamzo_vast_verifications*; };
// clang-format on

/// Memory for what C reads of one record: plain structs, the texts behind them, and elements.
/// Everything in it lives as long as it does, and stays where it is, also when it is moved, which
/// does not throw.
class Arena {
 public:
  /// That many of them, all zero; never null, also for 0.
  template <typename T>
  T* make(std::size_t count = 1) {
    static_assert(std::is_trivially_copyable_v<T> && alignof(T) <= alignof(std::max_align_t));
    // NOLINTNEXTLINE(bugprone-sizeof-expression): pointers are among them
    return static_cast<T*>(zeroed(sizeof(T) * (count == 0 ? 1 : count)));
  }
  /// Keeps the text that it views.
  tamzo_vast_text keep(Text text);
  const tamzo_vast_element* keep(const DDXMLElement& element);

 private:
  void* zeroed(std::size_t bytes);

  std::forward_list<std::unique_ptr<std::byte[]>> blocks_;
  std::forward_list<Text> texts_;
  std::forward_list<tamzo_vast_element> elements_;
};

/// A record's properties as C reads them. They borrow from the record and are made once, so that
/// reading them can neither fail nor race.
class Values {
 public:
  explicit Values(const TamzoVastAd& record);

  /// Reads again what the operations on a finished record change.
  void readIconMap(const TamzoVastAd& record);
  void readPage(const TamzoVastAd& record) noexcept;

#define TAMZO_PROPERTY(type, name, setter, when, initial) InC<type>::Type name{};
#include "vast/TamzoVastAdProperties.def"
#undef TAMZO_PROPERTY

 private:
  Arena arena_;
  Arena iconArena_;
};

}  // namespace tamzo::capi
