#include "xml/QuietLibrary.h"

#include <gtest/gtest.h>

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

}  // namespace
}  // namespace tamzo::testing
