#include "sdk/KeyIndex.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <random>
#include <unordered_map>

namespace tamzo {
namespace {

// Up to here comparing is faster than hashing: names mostly differ in length or at the front.
constexpr std::size_t kFew = 48;

// The text as a polynomial over the integers modulo a prime of 61 bits, at a point that is drawn
// once per process: two different keys collide with a chance of about their length in 2^58.
class SecretHash {
 public:
  std::size_t operator()(std::string_view key) const noexcept {
    std::uint64_t hash = key.size();
    while (!key.empty()) {
      std::uint64_t chunk = 0;
      const std::size_t count = std::min<std::size_t>(7, key.size());
      std::memcpy(&chunk, key.data(), count);
      key.remove_prefix(count);
      hash = multiply(hash, point()) + chunk;
    }
    return static_cast<std::size_t>(multiply(hash, point()));
  }

 private:
  static constexpr std::uint64_t kPrime = (std::uint64_t{1} << 61U) - 1;

  static std::uint64_t point() {
    static const std::uint64_t drawn = [] {
      std::random_device source;
      return ((std::uint64_t{source()} << 32U) | source()) % (kPrime - 256) + 128;
    }();
    return drawn;
  }

  static std::uint64_t multiply(std::uint64_t a, std::uint64_t b) noexcept {
    __extension__ using Wide = unsigned __int128;
    const Wide product = Wide{a % kPrime} * b;
    return static_cast<std::uint64_t>(product % kPrime);
  }
};

}  // namespace

struct KeyIndex::Hashed {
  std::unordered_map<std::string_view, std::size_t, SecretHash> positions;
};

KeyIndex::KeyIndex() noexcept = default;
KeyIndex::KeyIndex(KeyIndex&&) noexcept = default;
KeyIndex& KeyIndex::operator=(KeyIndex&&) noexcept = default;
KeyIndex::~KeyIndex() = default;

std::optional<std::size_t> KeyIndex::find(std::string_view key) const {
  if (hashed_ != nullptr) {
    const auto found = hashed_->positions.find(key);
    return found == hashed_->positions.end() ? std::nullopt : std::optional(found->second);
  }
  for (const Entry& entry : few_) {
    if (entry.key == key) {
      return entry.position;
    }
  }
  return std::nullopt;
}

void KeyIndex::set(std::string_view key, std::size_t position) {
  if (hashed_ != nullptr) {
    hashed_->positions.insert_or_assign(key, position);
    return;
  }
  for (Entry& entry : few_) {
    if (entry.key == key) {
      entry.position = position;
      return;
    }
  }
  if (few_.size() < kFew) {
    few_.push_back({key, position});
    return;
  }
  auto hashed = std::make_unique<Hashed>();
  for (const Entry& entry : few_) {
    hashed->positions.emplace(entry.key, entry.position);
  }
  hashed->positions.emplace(key, position);
  hashed_ = std::move(hashed);
}

}  // namespace tamzo
