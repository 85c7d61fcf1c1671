#include "palettes/body_window_controller.h"

#include <QComboBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "engine/world.h"
#include "palettes/color_well.h"
#include "palettes/number_text.h"
#include "palettes/palette_host.h"
#include "view/view.h"

BodyWindowController::BodyWindowController(QObject* parent)
    : PaletteController(QStringLiteral("BodyPalette"), tr("Body"), parent) {
  buildWindow();
  // Until a refresh finds a body there is nothing to show.
  setCEnabled(false);
}

void BodyWindowController::buildWindow() {
  name_ = makeTextField("name");
  px_ = makeTextField("px");
  py_ = makeTextField("py");
  pz_ = makeTextField("pz");
  vx_ = makeTextField("vx");
  vy_ = makeTextField("vy");
  vz_ = makeTextField("vz");
  ax_ = makeTextField("ax");
  ay_ = makeTextField("ay");
  az_ = makeTextField("az");
  mass_ = makeTextField("mass");
  radius_ = makeTextField("radius");
  color_ = makeColorWell("color");
  traceenable_ = makePopUp("traceenable", {{"tracetrue", tr("On")}, {"tracefalse", tr("Off")}});
  vectorenable_ = makePopUp("vectorenable", {{"vectortrue", tr("On")}, {"vectorfalse", tr("Off")}});
  deleteButton_ = new QPushButton(tr("Delete body"));
  deleteButton_->setObjectName(QStringLiteral("deleteButton"));
  connect(deleteButton_, &QPushButton::clicked, this, [this] { clickDelete(deleteButton_); });

  auto* form = new QFormLayout;
  form->addRow(tr("Name"), name_);
  form->addRow(tr("Position x, y, z"), makeRow({px_, py_, pz_}));
  form->addRow(tr("Velocity x, y, z"), makeRow({vx_, vy_, vz_}));
  form->addRow(tr("Acceleration x, y, z"), makeRow({ax_, ay_, az_}));
  form->addRow(tr("Mass"), mass_);
  form->addRow(tr("Radius"), radius_);
  form->addRow(tr("Colour"), color_);
  form->addRow(tr("Trace"), traceenable_);
  form->addRow(tr("Vectors"), vectorenable_);
  windowLayout()->addLayout(form);
  windowLayout()->addWidget(deleteButton_, 0, Qt::AlignRight);
}

void BodyWindowController::windowWillClose() {
  if (PaletteHost* host = paletteHost()) {
    host->showBodyPaletteFromMenu(this);
  }
}

Body* BodyWindowController::inspectedBody() {
  PaletteHost* host = paletteHost();
  const View* v = host != nullptr ? host->currentView() : nullptr;
  if (v == nullptr) {
    return nullptr;
  }
  return host->world().findBodyById(v->selectedBodyID);
}

void BodyWindowController::setCEnabled(bool enabled) {
  for (QWidget* control :
       std::initializer_list<QWidget*>{ax_, ay_, az_, color_, deleteButton_, mass_, name_, px_, py_,
                                       pz_, radius_, traceenable_, vectorenable_, vx_, vy_, vz_}) {
    setControlEnabled(control, enabled);
  }
}

void BodyWindowController::getValues() {
  const Body* body = inspectedBody();
  if (body == nullptr) {
    setCEnabled(false);
    return;
  }
  setCEnabled(true);
  showText(name_, QString::fromUtf8(body->name));
  showVector(px_, py_, pz_, body->position);
  showVector(vx_, vy_, vz_, body->velocity);
  showVector(ax_, ay_, az_, body->acceleration);
  showText(mass_, formatReal(body->mass));
  showText(radius_, formatReal(body->radius));
  showFlag(traceenable_, body->traceEnable, "tracetrue", "tracefalse");
  showFlag(vectorenable_, body->showVectors, "vectortrue", "vectorfalse");
  color_->setComponents(body->color);
}

void BodyWindowController::setValues(QObject* sender) {
  PaletteHost* host = paletteHost();
  if (host == nullptr || host->currentView() == nullptr) {
    return;
  }
  if (Body* body = inspectedBody()) {
    host->commitBodyEdit(*body, [&] { writeField(*body, sender); });
  }
  getValues();
}

void BodyWindowController::writeField(Body& body, QObject* sender) {
  if (readVectorComponent(sender, px_, py_, pz_, body.position) ||
      readVectorComponent(sender, vx_, vy_, vz_, body.velocity) ||
      readVectorComponent(sender, ax_, ay_, az_, body.acceleration)) {
    return;
  }
  if (sender == radius_) {
    body.radius = readReal(radius_->text());
  } else if (sender == mass_) {
    body.mass = readReal(mass_->text());
  } else if (sender == color_) {
    const std::array<float, 3> rgb = color_->components();
    std::copy(rgb.begin(), rgb.end(), body.color);
  } else if (sender == traceenable_) {
    readFlag(traceenable_, "tracetrue", "tracefalse", body.traceEnable);
  } else if (sender == vectorenable_) {
    readFlag(vectorenable_, "vectortrue", "vectorfalse", body.showVectors);
  } else if (sender == name_) {
    // The controller renames the body's Body-menu item and the body.
    paletteHost()->worldRenameBody(&body, name_->text().toStdString());
  }
}

void BodyWindowController::clickDelete(QObject*) {
  if (const Body* body = inspectedBody()) {
    paletteHost()->deleteBody(body->id);
    // The view keeps its selection; the palette empties at once rather than
    // at the next refresh.
    getValues();
  }
}
