#include "world.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "fast_pass.h"
#include "position_point.h"

World::World() : fastPass_(std::make_unique<FastPass>()) {
  reset();
}

World::~World() {
  delete bodies;
  delete tracePoints;
}

void World::reset() {
  delete bodies;
  delete tracePoints;
  bodies = new LinkedList;
  tracePoints = new LinkedList;
  traceFrames.clear();
  static_cast<WorldValues&>(*this) = WorldValues();
}

Body* World::createBody() {
  auto* body = new Body(nextBodyId - kFirstBodyId);
  bodies->append(new ListNode(body));
  // The counter stops at the largest identifier rather than wrap. Once it
  // is used, a new body takes the lowest identifier from 100 up that no
  // body has: two bodies never share one.
  if (nextBodyId == std::numeric_limits<int32_t>::max() && findBodyById(nextBodyId) != nullptr) {
    int32_t id = kFirstBodyId;
    while (findBodyById(id) != nullptr) {
      ++id;
    }
    body->id = id;
    return body;
  }
  body->id = nextBodyId;
  if (nextBodyId < std::numeric_limits<int32_t>::max()) {
    ++nextBodyId;
  }
  return body;
}

Body* World::insertBody(int32_t id, int32_t index) {
  // The default name of the identifier's creation number ("Body 0" for
  // identifier 100), as createBody names the bodies it numbers.
  const auto number = static_cast<int>(
      std::max<int64_t>(int64_t{id} - kFirstBodyId, std::numeric_limits<int32_t>::min()));
  auto* body = new Body(number);
  ListNode* next = index < bodies->count() ? bodies->head() : nullptr;
  for (int32_t i = 0; i < index && next != nullptr; ++i) {
    next = next->next;
  }
  bodies->insertBefore(next, new ListNode(body));
  body->id = id;
  if (id >= nextBodyId && id < std::numeric_limits<int32_t>::max()) {
    nextBodyId = id + 1;
  }
  return body;
}

Body* World::findBodyById(int32_t id) const {
  for (ListNode* node = bodies->head(); node != nullptr; node = node->next) {
    auto* body = static_cast<Body*>(node->item());
    if (body->id == id) {
      return body;
    }
  }
  return nullptr;
}

Body* World::findBodyByName(std::string_view wanted) const {
  for (ListNode* node = bodies->head(); node != nullptr; node = node->next) {
    auto* body = static_cast<Body*>(node->item());
    if (std::string_view(body->name) == wanted) {
      return body;
    }
  }
  return nullptr;
}

void World::deleteBodyById(int32_t id) {
  for (ListNode* node = bodies->head(); node != nullptr; node = node->next) {
    if (static_cast<Body*>(node->item())->id == id) {
      bodies->remove(node);
      return;
    }
  }
}

void World::deleteAllBodies() {
  delete bodies;
  bodies = new LinkedList;
}

void World::removeInactiveBodies() {
  ListNode* node = bodies->head();
  while (node != nullptr) {
    ListNode* next = node->next;
    if (!static_cast<Body*>(node->item())->active) {
      bodies->remove(node);
    }
    node = next;
  }
}

namespace {
// Starts from the first body's position and replaces a component only when
// the candidate is strictly beyond it, so NaN components never win.
template <typename Better>
Vector corner(const LinkedList& bodies, Better better) {
  if (bodies.head() == nullptr) {
    return Vector();
  }
  Vector c = static_cast<Body*>(bodies.head()->item())->position;
  forEachItem<Body>(bodies, [&](const Body& b) {
    if (better(b.position.x, c.x))
      c.x = b.position.x;
    if (better(b.position.y, c.y))
      c.y = b.position.y;
    if (better(b.position.z, c.z))
      c.z = b.position.z;
  });
  return c;
}
}  // namespace

Vector World::minCorner() const {
  return corner(*bodies, [](double a, double b) { return a < b; });
}

Vector World::maxCorner() const {
  return corner(*bodies, [](double a, double b) { return a > b; });
}

void World::recordTraces() {
  appendTracePoints();
  trimTracePoints();
}

int32_t World::appendTracePoints() {
  const uint64_t frame = nextTraceFrame_;
  int32_t added = 0;
  forEachItem<Body>(*bodies, [&](Body& b) {
    if (!b.active) {
      return;
    }
    b.clearForces();
    if (b.traceEnable) {
      auto* point = new PositionPoint;
      point->x = b.position.x;
      point->y = b.position.y;
      point->z = b.position.z;
      std::memcpy(point->color, b.color, sizeof point->color);
      point->frame = frame;
      tracePoints->append(new ListNode(point));
      ++added;
    }
  });
  // Only steps that leave points need a frame: a world without traced
  // bodies spends nothing here.
  if (added > 0) {
    traceFrames.record(frame, *this);
    ++nextTraceFrame_;
  }
  return added;
}

void World::trimTracePoints() {
  // A negative bound is treated as 0: the list is emptied, never trimmed past
  // its head.
  const int32_t bound = traceHistoryPoints < 0 ? 0 : traceHistoryPoints;
  while (tracePoints->count() > bound) {
    tracePoints->remove(tracePoints->head());
  }
  // A frame goes with the last of its points. Points are appended in frame
  // order, so the head holds the oldest frame still needed.
  const ListNode* head = tracePoints->head();
  traceFrames.dropBefore(head != nullptr ? static_cast<const PositionPoint*>(head->item())->frame
                                         : nextTraceFrame_);
}
