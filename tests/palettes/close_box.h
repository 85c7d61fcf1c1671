#pragma once

#include <QWidget>

// Closes a top-level window the way its close box does, through the X
// window system, and waits until it is hidden; false if it stayed open.
bool clickCloseBox(QWidget* window);
