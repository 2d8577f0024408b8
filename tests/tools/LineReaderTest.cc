#include "tools/LineReader.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "tools/CommandError.h"

namespace tamzo::testing {
namespace {

using command::LineReader;
using Lines = std::vector<std::string>;

// What next() gives; nothing at the end.
std::optional<std::string> textOf(LineReader& reader) {
  const auto line = reader.next();
  return line ? std::optional(std::string(line->text)) : std::nullopt;
}

class LineReaderTest : public ::testing::Test {
 protected:
  LineReaderTest() { EXPECT_EQ(pipe(ends_.data()), 0); }
  ~LineReaderTest() override {
    close(ends_[0]);
    closeInput();
  }

  void closeInput() {
    if (ends_[1] != -1) {
      close(std::exchange(ends_[1], -1));
    }
  }

  void write(const std::string& text) const {
    EXPECT_EQ(::write(ends_[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
  }

  int input() const { return ends_[0]; }

 private:
  std::array<int, 2> ends_{};
};

TEST_F(LineReaderTest, LinesComeWithoutTheirBreaks) {
  const struct {
    std::string text;
    Lines lines;
  } rows[] = {
      {"", {}},
      {"\n", {""}},
      {"a", {"a"}},
      {"a\n", {"a"}},
      {"a\n\nb", {"a", "", "b"}},
      {"a\r\nb\r", {"a\r", "b\r"}},
      {std::string("a\0b\n\0", 5), {std::string("a\0b", 3), std::string("\0", 1)}},
  };
  for (const auto& row : rows) {
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe(ends.data()), 0);
    ASSERT_EQ(::write(ends[1], row.text.data(), row.text.size()),
              static_cast<ssize_t>(row.text.size()));
    close(ends[1]);
    LineReader reader(ends[0]);
    Lines lines;
    while (auto line = reader.next()) {
      EXPECT_TRUE(line->isWhole);
      lines.emplace_back(line->text);
    }
    EXPECT_TRUE(reader.isReady()) << "to say that there is nothing more";
    EXPECT_EQ(lines, row.lines) << row.text;
    close(ends[0]);
  }
}

TEST_F(LineReaderTest, ALineIsThereAsSoonAsItHasCome) {
  LineReader reader(input());
  for (const char* line : {"one", "two", "three"}) {
    write(std::string(line) + "\nrest of ");
    EXPECT_EQ(textOf(reader), line == std::string("one") ? line : std::string("rest of ") + line);
  }
  closeInput();
  EXPECT_EQ(textOf(reader), "rest of ");
  EXPECT_EQ(textOf(reader), std::nullopt);
}

TEST_F(LineReaderTest, LinesMayBeLongerThanABlock) {
  Lines expected;
  for (const std::size_t size : {5'000'000U, 0U, 65'535U, 65'536U, 65'537U, 200'000U}) {
    expected.emplace_back(size, static_cast<char>('a' + expected.size()));
  }
  std::thread writer([this, &expected] {
    for (const std::string& line : expected) {
      for (std::size_t at = 0; at < line.size(); at += 30'000) {
        write(line.substr(at, 30'000));
      }
      write("\n");
    }
    closeInput();
  });
  LineReader reader(input());
  for (const std::string& line : expected) {
    EXPECT_TRUE(textOf(reader) == line) << line.size();
  }
  EXPECT_EQ(textOf(reader), std::nullopt);
  writer.join();
}

TEST_F(LineReaderTest, AnotherThreadEndsTheWait) {
  LineReader reader(input());
  write("a\nhalf a line");
  EXPECT_EQ(textOf(reader), "a");
  std::thread stopper([&reader] { reader.stop(); });
  EXPECT_EQ(textOf(reader), std::nullopt);
  stopper.join();
  write("\nmore\n");
  EXPECT_EQ(textOf(reader), std::nullopt) << "once stopped, always stopped";
}

TEST_F(LineReaderTest, ItIsReadyWhenThereIsAWholeLine) {
  LineReader reader(input());
  EXPECT_FALSE(reader.isReady());
  write("half");
  EXPECT_FALSE(reader.isReady());
  write(" a line\nand ");
  EXPECT_TRUE(reader.isReady());
  EXPECT_EQ(textOf(reader), "half a line");
  EXPECT_FALSE(reader.isReady());
  closeInput();
  EXPECT_TRUE(reader.isReady());
  EXPECT_EQ(textOf(reader), "and ");
  EXPECT_TRUE(reader.isReady());
  EXPECT_EQ(textOf(reader), std::nullopt);
}

TEST_F(LineReaderTest, LookingAheadDoesNotGoOnForEver) {
  LineReader reader(input());
  const std::string line(2'000'000, 'x');
  std::thread writer([this, &line] {
    write(line);
    closeInput();
  });
  for (int i = 0; i < 100; ++i) {
    EXPECT_FALSE(reader.isReady());
  }
  EXPECT_EQ(textOf(reader), line);
  writer.join();
}

TEST_F(LineReaderTest, WhatCannotBeReadIsAnError) {
  const int folder = open("/", O_RDONLY | O_CLOEXEC);
  ASSERT_NE(folder, -1);
  LineReader reader(folder);
  EXPECT_THROW(reader.next(), command::CommandError);
  close(folder);
}

}  // namespace
}  // namespace tamzo::testing
