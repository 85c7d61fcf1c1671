#include "palettes/graphs_window_controller.h"

#include <QAction>
#include <QHBoxLayout>
#include <QMenu>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>
#include <cmath>
#include <limits>

#include "document/output_file.h"
#include "engine/world.h"
#include "palettes/palette_host.h"
#include "palettes/panels.h"
#include "palettes/plot_widget.h"
#include "view/trace_shifts.h"
#include "view/view.h"

namespace {

constexpr double kNoValue = std::numeric_limits<double>::quiet_NaN();

// |a - b| / |b|, or no value when b is zero (nothing to be relative to).
double relativeError(double a, double b) {
  return b != 0.0 ? std::fabs(a - b) / std::fabs(b) : kNoValue;
}

struct PlotChoice {
  const char* name;
  bool shown;
  PlotContent content;
};

// Colours that stay apart on a light or a dark background.
const QColor kOrange(217, 95, 2);
const QColor kTeal(27, 158, 119);
const QColor kPurple(117, 112, 179);
const QColor kPink(231, 41, 138);
const QColor kGreen(102, 166, 30);
const QColor kMustard(200, 150, 0);

std::vector<PlotChoice> plotChoices() {
  using S = GraphSeries;
  const auto tr = [](const char* text) { return GraphsWindowController::tr(text); };
  return {
      {"energy", true, {tr("Total energy"), {{S::Energy, tr("E"), kOrange}}}},
      {"errors",
       true,
       {tr("Relative error"),
        {{S::EnergyError, tr("energy"), kOrange},
         {S::AngularMomentumError, tr("ang. mom."), kTeal}},
        true}},
      {"momentum", false, {tr("Momentum |P|"), {{S::Momentum, tr("|P|"), kPurple}}}},
      {"angularMomentum",
       true,
       {tr("Angular momentum |L|"), {{S::AngularMomentum, tr("|L|"), kTeal}}}},
      {"bodies", true, {tr("Bodies"), {{S::Bodies, tr("bodies"), kGreen}}, false, true}},
      {"distance",
       true,
       {tr("Selected body: distance from tracked body or centre of mass"),
        {{S::Distance, tr("distance"), kPink}}}},
      {"speed", false, {tr("Selected body: speed"), {{S::Speed, tr("speed"), kMustard}}}},
  };
}

int activeBodies(const World& w) {
  int n = 0;
  forEachItem<Body>(*w.bodies, [&n](const Body& b) { n += b.active ? 1 : 0; });
  return n;
}

}  // namespace

GraphsWindowController::GraphsWindowController(PaletteHost& host, QObject* parent)
    : PaletteController(host, QStringLiteral("GraphsPalette"), tr("Graphs"), parent) {
  buildWindow();
}

GraphsWindowController::~GraphsWindowController() = default;

void GraphsWindowController::buildWindow() {
  auto* choose = new QToolButton;
  choose->setObjectName(QStringLiteral("plotChoice"));
  choose->setText(tr("Plots"));
  choose->setPopupMode(QToolButton::InstantPopup);
  auto* menu = new QMenu(choose);
  choose->setMenu(menu);
  auto* exportButton = new QPushButton(tr("Export Data…"));
  exportButton->setObjectName(QStringLiteral("exportData"));
  connect(exportButton, &QPushButton::clicked, this,
          [this, exportButton] { exportData(exportButton); });
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(choose);
  buttons->addStretch(1);
  buttons->addWidget(exportButton);
  windowLayout()->addLayout(buttons);

  for (PlotChoice& choice : plotChoices()) {
    auto* plot = new PlotWidget(history_, choice.content);
    plot->setObjectName(QLatin1String(choice.name) + QStringLiteral("Plot"));
    plot->setVisible(choice.shown);
    windowLayout()->addWidget(plot, 1);
    QAction* item = menu->addAction(choice.content.title);
    item->setObjectName(QLatin1String(choice.name) + QStringLiteral("Shown"));
    item->setCheckable(true);
    item->setChecked(choice.shown);
    connect(item, &QAction::toggled, plot, &QWidget::setVisible);
    plots_.push_back(plot);
    plotChoices_.push_back(item);
  }
  window()->resize(520, 720);
}

void GraphsWindowController::windowWillClose() {
  host_.showGraphsPaletteFromMenu(this);
}

void GraphsWindowController::setValues(QObject* /*sender*/) {}

void GraphsWindowController::getValues() {
  if (host_.editing()) {
    return;
  }
  const double time = host_.world().elapsedTime;
  if (!history_.empty() && time < history_.times().back()) {
    clearHistory();
  }
  if (history_.empty() || time != history_.times().back()) {
    sample();
    redraw();
  }
}

void GraphsWindowController::clearHistory() {
  history_.clear();
  baseline_.reset();
  redraw();
}

void GraphsWindowController::takeBaseline() {
  history_.clear();
  baseline_ = Baseline{host_.world().energy(), host_.world().angularMomentum()};
  sample();
  redraw();
}

void GraphsWindowController::sample() {
  const World& w = host_.world();
  GraphSample s;
  s.time = w.elapsedTime;
  const double energy = w.energy();
  const Vector l = w.angularMomentum();
  if (!baseline_) {
    baseline_ = Baseline{energy, l};
  }
  s[GraphSeries::Energy] = energy;
  s[GraphSeries::EnergyError] = relativeError(energy, baseline_->energy);
  s[GraphSeries::Momentum] = w.momentum().length();
  s[GraphSeries::AngularMomentum] = l.length();
  const double l0 = baseline_->angularMomentum.length();
  s[GraphSeries::AngularMomentumError] =
      l0 != 0.0 ? (l - baseline_->angularMomentum).length() / l0 : kNoValue;
  s[GraphSeries::Bodies] = activeBodies(w);
  s[GraphSeries::Distance] = kNoValue;
  s[GraphSeries::Speed] = kNoValue;
  const View* v = host_.currentView();
  const Body* selected =
      v != nullptr && v->selectedBodyID != 0 ? w.findBodyById(v->selectedBodyID) : nullptr;
  if (selected != nullptr) {
    // The selected body's distance from itself would say nothing: it is
    // then measured from the centre of mass, as when no body is tracked.
    const Body* reference = trackedBody(*v, w);
    const Vector from =
        reference != nullptr && reference != selected ? reference->position : w.centerOfMass();
    s[GraphSeries::Distance] = (selected->position - from).length();
    s[GraphSeries::Speed] = selected->velocity.length();
  }
  history_.append(s);
}

void GraphsWindowController::redraw() {
  for (PlotWidget* plot : plots_) {
    if (plot->isVisible()) {
      plot->update();
    }
  }
}

void GraphsWindowController::exportData(QObject* /*sender*/) {
  Panels* dialogs = host_.panels();
  if (dialogs == nullptr) {
    return;
  }
  const std::optional<QString> path =
      dialogs->runSaveFilePanel(window(), tr("Export Data"), QStringLiteral("csv"));
  if (!path) {
    return;
  }
  const std::string csv = history_.csv();
  // Written to a new file that replaces the old one only when complete, so
  // a failure leaves any earlier file as it was.
  OutputFile out;
  if (!out.open(*path, FifoOpen::FailWithoutReader) || !out.write(csv.data(), csv.size()) ||
      !out.commit()) {
    dialogs->alert(window(), tr("Export Data"),
                   tr("Could not write \u201c%1\u201d: %2.").arg(*path, out.errorString()));
  }
}
