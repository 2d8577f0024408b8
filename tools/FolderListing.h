#pragma once

#include <string>
#include <vector>

namespace tamzo::command {

/// A file to be read, or what is to be said in its place.
struct ListedPath {
  std::string path;
  std::string problem;  ///< "" for a file
};

/// The *.xml files of a folder, with those of its sub-folders where `isRecursive`, sorted by path.
/// Links to folders are not followed below the first. A folder that cannot be listed stands in its
/// place with the reason, and so does `folder` where there is no file at all.
std::vector<ListedPath> listXmlFiles(const std::string& folder, bool isRecursive);

}  // namespace tamzo::command
