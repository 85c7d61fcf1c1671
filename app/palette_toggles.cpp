// The palette toggles: each palette is shown exactly while its menu item is
// checked, and the program never leaves the user without a window.
#include <QAction>
#include <QApplication>
#include <QTimer>
#include <QWidget>

#include "app_menus.h"
#include "controller.h"
#include "palettes/body_window_controller.h"
#include "palettes/graphs_window_controller.h"
#include "palettes/simulation_window_controller.h"
#include "palettes/text_output_controller.h"
#include "palettes/view_window_controller.h"
#include "view_window_registry.h"

void Controller::togglePalette(QObject* sender, QObject* palette, QWidget* window, QAction* item,
                               const std::function<void()>& becomeVisible,
                               const std::function<void()>& becomeInvisible) {
  if (item->isChecked()) {
    if (becomeInvisible) {
      becomeInvisible();
    }
    if (sender != palette) {
      window->close();
    }
    item->setChecked(false);
    // A palette passes itself when its close box closed it.
    checkWindowsLeft(sender == palette);
  } else {
    if (becomeVisible) {
      becomeVisible();
    }
    window->show();
    item->setChecked(true);
  }
}

void Controller::toggleRefreshingPalette(QObject* sender, PaletteController& palette,
                                         QAction* item) {
  // A palette with a refresh timer starts it when shown and stops it when
  // hidden.
  togglePalette(
      sender, &palette, palette.window(), item, [&palette] { palette.becomeVisible(); },
      [&palette] { palette.becomeInvisible(); });
}

void Controller::showSimulationPaletteFromMenu(QObject* sender) {
  toggleRefreshingPalette(sender, *simPalette_, menus_->menuSimPalette);
}

void Controller::showViewPaletteFromMenu(QObject* sender) {
  toggleRefreshingPalette(sender, *viewPalette_, menus_->menuViewPalette);
}

void Controller::showBodyPaletteFromMenu(QObject* sender) {
  toggleRefreshingPalette(sender, *bodyPalette_, menus_->menuBodyInfoPalette);
}

void Controller::showOutputPaletteFromMenu(QObject* sender) {
  // The text log has no refresh timer: only its window is shown or hidden.
  TextOutputController* p = textPalette_.get();
  togglePalette(sender, p, p->window(), menus_->menuSimOutput, {}, {});
}

void Controller::showGraphsPaletteFromMenu(QObject* sender) {
  toggleRefreshingPalette(sender, *graphsPalette_, menus_->menuSimGraphs);
}

void Controller::checkWindowsLeft(bool closedByUser) {
  QTimer::singleShot(0, this, [this, closedByUser] {
    const AppMenus& m = *menus_;
    bool anyLeft = !windows_->windows().empty();
    for (const QAction* toggle : {m.menuSimPalette, m.menuViewPalette, m.menuBodyInfoPalette,
                                  m.menuSimOutput, m.menuSimGraphs}) {
      anyLeft = anyLeft || toggle->isChecked();
    }
    if (anyLeft) {
      return;
    }
    if (closedByUser) {
      QApplication::quit();
    } else {
      showSimulationPaletteFromMenu(nullptr);
    }
  });
}
