#include "palettes/palette_host.h"

namespace {
PaletteHost* gHost = nullptr;
}  // namespace

void setPaletteHost(PaletteHost* host) {
  gHost = host;
}

PaletteHost* paletteHost() {
  return gHost;
}
