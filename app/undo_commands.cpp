#include "undo_commands.h"

#include <QCoreApplication>
#include <algorithm>
#include <limits>

#include "engine/world.h"

namespace {

// Merge identifiers of the commands that merge.
constexpr int kBodyEditId = 1;
constexpr int kWorldEditId = 2;

QString tr(const char* text) {
  return QCoreApplication::translate("UndoCommands", text);
}

QString nameOf(const BodyState& state) {
  return QString::fromUtf8(state.nameView());
}

// Puts a body back with its identifier at its place in the list; its
// Body-menu item takes its name through the rename.
void restoreBody(DesignModel& model, const BodyState& state, int32_t index) {
  Body* body = model.world.insertBody(state.id, index);
  applyBodyFields(state, allBodyFields(), *body);
  model.renameBody(body, state.nameView());
}

}  // namespace

BodyEditCommand::BodyEditCommand(DesignModel& model, const BodyState& before,
                                 const BodyState& after, Origin origin)
    : model_(model),
      before_(before),
      after_(after),
      fields_(changedBodyFields(before, after)),
      origin_(origin) {
  const QString name = nameOf(before);
  if (origin == Origin::Move) {
    setText(tr("Move %1").arg(name));
  } else if (origin == Origin::Aim) {
    setText(tr("Aim %1").arg(name));
  } else if (fields_ == bodyNameField()) {
    setText(tr("Rename %1").arg(name));
  } else if (const QString field = bodyFieldTitle(fields_); !field.isEmpty()) {
    setText(tr("Change %1 of %2").arg(field, name));
  } else {
    setText(tr("Change %1").arg(name));
  }
}

void BodyEditCommand::apply(const BodyState& state) {
  Body* body = model_.world.findBodyById(before_.id);
  if (body == nullptr) {
    return;
  }
  applyBodyFields(state, fields_, *body);
  if (fields_ & bodyNameField()) {
    model_.renameBody(body, state.nameView());
  }
}

int BodyEditCommand::id() const {
  // Each drag is an entry of its own.
  return origin_ == Origin::Palette ? kBodyEditId : -1;
}

bool BodyEditCommand::mergeWith(const QUndoCommand* other) {
  const auto* next = static_cast<const BodyEditCommand*>(other);
  if (next->before_.id != before_.id || next->fields_ != fields_) {
    return false;
  }
  after_ = next->after_;
  // Edits that came back to where they began leave nothing to undo.
  setObsolete((changedBodyFields(before_, after_) & fields_) == 0);
  return true;
}

WorldEditCommand::WorldEditCommand(DesignModel& model, const FieldValues& before,
                                   const FieldValues& after)
    : model_(model), before_(before), after_(after), fields_(changedFields(before, after)) {
  setText(worldEditTitle(fields_));
}

void WorldEditCommand::undo() {
  applyWorldFields(before_, fields_, model_.world);
}

void WorldEditCommand::redo() {
  applyWorldFields(after_, fields_, model_.world);
}

int WorldEditCommand::id() const {
  return kWorldEditId;
}

bool WorldEditCommand::mergeWith(const QUndoCommand* other) {
  const auto* next = static_cast<const WorldEditCommand*>(other);
  if (next->fields_ != fields_) {
    return false;
  }
  after_ = next->after_;
  setObsolete((changedFields(before_, after_) & fields_) == 0);
  return true;
}

NewBodyCommand::NewBodyCommand(DesignModel& model) : model_(model) {}

void NewBodyCommand::redo() {
  World& world = model_.world;
  if (!created_) {
    nextBodyIdBefore_ = world.nextBodyId;
    const Body* body = world.createBody();
    state_ = BodyState::of(*body);
    index_ = world.bodies->count() - 1;
    created_ = true;
    setText(tr("Create %1").arg(nameOf(state_)));
    return;
  }
  // Only a history that no longer matches the world (which the application
  // avoids by clearing it) could find the identifier taken.
  if (world.findBodyById(state_.id) == nullptr) {
    restoreBody(model_, state_, index_);
  }
}

void NewBodyCommand::undo() {
  World& world = model_.world;
  world.deleteBodyById(state_.id);
  // The counter goes back, so the next new body is numbered and named as
  // this one was; never below a body still in the world.
  int32_t next = nextBodyIdBefore_;
  forEachItem<Body>(*world.bodies, [&next](const Body& b) {
    if (b.id >= next && b.id < std::numeric_limits<int32_t>::max()) {
      next = b.id + 1;
    }
  });
  world.nextBodyId = std::min(world.nextBodyId, next);
}

DeleteBodiesCommand::DeleteBodiesCommand(DesignModel& model, int32_t id, bool all)
    : model_(model), all_(all) {
  int32_t index = 0;
  forEachItem<Body>(*model.world.bodies, [&](const Body& b) {
    if (all || b.id == id) {
      bodies_.push_back({BodyState::of(b), index});
    }
    ++index;
  });
  if (all) {
    setText(tr("Delete All Bodies"));
  } else if (!bodies_.empty()) {
    // A world read from a file may hold several bodies with one identifier;
    // the first in list order is the one deleted.
    bodies_.resize(1);
    setText(tr("Delete %1").arg(nameOf(bodies_.front().state)));
  }
}

void DeleteBodiesCommand::redo() {
  if (all_) {
    model_.world.deleteAllBodies();
    return;
  }
  for (const Removed& removed : bodies_) {
    model_.world.deleteBodyById(removed.state.id);
  }
}

void DeleteBodiesCommand::undo() {
  // In list order, so that every body finds the ones before it in place.
  for (const Removed& removed : bodies_) {
    restoreBody(model_, removed.state, removed.index);
  }
}
