#include "palettes/simulation_window_controller.h"

#include <QComboBox>
#include <QFormLayout>
#include <QFrame>
#include <QGridLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "engine/world.h"
#include "engine/world_fields.h"
#include "palettes/number_text.h"
#include "palettes/palette_host.h"

SimulationWindowController::SimulationWindowController(PaletteHost& host, QObject* parent)
    : PaletteController(host, QStringLiteral("SimPalette"), tr("Simulation"), parent) {
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
  // Each control but the collision model shows and commits one row of the
  // world's table; the rows give the labels.
  const auto table = worldFields();
  const auto bind = [&](const WorldField* field, QWidget* control) {
    fields_.push_back(fieldControl(control, field));
    addFieldRow(form, *field, {control});
  };
  bind(fieldOf(table, &World::name), name_);
  bind(fieldOf(table, &World::gravitationalConstant), g_);
  addFieldRow(form, *fieldOf(table, &World::merge), {collisiontype_});
  bind(fieldOf(table, &World::restitution), e_);
  bind(fieldOf(table, &World::timeStep), timestep_);
  fields_.push_back(
      flagControl(adaptive_, fieldOf(table, &World::adaptive), "adaptivetrue", "adaptivefalse"));
  addFieldRow(form, *fieldOf(table, &World::adaptive), {adaptive_});
  bind(fieldOf(table, &World::millisecondsPerUpdate), speed_);
  bind(fieldOf(table, &World::traceHistoryPoints), tracehistory_);

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
  host_.showSimulationPaletteFromMenu(this);
}

void SimulationWindowController::setControlsState() {
  if (host_.editing()) {
    runButton_->setEnabled(false);
    stepButton_->setEnabled(false);
    editButton_->setText(tr("Leave design mode"));
  } else if (host_.running()) {
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
  const World& w = host_.world();
  for (const FieldControl<World>& c : fields_) {
    showField(c, w);
  }
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
  host_.commitWorldEdit([&] {
    if (sender == collisiontype_) {
      commitCollisionModel();
    } else if (const FieldControl<World>* c = controlOf<World>(fields_, sender)) {
      if (c->control == speed_) {
        // The controller bounds the speed, stores it and re-arms a running
        // clock.
        if (const auto speed = controlValue(*c, host_.world())) {
          host_.setWorldSpeed(std::get<float>(*speed));
        }
      } else {
        commitField(*c, host_.world());
      }
    }
  });
  getValues();
}

void SimulationWindowController::commitCollisionModel() {
  World& w = host_.world();
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
  host_.toggleSim(sender);
}

void SimulationWindowController::clickStepButton(QObject* sender) {
  host_.stepSim(sender);
  getValues();
}

void SimulationWindowController::clickEditButton(QObject* sender) {
  host_.edit(sender);
}

void SimulationWindowController::clickCreateButton(QObject* sender) {
  host_.newBody(sender);
}
