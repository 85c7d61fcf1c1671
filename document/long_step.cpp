#include "long_step.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

bool LongStepWatch::keepGoing(const StepProgress& progress) {
  if (!allowed()) {
    return false;
  }
  const Clock::time_point now = Clock::now();
  if (now - start_ < kQuietTime || (reported_ && now - lastReport_ < kReportInterval)) {
    return true;
  }
  reported_ = true;
  lastReport_ = now;
  return report(progress, std::chrono::duration<double>(now - start_).count());
}

std::string describeLongStep(const StepProgress& progress, double seconds) {
  char text[200];
  if (progress.substeps <= 0.0) {
    std::snprintf(text, sizeof text, "Taking the single step, %.0f s", seconds);
  } else {
    std::snprintf(text, sizeof text,
                  "Refining the time step: 2^%.0f substeps, %.3g of at most %.3g integrations, "
                  "%.0f s",
                  std::log2(progress.substeps), progress.done, progress.worstCase, seconds);
  }
  return text;
}

double longStepFraction(const StepProgress& progress) {
  if (!(progress.worstCase > 0.0)) {
    return 0.0;
  }
  return std::clamp(progress.done / progress.worstCase, 0.0, 1.0);
}
