#include "view_host.h"

#include "engine/world.h"

void ViewHost::deleteBody(int32_t id) {
  world().deleteBodyById(id);
}
