#include "progress_bar.h"

#include <cmath>

namespace {

constexpr int kBarWidth = 30;
constexpr auto kRedrawInterval = std::chrono::milliseconds(100);
constexpr auto kLineInterval = std::chrono::seconds(1);

std::string duration(double seconds) {
  const auto total = static_cast<long long>(std::llround(seconds));
  char text[32];
  if (total >= 3600) {
    std::snprintf(text, sizeof text, "%lld:%02lld:%02lld", total / 3600, total / 60 % 60,
                  total % 60);
  } else {
    std::snprintf(text, sizeof text, "%lld:%02lld", total / 60, total % 60);
  }
  return text;
}

}  // namespace

ProgressBar::ProgressBar(std::FILE* out, int64_t total, bool terminal)
    : out_(out),
      total_(total),
      terminal_(terminal),
      start_(Clock::now()),
      lastDraw_(start_ - kLineInterval) {}

void ProgressBar::update(int64_t done) {
  const auto now = Clock::now();
  if (now - lastDraw_ < (terminal_ ? Clock::duration(kRedrawInterval) : kLineInterval)) {
    return;
  }
  lastDraw_ = now;
  draw(done);
}

void ProgressBar::finish(int64_t done) {
  draw(done);
  if (terminal_) {
    std::fputc('\n', out_);
  }
  std::fflush(out_);
}

void ProgressBar::draw(int64_t done) {
  const double elapsed = std::chrono::duration<double>(Clock::now() - start_).count();
  const std::string text = render(done, total_, elapsed);
  if (terminal_) {
    // Clear to the end of the line: the new text may be shorter than the old.
    std::fprintf(out_, "\r%s\x1b[K", text.c_str());
  } else {
    std::fprintf(out_, "%s\n", text.c_str());
  }
  std::fflush(out_);
}

std::string ProgressBar::render(int64_t done, int64_t total, double elapsedSeconds) {
  const double fraction = total > 0 ? static_cast<double>(done) / static_cast<double>(total) : 1.0;
  const int filled = static_cast<int>(fraction * kBarWidth);
  std::string text = "[";
  text.append(static_cast<std::size_t>(filled), '#');
  text.append(static_cast<std::size_t>(kBarWidth - filled), '-');
  char numbers[160];
  std::snprintf(numbers, sizeof numbers, "] %3d%%  %lld/%lld steps",
                static_cast<int>(fraction * 100), static_cast<long long>(done),
                static_cast<long long>(total));
  text += numbers;
  if (elapsedSeconds > 0 && done > 0) {
    const double rate = static_cast<double>(done) / elapsedSeconds;
    const double left = static_cast<double>(total - done) / rate;
    std::snprintf(numbers, sizeof numbers, "  %.0f steps/s  ETA %s", rate, duration(left).c_str());
    text += numbers;
  }
  return text;
}
