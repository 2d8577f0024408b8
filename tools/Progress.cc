#include "tools/Progress.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace tamzo::command {
namespace {

constexpr std::size_t kWidestBar = 40;
constexpr std::size_t kNarrowestBar = 10;

std::string rateOf(const RunState& state) {
  const double rate = static_cast<double>(state.answers) / std::max(state.seconds, 0.001);
  return rate < 10 ? fmt::format("{:.1f}/s", rate) : fmt::format("{:.0f}/s", rate);
}

std::string timeOf(double seconds) {
  constexpr double kLongest = 100 * 3600.0;
  const auto whole = static_cast<long>(std::ceil(std::min(seconds, kLongest)));
  if (whole < 60) {
    return fmt::format("{} s", whole);
  }
  return whole < 3600 ? fmt::format("{}:{:02} min", whole / 60, whole % 60)
                      : fmt::format("{}:{:02} h", whole / 3600, whole % 3600 / 60);
}

// From 0 to 1; nothing where the size is not known.
std::optional<double> partOf(const RunState& state, const BatchSize& size) {
  const bool hasBytes = size.bytes > 0;
  const std::size_t all = hasBytes ? size.bytes : size.answers;
  if (all == 0) {
    return std::nullopt;
  }
  const std::size_t done = hasBytes ? state.bytes : state.answers;
  return std::min(1.0, static_cast<double>(done) / static_cast<double>(all));
}

}  // namespace

std::string progressBar(const RunState& state, const BatchSize& size, std::size_t columns) {
  const std::string count = size.answers > 0 ? fmt::format("{}/{}", state.answers, size.answers)
                                             : fmt::format("{} responses", state.answers);
  std::string text = count + "  " + rateOf(state);
  const std::optional<double> part = partOf(state, size);
  if (!part) {
    return text + "  " + timeOf(std::floor(state.seconds));
  }
  text += *part > 0 ? "  " + timeOf(state.seconds / *part * (1 - *part)) + " left" : "  ? left";
  if (columns < text.size() + kNarrowestBar + 3) {
    return text;
  }
  const std::size_t width = std::min(columns - text.size() - 3, kWidestBar);
  const auto filled = static_cast<std::size_t>(*part * static_cast<double>(width));
  return fmt::format("[{:<{}}] {}", std::string(filled, '#'), width, text);
}

Progress::Progress(bool isWanted, const std::function<BatchSize()>& size) {
  if (isWanted && StatusLine::isPossible()) {
    size_ = size();
    begin_ = Clock::now();
    line_.emplace([this](std::size_t columns) { return bar(columns); },
                  std::chrono::milliseconds(100));
    line_->draw();
  }
}

void Progress::step(std::size_t inputBytes) {
  const std::lock_guard lock(mutex_);
  ++state_.answers;
  state_.bytes += inputBytes;
}

void Progress::finish() {
  if (line_) {
    line_->draw();
    line_.reset();
  }
}

std::string Progress::bar(std::size_t columns) {
  const std::lock_guard lock(mutex_);
  state_.seconds = std::chrono::duration<double>(Clock::now() - begin_).count();
  return progressBar(state_, size_, columns);
}

}  // namespace tamzo::command
