#include "design_history.h"

#include "engine/body_fields.h"

#include <QAction>
#include <memory>

#include "engine/world.h"
#include "view/body_dragger.h"

namespace {

// The title shows a body's name as it is, '&' included.
QString itemText(const QString& verb, const QString& change) {
  if (change.isEmpty()) {
    return verb;
  }
  return QStringLiteral("%1 %2").arg(verb, QString(change).replace('&', QStringLiteral("&&")));
}

}  // namespace

DesignHistory::DesignHistory(World& world, std::function<void(Body*, std::string_view)> renameBody,
                             QObject* parent)
    : QObject(parent), model_{world, std::move(renameBody)} {
  undoAction_ = new QAction(this);
  undoAction_->setObjectName(QStringLiteral("menuEditUndo"));
  undoAction_->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Z));
  redoAction_ = new QAction(this);
  redoAction_->setObjectName(QStringLiteral("menuEditRedo"));
  redoAction_->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z));
  connect(undoAction_, &QAction::triggered, this, [this] {
    if (recording_) {
      stack_.undo();
    }
  });
  connect(redoAction_, &QAction::triggered, this, [this] {
    if (recording_) {
      stack_.redo();
    }
  });
  // A merge changes the title without moving the index.
  connect(&stack_, &QUndoStack::indexChanged, this, &DesignHistory::updateActions);
  connect(&stack_, &QUndoStack::undoTextChanged, this, &DesignHistory::updateActions);
  connect(&stack_, &QUndoStack::redoTextChanged, this, &DesignHistory::updateActions);
  updateActions();
}

void DesignHistory::setRecording(bool recording) {
  recording_ = recording;
  updateActions();
}

void DesignHistory::updateActions() {
  undoAction_->setText(itemText(tr("&Undo"), stack_.canUndo() ? stack_.undoText() : QString()));
  redoAction_->setText(itemText(tr("&Redo"), stack_.canRedo() ? stack_.redoText() : QString()));
  undoAction_->setEnabled(recording_ && stack_.canUndo());
  redoAction_->setEnabled(recording_ && stack_.canRedo());
}

Body* DesignHistory::newBody() {
  if (!recording_) {
    return model_.world.createBody();
  }
  auto* command = new NewBodyCommand(model_);
  stack_.push(command);
  return model_.world.findBodyById(command->bodyId());
}

void DesignHistory::deleteBody(int32_t id) {
  if (!recording_) {
    model_.world.deleteBodyById(id);
    return;
  }
  auto command = std::make_unique<DeleteBodiesCommand>(model_, id, false);
  if (!command->empty()) {
    stack_.push(command.release());
  }
}

void DesignHistory::deleteAllBodies() {
  auto command = recording_ ? std::make_unique<DeleteBodiesCommand>(model_, 0, true) : nullptr;
  if (command == nullptr || command->empty()) {
    model_.world.deleteAllBodies();
    return;
  }
  stack_.push(command.release());
}

void DesignHistory::commitBodyEdit(Body& body, const std::function<void()>& apply) {
  if (!recording_) {
    apply();
    return;
  }
  const BodyState before = BodyState::of(body);
  apply();
  const Body* after = model_.world.findBodyById(before.id);
  if (after == nullptr) {
    return;
  }
  const BodyState changed = BodyState::of(*after);
  if (changedBodyFields(before, changed) != 0) {
    stack_.push(new BodyEditCommand(model_, before, changed, BodyEditCommand::Origin::Palette));
  }
}

void DesignHistory::commitWorldEdit(const std::function<void()>& apply) {
  if (!recording_) {
    apply();
    return;
  }
  const FieldValues before = worldParameters(model_.world);
  apply();
  const FieldValues after = worldParameters(model_.world);
  if (changedFields(before, after) != 0) {
    stack_.push(new WorldEditCommand(model_, before, after));
  }
}

void DesignHistory::bodyDragged(const BodyDrag& drag) {
  const Body* body = model_.world.findBodyById(drag.bodyId);
  if (!recording_ || body == nullptr) {
    return;
  }
  const bool move = drag.kind == BodyDrag::Kind::Move;
  BodyState after = BodyState::of(*body);
  BodyState before = after;
  const std::size_t row = fieldRow(bodyFields(), move ? &Body::position : &Body::velocity);
  before.values[row] = drag.before;
  after.values[row] = drag.after;
  if (changedBodyFields(before, after) != 0) {
    stack_.push(
        new BodyEditCommand(model_, before, after,
                            move ? BodyEditCommand::Origin::Move : BodyEditCommand::Origin::Aim));
  }
}
