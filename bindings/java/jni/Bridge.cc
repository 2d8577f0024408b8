// The native methods of com.tamzo.vast.Native, over the interface for C. Handles are pointers; the
// Java side sees to it that none is used after its release.

#include <jni.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <limits>
#include <vector>

#include "bindings/java/jni/Java.h"
#include "bindings/java/jni/JavaHooks.h"
#include "bindings/java/jni/Owners.h"
#include "bindings/java/jni/RecordBytes.h"
#include "tamzo/tamzo_vast.h"

namespace tamzo::jni {
namespace {

// Java keeps an address as a number, and has no other type for it.
template <typename T>
T* fromHandle(jlong handle) noexcept {
  // NOLINTNEXTLINE(performance-no-int-to-ptr)
  return reinterpret_cast<T*>(static_cast<std::intptr_t>(handle));
}

template <typename T>
jlong toHandle(T* object) noexcept {
  return static_cast<jlong>(reinterpret_cast<std::intptr_t>(object));
}

tamzo_vast_options* optionsOf(jlong handle) noexcept {
  return fromHandle<tamzo_vast_options>(handle);
}

// Throws what a status says; what a hook threw is thrown again instead.
void check(JNIEnv* env, tamzo_vast_status status) {
  if (status == TAMZO_VAST_NO_MEMORY) {
    throw std::bad_alloc();
  }
  if (status != TAMZO_VAST_OK) {
    throwJava(env,
              status == TAMZO_VAST_INVALID_ARGUMENT ? "java/lang/IllegalArgumentException"
                                                    : "java/lang/IllegalStateException",
              tamzo_vast_status_name(status));
    throw JavaPending();
  }
}

tamzo_vast_text viewOf(const Bytes& bytes) { return {bytes.all().data(), bytes.all().size()}; }

jbyteArray giveString(JNIEnv* env, const tamzo_vast_string* string) {
  return arrayOf(env, tamzo_vast_string_text(string));
}

jbyteArray version(JNIEnv* env, jclass) {
  return guarded(env, [&] { return arrayOf(env, tamzo_vast_text_of(tamzo_vast_version())); });
}

void setDebugEnabled(JNIEnv*, jclass, jboolean isOn) {
  tamzo_vast_set_debug_enabled(isOn != JNI_FALSE);
}

jintArray errorCodes(JNIEnv* env, jclass) {
  return guarded(env, [&] {
    std::vector<jint> codes;
    for (std::size_t at = 0; at < tamzo_vast_error_count(); ++at) {
      codes.push_back(tamzo_vast_error_code_at(at));
    }
    const jintArray array = env->NewIntArray(static_cast<jsize>(codes.size()));
    checkJava(env);
    env->SetIntArrayRegion(array, 0, static_cast<jsize>(codes.size()), codes.data());
    return array;
  });
}

jbyteArray errorName(JNIEnv* env, jclass, jint code) {
  return guarded(env, [&] { return arrayOf(env, tamzo_vast_error_name(code)); });
}

jbyteArray errorCause(JNIEnv* env, jclass, jint code) {
  return guarded(env, [&] { return arrayOf(env, tamzo_vast_error_cause(code)); });
}

jlong createCancellation(JNIEnv* env, jclass) {
  return guarded(env, [&] {
    tamzo_vast_cancellation* cancellation = nullptr;
    check(env, tamzo_vast_cancellation_create(&cancellation));
    return toHandle(cancellation);
  });
}

void cancel(JNIEnv*, jclass, jlong cancellation) {
  tamzo_vast_cancellation_cancel(fromHandle<tamzo_vast_cancellation>(cancellation));
}

jboolean isCancelled(JNIEnv*, jclass, jlong cancellation) {
  const auto* asked = fromHandle<tamzo_vast_cancellation>(cancellation);
  return tamzo_vast_cancellation_is_cancelled(asked) ? JNI_TRUE : JNI_FALSE;
}

void releaseCancellation(JNIEnv*, jclass, jlong cancellation) {
  tamzo_vast_cancellation_release(fromHandle<tamzo_vast_cancellation>(cancellation));
}

jlong createOptions(JNIEnv* env, jclass) {
  return guarded(env, [&] {
    tamzo_vast_options* options = nullptr;
    check(env, tamzo_vast_options_create(&options));
    return toHandle(options);
  });
}

void releaseOptions(JNIEnv*, jclass, jlong options) {
  tamzo_vast_options_release(optionsOf(options));
}

void setDeadline(JNIEnv* env, jclass, jlong options, jdouble seconds) {
  guarded(env, [&] { check(env, tamzo_vast_options_set_deadline(optionsOf(options), seconds)); });
}

void setFetchSeconds(JNIEnv* env, jclass, jlong options, jdouble connect, jdouble total) {
  guarded(env, [&] {
    check(env, tamzo_vast_options_set_fetch_seconds(optionsOf(options), connect, total));
  });
}

// What a size of this machine cannot hold is as much as it can.
std::size_t sizeOf(jlong bytes) noexcept {
  constexpr std::uint64_t kMost = std::numeric_limits<std::size_t>::max();
  return bytes <= 0 ? 0
                    : static_cast<std::size_t>(std::min(static_cast<std::uint64_t>(bytes), kMost));
}

void setMaxBytes(JNIEnv* env, jclass, jlong options, jlong body, jlong chain) {
  guarded(env, [&] {
    check(env, tamzo_vast_options_set_max_bytes(optionsOf(options), sizeOf(body), sizeOf(chain)));
  });
}

void setUserAgent(JNIEnv* env, jclass, jlong options, jbyteArray text) {
  guarded(env, [&] {
    const ArrayBytes bytes(env, text);
    check(env, tamzo_vast_options_set_user_agent(optionsOf(options), bytes.text()));
  });
}

void addHeader(JNIEnv* env, jclass, jlong options, jbyteArray name, jbyteArray value,
               jbyteArray host) {
  guarded(env, [&] {
    const ArrayBytes names(env, name);
    const ArrayBytes values(env, value);
    const ArrayBytes hosts(env, host);
    check(env, tamzo_vast_options_add_header(optionsOf(options), names.text(), values.text(),
                                             hosts.text()));
  });
}

void setProxy(JNIEnv* env, jclass, jlong options, jbyteArray text) {
  guarded(env, [&] {
    const ArrayBytes bytes(env, text);
    check(env, tamzo_vast_options_set_proxy(optionsOf(options), bytes.text()));
  });
}

void setCaFile(JNIEnv* env, jclass, jlong options, jbyteArray text) {
  guarded(env, [&] {
    const ArrayBytes bytes(env, text);
    check(env, tamzo_vast_options_set_ca_file(optionsOf(options), bytes.text()));
  });
}

void setSwitches(JNIEnv* env, jclass, jlong options, jboolean publicAddressesOnly,
                 jboolean httpsStaysHttps, jboolean cookies) {
  guarded(env, [&] {
    auto* changed = optionsOf(options);
    check(env,
          tamzo_vast_options_set_public_addresses_only(changed, publicAddressesOnly != JNI_FALSE));
    check(env, tamzo_vast_options_set_https_stays_https(changed, httpsStaysHttps != JNI_FALSE));
    check(env, tamzo_vast_options_set_cookies(changed, cookies != JNI_FALSE));
  });
}

void setCancellation(JNIEnv* env, jclass, jlong options, jlong cancellation) {
  guarded(env, [&] {
    check(env, tamzo_vast_options_set_cancellation(
                   optionsOf(options), fromHandle<tamzo_vast_cancellation>(cancellation)));
  });
}

// What a hook threw goes before what the status says of it.
void checkCall(JNIEnv* env, JavaHooks& hooks, tamzo_vast_status status) {
  if (hooks.hasThrown()) {
    hooks.rethrow();
    throw JavaPending();
  }
  check(env, status);
}

Owned<tamzo_vast_ad> parsed(JNIEnv* env, jbyteArray response, tamzo_vast_options* options,
                            jobject javaHooks, jint which) {
  JavaHooks hooks(env, javaHooks);
  hooks.install(options, which);
  tamzo_vast_ad* given = nullptr;
  tamzo_vast_status status = TAMZO_VAST_OK;
  {
    const ArrayBytes bytes(env, response);
    const tamzo_vast_text text = bytes.text();
    status = tamzo_vast_parse(text.data, text.size, options, &given);
  }
  Owned<tamzo_vast_ad> ad(given);
  if (hooks.hasThrown()) {
    ad.reset();
  }
  checkCall(env, hooks, status);
  return ad;
}

// Gives the record, and the handle through `handle` unless that is null.
jbyteArray parse(JNIEnv* env, jclass, jbyteArray response, jlong options, jobject hooks, jint which,
                 jlongArray handle) {
  return guarded(env, [&] {
    Owned<tamzo_vast_ad> ad = parsed(env, response, optionsOf(options), hooks, which);
    const jbyteArray record = arrayOf(env, viewOf(recordAsBytes(*ad)));
    if (handle != nullptr) {
      const jlong given = toHandle(ad.get());
      env->SetLongArrayRegion(handle, 0, 1, &given);
      checkJava(env);
      static_cast<void>(ad.release());  // is Java's now
    }
    return record;
  });
}

jbyteArray record(JNIEnv* env, jclass, jlong ad) {
  return guarded(
      env, [&] { return arrayOf(env, viewOf(recordAsBytes(*fromHandle<tamzo_vast_ad>(ad)))); });
}

jbyteArray json(JNIEnv* env, jclass, jlong ad, jboolean isIndented) {
  return guarded(env, [&] {
    const auto text = given<tamzo_vast_string>([&](auto** made) {
      return tamzo_vast_ad_as_json(fromHandle<tamzo_vast_ad>(ad), isIndented != JNI_FALSE, made);
    });
    return giveString(env, text.get());
  });
}

// Null where there is no page.
jbyteArray page(JNIEnv* env, jclass, jlong ad, jlong options, jobject javaHooks, jint which) {
  return guarded(env, [&] {
    JavaHooks hooks(env, javaHooks);
    hooks.install(optionsOf(options), which);
    tamzo_vast_string* given = nullptr;
    const tamzo_vast_status status =
        tamzo_vast_ad_get_page(fromHandle<tamzo_vast_ad>(ad), optionsOf(options), &given);
    const Owned<tamzo_vast_string> made(given);
    checkCall(env, hooks, status == TAMZO_VAST_NO_PAGE ? TAMZO_VAST_OK : status);
    return giveString(env, made.get());
  });
}

// Which companion of which document's; -1 where none fits.
jint companionForSlot(JNIEnv* env, jclass, jlong ad, jint companions, jint width, jint height) {
  return guarded(env, [&] {
    const auto* asked = fromHandle<tamzo_vast_ad>(ad);
    const tamzo_vast_companion_ad* of = tamzo_vast_ad_companionAds(asked)->items[companions];
    const tamzo_vast_companion* best = nullptr;
    check(env, tamzo_vast_ad_companion_for_slot(asked, of, width, height, &best));
    for (std::size_t at = 0; best != nullptr && at < of->count; ++at) {
      if (of->items[at] == best) {
        return static_cast<jint>(at);
      }
    }
    return jint{-1};
  });
}

// `list` as com.tamzo.vast.VastElement numbers them.
const tamzo_vast_element* listedElement(const tamzo_vast_ad* ad, jint list, jint index) {
  switch (list) {
    case 0:
      return tamzo_vast_ad_extraActions(ad)->items[index]->icon;
    case 1:
      return tamzo_vast_ad_cards(ad)->items[index];
    default:
      return tamzo_vast_ad_hotspotList(ad)->items[index];
  }
}

Owned<tamzo_vast_element> childAt(const tamzo_vast_element* element, jint index) {
  auto child = given<tamzo_vast_element>(
      [&](auto** first) { return tamzo_vast_element_first_child(element, first); });
  for (; index > 0; --index) {
    child = given<tamzo_vast_element>(
        [&](auto** next) { return tamzo_vast_element_next_sibling(child.get(), next); });
  }
  return child;
}

// `path` leads from the list to the element.
void imageAd(JNIEnv* env, jclass, jlong ad, jint list, jintArray path) {
  guarded(env, [&] {
    std::vector<jint> indexes(static_cast<std::size_t>(env->GetArrayLength(path)));
    env->GetIntArrayRegion(path, 0, static_cast<jsize>(indexes.size()), indexes.data());
    auto* changed = fromHandle<tamzo_vast_ad>(ad);
    const tamzo_vast_element* element = listedElement(changed, list, indexes.at(0));
    Owned<tamzo_vast_element> below;
    for (std::size_t at = 1; at < indexes.size(); ++at) {
      below = childAt(element, indexes[at]);
      element = below.get();
    }
    check(env, tamzo_vast_ad_get_image_ad(changed, element));
  });
}

void releaseAd(JNIEnv*, jclass, jlong ad) { tamzo_vast_ad_release(fromHandle<tamzo_vast_ad>(ad)); }

template <typename Function>
JNINativeMethod method(const char* name, const char* signature, Function* function) {
  return {const_cast<char*>(name), const_cast<char*>(signature), reinterpret_cast<void*>(function)};
}

bool registerMethods(JNIEnv* env) {
  const JNINativeMethod methods[] = {
      method("version", "()[B", version),
      method("setDebugEnabled", "(Z)V", setDebugEnabled),
      method("errorCodes", "()[I", errorCodes),
      method("errorName", "(I)[B", errorName),
      method("errorCause", "(I)[B", errorCause),
      method("createCancellation", "()J", createCancellation),
      method("cancel", "(J)V", cancel),
      method("isCancelled", "(J)Z", isCancelled),
      method("releaseCancellation", "(J)V", releaseCancellation),
      method("createOptions", "()J", createOptions),
      method("releaseOptions", "(J)V", releaseOptions),
      method("setDeadline", "(JD)V", setDeadline),
      method("setFetchSeconds", "(JDD)V", setFetchSeconds),
      method("setMaxBytes", "(JJJ)V", setMaxBytes),
      method("setUserAgent", "(J[B)V", setUserAgent),
      method("addHeader", "(J[B[B[B)V", addHeader),
      method("setProxy", "(J[B)V", setProxy),
      method("setCaFile", "(J[B)V", setCaFile),
      method("setSwitches", "(JZZZ)V", setSwitches),
      method("setCancellation", "(JJ)V", setCancellation),
      method("parse", "([BJLcom/tamzo/vast/Hooks;I[J)[B", parse),
      method("record", "(J)[B", record),
      method("json", "(JZ)[B", json),
      method("page", "(JJLcom/tamzo/vast/Hooks;I)[B", page),
      method("companionForSlot", "(JIII)I", companionForSlot),
      method("imageAd", "(JI[I)V", imageAd),
      method("releaseAd", "(J)V", releaseAd),
  };
  const jclass owner = env->FindClass("com/tamzo/vast/Native");
  if (owner == nullptr) {
    return false;
  }
  const bool isDone =
      env->RegisterNatives(owner, methods, static_cast<jint>(std::size(methods))) == JNI_OK;
  env->DeleteLocalRef(owner);
  return isDone;
}

}  // namespace
}  // namespace tamzo::jni

extern "C" JNIEXPORT jint JNICALL JNI_OnLoad(JavaVM* machine, void*) {
  void* env = nullptr;
  if (machine->GetEnv(&env, JNI_VERSION_1_6) != JNI_OK) {
    return JNI_ERR;
  }
  auto* own = static_cast<JNIEnv*>(env);
  const bool isDone = tamzo::jni::findHookMethods(own) && tamzo::jni::registerMethods(own);
  return isDone ? JNI_VERSION_1_6 : JNI_ERR;
}
