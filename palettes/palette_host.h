#pragma once

#include <functional>
#include <string_view>

#include "view/view_host.h"

class Body;
class Panels;
class QMenuBar;
class QObject;
class QString;
class QWidget;
class View;
class World;

// What the palettes need from the application controller, beyond what the
// views need. The controller hands it to each palette it makes (a test hands
// its own).
class PaletteHost : public ViewHost {
 public:
  // The dialogs of the program (tests answer them from a script).
  virtual Panels* panels() = 0;

  // The View record of the main view window, or null when none is main.
  virtual View* currentView() = 0;
  // The main view window itself (for its title), or null.
  virtual QWidget* currentViewWindow() = 0;
  virtual void setWindowTitleAndMinSize(QWidget* window, const QString& title) = 0;

  // Commands the palettes' buttons and fields send.
  virtual void toggleSim(QObject* sender) = 0;
  virtual void stepSim(QObject* sender) = 0;
  virtual void edit(QObject* sender) = 0;
  virtual void newBody(QObject* sender) = 0;
  virtual void setWorldSpeed(float millisecondsPerUpdate) = 0;
  // Retitles the body's Body-menu item and copies the name into the body;
  // does nothing when no item carries the body's current name.
  virtual void worldRenameBody(Body* body, std::string_view newName) = 0;

  // The palettes' changes to the world. A commit to the inspected body or to
  // the simulation parameters runs in apply, which writes the model (a body's
  // name through worldRenameBody); the body
  // palette's delete button uses deleteBody. By default these act on the
  // world directly; the application overrides them to record what changed
  // for undo while the world is being designed (editing()).
  virtual void commitBodyEdit(Body& body, const std::function<void()>& apply);
  virtual void commitWorldEdit(const std::function<void()>& apply);

  // Palette toggles. A palette whose window is closing passes itself as the
  // sender, so the controller does not close the window a second time.
  virtual void showSimulationPaletteFromMenu(QObject* sender) = 0;
  virtual void showViewPaletteFromMenu(QObject* sender) = 0;
  virtual void showBodyPaletteFromMenu(QObject* sender) = 0;
  virtual void showOutputPaletteFromMenu(QObject* sender) = 0;
  // The Graphs palette's toggle. A host without that palette need not
  // provide it; the default does nothing.
  virtual void showGraphsPaletteFromMenu(QObject* /*sender*/) {}

  // Adds the application's menus to a menu bar, so a window that carries one
  // reaches every command.
  virtual void populateMenuBar(QMenuBar* bar) = 0;
};
