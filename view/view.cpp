#include "view.h"

#include <cstdio>

View::View(int n) : trackball(std::make_unique<Trackball>(1.0)) {
  std::snprintf(name, sizeof name, "View %i", n);
}

View::~View() = default;
