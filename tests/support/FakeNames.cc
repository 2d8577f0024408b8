#include "tests/support/FakeNames.h"

#include <dlfcn.h>
#include <netdb.h>

#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>
#include <optional>

namespace tamzo::testing {
namespace {

using GetAddrInfo = int (*)(const char*, const char*, const addrinfo*, addrinfo**);

struct Answer {
  std::vector<std::string> addresses;
  int milliseconds = 0;
  bool isSilent = false;
};

struct Names {
  std::mutex mutex;
  std::condition_variable ended;
  unsigned generation = 0;  // changes when a FakeNames ends
  std::map<std::string, Answer> answers;
  std::vector<std::string> asked;
};

// Never destroyed: a thread of libcurl's may still ask while the process ends.
Names& names() {
  static auto& all = *new Names();
  return all;
}

// What is known of a name, once it is time to tell; nothing for one that is not known here.
std::optional<Answer> ask(const char* name) {
  Names& all = names();
  std::unique_lock lock(all.mutex);
  const auto found = name == nullptr ? all.answers.end() : all.answers.find(name);
  if (found == all.answers.end()) {
    return std::nullopt;
  }
  const Answer answer = found->second;
  all.asked.emplace_back(name);
  const auto hasEnded = [&all, begin = all.generation] { return all.generation != begin; };
  if (answer.isSilent) {
    all.ended.wait(lock, hasEnded);
    return Answer();
  }
  all.ended.wait_for(lock, std::chrono::milliseconds(answer.milliseconds), hasEnded);
  return answer;
}

GetAddrInfo systems() {
  static const auto function = reinterpret_cast<GetAddrInfo>(dlsym(RTLD_NEXT, "getaddrinfo"));
  return function;
}

int resolve(const Answer& answer, const char* service, const addrinfo* hints, addrinfo** result) {
  addrinfo digits{};
  if (hints != nullptr) {
    digits = *hints;
  }
  digits.ai_flags = AI_NUMERICHOST;
  *result = nullptr;
  addrinfo** next = result;
  for (const std::string& address : answer.addresses) {
    if (systems()(address.c_str(), service, &digits, next) == 0) {
      while (*next != nullptr) {
        next = &(*next)->ai_next;
      }
    }
  }
  return *result == nullptr ? EAI_NONAME : 0;
}

}  // namespace

FakeNames::FakeNames() = default;

FakeNames::~FakeNames() {
  Names& all = names();
  const std::lock_guard lock(all.mutex);
  all.answers.clear();
  all.asked.clear();
  ++all.generation;
  all.ended.notify_all();
}

void FakeNames::add(const std::string& name, std::vector<std::string> addresses) {
  addSlow(name, 0, std::move(addresses));
}

void FakeNames::addSlow(const std::string& name, int milliseconds,
                        std::vector<std::string> addresses) {
  const std::lock_guard lock(names().mutex);
  names().answers[name] = {std::move(addresses), milliseconds, false};
}

void FakeNames::addSilent(const std::string& name) {
  const std::lock_guard lock(names().mutex);
  names().answers[name] = {{}, 0, true};
}

std::vector<std::string> FakeNames::asked() const {
  const std::lock_guard lock(names().mutex);
  return names().asked;
}

}  // namespace tamzo::testing

// In place of the C library's, for libcurl too: an executable's symbols come first, where they are
// shown.
extern "C" __attribute__((visibility("default"))) int getaddrinfo(const char* node,
                                                                  const char* service,
                                                                  const addrinfo* hints,
                                                                  addrinfo** result) {
  const auto answer = tamzo::testing::ask(node);
  return answer ? tamzo::testing::resolve(*answer, service, hints, result)
                : tamzo::testing::systems()(node, service, hints, result);
}
