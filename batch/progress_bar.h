#pragma once

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <string>

// A progress bar with steps per second and the estimated time left. On a
// terminal it is one line redrawn in place at most ten times a second;
// elsewhere (a file, a pipe) it writes one line per second.
class ProgressBar {
 public:
  using Clock = std::chrono::steady_clock;

  ProgressBar(std::FILE* out, int64_t total, bool terminal);

  // Called after every step with the number of steps done.
  void update(int64_t done);
  // Draws the final state and ends the line.
  void finish(int64_t done);

  // The text of the bar after done steps in elapsed seconds; exposed so the
  // layout can be checked without a clock.
  static std::string render(int64_t done, int64_t total, double elapsedSeconds);

 private:
  void draw(int64_t done);

  std::FILE* out_;
  int64_t total_;
  bool terminal_;
  Clock::time_point start_;
  Clock::time_point lastDraw_;
};
