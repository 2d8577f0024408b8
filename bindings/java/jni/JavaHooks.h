#pragma once

#include <jni.h>

#include "tamzo/tamzo_vast.h"

namespace tamzo::jni {

/// Looks up the methods of com.tamzo.vast.Hooks. False with a throwable pending where one is
/// missing.
bool findHookMethods(JNIEnv* env);

/// The hooks of one call of the library, which Java implements. They are called on the thread that
/// made the call, so that its environment serves them all.
///
/// What a hook throws ends the call at once: it is kept here, no other hook is called, and
/// rethrow() throws it again when nothing of the library is left.
class JavaHooks {
 public:
  JavaHooks(JNIEnv* env, jobject hooks) noexcept : env_(env), hooks_(hooks) {}
  ~JavaHooks();
  JavaHooks(const JavaHooks&) = delete;
  JavaHooks& operator=(const JavaHooks&) = delete;

  /// Puts those in place that `which` names by the bits of com.tamzo.vast.Hooks. This object must
  /// live as long as the options are used.
  void install(tamzo_vast_options* options, jint which);

  /// True once one threw.
  bool hasThrown() const noexcept { return hasThrown_; }
  /// Throws it again in Java.
  void rethrow() noexcept;

  /// Runs `work` with the environment, in a frame of its own for what it makes. Throws what is no
  /// std::exception, as hooks for C do that fail for good, where Java threw.
  template <typename Work>
  auto call(Work work);

 private:
  void keepThrown() noexcept;

  JNIEnv* env_;
  jobject hooks_;
  jthrowable thrown_ = nullptr;
  bool hasThrown_ = false;
};

}  // namespace tamzo::jni
