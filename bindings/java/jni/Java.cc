#include "bindings/java/jni/Java.h"

#include <limits>

namespace tamzo::jni {

void throwJava(JNIEnv* env, const char* className, const char* message) noexcept {
  if (env->ExceptionCheck() != JNI_FALSE) {
    return;
  }
  // Where the class cannot be had, that is the throwable.
  const jclass thrown = env->FindClass(className);
  if (thrown != nullptr) {
    env->ThrowNew(thrown, message);
    env->DeleteLocalRef(thrown);
  }
}

void checkJava(JNIEnv* env) {
  if (env->ExceptionCheck() != JNI_FALSE) {
    throw JavaPending();
  }
}

ArrayBytes::ArrayBytes(JNIEnv* env, jbyteArray array) : env_(env), array_(array) {
  if (array == nullptr) {
    return;
  }
  size_ = static_cast<std::size_t>(env->GetArrayLength(array));
  bytes_ = env->GetByteArrayElements(array, nullptr);
  if (bytes_ == nullptr) {
    checkJava(env);
    throw std::bad_alloc();
  }
}

ArrayBytes::~ArrayBytes() {
  if (bytes_ != nullptr) {
    env_->ReleaseByteArrayElements(array_, bytes_, JNI_ABORT);
  }
}

jbyteArray arrayOf(JNIEnv* env, tamzo_vast_text text) {
  if (text.data == nullptr) {
    return nullptr;
  }
  if (text.size > static_cast<std::size_t>(std::numeric_limits<jsize>::max())) {
    throw std::bad_alloc();
  }
  const auto size = static_cast<jsize>(text.size);
  const jbyteArray array = env->NewByteArray(size);
  if (array == nullptr) {
    checkJava(env);
    throw std::bad_alloc();
  }
  env->SetByteArrayRegion(array, 0, size, reinterpret_cast<const jbyte*>(text.data));
  return array;
}

}  // namespace tamzo::jni
