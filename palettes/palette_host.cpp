#include "palettes/palette_host.h"

PaletteHost* paletteHost() {
  return dynamic_cast<PaletteHost*>(viewHost());
}
