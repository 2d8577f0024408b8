#include "xml/QuietLibrary.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cstdlib>
#include <new>
#include <thread>

#include "tests/support/Sanitized.h"
#include "xml/XmlParser.h"

namespace tamzo::testing {
namespace {

// As libxml2 reports something.
void report() { xmlGenericError(xmlGenericErrorContext, "something"); }

void count(void* counter, const char*, ...) { ++*static_cast<int*>(counter); }  // NOLINT

TEST(QuietLibraryTest, NothingIsReportedWhileItLivesAndEverythingAfter) {
  int reports = 0;
  xmlSetGenericErrorFunc(&reports, count);
  report();
  EXPECT_EQ(reports, 1);
  {
    const QuietLibrary quiet;
    report();
    {
      const QuietLibrary within;
      report();
    }
    report();
    EXPECT_EQ(reports, 1) << "quiet until the outermost goes";
  }
  report();
  EXPECT_EQ(reports, 2);
  xmlSetGenericErrorFunc(nullptr, nullptr);
}

#ifndef TAMZO_SANITIZED  // which takes the memory for itself
void takeAllMemory() {
  for (std::size_t size = std::size_t{1} << 24U; size >= 16; size /= 2) {
    while (void* volatile block = std::malloc(size)) {
      static_cast<void>(block);
    }
  }
}

[[noreturn]] void parseOnAThreadWithoutMemory() {
  const rlimit limit{std::size_t{256} << 20U, std::size_t{256} << 20U};
  setrlimit(RLIMIT_AS, &limit);
  const Text text = Text::literal("<a/>");
  std::thread([&text] {
    XmlParser parser;
    takeAllMemory();
    try {
      static_cast<void>(parser.parse(text));
    } catch (const std::bad_alloc&) {
      _exit(0);
    }
    _exit(1);
  }).join();
  _exit(2);
}

TEST(QuietLibraryTest, AThreadThatBeginsWithoutMemoryIsToldSo) {
  // The first thread to call libxml2 needs no memory of its own.
  EXPECT_NE(XmlParser().parse("<a/>"), nullptr);
  EXPECT_EXIT(parseOnAThreadWithoutMemory(), ::testing::ExitedWithCode(0), "");
}
#endif

}  // namespace
}  // namespace tamzo::testing
