#include "simulation_clock.h"

#include <QTimer>
#include <chrono>
#include <climits>
#include <cmath>
#include <utility>

#include "view/timer_pause.h"

namespace {

// 0.2 s formed in single precision; Qt timers count whole milliseconds.
constexpr std::chrono::milliseconds kAccelerationInterval{200};

}  // namespace

SimulationClock::SimulationClock(std::function<void()> tick, std::function<void()> idle,
                                 QObject* parent)
    : QObject(parent),
      tick_(std::move(tick)),
      idle_(std::move(idle)),
      accelerationTimer_(new QTimer(this)) {
  accelerationTimer_->setInterval(kAccelerationInterval);
  connect(accelerationTimer_, &QTimer::timeout, this, [this] {
    if (!running() && !timersArePaused()) {
      idle_();
    }
  });
  accelerationTimer_->start();
}

SimulationClock::~SimulationClock() {
  accelerationTimer_->stop();
  stop();
}

int SimulationClock::intervalFor(float millisecondsPerUpdate) {
  const float seconds = millisecondsPerUpdate / 1000.0f;
  const double ms = std::nearbyint(static_cast<double>(seconds) * 1000.0);
  if (!(ms > 0.0)) {
    return 0;
  }
  return ms >= static_cast<double>(INT_MAX) ? INT_MAX : static_cast<int>(ms);
}

void SimulationClock::start(float millisecondsPerUpdate) {
  updateTimer_ = new QTimer(this);
  updateTimer_->setObjectName("updateTimer");
  updateTimer_->setTimerType(Qt::PreciseTimer);
  updateTimer_->setInterval(intervalFor(millisecondsPerUpdate));
  connect(updateTimer_, &QTimer::timeout, this, [this] {
    if (!timersArePaused()) {
      tick_();
    }
  });
  updateTimer_->start();
}

void SimulationClock::stop() {
  if (updateTimer_ == nullptr) {
    return;
  }
  // Stopped at once, deleted once control is back in the event loop: this
  // may run inside the timer's own timeout.
  updateTimer_->stop();
  updateTimer_->deleteLater();
  updateTimer_ = nullptr;
}
