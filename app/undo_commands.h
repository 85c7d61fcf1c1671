#pragma once

#include <QUndoCommand>
#include <functional>
#include <string_view>
#include <vector>

#include "edit_values.h"

class Body;
class World;

// What the undo commands act on: the one world, which is reset in place and
// never replaced, and the rename that keeps a body's Body-menu item in step
// with its name. Commands find bodies by identifier every time: entering
// design mode rebuilds every Body object from the design state.
struct DesignModel {
  World& world;
  std::function<void(Body*, std::string_view)> renameBody;
};

// A change of some fields of one body: a palette commit, or a drag that
// moved the body or set its velocity. Consecutive palette commits to the
// same fields of the same body merge into one entry; a drag is an entry of
// its own.
class BodyEditCommand : public QUndoCommand {
 public:
  enum class Origin { Palette, Move, Aim };

  BodyEditCommand(DesignModel& model, const BodyState& before, const BodyState& after,
                  Origin origin);

  void undo() override { apply(before_); }
  void redo() override { apply(after_); }
  int id() const override;
  bool mergeWith(const QUndoCommand* other) override;

 private:
  void apply(const BodyState& state);

  DesignModel& model_;
  BodyState before_;
  BodyState after_;
  uint64_t fields_;
  Origin origin_;
};

// A change of the world's simulation parameters; consecutive changes of the
// same parameters merge.
class WorldEditCommand : public QUndoCommand {
 public:
  WorldEditCommand(DesignModel& model, const FieldValues& before, const FieldValues& after);

  void undo() override;
  void redo() override;
  int id() const override;
  bool mergeWith(const QUndoCommand* other) override;

 private:
  DesignModel& model_;
  FieldValues before_;
  FieldValues after_;
  uint64_t fields_;
};

// New body: the first redo creates it as the world always does; a later redo
// puts the same body back, with its identifier, fields and place. Undo
// removes it and gives the world back the identifier counter it had.
class NewBodyCommand : public QUndoCommand {
 public:
  explicit NewBodyCommand(DesignModel& model);

  void undo() override;
  void redo() override;
  int32_t bodyId() const { return state_.id; }

 private:
  DesignModel& model_;
  bool created_ = false;
  BodyState state_;
  int32_t index_ = 0;
  int32_t nextBodyIdBefore_ = 0;
};

// Deletion of one body, or of all of them; undo puts each back with its
// identifier, every field and its place in the body list, whose order is
// part of the physics' results.
class DeleteBodiesCommand : public QUndoCommand {
 public:
  // One body by identifier, or every body when all is true.
  DeleteBodiesCommand(DesignModel& model, int32_t id, bool all);

  void undo() override;
  void redo() override;
  bool empty() const { return bodies_.empty(); }

 private:
  struct Removed {
    BodyState state;
    int32_t index;
  };

  DesignModel& model_;
  bool all_;
  std::vector<Removed> bodies_;
};
