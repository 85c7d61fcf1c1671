#include "view_host.h"

namespace {
ViewHost* gHost = nullptr;
}

void setViewHost(ViewHost* host) {
  gHost = host;
}

ViewHost* viewHost() {
  return gHost;
}
