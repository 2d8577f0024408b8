#include "bindings/java/jni/JavaHooks.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <new>

#include "bindings/java/jni/Java.h"

namespace tamzo::jni {
namespace {

// The most references that one hook holds at a time, and some.
constexpr jint kReferences = 16;

struct Methods {
  jmethodID read;
  jmethodID text;
  jmethodID macros;
  jmethodID now;
  jmethodID random;
  jmethodID log;
  jmethodID hop;
};
Methods methods;

// As in com.tamzo.vast.Hooks.
enum Which : jint {
  kReader = 1,
  kBlockedCategories = 2,
  kSessionId = 4,
  kPageTemplate = 8,
  kMacros = 16,
  kClock = 32,
  kRandom = 64,
  kLog = 128,
  kObserver = 256,
};

// True where there was an answer.
bool answerWith(JNIEnv* env, tamzo_vast_reply* reply, jobject array) {
  if (array == nullptr) {
    return false;
  }
  const ArrayBytes bytes(env, static_cast<jbyteArray>(array));
  const tamzo_vast_text text = bytes.text();
  if (tamzo_vast_reply_set_bytes(reply, text.data, text.size) != TAMZO_VAST_OK) {
    throw std::bad_alloc();
  }
  return true;
}

jlong asLong(std::size_t size) {
  return static_cast<jlong>(std::min<std::uint64_t>(size, std::numeric_limits<jlong>::max()));
}

}  // namespace

JavaHooks::~JavaHooks() {
  if (thrown_ != nullptr) {
    env_->DeleteGlobalRef(thrown_);
  }
}

void JavaHooks::keepThrown() noexcept {
  const jthrowable thrown = env_->ExceptionOccurred();
  env_->ExceptionClear();
  hasThrown_ = true;
  thrown_ = static_cast<jthrowable>(env_->NewGlobalRef(thrown));
  env_->DeleteLocalRef(thrown);
}

void JavaHooks::rethrow() noexcept {
  if (thrown_ != nullptr) {
    env_->Throw(thrown_);
  } else {
    throwJava(env_, "java/lang/OutOfMemoryError", "no memory for what a hook threw");
  }
}

template <typename Work>
auto JavaHooks::call(Work work) {
  if (hasThrown_) {
    throw JavaPending();
  }
  if (env_->PushLocalFrame(kReferences) != JNI_OK) {
    keepThrown();
    throw JavaPending();
  }
  struct Frame {
    JNIEnv* env;
    ~Frame() { env->PopLocalFrame(nullptr); }
  };
  try {
    const Frame frame{env_};
    return work(env_, hooks_);
  } catch (const JavaPending&) {
    keepThrown();
    throw;
  }
}

namespace {

JavaHooks& hooksOf(void* user) { return *static_cast<JavaHooks*>(user); }

bool readUrl(void* user, const tamzo_vast_request* request, tamzo_vast_reply* reply) {
  return hooksOf(user).call([&](JNIEnv* env, jobject hooks) {
    const jbyteArray url = arrayOf(env, tamzo_vast_request_url(request));
    const jintArray status = env->NewIntArray(1);
    checkJava(env);
    jvalue arguments[5];
    arguments[0].l = url;
    arguments[1].i = tamzo_vast_request_hop(request);
    arguments[2].d = tamzo_vast_request_seconds_left(request);
    arguments[3].j = asLong(tamzo_vast_request_max_bytes(request));
    arguments[4].l = status;
    const jobject body = env->CallObjectMethodA(hooks, methods.read, arguments);
    checkJava(env);
    jint code = 0;
    env->GetIntArrayRegion(status, 0, 1, &code);
    tamzo_vast_reply_set_http_status(reply, code);
    return answerWith(env, reply, body);
  });
}

bool textFor(void* user, tamzo_vast_reply* reply, Which which) {
  return hooksOf(user).call([&](JNIEnv* env, jobject hooks) {
    jvalue argument;
    argument.i = which;
    const jobject text = env->CallObjectMethodA(hooks, methods.text, &argument);
    checkJava(env);
    answerWith(env, reply, text);
    return true;
  });
}

template <Which which>
bool answerText(void* user, tamzo_vast_reply* reply) {
  return textFor(user, reply, which);
}

bool fillMacros(void* user, tamzo_vast_text text, tamzo_vast_reply* reply) {
  return hooksOf(user).call([&](JNIEnv* env, jobject hooks) {
    jvalue argument;
    argument.l = arrayOf(env, text);
    const jobject filled = env->CallObjectMethodA(hooks, methods.macros, &argument);
    checkJava(env);
    answerWith(env, reply, filled);
    return true;
  });
}

int64_t now(void* user) {
  return hooksOf(user).call([&](JNIEnv* env, jobject hooks) {
    const jlong moment = env->CallLongMethodA(hooks, methods.now, nullptr);
    checkJava(env);
    return std::int64_t{moment};
  });
}

uint32_t randomBelow(void* user, uint32_t bound) {
  return hooksOf(user).call([&](JNIEnv* env, jobject hooks) {
    jvalue argument;
    argument.i =
        static_cast<jint>(std::min<std::uint32_t>(bound, std::numeric_limits<jint>::max()));
    const jint number = env->CallIntMethodA(hooks, methods.random, &argument);
    checkJava(env);
    return static_cast<std::uint32_t>(number);
  });
}

void writeLog(void* user, tamzo_vast_text line) {
  hooksOf(user).call([&](JNIEnv* env, jobject hooks) {
    jvalue argument;
    argument.l = arrayOf(env, line);
    env->CallVoidMethodA(hooks, methods.log, &argument);
    checkJava(env);
  });
}

void observe(void* user, const tamzo_vast_hop* hop) {
  hooksOf(user).call([&](JNIEnv* env, jobject hooks) {
    jvalue arguments[8];
    arguments[0].i = hop->number;
    arguments[1].l = arrayOf(env, hop->tag);
    arguments[2].l = arrayOf(env, hop->url);
    arguments[3].l = arrayOf(env, hop->document);
    arguments[4].l = arrayOf(env, hop->failure);
    arguments[5].i = hop->http_status;
    arguments[6].d = hop->milliseconds;
    arguments[7].i = hop->error_code;
    env->CallVoidMethodA(hooks, methods.hop, arguments);
    checkJava(env);
  });
}

void checkSet(tamzo_vast_status status) {
  if (status != TAMZO_VAST_OK) {
    throw std::bad_alloc();
  }
}

}  // namespace

void JavaHooks::install(tamzo_vast_options* options, jint which) {
  // Takes a setter and its function where the bit is set.
  const auto install = [&](Which bit, auto setter, auto function) {
    if ((which & bit) != 0) {
      checkSet(setter(options, function, this, nullptr));
    }
  };
  install(kReader, tamzo_vast_options_set_reader, readUrl);
  install(kBlockedCategories, tamzo_vast_options_set_blocked_categories,
          answerText<kBlockedCategories>);
  install(kSessionId, tamzo_vast_options_set_session_id, answerText<kSessionId>);
  install(kPageTemplate, tamzo_vast_options_set_page_template, answerText<kPageTemplate>);
  install(kMacros, tamzo_vast_options_set_macros, fillMacros);
  install(kClock, tamzo_vast_options_set_clock, now);
  install(kRandom, tamzo_vast_options_set_random, randomBelow);
  install(kLog, tamzo_vast_options_set_log, writeLog);
  install(kObserver, tamzo_vast_options_set_observer, observe);
}

bool findHookMethods(JNIEnv* env) {
  const jclass hooks = env->FindClass("com/tamzo/vast/Hooks");
  if (hooks == nullptr) {
    return false;
  }
  const auto find = [&](jmethodID& method, const char* name, const char* signature) {
    method =
        env->ExceptionCheck() != JNI_FALSE ? nullptr : env->GetMethodID(hooks, name, signature);
    return method != nullptr;
  };
  const bool isFound =
      find(methods.read, "read", "([BIDJ[I)[B") && find(methods.text, "text", "(I)[B") &&
      find(methods.macros, "macros", "([B)[B") && find(methods.now, "now", "()J") &&
      find(methods.random, "random", "(I)I") && find(methods.log, "log", "([B)V") &&
      find(methods.hop, "hop", "(I[B[B[B[BIDI)V");
  env->DeleteLocalRef(hooks);
  return isFound;
}

}  // namespace tamzo::jni
