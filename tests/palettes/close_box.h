#pragma once

#include <xcb/xcb.h>

#include <QWidget>

// The application's connection to the X server, or null off X11.
xcb_connection_t* xConnection();

// The X atom of that name.
xcb_atom_t internAtom(const char* name);

// Closes a top-level window the way its close box does, through the X
// window system, and waits until it is hidden; false if it stayed open.
bool clickCloseBox(QWidget* window);
