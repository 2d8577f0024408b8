#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/JsonText.h"
#include "explain/Chain.h"
#include "explain/Explanation.h"

namespace tamzo::explain {

/// A finding on its way: its place is looked up once all are there.
class Draft {
 public:
  Draft(std::string_view id, Severity severity, std::optional<std::int32_t> hop) {
    finding_.id = id;
    finding_.severity = severity;
    finding_.hop = hop;
  }

  /// At the start tag of the element; of several such calls, the one that stands first.
  Draft& at(const DDXMLElement& element) {
    if (element) {
      elements_.push_back(element);
    }
    return *this;
  }
  /// At a byte of the document as it was received.
  Draft& atByte(std::size_t offset) {
    offset_ = offset;
    return *this;
  }

  /// One sentence, and what to change; advice may be "".
  Draft& say(std::string message, std::string_view advice = "") {
    finding_.message = std::move(message);
    finding_.advice = advice;
    return *this;
  }

  Draft& with(std::string_view key, std::string_view text) {
    std::string json;
    appendJsonString(json, text);
    return withJson(key, std::move(json));
  }
  Draft& with(std::string_view key, const Text& text) {
    return text.isNil() ? withJson(key, "null") : with(key, text.view());
  }
  Draft& with(std::string_view key, const char* text) { return with(key, std::string_view(text)); }
  Draft& with(std::string_view key, const std::string& text) {
    return with(key, std::string_view(text));
  }
  Draft& with(std::string_view key, std::size_t number) {
    return withJson(key, std::to_string(number));
  }
  Draft& with(std::string_view key, const std::vector<std::string>& texts);
  Draft& with(std::string_view key, const std::vector<std::int32_t>& numbers);
  Draft& withJson(std::string_view key, std::string json) {
    finding_.details.push_back({key, std::move(json)});
    return *this;
  }

 private:
  friend class Findings;

  Finding finding_;
  std::vector<DDXMLElement> elements_;
  std::size_t offset_ = std::string_view::npos;
};

/// Where the tests for findings put what they find.
class Findings {
 public:
  /// Of one id in one document so many are kept, and the rest are counted.
  static constexpr std::size_t kMostOfOne = 20;

  /// What is added from now on is of that kind.
  void startKind(std::string_view id, Severity severity) noexcept {
    id_ = id;
    severity_ = severity;
    isFound_ = false;
  }
  bool isFound() const noexcept { return isFound_; }

  /// True when one more of this kind is kept; otherwise it is counted here, and must not be added.
  /// To be asked before each of a kind that can come more than kMostOfOne times.
  bool takes(std::optional<std::int32_t> hop);
  /// A new finding, until the next is added.
  Draft& add(std::optional<std::int32_t> hop);

  /// All of them, in their order, each at its place.
  std::vector<Finding> take(const Chain& chain);

 private:
  using Key = std::pair<std::string_view, std::int32_t>;
  struct Count {
    std::size_t kept = 0;
    std::size_t more = 0;
  };

  Key keyOf(std::optional<std::int32_t> hop) const noexcept { return {id_, hop.value_or(0)}; }
  void locateIn(const Chain& chain, const SeenHop& hop);
  void addCounts(std::vector<Finding>& findings) const;

  std::string_view id_;
  Severity severity_ = Severity::note;
  bool isFound_ = false;
  std::vector<Draft> drafts_;
  std::map<Key, Count> counts_;
};

}  // namespace tamzo::explain
