#pragma once

// True when an OpenGL context with the fixed-function pipeline can be made
// current: a desktop (not ES) context, version 1.1 or newer, that is not a
// core profile.
bool openGLIsUsable();
