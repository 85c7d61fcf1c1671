#include "palettes/view_window_controller.h"

#include <QComboBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QVBoxLayout>

#include "engine/world.h"
#include "palettes/color_well.h"
#include "palettes/number_text.h"
#include "palettes/palette_host.h"
#include "view/view.h"

ViewWindowController::ViewWindowController(QObject* parent)
    : PaletteController(QStringLiteral("ViewPalette"), tr("View"), parent) {
  buildWindow();
}

void ViewWindowController::buildWindow() {
  name_ = makeTextField("name");
  cx_ = makeTextField("cx");
  cy_ = makeTextField("cy");
  cz_ = makeTextField("cz");
  fx_ = makeTextField("fx");
  fy_ = makeTextField("fy");
  fz_ = makeTextField("fz");
  tr_ = makeTextField("tr");
  tp_ = makeTextField("tp");
  ty_ = makeTextField("ty");
  trackball_ = makePopUp("trackball", {{"trackballtrue", tr("On")}, {"trackballfalse", tr("Off")}});
  type_ = makePopUp("type", {{"viewtrackcom", tr("Track centre of mass")},
                             {"viewuserdefined", tr("User defined")},
                             {"viewtrackbody", tr("Track body")}});
  bodytotrack_ = makeTextField("bodytotrack");
  autodistance_ = makeTextField("autodistance");
  gridenable_ = makePopUp("gridenable", {{"gridtrue", tr("On")}, {"gridfalse", tr("Off")}});
  gridspacing_ = makeTextField("gridspacing");
  gridcolor_ = makeColorWell("gridcolor");
  traceenable_ = makePopUp("traceenable", {{"tracetrue", tr("On")}, {"tracefalse", tr("Off")}});
  vectors_ = makePopUp("vectors", {{"vtrue", tr("On")}, {"vfalse", tr("Off")}});

  auto* form = new QFormLayout;
  form->addRow(tr("View name"), name_);
  form->addRow(tr("Camera x, y, z"), makeRow({cx_, cy_, cz_}));
  form->addRow(tr("Focus x, y, z"), makeRow({fx_, fy_, fz_}));
  form->addRow(tr("Roll, pitch, yaw (°)"), makeRow({tr_, tp_, ty_}));
  form->addRow(tr("Trackball"), trackball_);
  form->addRow(tr("Camera"), type_);
  form->addRow(tr("Body to track"), bodytotrack_);
  form->addRow(tr("Tracking distance"), autodistance_);
  form->addRow(tr("Grid"), gridenable_);
  form->addRow(tr("Grid spacing"), gridspacing_);
  form->addRow(tr("Grid colour"), gridcolor_);
  form->addRow(tr("Traces"), traceenable_);
  form->addRow(tr("Vectors"), vectors_);
  windowLayout()->addLayout(form);
}

void ViewWindowController::windowWillClose() {
  if (PaletteHost* host = paletteHost()) {
    host->showViewPaletteFromMenu(this);
  }
}

void ViewWindowController::setCEnabled(bool enabled) {
  for (QWidget* control : std::initializer_list<QWidget*>{
           cx_, cy_, cz_, fx_, fy_, fz_, gridcolor_, gridenable_, gridspacing_, name_, tp_, tr_,
           trackball_, ty_, type_, traceenable_, vectors_, bodytotrack_, autodistance_}) {
    setControlEnabled(control, enabled);
  }
}

void ViewWindowController::getValues() {
  PaletteHost* host = paletteHost();
  View* v = host != nullptr ? host->currentView() : nullptr;
  if (v == nullptr) {
    return;
  }
  const QString name = QString::fromUtf8(v->name);
  showText(name_, name);
  showText(gridspacing_, formatReal(v->gridlineSpacing));
  showText(cx_, formatReal(v->cameraPosition.x));
  showText(cy_, formatReal(v->cameraPosition.y));
  showText(cz_, formatReal(v->cameraPosition.z));
  showText(fx_, formatReal(v->cameraFocus.x));
  showText(fy_, formatReal(v->cameraFocus.y));
  showText(fz_, formatReal(v->cameraFocus.z));

  const Vector rollPitchYaw = v->trackball->rotation.toRollPitchYaw();
  showText(tr_, formatReal(radToDeg(rollPitchYaw.x)));
  showText(tp_, formatReal(radToDeg(rollPitchYaw.y)));
  showText(ty_, formatReal(radToDeg(rollPitchYaw.z)));
  showText(autodistance_, formatReal(v->cameraAutodistance));

  selectItem(trackball_, v->trackballEnabled ? "trackballtrue" : "trackballfalse");
  selectItem(gridenable_, v->gridlineEnabled ? "gridtrue" : "gridfalse");
  selectItem(traceenable_, v->showTraceLines ? "tracetrue" : "tracefalse");
  selectItem(vectors_, v->showVectors ? "vtrue" : "vfalse");
  gridcolor_->setComponents(v->gridlineColor);

  if (QWidget* viewWindow = host->currentViewWindow()) {
    host->setWindowTitleAndMinSize(viewWindow, name);
  }
  showTrackingMode(*v);

  const Body* tracked = host->world().findBodyById(v->trackBodyID);
  showText(bodytotrack_, tracked != nullptr ? QString::fromUtf8(tracked->name) : QString());
}

void ViewWindowController::showTrackingMode(const View& v) {
  // Following a body wins when a datafile sets both flags, as in the camera.
  if (v.trackBody) {
    autodistance_->setEnabled(true);
    bodytotrack_->setEnabled(true);
    selectItem(type_, "viewtrackbody");
  } else if (v.trackCenterOfMass) {
    autodistance_->setEnabled(true);
    bodytotrack_->setEnabled(false);
    selectItem(type_, "viewtrackcom");
  } else {
    bodytotrack_->setEnabled(false);
    autodistance_->setEnabled(false);
    selectItem(type_, "viewuserdefined");
  }
}

void ViewWindowController::setValues(QObject* sender) {
  PaletteHost* host = paletteHost();
  View* v = host != nullptr ? host->currentView() : nullptr;
  if (v == nullptr) {
    return;
  }
  if (sender == cx_) {
    v->cameraPosition.x = readReal(cx_->text());
  } else if (sender == cy_) {
    v->cameraPosition.y = readReal(cy_->text());
  } else if (sender == cz_) {
    v->cameraPosition.z = readReal(cz_->text());
  } else if (sender == fx_) {
    v->cameraFocus.x = readReal(fx_->text());
  } else if (sender == fy_) {
    v->cameraFocus.y = readReal(fy_->text());
  } else if (sender == fz_) {
    v->cameraFocus.z = readReal(fz_->text());
  } else if (sender == trackball_) {
    if (itemSelected(trackball_, "trackballtrue")) {
      v->trackballEnabled = true;
    } else if (itemSelected(trackball_, "trackballfalse")) {
      v->trackballEnabled = false;
    }
  } else if (sender == tr_ || sender == tp_ || sender == ty_) {
    // The three angles make one orientation: any of them commits all three.
    v->trackball->rotation.setRollPitchYaw(degToRad(readReal(tr_->text())),
                                           degToRad(readReal(tp_->text())),
                                           degToRad(readReal(ty_->text())));
  } else if (sender == gridenable_) {
    if (itemSelected(gridenable_, "gridtrue")) {
      v->gridlineEnabled = true;
    } else if (itemSelected(gridenable_, "gridfalse")) {
      v->gridlineEnabled = false;
    }
  } else if (sender == traceenable_) {
    if (itemSelected(traceenable_, "tracetrue")) {
      v->showTraceLines = true;
    } else if (itemSelected(traceenable_, "tracefalse")) {
      v->showTraceLines = false;
    }
  } else if (sender == vectors_) {
    if (itemSelected(vectors_, "vtrue")) {
      v->showVectors = true;
    } else if (itemSelected(vectors_, "vfalse")) {
      v->showVectors = false;
    }
  } else if (sender == gridspacing_) {
    v->gridlineSpacing = readReal(gridspacing_->text());
  } else if (sender == gridcolor_) {
    const std::array<float, 3> rgb = gridcolor_->components();
    std::copy(rgb.begin(), rgb.end(), v->gridlineColor);
  } else if (sender == name_) {
    copyName(v->name, name_->text().toStdString());
  } else if (sender == type_) {
    if (itemSelected(type_, "viewtrackcom")) {
      v->trackCenterOfMass = true;
      v->trackBody = false;
    } else if (itemSelected(type_, "viewuserdefined")) {
      v->trackCenterOfMass = false;
      v->trackBody = false;
    } else if (itemSelected(type_, "viewtrackbody")) {
      v->trackCenterOfMass = false;
      v->trackBody = true;
    }
  } else if (sender == bodytotrack_) {
    // An unknown name leaves the tracked body as it was.
    if (const Body* body = host->world().findBodyByName(bodytotrack_->text().toStdString())) {
      v->trackBodyID = body->id;
    }
  } else if (sender == autodistance_) {
    v->cameraAutodistance = readReal(autodistance_->text());
  }
  getValues();
}
