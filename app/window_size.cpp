#include "window_size.h"

#include <QGuiApplication>
#include <QScreen>
#include <QVariant>
#include <QWidget>
#include <algorithm>

namespace {

// Window-manager frames on Linux: a title bar and borders; generous, since
// Qt cannot measure them before the window is shown.
constexpr int kFrameWidth = 16;
constexpr int kFrameHeight = 48;

constexpr const char* kSizeBeforeGrowth = "orrenvaleSizeBeforeGrowth";
constexpr const char* kGrownSize = "orrenvaleGrownSize";

const QScreen* screenOf(const QWidget* window) {
  const QScreen* screen = window != nullptr ? window->screen() : nullptr;
  return screen != nullptr ? screen : QGuiApplication::primaryScreen();
}

void rememberGrowth(QWidget* window, QSize natural, QSize target) {
  if (target != natural) {
    window->setProperty(kSizeBeforeGrowth, natural);
    window->setProperty(kGrownSize, target);
  } else {
    window->setProperty(kSizeBeforeGrowth, QVariant());
    window->setProperty(kGrownSize, QVariant());
  }
}

}  // namespace

QSize screenRoom(const QWidget* window) {
  const QScreen* screen = screenOf(window);
  if (screen == nullptr) {
    return {QWIDGETSIZE_MAX, QWIDGETSIZE_MAX};
  }
  const QSize area = screen->availableSize();
  return {std::max(1, area.width() - kFrameWidth), std::max(1, area.height() - kFrameHeight)};
}

void setBoundedMinimumSize(QWidget* window, QSize minimum) {
  minimum = minimum.boundedTo(screenRoom(window));
  const QSize current = window->size();
  QVariant before = window->property(kSizeBeforeGrowth);
  // A size other than the one the minimum grew the window to is the user's
  // (or the program's) choice, and the one to keep.
  if (before.isValid() && window->property(kGrownSize).toSize() != current) {
    before = QVariant();
  }
  const QSize natural = before.isValid() ? before.toSize() : current;
  const QSize target = natural.expandedTo(minimum);
  // Lower the minimum first so a shrink is allowed, raise it last.
  window->setMinimumSize(minimum.boundedTo(current));
  if (target != current) {
    window->resize(target);
  }
  window->setMinimumSize(minimum);
  rememberGrowth(window, natural, target);
}

void resizeWithinMinimum(QWidget* window, QSize size) {
  size = size.boundedTo(screenRoom(window));
  const QSize target = size.expandedTo(window->minimumSize());
  window->resize(target);
  rememberGrowth(window, size, target);
}

void keepOnScreen(QWidget* window) {
  const QScreen* screen = screenOf(window);
  if (screen == nullptr) {
    return;
  }
  const QRect area = screen->availableGeometry();
  const QRect inner = window->geometry();
  QRect frame = window->frameGeometry();
  // Until the window manager has framed the window its frame is unknown:
  // assume a title bar above and thin borders.
  if (frame == inner) {
    frame = inner.adjusted(-kFrameWidth / 2, -(kFrameHeight - kFrameWidth / 2), kFrameWidth / 2,
                           kFrameWidth / 2);
  }
  const int dx = std::max(area.left() - frame.left(), std::min(0, area.right() - frame.right()));
  const int dy = std::max(area.top() - frame.top(), std::min(0, area.bottom() - frame.bottom()));
  if (dx != 0 || dy != 0) {
    // The inner geometry places the window's own area, whatever the window
    // manager does with frame positions.
    window->setGeometry(inner.translated(dx, dy));
  }
}
