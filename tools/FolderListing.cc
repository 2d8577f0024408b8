#include "tools/FolderListing.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace tamzo::command {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kMostNamed = 5;

class Listing {
 public:
  explicit Listing(bool isRecursive) : isRecursive_(isRecursive) {}

  std::vector<ListedPath> of(const std::string& folder) {
    std::vector<std::string> folders{folder};
    while (!folders.empty()) {
      const std::string next = std::move(folders.back());
      folders.pop_back();
      list(next, folders);
    }
    if (found_.empty()) {
      found_.push_back({folder, whyNothing()});
    }
    std::sort(found_.begin(), found_.end(),
              [](const ListedPath& a, const ListedPath& b) { return a.path < b.path; });
    return std::move(found_);
  }

 private:
  void list(const std::string& folder, std::vector<std::string>& toList) {
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
      note(*entry, toList);
    }
    if (error) {
      found_.push_back({folder, error.message()});
    }
  }

  void note(const fs::directory_entry& entry, std::vector<std::string>& toList) {
    std::error_code ignored;
    if (!entry.is_directory(ignored)) {
      if (entry.path().extension() == ".xml") {
        found_.push_back({entry.path().string(), ""});
      }
    } else if (!isRecursive_) {
      passedOver_.push_back(entry.path().filename().string());
    } else if (!entry.is_symlink(ignored)) {  // a link may lead back up
      toList.push_back(entry.path().string());
    }
  }

  std::string whyNothing() {
    std::string why =
        isRecursive_ ? "holds no *.xml file, nor do its sub-folders" : "holds no *.xml file";
    if (passedOver_.empty()) {
      return why;
    }
    std::sort(passedOver_.begin(), passedOver_.end());
    const std::size_t named = std::min(passedOver_.size(), kMostNamed);
    why += "; sub-folders not entered (-r enters them): ";
    why += fmt::format("{}",
                       fmt::join(passedOver_.begin(),
                                 passedOver_.begin() + static_cast<std::ptrdiff_t>(named), ", "));
    if (named < passedOver_.size()) {
      why += fmt::format(" and {} more", passedOver_.size() - named);
    }
    return why;
  }

  bool isRecursive_;
  std::vector<ListedPath> found_;
  std::vector<std::string> passedOver_;
};

}  // namespace

std::vector<ListedPath> listXmlFiles(const std::string& folder, bool isRecursive) {
  return Listing(isRecursive).of(folder);
}

}  // namespace tamzo::command
