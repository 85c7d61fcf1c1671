#pragma once

#include <QSize>

class QWidget;

// The largest size a window's own area may take on the screen it is on (or
// the primary screen): the available area less room for the window
// manager's frame, so no datafile or name can make a window larger than the
// screen.
QSize screenRoom(const QWidget* window);

// Sets a window's minimum size, bounded by the screen. A window that the
// minimum had to grow remembers the size it had before and goes back to it
// when a later, smaller minimum allows (a long name grows the window, a
// short one lets it shrink again), unless the user has resized it since.
void setBoundedMinimumSize(QWidget* window, QSize minimum);

// Resizes a window to a size the program chose (bounded by the screen).
// Where the window's minimum makes it larger, the chosen size is remembered
// as above, for when the minimum shrinks.
void resizeWithinMinimum(QWidget* window, QSize size);

// Moves a window as little as needed for its frame to lie within the
// screen's available area (its top-left corner stays on screen in any case).
void keepOnScreen(QWidget* window);
