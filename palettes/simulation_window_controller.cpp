#include "palettes/simulation_window_controller.h"

#include <QComboBox>
#include <QFormLayout>
#include <QFrame>
#include <QGridLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "engine/world.h"
#include "palettes/number_text.h"
#include "palettes/palette_host.h"

SimulationWindowController::SimulationWindowController(QObject* parent)
    : PaletteController(QStringLiteral("SimPalette"), tr("Simulation"), parent) {
  buildWindow();
}

void SimulationWindowController::buildWindow() {
  auto* form = new QFormLayout;
  name_ = makeTextField("name");
  g_ = makeTextField("g");
  e_ = makeTextField("e");
  speed_ = makeTextField("speed");
  timestep_ = makeTextField("timestep");
  tracehistory_ = makeTextField("tracehistory");
  adaptive_ = makePopUp("adaptive", {{"adaptivetrue", tr("On")}, {"adaptivefalse", tr("Off")}});
  collisiontype_ =
      makePopUp("collisiontype", {{"collisionelastic", tr("Elastic")},
                                  {"collisioninelasticmerge", tr("Inelastic, merge")},
                                  {"collisioninelasticnomerge", tr("Inelastic, no merge")},
                                  {"collisionother", tr("Other (coefficient e)")}});
  form->addRow(tr("World name"), name_);
  form->addRow(tr("Gravitational constant"), g_);
  form->addRow(tr("Collision model"), collisiontype_);
  form->addRow(tr("Restitution e"), e_);
  form->addRow(tr("Time step"), timestep_);
  form->addRow(tr("Adaptive time step"), adaptive_);
  form->addRow(tr("Milliseconds per update"), speed_);
  form->addRow(tr("Trace history points"), tracehistory_);

  auto* line = new QFrame;
  line->setFrameShape(QFrame::HLine);
  line->setFrameShadow(QFrame::Sunken);
  form->addRow(line);

  energy_ = makeReadOnlyField("energy");
  mx_ = makeReadOnlyField("mx");
  my_ = makeReadOnlyField("my");
  mz_ = makeReadOnlyField("mz");
  elapsedtime_ = makeReadOnlyField("elapsedtime");
  form->addRow(tr("Energy"), energy_);
  form->addRow(tr("Momentum x"), mx_);
  form->addRow(tr("Momentum y"), my_);
  form->addRow(tr("Momentum z"), mz_);
  form->addRow(tr("Elapsed time"), elapsedtime_);
  windowLayout()->addLayout(form);

  runButton_ = new QPushButton(tr("Run simulation"));
  runButton_->setObjectName(QStringLiteral("runButton"));
  stepButton_ = new QPushButton(tr("Step"));
  stepButton_->setObjectName(QStringLiteral("stepButton"));
  editButton_ = new QPushButton(tr("Enter design mode"));
  editButton_->setObjectName(QStringLiteral("editButton"));
  auto* createButton = new QPushButton(tr("Create body"));
  createButton->setObjectName(QStringLiteral("createButton"));
  auto* buttons = new QGridLayout;
  buttons->addWidget(runButton_, 0, 0);
  buttons->addWidget(stepButton_, 0, 1);
  buttons->addWidget(editButton_, 1, 0);
  buttons->addWidget(createButton, 1, 1);
  windowLayout()->addLayout(buttons);

  connect(runButton_, &QPushButton::clicked, this, [this] { clickRunButton(runButton_); });
  connect(stepButton_, &QPushButton::clicked, this, [this] { clickStepButton(stepButton_); });
  connect(editButton_, &QPushButton::clicked, this, [this] { clickEditButton(editButton_); });
  connect(createButton, &QPushButton::clicked, this,
          [this, createButton] { clickCreateButton(createButton); });
}

void SimulationWindowController::willBecomeVisible() {
  setControlsState();
}

void SimulationWindowController::windowWillClose() {
  if (PaletteHost* host = paletteHost()) {
    host->showSimulationPaletteFromMenu(this);
  }
}

void SimulationWindowController::setControlsState() {
  PaletteHost* host = paletteHost();
  if (host == nullptr) {
    return;
  }
  if (host->editing()) {
    runButton_->setEnabled(false);
    stepButton_->setEnabled(false);
    editButton_->setText(tr("Leave design mode"));
  } else if (host->running()) {
    runButton_->setEnabled(true);
    runButton_->setText(tr("Stop simulation"));
    stepButton_->setEnabled(false);
    editButton_->setText(tr("Enter design mode"));
  } else {
    runButton_->setEnabled(true);
    runButton_->setText(tr("Run simulation"));
    stepButton_->setEnabled(true);
    editButton_->setText(tr("Enter design mode"));
  }
}

void SimulationWindowController::getValues() {
  PaletteHost* host = paletteHost();
  if (host == nullptr) {
    return;
  }
  const World& w = host->world();
  showText(name_, QString::fromUtf8(w.name));
  showText(g_, formatReal(w.gravitationalConstant));
  showText(e_, formatReal(w.restitution));
  showText(speed_, formatReal(static_cast<double>(w.millisecondsPerUpdate)));
  showText(timestep_, formatReal(w.timeStep));
  showText(tracehistory_, formatInt(w.traceHistoryPoints));

  showFlag(adaptive_, w.adaptive, "adaptivetrue", "adaptivefalse");
  if (w.merge) {
    selectItem(collisiontype_, "collisioninelasticmerge");
  } else if (userSelectedOtherE_) {
    selectItem(collisiontype_, "collisionother");
  } else if (w.restitution == 0.0) {
    selectItem(collisiontype_, "collisioninelasticnomerge");
  } else if (w.restitution == 1.0) {
    selectItem(collisiontype_, "collisionelastic");
  } else {
    selectItem(collisiontype_, "collisionother");
  }

  showReadOnlyText(energy_, formatReal(w.energy()));
  const Vector momentum = w.momentum();
  showReadOnlyText(mx_, formatReal(momentum.x));
  showReadOnlyText(my_, formatReal(momentum.y));
  showReadOnlyText(mz_, formatReal(momentum.z));
  showReadOnlyText(elapsedtime_, formatReal(w.elapsedTime));
}

void SimulationWindowController::setValues(QObject* sender) {
  PaletteHost* host = paletteHost();
  if (host == nullptr) {
    return;
  }
  host->commitWorldEdit([&] { commitParameter(host->world(), sender); });
  getValues();
}

void SimulationWindowController::commitParameter(World& w, QObject* sender) {
  if (sender == e_) {
    w.restitution = readReal(e_->text());
  } else if (sender == g_) {
    w.gravitationalConstant = readReal(g_->text());
  } else if (sender == speed_) {
    // The controller bounds the speed, stores it and re-arms a running clock.
    paletteHost()->setWorldSpeed(static_cast<float>(readReal(speed_->text())));
  } else if (sender == timestep_) {
    w.timeStep = readReal(timestep_->text());
  } else if (sender == name_) {
    w.setName(name_->text().toStdString());
  } else if (sender == tracehistory_) {
    w.traceHistoryPoints = readInt(tracehistory_->text());
  } else if (sender == adaptive_) {
    readFlag(adaptive_, "adaptivetrue", "adaptivefalse", w.adaptive);
  } else if (sender == collisiontype_) {
    commitCollisionModel();
  }
}

void SimulationWindowController::commitCollisionModel() {
  World& w = paletteHost()->world();
  userSelectedOtherE_ = false;
  if (itemSelected(collisiontype_, "collisionelastic")) {
    w.restitution = 1.0;
    w.merge = false;
  } else if (itemSelected(collisiontype_, "collisioninelasticmerge")) {
    w.restitution = 0.0;
    w.merge = true;
  } else if (itemSelected(collisiontype_, "collisioninelasticnomerge")) {
    w.restitution = 0.0;
    w.merge = false;
  } else if (itemSelected(collisiontype_, "collisionother")) {
    w.merge = false;
    userSelectedOtherE_ = true;
  }
  // The coefficient means nothing to a merge.
  e_->setEnabled(!w.merge);
}

void SimulationWindowController::clickRunButton(QObject* sender) {
  if (PaletteHost* host = paletteHost()) {
    host->toggleSim(sender);
  }
}

void SimulationWindowController::clickStepButton(QObject* sender) {
  if (PaletteHost* host = paletteHost()) {
    host->stepSim(sender);
  }
  getValues();
}

void SimulationWindowController::clickEditButton(QObject* sender) {
  if (PaletteHost* host = paletteHost()) {
    host->edit(sender);
  }
}

void SimulationWindowController::clickCreateButton(QObject* sender) {
  if (PaletteHost* host = paletteHost()) {
    host->newBody(sender);
  }
}
