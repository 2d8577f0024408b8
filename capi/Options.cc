#include "capi/Options.h"

#include <algorithm>
#include <chrono>
#include <limits>
#include <optional>
#include <stdexcept>
#include <utility>

#include "capi/Boundary.h"
#include "tamzo/sdk/TamzoLogger.h"

using tamzo::FetchFailure;
using tamzo::FetchOptions;
using tamzo::FetchRequest;
using tamzo::FetchResult;
using tamzo::Text;
using tamzo::capi::FunctionView;
using tamzo::capi::give;
using tamzo::capi::guarded;
using tamzo::capi::isUnreadable;
using tamzo::capi::viewOf;

struct tamzo_vast_reply {
  std::optional<std::string> bytes;
  std::int32_t httpStatus = 0;
};

struct tamzo_vast_request {
  const FetchRequest& request;
};

namespace {

// A function of the host with its pointer, which is released with the last copy.
template <typename Function>
struct Hook {
  Function function;
  std::shared_ptr<void> user;

  template <typename... Arguments>
  auto operator()(Arguments... arguments) const {
    return function(user.get(), arguments...);
  }
};

struct Releaser {
  tamzo_vast_release_function release;
  void operator()(void* user) const noexcept {
    if (release != nullptr) {
      release(user);
    }
  }
};

// Hands over the pointer with its owner, who releases it however this ends.
tamzo_vast_status withOwned(bool isNull, void* user, tamzo_vast_release_function release,
                            FunctionView<void(const std::shared_ptr<void>&)> take) noexcept {
  return guarded([&] {
    const std::shared_ptr<void> owned(user, Releaser{release});
    if (isNull) {
      return TAMZO_VAST_INVALID_ARGUMENT;
    }
    take(owned);
    return TAMZO_VAST_OK;
  });
}

// Hands `install` the hook, or nothing where the default is to come back.
template <typename Function, typename Install>
tamzo_vast_status setHook(bool isNull, Function function, void* user,
                          tamzo_vast_release_function release, const Install& install) noexcept {
  return withOwned(isNull, user, release, [&](const std::shared_ptr<void>& owned) {
    const Hook<Function> hook{function, owned};
    install(function == nullptr ? nullptr : &hook);
  });
}

tamzo_vast_status change(bool isNull, FunctionView<void()> apply) noexcept {
  return guarded([&] {
    if (isNull) {
      return TAMZO_VAST_INVALID_ARGUMENT;
    }
    apply();
    return TAMZO_VAST_OK;
  });
}

// Changes how requests are made, unless they could not be sent so.
tamzo_vast_status changeFetch(tamzo_vast_options* options, bool isInvalid,
                              FunctionView<void(FetchOptions&)> apply) noexcept {
  return guarded([&] {
    if (isInvalid) {
      return TAMZO_VAST_INVALID_ARGUMENT;
    }
    FetchOptions changed = options->host.fetchOptions;
    apply(changed);
    if (!tamzo::whyRefused(changed).empty()) {
      return TAMZO_VAST_INVALID_ARGUMENT;
    }
    std::swap(options->host.fetchOptions, changed);
    return TAMZO_VAST_OK;
  });
}

// What the hook answers; nil without an answer.
template <typename Function, typename... Arguments>
Text answerOf(const Hook<Function>& hook, Arguments... arguments) {
  tamzo_vast_reply reply;
  if (!hook(arguments..., &reply)) {
    throw std::runtime_error("a hook of the host failed");
  }
  return reply.bytes ? Text(std::move(*reply.bytes)) : Text();
}

std::function<Text()> textOf(const Hook<tamzo_vast_text_function>* hook) {
  if (hook == nullptr) {
    return nullptr;
  }
  return [hook = *hook] { return answerOf(hook); };
}

// A moment that the clock cannot hold is the nearest that it can.
std::chrono::system_clock::time_point momentOf(std::int64_t milliseconds) {
  using Clock = std::chrono::system_clock;
  constexpr auto kLeast = std::chrono::ceil<std::chrono::milliseconds>(Clock::duration::min());
  constexpr auto kMost = std::chrono::floor<std::chrono::milliseconds>(Clock::duration::max());
  const auto bounded = std::clamp(std::chrono::milliseconds(milliseconds), kLeast, kMost);
  return Clock::time_point(std::chrono::duration_cast<Clock::duration>(bounded));
}

FetchResult readBy(const Hook<tamzo_vast_read_function>& hook, const FetchRequest& request) {
  const tamzo_vast_request asked{request};
  tamzo_vast_reply reply;
  const bool isRead = hook(&asked, &reply);
  FetchResult result;
  result.status = reply.httpStatus;
  result.finalUrl = request.url.view();
  if (isRead && reply.bytes) {
    result.bytes = reply.bytes->size();
    result.body = std::move(reply.bytes);
  } else {
    result.failure =
        request.cancellation.isCancelled() ? FetchFailure::cancelled : FetchFailure::other;
  }
  return result;
}

class Observer final : public tamzo::ParseObserver {
 public:
  explicit Observer(Hook<tamzo_vast_hop_function> hook) : hook_(std::move(hook)) {}

  void onHop(const tamzo::Hop& hop) override {
    tamzo_vast_hop told{};
    told.number = hop.number;
    told.tag = viewOf(hop.tag);
    told.url = viewOf(hop.url);
    told.document = viewOf(hop.document);
    told.error_code = hop.errorCode;
    if (hop.fetch != nullptr) {
      const std::string_view failure = tamzo::fetchFailureName(hop.fetch->failure);
      told.failure = failure.empty() ? tamzo_vast_text{nullptr, 0}
                                     : tamzo_vast_text{failure.data(), failure.size()};
      told.http_status = hop.fetch->status;
      told.milliseconds = hop.fetch->milliseconds.total;
    }
    hook_(&told);
  }

 private:
  Hook<tamzo_vast_hop_function> hook_;
};

}  // namespace

tamzo_vast_status tamzo_vast_cancellation_create(tamzo_vast_cancellation** cancellation) {
  return give(false, cancellation, [&] {
    *cancellation = new tamzo_vast_cancellation;
    return TAMZO_VAST_OK;
  });
}

void tamzo_vast_cancellation_cancel(const tamzo_vast_cancellation* cancellation) {
  if (!TAMZO_IS_NULL(cancellation)) {
    cancellation->value.cancel();
  }
}

bool tamzo_vast_cancellation_is_cancelled(const tamzo_vast_cancellation* cancellation) {
  return !TAMZO_IS_NULL(cancellation) && cancellation->value.isCancelled();
}

void tamzo_vast_cancellation_release(tamzo_vast_cancellation* cancellation) {
  if (!TAMZO_IS_NULL(cancellation)) {
    delete cancellation;
  }
}

tamzo_vast_status tamzo_vast_options_create(tamzo_vast_options** options) {
  return give(false, options, [&] {
    *options = new tamzo_vast_options;
    return TAMZO_VAST_OK;
  });
}

void tamzo_vast_options_release(tamzo_vast_options* options) {
  if (!TAMZO_IS_NULL(options)) {
    delete options;
  }
}

tamzo_vast_status tamzo_vast_options_set_deadline(tamzo_vast_options* options, double seconds) {
  return change(TAMZO_IS_NULL(options), [&] { options->totalSeconds = seconds; });
}

tamzo_vast_status tamzo_vast_options_set_cancellation(tamzo_vast_options* options,
                                                      const tamzo_vast_cancellation* cancellation) {
  const bool isNone = TAMZO_IS_NULL(cancellation);
  return change(TAMZO_IS_NULL(options), [&] {
    options->cancellation = isNone ? tamzo::Cancellation::never() : cancellation->value;
  });
}

tamzo_vast_status tamzo_vast_options_set_fetch_seconds(tamzo_vast_options* options, double connect,
                                                       double total) {
  return change(TAMZO_IS_NULL(options), [&] {
    options->host.fetchLimits.connectSeconds = connect;
    options->host.fetchLimits.totalSeconds = total;
  });
}

tamzo_vast_status tamzo_vast_options_set_max_bytes(tamzo_vast_options* options, size_t body,
                                                   size_t chain) {
  return change(TAMZO_IS_NULL(options), [&] {
    options->host.fetchLimits.maxBodyBytes = body;
    options->host.fetchLimits.maxChainBytes = chain;
  });
}

tamzo_vast_status tamzo_vast_options_set_user_agent(tamzo_vast_options* options,
                                                    tamzo_vast_text user_agent) {
  return changeFetch(options, TAMZO_IS_NULL(options) || isUnreadable(user_agent),
                     [&](FetchOptions& fetch) { fetch.userAgent = viewOf(user_agent); });
}

tamzo_vast_status tamzo_vast_options_add_header(tamzo_vast_options* options, tamzo_vast_text name,
                                                tamzo_vast_text value, tamzo_vast_text host) {
  const bool isInvalid =
      TAMZO_IS_NULL(options) || isUnreadable(name) || isUnreadable(value) || isUnreadable(host);
  return changeFetch(options, isInvalid, [&](FetchOptions& fetch) {
    tamzo::FetchHeader header{std::string(viewOf(name)), std::string(viewOf(value)), {}};
    if (host.data != nullptr) {
      header.hosts.emplace_back(viewOf(host));
    }
    fetch.headers.push_back(std::move(header));
  });
}

tamzo_vast_status tamzo_vast_options_set_proxy(tamzo_vast_options* options, tamzo_vast_text proxy) {
  return changeFetch(
      options, TAMZO_IS_NULL(options) || isUnreadable(proxy), [&](FetchOptions& fetch) {
        fetch.proxy =
            proxy.data == nullptr ? std::nullopt : std::optional(std::string(viewOf(proxy)));
      });
}

tamzo_vast_status tamzo_vast_options_set_ca_file(tamzo_vast_options* options,
                                                 tamzo_vast_text path) {
  return changeFetch(options, TAMZO_IS_NULL(options) || isUnreadable(path),
                     [&](FetchOptions& fetch) { fetch.caFile = viewOf(path); });
}

tamzo_vast_status tamzo_vast_options_set_public_addresses_only(tamzo_vast_options* options,
                                                               bool is_on) {
  return changeFetch(options, TAMZO_IS_NULL(options),
                     [&](FetchOptions& fetch) { fetch.publicAddressesOnly = is_on; });
}

tamzo_vast_status tamzo_vast_options_set_https_stays_https(tamzo_vast_options* options,
                                                           bool is_on) {
  return changeFetch(options, TAMZO_IS_NULL(options),
                     [&](FetchOptions& fetch) { fetch.httpsStaysHttps = is_on; });
}

tamzo_vast_status tamzo_vast_options_set_cookies(tamzo_vast_options* options, bool is_on) {
  return changeFetch(options, TAMZO_IS_NULL(options),
                     [&](FetchOptions& fetch) { fetch.cookies = is_on; });
}

tamzo_vast_status tamzo_vast_reply_set_bytes(tamzo_vast_reply* reply, const void* bytes,
                                             size_t length) {
  return change(reply == nullptr || isUnreadable(bytes, length), [&] {
    reply->bytes.emplace(length == 0 ? "" : static_cast<const char*>(bytes), length);
  });
}

tamzo_vast_status tamzo_vast_reply_set_http_status(tamzo_vast_reply* reply, int32_t status) {
  return change(reply == nullptr, [&] { reply->httpStatus = status; });
}

tamzo_vast_text tamzo_vast_request_url(const tamzo_vast_request* request) {
  return request == nullptr ? tamzo_vast_text{nullptr, 0} : viewOf(request->request.url);
}

int32_t tamzo_vast_request_hop(const tamzo_vast_request* request) {
  return request == nullptr ? 0 : request->request.hop;
}

double tamzo_vast_request_seconds_left(const tamzo_vast_request* request) {
  return request == nullptr ? 0
                            : std::min(request->request.limits.totalSeconds,
                                       request->request.deadline.secondsLeft());
}

size_t tamzo_vast_request_max_bytes(const tamzo_vast_request* request) {
  return request == nullptr ? 0 : request->request.limits.maxBodyBytes;
}

bool tamzo_vast_request_is_cancelled(const tamzo_vast_request* request) {
  return request != nullptr && request->request.cancellation.isCancelled();
}

tamzo_vast_status tamzo_vast_options_set_reader(tamzo_vast_options* options,
                                                tamzo_vast_read_function read, void* user,
                                                tamzo_vast_release_function release) {
  return setHook(TAMZO_IS_NULL(options), read, user, release, [&](const auto* hook) {
    options->host.fetch = nullptr;
    if (hook != nullptr) {
      options->host.fetch = [hook = *hook](const FetchRequest& request) {
        return readBy(hook, request);
      };
    }
  });
}

tamzo_vast_status tamzo_vast_options_set_blocked_categories(tamzo_vast_options* options,
                                                            tamzo_vast_text_function function,
                                                            void* user,
                                                            tamzo_vast_release_function release) {
  return setHook(TAMZO_IS_NULL(options), function, user, release,
                 [&](const auto* hook) { options->host.blockedAdCategories = textOf(hook); });
}

tamzo_vast_status tamzo_vast_options_set_session_id(tamzo_vast_options* options,
                                                    tamzo_vast_text_function function, void* user,
                                                    tamzo_vast_release_function release) {
  return setHook(TAMZO_IS_NULL(options), function, user, release,
                 [&](const auto* hook) { options->host.sessionId = textOf(hook); });
}

tamzo_vast_status tamzo_vast_options_set_page_template(tamzo_vast_options* options,
                                                       tamzo_vast_text_function function,
                                                       void* user,
                                                       tamzo_vast_release_function release) {
  return setHook(TAMZO_IS_NULL(options), function, user, release,
                 [&](const auto* hook) { options->host.vpaidWrapperTemplate = textOf(hook); });
}

tamzo_vast_status tamzo_vast_options_set_macros(tamzo_vast_options* options,
                                                tamzo_vast_macro_function function, void* user,
                                                tamzo_vast_release_function release) {
  return setHook(TAMZO_IS_NULL(options), function, user, release, [&](const auto* hook) {
    options->host.replaceMacros = nullptr;
    if (hook != nullptr) {
      options->host.replaceMacros = [hook = *hook](const Text& text, const tamzo::MacroValues&) {
        return answerOf(hook, viewOf(text));
      };
    }
  });
}

tamzo_vast_status tamzo_vast_options_set_clock(tamzo_vast_options* options,
                                               tamzo_vast_clock_function function, void* user,
                                               tamzo_vast_release_function release) {
  return setHook(TAMZO_IS_NULL(options), function, user, release, [&](const auto* hook) {
    options->host.now = nullptr;
    if (hook != nullptr) {
      options->host.now = [hook = *hook] { return momentOf(hook()); };
    }
  });
}

tamzo_vast_status tamzo_vast_options_set_random(tamzo_vast_options* options,
                                                tamzo_vast_random_function function, void* user,
                                                tamzo_vast_release_function release) {
  return setHook(TAMZO_IS_NULL(options), function, user, release, [&](const auto* hook) {
    options->host.random = nullptr;
    if (hook != nullptr) {
      options->host.random = [hook = *hook](std::uint32_t bound) { return hook(bound); };
    }
  });
}

tamzo_vast_status tamzo_vast_options_set_log(tamzo_vast_options* options,
                                             tamzo_vast_log_function function, void* user,
                                             tamzo_vast_release_function release) {
  return setHook(TAMZO_IS_NULL(options), function, user, release, [&](const auto* hook) {
    options->host.writeLog = nullptr;
    if (hook != nullptr) {
      options->host.writeLog = [hook = *hook](std::string_view line) {
        hook(tamzo_vast_text{line.data(), line.size()});
      };
    }
  });
}

tamzo_vast_status tamzo_vast_options_set_observer(tamzo_vast_options* options,
                                                  tamzo_vast_hop_function function, void* user,
                                                  tamzo_vast_release_function release) {
  return setHook(TAMZO_IS_NULL(options), function, user, release, [&](const auto* hook) {
    options->observer = hook == nullptr ? nullptr : std::make_shared<Observer>(*hook);
  });
}

void tamzo_vast_set_debug_enabled(bool is_on) { tamzo::isTamzoDebugEnabled = is_on; }
