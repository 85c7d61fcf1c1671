#pragma once

// Makes every OpenGL context of the program a double-buffered compatibility
// profile context with a depth buffer, which the fixed-function drawing of
// the views needs. Call it before the QApplication is created.
void setDefaultSurfaceFormat();
