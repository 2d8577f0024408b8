#include "tools/FolderListing.h"

#include <linux/capability.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>

#include "tests/support/CommandFixture.h"

namespace tamzo::testing {
namespace {

using command::listXmlFiles;

class FolderListingTest : public CommandTest {
 protected:
  // "path" for a file, "path: problem" for what is said; below the folder of the test.
  std::vector<std::string> listed(const std::string& folder, bool isRecursive) const {
    std::vector<std::string> found;
    for (const auto& [path, problem] : listXmlFiles(this->path(folder), isRecursive)) {
      const std::string name = path.substr(folder_.string().size() + 1);
      found.push_back(problem.empty() ? name : name + ": " + problem);
    }
    return found;
  }
};

using Names = std::vector<std::string>;

TEST_F(FolderListingTest, SubFoldersAreEnteredWhenAskedFor) {
  fs::create_directories(path("in/b/c"));
  fs::create_directories(path("in/a.xml"));
  for (const char* name : {"in/z.xml", "in/b/y.xml", "in/b/c/x.xml", "in/b.xml", "in/a.xml/w.xml",
                           "in/b/c/no.txt", "in/b/c/.xml"}) {
    file(name, "");
  }
  EXPECT_EQ(listed("in", false), (Names{"in/b.xml", "in/z.xml"}));
  EXPECT_EQ(listed("in", true),
            (Names{"in/a.xml/w.xml", "in/b.xml", "in/b/c/x.xml", "in/b/y.xml", "in/z.xml"}));
}

TEST_F(FolderListingTest, LinksLeadNowhereBelowTheFirst) {
  fs::create_directories(path("in/sub"));
  file("in/sub/a.xml", "");
  fs::create_directory_symlink(path("in"), path("in/sub/up"));
  fs::create_directory_symlink(path("in"), path("link"));
  fs::create_symlink(path("gone"), path("in/gone.xml"));
  EXPECT_EQ(listed("in", true), (Names{"in/gone.xml", "in/sub/a.xml"}));
  EXPECT_EQ(listed("link", true), (Names{"link/gone.xml", "link/sub/a.xml"}));
}

TEST_F(FolderListingTest, AFolderWithoutFilesSaysSo) {
  fs::create_directories(path("empty"));
  fs::create_directories(path("in/b"));
  fs::create_directories(path("in/a"));
  for (int i = 0; i < 7; ++i) {
    fs::create_directories(path("many/" + std::to_string(i)));
  }
  EXPECT_EQ(listed("empty", false), (Names{"empty: holds no *.xml file"}));
  EXPECT_EQ(listed("in", false),
            (Names{"in: holds no *.xml file; sub-folders not entered (-r enters them): a, b"}));
  EXPECT_EQ(listed("in", true), (Names{"in: holds no *.xml file, nor do its sub-folders"}));
  EXPECT_EQ(listed("many", false),
            (Names{"many: holds no *.xml file; sub-folders not entered (-r enters them): 0, 1, 2, "
                   "3, 4 and 2 more"}));
}

// Root lists every folder, but not while this lives: a root without that right.
class OrdinaryUser {
 public:
  OrdinaryUser() {
    EXPECT_EQ(syscall(SYS_capget, &header_, before_.data()), 0);
    auto without = before_;
    without[0].effective &= ~((1U << CAP_DAC_OVERRIDE) | (1U << CAP_DAC_READ_SEARCH));
    EXPECT_EQ(syscall(SYS_capset, &header_, without.data()), 0);
  }
  OrdinaryUser(const OrdinaryUser&) = delete;
  OrdinaryUser& operator=(const OrdinaryUser&) = delete;
  ~OrdinaryUser() { EXPECT_EQ(syscall(SYS_capset, &header_, before_.data()), 0); }

 private:
  __user_cap_header_struct header_{_LINUX_CAPABILITY_VERSION_3, 0};
  std::array<__user_cap_data_struct, 2> before_{};
};

TEST_F(FolderListingTest, AFolderThatCannotBeListedStandsInItsPlace) {
  fs::create_directories(path("in/b"));
  file("in/a.xml", "");
  file("in/c.xml", "");
  fs::permissions(path("in/b"), fs::perms::none);
  {
    const OrdinaryUser user;
    EXPECT_EQ(listed("in", true), (Names{"in/a.xml", "in/b: Permission denied", "in/c.xml"}));
  }
  fs::permissions(path("in/b"), fs::perms::owner_all);
}

}  // namespace
}  // namespace tamzo::testing
