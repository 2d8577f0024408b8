#include "sdk/KeyIndex.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <random>
#include <utility>

namespace tamzo {
namespace {

// Up to here comparing is faster than hashing: names mostly differ in length or at the front.
constexpr std::size_t kFew = 48;

// A prime of 61 bits. To divide by it is to add what stands above its bits to what stands in them.
constexpr std::uint64_t kPrime = (std::uint64_t{1} << 61U) - 1;

constexpr std::uint64_t fold(std::uint64_t a) noexcept { return (a & kPrime) + (a >> 61U); }

// The product of two numbers below 2^62 and 2^61, modulo the prime, in halves of 32 bits: phones of
// 32 bits have no wider type.
constexpr std::uint64_t multiply(std::uint64_t a, std::uint64_t b) noexcept {
  constexpr std::uint64_t kLow = 0xFFFFFFFFU;
  const std::uint64_t middle = (a >> 32U) * (b & kLow) + (a & kLow) * (b >> 32U);
  const std::uint64_t sum = fold((a & kLow) * (b & kLow)) + (middle >> 29U) +
                            ((middle << 32U) & kPrime) + (a >> 32U) * (b >> 32U) * 8;
  const std::uint64_t remainder = fold(fold(sum));
  return remainder < kPrime ? remainder : remainder - kPrime;
}
static_assert(multiply(kPrime - 1, kPrime - 1) == 1, "minus one times minus one");
static_assert(multiply(std::uint64_t{1} << 61U, 7) == 7, "a number from the prime on");
static_assert(multiply(123456789123456789U, 987654321987654321U) == 587437849037674763U);

std::uint64_t secretPoint() {
  static const std::uint64_t drawn = [] {
    std::random_device source;
    return ((std::uint64_t{source()} << 32U) | source()) % (kPrime - 256) + 128;
  }();
  return drawn;
}

// The text as a polynomial modulo the prime, at a point that is drawn once per process: whatever
// the keys, two of them get the same hash with a chance of about their length in 2^32.
std::uint32_t hashOf(std::string_view key) {
  constexpr std::size_t kChunk = 7;  // bytes that stay below the prime
  const std::uint64_t point = secretPoint();
  std::uint64_t hash = key.size();
  while (!key.empty()) {
    std::uint64_t chunk = 0;
    const std::size_t count = std::min(kChunk, key.size());
    std::memcpy(&chunk, key.data(), count);
    key.remove_prefix(count);
    hash = multiply(hash, point) + chunk;
  }
  return static_cast<std::uint32_t>(multiply(hash, point));
}

}  // namespace

// `hash` counts only where there is a table.
const KeyIndex::Entry* KeyIndex::findEntry(std::string_view key,
                                           std::uint32_t hash) const noexcept {
  if (slots_.empty()) {
    for (const Entry& entry : entries_) {
      if (entry.key == key) {
        return &entry;
      }
    }
    return nullptr;
  }
  const std::size_t mask = slots_.size() - 1;
  for (std::size_t at = hash & mask; slots_[at].entry != kFree; at = (at + 1) & mask) {
    if (slots_[at].hash == hash && entries_[slots_[at].entry].key == key) {
      return &entries_[slots_[at].entry];
    }
  }
  return nullptr;
}

std::optional<std::size_t> KeyIndex::find(std::string_view key) const {
  const Entry* entry = findEntry(key, slots_.empty() ? 0 : hashOf(key));
  return entry == nullptr ? std::nullopt : std::optional(entry->position);
}

void KeyIndex::set(std::string_view key, std::size_t position) {
  const std::uint32_t hash = entries_.size() < kFew ? 0 : hashOf(key);
  if (const Entry* entry = findEntry(key, hash)) {
    entries_[static_cast<std::size_t>(entry - entries_.data())].position = position;
    return;
  }
  if (entries_.size() >= kFew && entries_.size() * 2 >= slots_.size()) {
    growTable();
  }
  entries_.push_back({key, position});
  if (!slots_.empty()) {
    enter(slots_, {hash, static_cast<std::uint32_t>(entries_.size() - 1)});
  }
}

// Puts an entry into the first free slot from where its hash points to.
void KeyIndex::enter(std::vector<Slot>& slots, Slot slot) noexcept {
  const std::size_t mask = slots.size() - 1;
  std::size_t at = slot.hash & mask;
  while (slots[at].entry != kFree) {
    at = (at + 1) & mask;
  }
  slots[at] = slot;
}

// Four slots an entry, so that no more than half of them are ever taken.
void KeyIndex::growTable() {
  std::vector<Slot> slots(std::bit_ceil(entries_.size() * 4), Slot{0, kFree});
  for (std::size_t i = 0; slots_.empty() && i < entries_.size(); ++i) {
    enter(slots, {hashOf(entries_[i].key), static_cast<std::uint32_t>(i)});
  }
  for (const Slot& slot : slots_) {
    if (slot.entry != kFree) {
      enter(slots, slot);
    }
  }
  slots_ = std::move(slots);
}

}  // namespace tamzo
