#pragma once

#include <jni.h>

#include <cstddef>
#include <new>

#include "tamzo/tamzo_vast.h"

namespace tamzo::jni {

/// Thrown where a throwable of Java is pending.
struct JavaPending {};

/// Throws unless one is pending already.
void throwJava(JNIEnv* env, const char* className, const char* message) noexcept;

/// Throws JavaPending where a throwable is pending.
void checkJava(JNIEnv* env);

/// Runs what stands behind a native method. Nothing of C++ gets past it, and memory that runs out
/// is an OutOfMemoryError.
template <typename Work>
auto guarded(JNIEnv* env, Work work) noexcept -> decltype(work()) {
  try {
    return work();
  } catch (const JavaPending&) {
  } catch (const std::bad_alloc&) {
    throwJava(env, "java/lang/OutOfMemoryError", "no memory for an ad");
  } catch (...) {
    throwJava(env, "java/lang/IllegalStateException", "the bridge failed");
  }
  return decltype(work())();
}

/// The bytes of an array, for as long as this lives. Those of null are nil.
class ArrayBytes {
 public:
  ArrayBytes(JNIEnv* env, jbyteArray array);
  ~ArrayBytes();
  ArrayBytes(const ArrayBytes&) = delete;
  ArrayBytes& operator=(const ArrayBytes&) = delete;

  tamzo_vast_text text() const noexcept {
    return {reinterpret_cast<const char*>(bytes_), bytes_ == nullptr ? 0 : size_};
  }

 private:
  JNIEnv* env_;
  jbyteArray array_;
  jbyte* bytes_ = nullptr;
  std::size_t size_ = 0;
};

/// A new array with these bytes; null for nil. Throws JavaPending where there is no memory.
jbyteArray arrayOf(JNIEnv* env, tamzo_vast_text text);

}  // namespace tamzo::jni
