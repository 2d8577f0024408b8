// Memory that runs out at one point of a parse, for every point there is: in C++ and in libxml2.
//
// An executable of its own, since it replaces the global operator new, and since libxml2 takes
// other allocation functions only before its first call.

#include <execinfo.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <libxml/xmlmemory.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <filesystem>
#include <fstream>
#include <memory>
#include <new>
#include <sstream>
#include <string>
#include <vector>

#include "tamzo/base/JsonValue.h"
#include "tamzo/net/TamzoUrlReader.h"
#include "tamzo/sdk/TamzoLogger.h"
#include "tamzo/sdk/TamzoMacroReplacementUtil.h"
#include "tamzo/sdk/TamzoVpaidXML.h"
#include "tamzo/vast/RecordJson.h"
#include "tamzo/vast/TamzoVastAd.h"
#include "tamzo/xml/DDXMLDocument.h"
#include "tests/support/HostHooks.h"

namespace {

/// Counts allocations while it is armed, and makes one of them, or it and all that follow, fail.
struct Injector {
  bool isArmed = false;
  bool forGood = false;
  long count = 0;
  long failing = 0;
  bool hasFailed = false;
  std::array<void*, 48> stack{};
  int depth = 0;

  bool failsNow() noexcept {
    if (!isArmed) {
      return false;
    }
    ++count;
    if (count != failing && !(forGood && count > failing)) {
      return false;
    }
    if (!hasFailed) {
      hasFailed = true;
      isArmed = false;  // finding the stack may allocate
      depth = backtrace(stack.data(), static_cast<int>(stack.size()));
      isArmed = true;
    }
    return true;
  }
};
Injector cpp;
Injector libxml;

void* allocate(std::size_t size) noexcept {
  return cpp.failsNow() ? nullptr : std::malloc(size == 0 ? 1 : size);
}

void* xmlMalloc_(std::size_t size) { return libxml.failsNow() ? nullptr : std::malloc(size); }
void* xmlRealloc_(void* block, std::size_t size) {
  return libxml.failsNow() ? nullptr : std::realloc(block, size);
}
char* xmlStrdup_(const char* text) { return libxml.failsNow() ? nullptr : ::strdup(text); }

}  // namespace

// Inlined, g++ would take the pairs of them for mismatched ones.
#define REPLACED __attribute__((noinline))

REPLACED void* operator new(std::size_t size) {
  if (void* block = allocate(size)) {
    return block;
  }
  throw std::bad_alloc();
}
REPLACED void* operator new[](std::size_t size) { return operator new(size); }
REPLACED void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return allocate(size);
}
REPLACED void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return allocate(size);
}
REPLACED void operator delete(void* block) noexcept { std::free(block); }
REPLACED void operator delete[](void* block) noexcept { std::free(block); }
REPLACED void operator delete(void* block, std::size_t) noexcept { std::free(block); }
REPLACED void operator delete[](void* block, std::size_t) noexcept { std::free(block); }
REPLACED void operator delete(void* block, const std::nothrow_t&) noexcept { std::free(block); }
REPLACED void operator delete[](void* block, const std::nothrow_t&) noexcept { std::free(block); }

#undef REPLACED

namespace tamzo::testing {
namespace {

// The documents of a chain stand with form feeds between them.
std::vector<std::string> splitAtFormFeeds(std::string all) {
  std::vector<std::string> parts;
  for (std::size_t end = all.find('\f'); end != std::string::npos; end = all.find('\f')) {
    parts.push_back(all.substr(0, end));
    all.erase(0, end + 1);
  }
  parts.push_back(all);
  return parts;
}

std::string seed(const std::string& name) {
  std::ifstream file(std::filesystem::path(TAMZO_FUZZ_SEEDS) / name, std::ios::binary);
  EXPECT_TRUE(file) << name;
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

std::string stackOf(const Injector& injector) {
  std::string text;
  char** symbols = backtrace_symbols(injector.stack.data(), injector.depth);
  for (int i = 0; symbols != nullptr && i < injector.depth; ++i) {
    text += std::string("  ") + symbols[i] + "\n";
  }
  std::free(symbols);
  return text;
}

/// Keeps what is written to standard error while it lives.
class StandardError {
 public:
  StandardError() : file_(std::tmpfile()), saved_(dup(STDERR_FILENO)) {
    std::fflush(stderr);
    dup2(fileno(file_), STDERR_FILENO);
    current = this;
    previous_ = std::set_terminate([] {
      // Shows which allocation it was, where it can be seen.
      cpp.isArmed = libxml.isArmed = false;
      current->restore();
      const Injector& injector = cpp.hasFailed ? cpp : libxml;
      std::fprintf(stderr, "the failure of allocation %ld ended the program:\n%s", injector.failing,
                   stackOf(injector).c_str());
      std::abort();
    });
  }
  StandardError(const StandardError&) = delete;
  StandardError& operator=(const StandardError&) = delete;
  ~StandardError() {
    std::set_terminate(previous_);
    restore();
    std::fclose(file_);
  }

  std::string take() {
    restore();
    std::string text;
    std::rewind(file_);
    for (int c = std::fgetc(file_); c != EOF; c = std::fgetc(file_)) {
      text += static_cast<char>(c);
    }
    return text;
  }

 private:
  void restore() {
    if (saved_ >= 0) {
      std::fflush(stderr);
      dup2(saved_, STDERR_FILENO);
      close(saved_);
      saved_ = -1;
    }
  }

  static inline StandardError* current = nullptr;

  std::FILE* file_;
  int saved_;
  std::terminate_handler previous_ = nullptr;
};

struct Case {
  const char* name;
  const char* seed;
  bool isLogged;
};

void PrintTo(const Case& each, std::ostream* out) { *out << each.name; }

class AllocationFailure : public ::testing::TestWithParam<Case> {
 protected:
  AllocationFailure() {
    documents_ = splitAtFormFeeds(seed(GetParam().seed));
    readUrlsWith([this](const Text&) {
      ++fetches_;
      hasReaderFailed_ = true;  // unless it comes to its end
      auto document = fetches_ < documents_.size()
                          ? std::optional<std::string>(documents_[fetches_])
                          : std::nullopt;
      hasReaderFailed_ = false;
      return document;
    });
    MacroHooks hooks;
    hooks.now = [] { return std::chrono::system_clock::time_point(); };
    hooks.random = [](std::uint32_t) { return std::uint32_t{7}; };
    fillMacrosWith(std::move(hooks));
    writeLogTo([](std::string_view) {});
    isTamzoDebugEnabled = GetParam().isLogged;
    response_ = Text(documents_[0]);
    // Once undisturbed, for the record to compare with and for what is set up at first use.
    const auto ad = TamzoVastAd::initWithVast(response_);
    whole_ = recordAsJson(*ad);
    wholeCode_ = ad->errorCode();
  }
  ~AllocationFailure() override {
    isTamzoDebugEnabled = false;
    writeLogTo({});
    fillMacrosWith({});
    readUrlsWith({});
  }

  /// One parse with `injector` armed. What came of it, where it is none of what it may be.
  std::string parseWith(Injector& injector) {
    fetches_ = 0;
    hasReaderFailed_ = false;
    std::shared_ptr<TamzoVastAd> ad;
    std::string escaped;
    injector.isArmed = true;
    try {
      ad = TamzoVastAd::initWithVast(response_);
    } catch (const std::exception& exception) {
      injector.isArmed = false;
      escaped = std::string("an exception escaped: ") + exception.what();
    }
    injector.isArmed = false;
    if (!escaped.empty() || ad == nullptr || ad->errorCode() == kException) {
      if (ad != nullptr) {
        static_cast<void>(recordAsJson(*ad));
      }
      return escaped;
    }
    // Where libxml2 has no memory for an entity's declaration or its text it reports nothing but a
    // document that is not well-formed. That is a defined error too, if not the fitting one.
    const bool declaresEntities = std::any_of(
        documents_.begin(), documents_.end(),
        [](const std::string& document) { return document.find("<!ENTITY") != std::string::npos; });
    const bool isEntityLost =
        &injector == &libxml && ad->errorCode() == kNotXml && declaresEntities;
    // A host's reader that has no memory has failed to read, as for any other reason.
    const bool isReadLost = hasReaderFailed_ && ad->errorCode() == kEmptyContent;
    if (isEntityLost || isReadLost) {
      return "";
    }
    if (ad->errorCode() != wholeCode_) {
      return "error " + std::to_string(ad->errorCode());
    }
    const std::string record = recordAsJson(*ad);
    return record == whole_ ? "" : "another record:\n" + record + "\ninstead of\n" + whole_;
  }

  /// Fails each allocation of a parse in turn.
  void failEach(Injector& injector, bool forGood) {
    StandardError output;
    std::string report;
    std::size_t wrong = 0;
    long failing = 1;
    for (;; ++failing) {
      injector = Injector();
      injector.failing = failing;
      injector.forGood = forGood;
      const std::string outcome = parseWith(injector);
      if (!injector.hasFailed) {
        EXPECT_EQ(outcome, "") << "with no failure at all";
        break;
      }
      if (!outcome.empty() && ++wrong <= kMostReported) {
        report += "allocation " + std::to_string(failing) + ": " + outcome + "\n" +
                  stackOf(injector) + "\n";
      }
    }
    const std::string written = output.take();
    EXPECT_EQ(wrong, 0U) << "of " << failing - 1 << " points\n" << report;
    EXPECT_EQ(written, "") << "libxml2 writes to standard error";
    EXPECT_GT(failing, 10) << "hardly anything was allocated: is the injector in place?";
    RecordProperty("points", std::to_string(failing - 1));
  }

 private:
  static constexpr std::size_t kMostReported = 5;

  std::vector<std::string> documents_;
  std::size_t fetches_ = 0;
  bool hasReaderFailed_ = false;
  Text response_;
  std::string whole_;
  int wholeCode_ = 0;
};

TEST_P(AllocationFailure, OfCpp) { failEach(cpp, false); }
TEST_P(AllocationFailure, OfCppForGood) { failEach(cpp, true); }
TEST_P(AllocationFailure, OfLibxml2) { failEach(libxml, false); }
TEST_P(AllocationFailure, OfLibxml2ForGood) { failEach(libxml, true); }

// Decoding and writing JSON, outside of a parse, which would turn the exception into an error code.
TEST(AllocationFailureOfJson, LeavesAsBadAlloc) {
  std::string json = R"([{"a":1,"b":"a text longer than a value holds itself","a":"\u00e9"})";
  for (int i = 0; i < 500; ++i) {
    json += ",[" + std::to_string(i) + ",1.5,\"x\"]";
  }
  const Text text(json + "]");
  const std::string whole = JsonValue::parse(text).dump();
  const auto ad = TamzoVastAd::initWithVast(seed("response/everything-v4.xml"));
  const std::string record = recordAsJson(*ad, JsonLayout::indented);
  const auto work = [&] {
    ad->setExtraActions(TamzoExtraActions::fromJson(text));
    return ad->extraActions().isList() && JsonValue::parse(text).dump() == whole &&
           recordAsJson(*ad, JsonLayout::indented).size() > record.size();
  };
  long failing = 1;
  for (bool isDone = false; !isDone; ++failing) {
    cpp = Injector();
    cpp.failing = failing;
    bool isThrown = false;
    cpp.isArmed = true;
    try {
      isDone = work();
    } catch (const std::bad_alloc&) {
      isThrown = true;
    }
    cpp.isArmed = false;
    ASSERT_EQ(isThrown, cpp.hasFailed) << "allocation " << failing << "\n" << stackOf(cpp);
    ASSERT_TRUE(isDone || isThrown) << "allocation " << failing;
  }
  EXPECT_GT(failing, 30);
}

TEST(AllocationFailureOfJson, ATextIsDecodedByWhoeverAsksNext) {
  const auto actions = TamzoExtraActions::fromJson(Text("[1]"));
  cpp = Injector();
  cpp.failing = 1;
  cpp.isArmed = true;
  EXPECT_THROW(actions.isNil(), std::bad_alloc);
  cpp.isArmed = false;
  EXPECT_TRUE(actions.isList());
}

TEST(AllocationFailureOfJson, NothingIsAllocatedToDestroyAValue) {
  auto value =
      std::make_unique<JsonValue>(JsonValue::parse(R"([[[{"a":[1,"a long text, not short"]}]]])"));
  cpp = Injector();
  cpp.isArmed = true;
  value.reset();
  cpp.isArmed = false;
  EXPECT_EQ(cpp.count, 0);
}

std::string nameOf(const ::testing::TestParamInfo<Case>& info) { return info.param.name; }

INSTANTIATE_TEST_SUITE_P(
    Responses, AllocationFailure,
    ::testing::Values(Case{"Everything2", "response/everything-v2.xml", false},
                      Case{"Everything3", "response/everything-v3.xml", false},
                      Case{"Everything4", "response/everything-v4.xml", false},
                      Case{"Everything4Logged", "response/everything-v4.xml", true},
                      Case{"Chain", "chain/wrapper-inline", false},
                      Case{"VpaidChain", "chain/vpaid-behind-wrappers", false},
                      Case{"VpaidChainWithEntities", "chain/vpaid-with-entities", false},
                      Case{"VpaidChainWithNamespaces", "chain/vpaid-with-namespaces", false},
                      Case{"Entities", "response/entities.xml", false},
                      Case{"OddNames", "response/odd-names.xml", false},
                      Case{"NotXml", "response/not-xml", false}),
    nameOf);

// The merge alone, where nothing turns the exception into an error code.
class MergeAllocationFailure : public ::testing::Test {
 protected:
  MergeAllocationFailure() {
    for (const std::string& text : splitAtFormFeeds(seed("chain/vpaid-with-namespaces"))) {
      documents_.push_back(DDXMLDocument::initWithXMLString(Text(text), 0));
    }
    for (std::size_t i = 0; i + 1 < documents_.size(); ++i) {
      auto link =
          TamzoVpaidXML::initWithVpaidWrapperNode(documents_[i]->nodesForXPath("/VAST/Ad/Wrapper"));
      link->setOuterWrapper(chain_);
      chain_ = std::move(link);
    }
    inlines_ = documents_.back()->nodesForXPath("/VAST/Ad/InLine");
    whole_ = chain_->createInlineVast(inlines_, id_);
  }

  void failEach(Injector& injector, bool forGood) {
    StandardError output;
    std::string wrong;
    long failing = 1;
    do {
      injector = Injector();
      injector.failing = failing++;
      injector.forGood = forGood;
      wrong += mergeWith(injector);
    } while (injector.hasFailed);
    EXPECT_EQ(output.take(), "");
    EXPECT_EQ(wrong, "");
    EXPECT_GT(failing, 30) << "hardly anything was allocated: is the injector in place?";
  }

 private:
  std::string mergeWith(Injector& injector) {
    Text merged;
    injector.isArmed = true;
    try {
      merged = chain_->createInlineVast(inlines_, id_);
    } catch (const std::bad_alloc&) {
      injector.isArmed = false;
      return "";
    }
    injector.isArmed = false;
    return merged == whole_ ? ""
                            : "another document:\n" + std::string(merged.view()) + "\n" +
                                  stackOf(injector) + "\n";
  }

  std::vector<std::shared_ptr<DDXMLDocument>> documents_;
  std::shared_ptr<TamzoVpaidXML> chain_;
  NodeList inlines_;
  Text id_ = "an id longer than what a string holds without allocating";
  Text whole_;
};

TEST_F(MergeAllocationFailure, OfCpp) { failEach(cpp, false); }
TEST_F(MergeAllocationFailure, OfCppForGood) { failEach(cpp, true); }
TEST_F(MergeAllocationFailure, OfLibxml2) { failEach(libxml, false); }
TEST_F(MergeAllocationFailure, OfLibxml2ForGood) { failEach(libxml, true); }

}  // namespace
}  // namespace tamzo::testing

int main(int argc, char** argv) {
  // The stack's unwinder sets itself up at first use.
  std::array<void*, 4> stack{};
  backtrace(stack.data(), static_cast<int>(stack.size()));
  if (xmlMemSetup(std::free, xmlMalloc_, xmlRealloc_, xmlStrdup_) != 0) {
    std::fprintf(stderr, "libxml2 does not take other allocation functions\n");
    return 1;
  }
  ::testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
