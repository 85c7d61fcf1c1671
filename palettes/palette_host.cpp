#include "palettes/palette_host.h"

void PaletteHost::commitBodyEdit(Body& /*body*/, const std::function<void()>& apply) {
  apply();
}

void PaletteHost::commitWorldEdit(const std::function<void()>& apply) {
  apply();
}
