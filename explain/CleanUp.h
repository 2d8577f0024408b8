#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "explain/TagText.h"
#include "tamzo/base/Text.h"
#include "vast/intake/NamespaceCleanUp.h"

namespace tamzo::explain {

/// Why the clean-up made a text that was XML one that is none.
struct CollapseFault {
  bool tookTagEnd = false;
  std::size_t at = 0;  ///< of the `xmlns`, in the received text
  std::string read;    ///< the tag as it was read, where its end was taken
};

/// Attributes that the clean-up took along with `xmlns=`.
struct TakenAttributes {
  std::size_t at = 0;  ///< of the first `xmlns` that did
  std::vector<std::string> names;
};

/// What the clean-up of `xmlns=` does to a response: TamzoVastAd::initWithVast() makes the parser
/// read another text than was received.
class CleanUp {
 public:
  explicit CleanUp(Text received);

  const Text& received() const noexcept { return received_; }
  /// What the parser reads.
  const Text& cleaned() const noexcept { return cleaned_; }
  bool changes() const noexcept { return !collapses_.empty(); }

  /// Where a byte of cleaned() stands in received(). npos stays.
  std::size_t toReceived(std::size_t cleanedAt) const noexcept;

  /// Of a received text that is XML while the cleaned one is not.
  CollapseFault findFault() const;

  /// Of a cleaned text that is XML; nothing where none were taken. Names stand once each.
  std::optional<TakenAttributes> findTaken() const;

  /// Where the `xmlns` stands that took the root's attribute `version`; nothing when the root has
  /// none, or still has it.
  std::optional<std::size_t> findVersionTaken() const;

  /// The received text without attributes named `xmlns`.
  std::string withoutDefaultNamespaces() const;

 private:
  enum class Effect { harmless, tookTagEnd, brokeMarkup };

  std::size_t toCleaned(std::size_t receivedAt) const noexcept;
  Effect effectOf(const Collapse& collapse, const TagText& tag) const;
  std::vector<std::string> takenFrom(const TagText& before, std::size_t tagAt) const;
  template <typename Visit>
  void visitPieces(Visit visit) const;

  Text received_;
  Text cleaned_;
  std::vector<Collapse> collapses_;
  std::vector<std::size_t> cleanedAt_;  // of each collapse
};

}  // namespace tamzo::explain
