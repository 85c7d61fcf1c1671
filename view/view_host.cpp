#include "view_host.h"

#include "engine/world.h"

namespace {
ViewHost* gHost = nullptr;
}

void ViewHost::deleteBody(int32_t id) {
  world().deleteBodyById(id);
}

void setViewHost(ViewHost* host) {
  gHost = host;
}

ViewHost* viewHost() {
  return gHost;
}
