#pragma once

#include <QObject>
#include <functional>

class QTimer;

// The simulation clock: the update timer, which exists exactly while the
// simulation runs and steps the world at the world's pace, and the
// acceleration timer, which keeps accelerations current while it stands.
// Both do nothing while a modal dialog or a menu is open.
class SimulationClock : public QObject {
  Q_OBJECT

 public:
  // tick: one world step; idle: refresh the accelerations (every 0.2 s
  // while stopped).
  SimulationClock(std::function<void()> tick, std::function<void()> idle,
                  QObject* parent = nullptr);
  ~SimulationClock() override;
  SimulationClock(const SimulationClock&) = delete;
  SimulationClock& operator=(const SimulationClock&) = delete;

  bool running() const { return updateTimer_ != nullptr; }
  // Schedules the update timer at ms milliseconds per update; it must not
  // be running.
  void start(float millisecondsPerUpdate);
  // Invalidates the update timer, if any.
  void stop();
  // The running update timer, or null.
  QTimer* updateTimer() const { return updateTimer_; }

  // The timer interval in whole milliseconds for a speed: ms / 1000 s in
  // single precision, rounded to Qt's whole milliseconds; below half a
  // millisecond (0 included) as fast as the event loop allows; beyond what
  // the timer can count (or +infinity), the slowest it can do, never the
  // fastest. Not a number runs as fast as it can, as 0 does.
  static int intervalFor(float millisecondsPerUpdate);

 private:
  std::function<void()> tick_;
  std::function<void()> idle_;
  QTimer* updateTimer_ = nullptr;
  QTimer* accelerationTimer_;
};
