#pragma once

#include <optional>
#include <vector>

#include "engine/vector.h"
#include "palettes/graph_history.h"
#include "palettes/palette_controller.h"

class PaletteHost;
class PlotWidget;
class QAction;

// The Graphs palette: live plots against elapsed time of what a run should
// conserve (total energy, momentum, angular momentum, and the relative
// errors of energy and angular momentum from where the run left design
// mode), of the number of bodies, and of the selected body's distance from
// the tracked body (or the centre of mass) and its speed. The user chooses
// the plots to show and can export the samples as CSV.
//
// It follows the palette pattern: a sample is taken at each refresh (five
// a second while the palette is visible) in which the world has moved, not
// at every step, so a fast run pays for a sample a few times a second; a
// hidden palette takes none. Nothing is sampled in design mode.
class GraphsWindowController : public PaletteController {
  Q_OBJECT

 public:
  explicit GraphsWindowController(PaletteHost& host, QObject* parent = nullptr);
  ~GraphsWindowController() override;

  // Samples the world if it has moved since the last sample, and redraws.
  void getValues() override;

  // Forgets every sample and E(0). The host calls it where it clears the
  // text log: when design mode is entered, and on Reset, New and Open. A
  // world whose elapsed time has gone back is taken for a new run as well.
  void clearHistory();
  // Takes E(0) and L(0), the references of the error plots, from the world
  // as it stands, with the first sample of the run. The host calls it when
  // the run leaves design mode. Without it the first sample of a run is
  // the reference.
  void takeBaseline();

  const GraphHistory& history() const { return history_; }
  // The plots, in the order they are shown; the plot choice hides some.
  const std::vector<PlotWidget*>& plots() const { return plots_; }
  // Asks for a file and writes the samples to it as CSV; a failure is
  // reported with the file's name and the system's reason.
  void exportData(QObject* sender);

 protected:
  // The palette edits nothing of the model.
  void setValues(QObject* sender) override;
  void windowWillClose() override;

 private:
  struct Baseline {
    double energy = 0.0;
    Vector angularMomentum;
  };

  void buildWindow();
  void sample();
  void redraw();

  GraphHistory history_;
  std::optional<Baseline> baseline_;
  std::vector<PlotWidget*> plots_;
  std::vector<QAction*> plotChoices_;
};
