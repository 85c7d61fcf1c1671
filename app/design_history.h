#pragma once

#include <QObject>
#include <QUndoStack>
#include <functional>
#include <string_view>

#include "undo_commands.h"

class QAction;
struct BodyDrag;

// The undo history of the design: every change the user makes to the world
// in design mode, as entries of a QUndoStack, and the Edit menu's Undo and
// Redo items. The application routes its edits of the world through the
// operations here. While recording (design mode) they push an entry, which
// carries the edit out; otherwise they act on the world directly, since an
// edit of a run changes the run, not the design, and Undo and Redo are
// disabled. Entries find bodies by identifier, so the history survives the
// rebuilding of the world on every entry into design mode: after a run and
// a return to design mode, Undo still takes back the design's edits.
class DesignHistory : public QObject {
  Q_OBJECT

 public:
  // renameBody renames a body and its Body-menu item (the controller's
  // worldRenameBody).
  DesignHistory(World& world, std::function<void(Body*, std::string_view)> renameBody,
                QObject* parent = nullptr);

  // Edit menu items, named menuEditUndo and menuEditRedo, with the keys
  // Ctrl+Z and Ctrl+Shift+Z; their titles name the change ("Undo Change
  // Mass of Earth"), and they are enabled only while recording and there is
  // something to undo or redo.
  QAction* undoAction() const { return undoAction_; }
  QAction* redoAction() const { return redoAction_; }
  QUndoStack& stack() { return stack_; }

  // On in design mode, off outside it.
  void setRecording(bool recording);
  bool recording() const { return recording_; }
  // Forgets every entry: the design was replaced (Open, New, Reset).
  void clear() { stack_.clear(); }

  // The edits. A body is passed by reference where the caller has one; the
  // entry keeps only its identifier.
  Body* newBody();
  void deleteBody(int32_t id);
  void deleteAllBodies();
  // apply writes the palette's change into the body or the world; what it
  // changed, bit for bit, becomes the entry (nothing when it changed
  // nothing).
  void commitBodyEdit(Body& body, const std::function<void()>& apply);
  void commitWorldEdit(const std::function<void()>& apply);
  // A drag the view has already carried out.
  void bodyDragged(const BodyDrag& drag);

 private:
  void updateActions();

  DesignModel model_;
  QUndoStack stack_;
  QAction* undoAction_ = nullptr;
  QAction* redoAction_ = nullptr;
  bool recording_ = false;
};
