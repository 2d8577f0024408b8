#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <mutex>
#include <optional>
#include <string>

#include "tools/BatchSources.h"
#include "tools/StandardError.h"

namespace tamzo::command {

/// How far a run has come.
struct RunState {
  std::size_t answers = 0;
  std::size_t bytes = 0;  ///< of input
  double seconds = 0;
};

/// A bar with count, rate and time left, as far as the size of the run is known.
std::string progressBar(const RunState& state, const BatchSize& size, std::size_t columns);

/// Shows that bar while it stands, on a terminal.
class Progress {
 public:
  /// Shows nothing unless `isWanted`. `size` is asked only where there is something to be shown.
  Progress(bool isWanted, const std::function<BatchSize()>& size);
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  ~Progress() = default;

  void step(std::size_t inputBytes);
  /// Shows the end of the run, and then nothing more.
  void finish();

 private:
  using Clock = std::chrono::steady_clock;

  std::string bar(std::size_t columns);

  BatchSize size_;
  Clock::time_point begin_ = Clock::now();
  std::mutex mutex_;
  RunState state_;
  std::optional<StatusLine> line_;
};

}  // namespace tamzo::command
