#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <new>
#include <string>

#include "tamzo/tamzo_vast.h"

namespace tamzo::jni {

/// What com.tamzo.vast.RecordReader reads: numbers, most significant byte first, and texts as a
/// length and bytes. A length of -1 is nil. What no array of Java can hold is std::bad_alloc.
class Bytes {
 public:
  void write(bool flag) { bytes_.push_back(flag ? '\1' : '\0'); }
  void write(std::int32_t number) { writeBits(static_cast<std::uint32_t>(number), 4); }
  void write(std::int64_t number) { writeBits(static_cast<std::uint64_t>(number), 8); }
  void write(double number) { writeBits(bitsOf<std::uint64_t>(number), 8); }
  void write(float number) { writeBits(bitsOf<std::uint32_t>(number), 4); }
  void writeCount(std::size_t count) { write(checked(count)); }
  void writeNil() { write(std::int32_t{-1}); }
  void write(tamzo_vast_text text) {
    if (text.data == nullptr) {
      writeNil();
      return;
    }
    writeCount(text.size);
    bytes_.append(text.data, text.size);
  }

  const std::string& all() const {
    checked(bytes_.size());
    return bytes_;
  }

 private:
  static std::int32_t checked(std::size_t count) {
    if (count > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max())) {
      throw std::bad_alloc();
    }
    return static_cast<std::int32_t>(count);
  }
  template <typename Bits, typename Number>
  static Bits bitsOf(Number number) noexcept {
    static_assert(sizeof(Bits) == sizeof(Number));
    Bits bits;
    std::memcpy(&bits, &number, sizeof(bits));
    return bits;
  }
  void writeBits(std::uint64_t bits, int size) {
    for (int shift = (size - 1) * 8; shift >= 0; shift -= 8) {
      bytes_.push_back(static_cast<char>(static_cast<unsigned char>(bits >> shift)));
    }
  }

  std::string bytes_;
};

}  // namespace tamzo::jni
