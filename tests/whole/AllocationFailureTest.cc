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
#include <functional>
#include <memory>
#include <new>
#include <sstream>
#include <string>
#include <vector>

#include "tamzo/base/JsonValue.h"
#include "tamzo/base/Text.h"
#include "tamzo/net/TamzoUrlReader.h"
#include "tamzo/sdk/TamzoLogger.h"
#include "tamzo/sdk/TamzoMacroReplacementUtil.h"
#include "tamzo/sdk/TamzoState.h"
#include "tamzo/sdk/TamzoVastAdHelper.h"
#include "tamzo/sdk/TamzoVpaidXML.h"
#include "tamzo/vast/RecordJson.h"
#include "tamzo/vast/TamzoVastAd.h"
#include "tamzo/xml/DDXMLDocument.h"
#include "tests/support/HostHooks.h"
#include "tests/support/ReplacedNew.h"

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

void* xmlMalloc_(std::size_t size) { return libxml.failsNow() ? nullptr : std::malloc(size); }
void* xmlRealloc_(void* block, std::size_t size) {
  return libxml.failsNow() ? nullptr : std::realloc(block, size);
}
char* xmlStrdup_(const char* text) { return libxml.failsNow() ? nullptr : ::strdup(text); }

}  // namespace

namespace tamzo::testing {

void* allocate(std::size_t size) noexcept {
  return cpp.failsNow() ? nullptr : std::malloc(size == 0 ? 1 : size);
}

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

// ---- Every other public function ------------------------------------------------------------

/// A document with something for everything that reads one.
const char* const kAllKinds =
    "<!DOCTYPE r [<!ENTITY e 'an entity that is longer than a string holds in itself'>]>"
    "<r xmlns:p='urn:p'><a i='1'/><a/><a/><a/><a/><a/>"
    "<p:name p:attribute='x'> &e; and <![CDATA[more]]> than that </p:name>"
    "<Companion id='c' width='300' height='250'><StaticResource creativeType='image/png'> u "
    "</StaticResource><IFrameResource> f </IFrameResource><HTMLResource>h</HTMLResource>"
    "<CompanionClickThrough> t </CompanionClickThrough><CompanionClickTracking> k "
    "</CompanionClickTracking><TrackingEvents><Tracking event='creativeView'> v </Tracking>"
    "</TrackingEvents></Companion>"
    "<Verification vendor='v'><JavaScriptResource apiFramework='omid'> j </JavaScriptResource>"
    "<ExecutableResource type='t'> x </ExecutableResource><VerificationParameters>p"
    "</VerificationParameters><TrackingEvents><Tracking event='e' offset='00:00:07'> w </Tracking>"
    "</TrackingEvents></Verification>"
    "<MediaFile type='video/mp4' width='1'> m </MediaFile><Hotspot> h </Hotspot>"
    "<Icons><Icon><IconClicks><IconClickTracking>k</IconClickTracking><IconClickThrough>t"
    "</IconClickThrough></IconClicks></Icon></Icons></r>";

/// What a function gives, as a text to compare with; it may throw std::bad_alloc.
struct Work {
  const char* name;
  std::function<std::string(const DDXMLDocument& document)> run;
};

void PrintTo(const Work& work, std::ostream* out) { *out << work.name; }

void addTo(std::string& all, const Text& text) {
  all += text.isNil() ? "nil" : text.view();
  all += '|';
}

std::string companionsOf(const DDXMLDocument& document) {
  const auto ad = TamzoCompanionAd::initWithNode(document.nodesForXPath("/r/Companion"));
  const TamzoCompanion* best = ad->bestForSlot(1000, 1000);
  std::string all;
  addTo(all, best->id());
  addTo(all, best->altText());
  addTo(all, best->clickThrough());
  addTo(all, best->staticResources().at(0).url);
  addTo(all, best->iframeResources().at(0));
  addTo(all, best->htmlResources().at(0));
  addTo(all, best->clickTracking().at(0));
  addTo(all, best->trackers().find("creativeView")->at(0)->url());
  const TamzoCompanionAd copy = *ad;
  return all + std::to_string(copy.companions().size());
}

std::string providerOf(const DDXMLDocument& document) {
  const auto provider = TamzoMeasurementProviderModel::init()->createMeasurementProviderFromXML(
      document.nodesForXPath("/r/Verification"));
  std::string all;
  addTo(all, provider->vendor());
  addTo(all, provider->javaScriptResources().at(0).url);
  addTo(all, provider->executableResources().at(0).type);
  addTo(all, provider->verificationParameters());
  addTo(all, provider->trackers().find("e")->at(0)->offset());
  return all;
}

std::string componentsOf(const DDXMLDocument& document) {
  const DDXMLElement root = document.rootElement();
  std::string all;
  addTo(all, TamzoMediaFile::initWithNode(root.firstNodeForXPath("MediaFile"))->url());
  addTo(all, TamzoHotspot360Info::initWithNode(root.firstNodeForXPath("Hotspot"))->node().name());
  addTo(all, TamzoCard::initWithNode(root)->node().name());
  addTo(all, TamzoAdDuration::initFromString("00:00:30")->text());
  addTo(all, TamzoVastAdHelper::getFirstElement(root, "Icons.Icon.IconClicks").XMLString());
  TamzoWebSettings::init()->setCanZoom(true);
  addTo(all, TamzoTrackerEvent::init()->url());
  return all;
}

std::string treeOf(const DDXMLDocument& document) {
  const DDXMLElement root = document.rootElement();
  constexpr std::array<std::string_view, 2> kNames{"Icons", "a"};
  std::string all;
  for (const DDXMLElement& child : root.firstChildren(kNames)) {
    addTo(all, child.XMLString());
  }
  for (DDXMLElement child = root.firstChildElement(); child; child = child.nextSiblingElement()) {
    addTo(all, child.name());
    addTo(all, child.stringValue());
    addTo(all, child.attributeForName("p:attribute").name());
    addTo(all, child.attributeValue("i"));
  }
  const NodeList found = root.nodesForXPath("a");
  NodeList copy;
  copy = found;
  return all + std::to_string(found.size() + copy.size());
}

std::string queriesOf(const DDXMLDocument& document) {
  const DDXMLElement root = document.rootElement();
  XmlError error;
  std::string all = root.nodesForXPath("a[", &error).isNil() ? error.message : "?";
  all += std::to_string(document.nodesForXPath("//a[position() > 2]", &error).size());
  all += error.message;
  all += std::to_string(root.nodesForXPath("*/@*").size());
  addTo(all, root.firstNodeForXPath("Icons/Icon[1]").XMLString());
  addTo(all, root.XMLString());
  return all;
}

std::string parsedOf(const DDXMLDocument&) {
  const Text text("<r><a i='1'>one</a><p:b xmlns:p='urn:p'>two</p:b><![CDATA[three]]></r>");
  return std::string(DDXMLDocument::initWithXMLString(text, 0)->rootElement().XMLString().view());
}

std::string textsOf(const DDXMLDocument&) {
  std::string all;
  const Text made("a text that is longer than a string holds in itself");
  addTo(all, made.part(made.view().substr(2)));
  addTo(all, made.part("a part of another text, which is copied"));
  MutableText growing = MutableText::create();
  growing.appendString(made);
  growing.appendString(growing.view());
  addTo(all, growing.asText());
  addTo(all, growing.asText().part(growing.view().substr(1)));
  addTo(all, trackerOffset("596523:14:07"));
  addTo(all, TamzoUrlReader::urlFromText("http://a.example/with blanks and \xC3\xA4 in it"));
  addTo(all, TamzoVastAd::replaceWithPattern("xmlns", Text("<VAST xmlns='urn:v' version='3.0'/>")));
  return all;
}

std::string mapsOf(const DDXMLDocument&) {
  TrackerMap map;
  for (int i = 0; i < 100; ++i) {
    map.listFor(Text("name" + std::to_string(i)))->push_back(makeTracker("u"));
  }
  TrackerMap copy;
  copy.listFor("other");
  copy = map;
  return std::to_string(copy.size()) + (copy.find("name99") == map.find("name99") ? "" : "?");
}

std::string loggedOf(const DDXMLDocument&) {
  TamzoLogger::debugLine("%@ and %ld", {Text("a text of more than a few characters"), 7});
  static_cast<void>(TamzoLogger::callStackSymbols());
  return TamzoLogger::format("%@, %ld", {Text("a text of more than a few characters"), 7});
}

std::string stateOf(const DDXMLDocument&) {
  TamzoHost host = *TamzoHost::get();
  TamzoHost::set(host);
  TamzoState::setTamzoWebSettings(TamzoWebSettings::init());
  std::string all;
  addTo(all, TamzoState::getBlockedAdCategories());
  addTo(all, TamzoState::getSessionId());
  addTo(all, TamzoMacroReplacementUtil::replaceVASTMacros("[SERVERSIDE] [CACHEBUSTING] [OTHER]",
                                                          TamzoVastAd()));
  return all;
}

std::string recordOf(const DDXMLDocument& document) {
  TamzoVastAd ad;
  const NodeList nodes = NodeList::of(document.rootElement());
  ad.updateImpressions(nodes);
  ad.updateTrackers(nodes);
  ad.setExtraActions(TamzoExtraActions::makeEmptyList());
  ad.updateIcons(nodes);
  ad.checkProgramExist("a program", document.rootElement());
  ad.updateReplay("https://track.example/replay");
  ad.updateCategory(nodes);
  ad.updateAdditionalWebSetting(nodes);
  ad.updateCompanion(document.nodesForXPath("/r/Companion"));
  ad.updateOMVerificationResources(nodes, 4.1F);
  ad.setMediaFiles(makeList<std::shared_ptr<TamzoMediaFile>>());
  ad.addOrSetMediaFile(document.rootElement(), 0);
  return recordAsJson(ad);
}

class WorkWithoutMemory : public ::testing::TestWithParam<Work> {
 protected:
  WorkWithoutMemory() : document_(DDXMLDocument::initWithXMLString(kAllKinds, 0)) {
    MacroHooks hooks;
    hooks.random = [](std::uint32_t) { return std::uint32_t{7}; };
    fillMacrosWith(std::move(hooks));
    writeLogTo([](std::string_view) {});
    whole_ = GetParam().run(*document_);
  }
  ~WorkWithoutMemory() override { TamzoHost::set({}); }

  // Either memory's exception comes out, or what comes out always.
  void failEach(Injector& injector, bool forGood) {
    long failing = 1;
    do {
      injector = Injector();
      injector.failing = failing;
      injector.forGood = forGood;
      std::string result;
      bool isThrown = false;
      injector.isArmed = true;
      try {
        result = GetParam().run(*document_);
      } catch (const std::bad_alloc&) {
        isThrown = true;
      }
      injector.isArmed = false;
      ASSERT_TRUE(isThrown == injector.hasFailed || &injector == &libxml)
          << "allocation " << failing << "\n"
          << stackOf(injector);
      ASSERT_TRUE(isThrown || result == whole_) << result << "\ninstead of\n" << whole_;
      ++failing;
    } while (injector.hasFailed);
    EXPECT_TRUE(&injector == &libxml || failing > 2) << "is the injector in place?";
    EXPECT_EQ(GetParam().run(*document_), whole_) << "what was shared is what it was";
  }

 private:
  std::shared_ptr<DDXMLDocument> document_;
  std::string whole_;
};

TEST_P(WorkWithoutMemory, OfCpp) { failEach(cpp, false); }
TEST_P(WorkWithoutMemory, OfCppForGood) { failEach(cpp, true); }

// Not the queries: libxml2's evaluator of XPath frees twice what it has no memory to keep.
class WorkWithoutLibxml2sMemory : public WorkWithoutMemory {};
TEST_P(WorkWithoutLibxml2sMemory, OnceOnly) { failEach(libxml, false); }
TEST_P(WorkWithoutLibxml2sMemory, ForGood) { failEach(libxml, true); }

std::string nameOfWork(const ::testing::TestParamInfo<Work>& work) { return work.param.name; }

INSTANTIATE_TEST_SUITE_P(PublicFunctions, WorkWithoutMemory,
                         ::testing::Values(Work{"Companions", companionsOf},
                                           Work{"Providers", providerOf},
                                           Work{"Components", componentsOf},
                                           Work{"Parse", parsedOf}, Work{"Tree", treeOf},
                                           Work{"Queries", queriesOf}, Work{"Texts", textsOf},
                                           Work{"Maps", mapsOf}, Work{"Log", loggedOf},
                                           Work{"State", stateOf}, Work{"Record", recordOf}),
                         nameOfWork);

INSTANTIATE_TEST_SUITE_P(PublicFunctions, WorkWithoutLibxml2sMemory,
                         ::testing::Values(Work{"Parse", parsedOf}, Work{"Tree", treeOf},
                                           Work{"Record", recordOf}),
                         nameOfWork);

TEST(MapWithoutMemory, IsWhatItWas) {
  TrackerMap many;
  for (int i = 0; i < 100; ++i) {
    many.listFor(Text("name" + std::to_string(i)));
  }
  bool isDone = false;
  for (long failing = 1; !isDone; ++failing) {
    TrackerMap map;
    map.listFor("before");
    cpp = Injector();
    cpp.failing = failing;
    cpp.isArmed = true;
    try {
      map = many;
      map.listFor("after, with a name that is long");
      isDone = true;
    } catch (const std::bad_alloc&) {
      cpp.isArmed = false;
    }
    cpp.isArmed = false;
    const bool isOld = map.size() == 1 && map.find("before") != nullptr;
    const bool isCopied = map.size() == 100 && map.find("name0") == many.find("name0") &&
                          map.find("name99") == many.find("name99");
    ASSERT_TRUE(isDone || isOld || isCopied) << "allocation " << failing;
    for (const TrackerMap::Entry& entry : map) {
      ASSERT_NE(entry.events, nullptr) << entry.name;
    }
  }
}

// What says that no std::exception comes out.
TEST(RecordWithoutMemory, ThrowsNothingFromWhatAHostCalls) {
  useTemplateFrom([] { return Text::literal("{{VAST_TAG}} {{MOAT_DATA}}"); });
  const auto document = DDXMLDocument::initWithXMLString(kAllKinds, 0);
  const DDXMLElement node = document->rootElement();
  const Text before = Text::literal("before");
  for (const bool forGood : {false, true}) {
    bool hasFailed = true;
    for (long failing = 1; hasFailed; ++failing) {
      TamzoVastAd ad;
      ad.setVastTagURI(Text::literal("a tag that is longer than what a string holds"));
      ad.setVPaidHTML(before);
      ad.setIconMap(std::make_shared<IconMap>());
      cpp = Injector();
      cpp.failing = failing;
      cpp.forGood = forGood;
      cpp.isArmed = true;
      const Text page = ad.getVideoWAPView();
      cpp.isArmed = false;
      hasFailed = cpp.hasFailed;
      EXPECT_EQ(page, hasFailed ? "" : "a tag that is longer than what a string holds {}");
      EXPECT_EQ(ad.vPaidHTML(), hasFailed ? before : page);

      cpp = Injector();
      cpp.failing = failing;
      cpp.forGood = forGood;
      cpp.isArmed = true;
      ad.getImageAd(node);
      static_cast<void>(ad.getMostSuitableCompanion());
      cpp.isArmed = false;
      hasFailed = hasFailed || cpp.hasFailed;
      EXPECT_EQ(ad.iconMap() == nullptr, cpp.hasFailed);
      EXPECT_TRUE(ad.iconMap() == nullptr || ad.iconMap()->size() == 2);

      cpp = Injector();
      cpp.failing = failing;
      cpp.forGood = forGood;
      cpp.isArmed = true;
      ad.parseVast(before);
      cpp.isArmed = false;
      hasFailed = hasFailed || cpp.hasFailed;
      EXPECT_EQ(ad.errorCode(), cpp.hasFailed ? kException : kNotXml);
    }
  }
  useTemplateFrom({});
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
