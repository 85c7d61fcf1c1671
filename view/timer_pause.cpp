#include "timer_pause.h"

#include <QApplication>

bool timersArePaused() {
  return QApplication::activeModalWidget() != nullptr ||
         QApplication::activePopupWidget() != nullptr;
}
