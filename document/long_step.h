#pragma once

#include <chrono>
#include <string>

#include "engine/world.h"

// Watches the world's steps for the runner and the application: a step that
// has run longer than about half a second is reported (and may be
// cancelled) through report(), at most every tenth of a second. The engine
// reads no clock; this does.
class LongStepWatch : public StepMonitor {
 public:
  using Clock = std::chrono::steady_clock;
  static constexpr auto kQuietTime = std::chrono::milliseconds(500);
  static constexpr auto kReportInterval = std::chrono::milliseconds(100);

  // Call before each step.
  void beginStep() {
    start_ = Clock::now();
    reported_ = false;
    lastReport_ = start_;
  }
  // Whether the step under way has been reported (so a report is on show).
  bool reported() const { return reported_; }

  bool keepGoing(const StepProgress& progress) final;

 protected:
  // Shows how far the step has come; false cancels it.
  virtual bool report(const StepProgress& progress, double seconds) = 0;
  // Asked at every call, reported or not: false cancels the step (the
  // runner's Ctrl+C).
  virtual bool allowed() { return true; }

 private:
  Clock::time_point start_ = Clock::now();
  Clock::time_point lastReport_ = start_;
  bool reported_ = false;
};

// The step's progress in words: "Refining the time step: 2^24 substeps,
// 3.4e+07 of at most 2.1e+10 integrations, 12 s".
std::string describeLongStep(const StepProgress& progress, double seconds);
// The part of the worst case done, from 0 to 1.
double longStepFraction(const StepProgress& progress);
