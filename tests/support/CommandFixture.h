#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/Paths.h"

namespace tamzo::testing {

namespace fs = std::filesystem;
using nlohmann::ordered_json;
using Arguments = std::vector<std::string>;

// How a run of the command ended.
struct Result {
  int status;
  std::string out;
  std::string err;
};

// Runs the command as a person or a script does, in a folder of its own.
class CommandTest : public ::testing::Test {
 protected:
  CommandTest() {
    std::string name = (fs::temp_directory_path() / "tamzo-vast-XXXXXX").string();
    folder_ = mkdtemp(name.data());
  }
  ~CommandTest() override {
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
  }

  std::string path(const std::string& name) const { return (folder_ / name).string(); }

  std::string file(const std::string& name, const std::string& content) const {
    std::ofstream(path(name), std::ios::binary) << content;
    return path(name);
  }

  static std::string contentOf(const std::string& path) {
    std::ostringstream content;
    content << std::ifstream(path, std::ios::binary).rdbuf();
    return content.str();
  }

  Result run(const Arguments& arguments, const std::string& input = "") const {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    const std::string in = file("stdin", input);
    posix_spawn_file_actions_addopen(&actions, 0, in.c_str(), O_RDONLY, 0);
    const int kWrite = O_WRONLY | O_CREAT | O_TRUNC;
    posix_spawn_file_actions_addopen(&actions, 1, path("stdout").c_str(), kWrite, 0600);
    posix_spawn_file_actions_addopen(&actions, 2, path("stderr").c_str(), kWrite, 0600);
    Arguments all = arguments;
    all.insert(all.begin(), kCommand);
    std::vector<char*> pointers;
    for (std::string& argument : all) {
      pointers.push_back(argument.data());
    }
    pointers.push_back(nullptr);
    pid_t child = 0;
    const int failed = posix_spawn(&child, kCommand, &actions, nullptr, pointers.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    int status = 0;
    if (failed != 0 || waitpid(child, &status, 0) != child || !WIFEXITED(status)) {
      return {-1, "", "the command did not run, or did not exit"};
    }
    return {WEXITSTATUS(status), contentOf(path("stdout")), contentOf(path("stderr"))};
  }

  ordered_json record(Arguments arguments, const std::string& input = "") const {
    arguments.insert(arguments.begin() + 1, {"--format", "json"});
    return ordered_json::parse(run(arguments, input).out, nullptr, false);
  }

  fs::path folder_;
};

// A playable ad; `more` goes into its InLine element.
inline std::string ad(const std::string& id, const std::string& more = "") {
  return "<VAST version='4.0'><Ad id='" + id + "'><InLine>" + more +
         "<Creatives><Creative><Linear><MediaFiles><MediaFile type='video/mp4'>u</MediaFile>"
         "</MediaFiles></Linear></Creative></Creatives></InLine></Ad></VAST>";
}

inline std::string requestLine(const ordered_json& id, const std::string& vast) {
  return ordered_json({{"id", id}, {"vast", vast}}).dump() + "\n";
}

inline std::vector<ordered_json> jsonLines(const std::string& text) {
  std::vector<ordered_json> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) {
    lines.push_back(ordered_json::parse(line, nullptr, false));
  }
  return lines;
}

}  // namespace tamzo::testing
