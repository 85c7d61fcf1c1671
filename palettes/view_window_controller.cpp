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

namespace {

const char* traceReferenceItem(TraceReference reference) {
  switch (reference) {
    case TraceReference::TrackedBody:
      return "tracestrackedbody";
    case TraceReference::CenterOfMass:
      return "tracescom";
    case TraceReference::World:
      break;
  }
  return "tracesworld";
}

}  // namespace

ViewWindowController::ViewWindowController(PaletteHost& host, QObject* parent)
    : PaletteController(host, QStringLiteral("ViewPalette"), tr("View"), parent) {
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
  tracesrelative_ = makePopUp("tracesrelative", {{"tracesworld", tr("World")},
                                                 {"tracestrackedbody", tr("Tracked body")},
                                                 {"tracescom", tr("Centre of mass")}});
  vectors_ = makePopUp("vectors", {{"vtrue", tr("On")}, {"vfalse", tr("Off")}});
  predictpaths_ =
      makePopUp("predictpaths", {{"predicttrue", tr("On")}, {"predictfalse", tr("Off")}});
  predicttime_ = makeTextField("predicttime");

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
  form->addRow(tr("Traces relative to"), tracesrelative_);
  form->addRow(tr("Vectors"), vectors_);
  form->addRow(tr("Predicted paths"), predictpaths_);
  form->addRow(tr("Prediction time"), predicttime_);
  windowLayout()->addLayout(form);
}

void ViewWindowController::windowWillClose() {
  host_.showViewPaletteFromMenu(this);
}

void ViewWindowController::setCEnabled(bool enabled) {
  for (QWidget* control : std::initializer_list<QWidget*>{cx_,           cy_,
                                                          cz_,           fx_,
                                                          fy_,           fz_,
                                                          gridcolor_,    gridenable_,
                                                          gridspacing_,  name_,
                                                          tp_,           tr_,
                                                          trackball_,    ty_,
                                                          type_,         traceenable_,
                                                          vectors_,      bodytotrack_,
                                                          autodistance_, predictpaths_,
                                                          predicttime_,  tracesrelative_}) {
    setControlEnabled(control, enabled);
  }
}

void ViewWindowController::getValues() {
  View* v = host_.currentView();
  if (v == nullptr) {
    return;
  }
  const QString name = QString::fromUtf8(v->name);
  showText(name_, name);
  showText(gridspacing_, formatReal(v->gridlineSpacing));
  showVector(cx_, cy_, cz_, v->cameraPosition);
  showVector(fx_, fy_, fz_, v->cameraFocus);

  const Vector rollPitchYaw = v->trackball->rotation.toRollPitchYaw();
  showText(tr_, formatReal(radToDeg(rollPitchYaw.x)));
  showText(tp_, formatReal(radToDeg(rollPitchYaw.y)));
  showText(ty_, formatReal(radToDeg(rollPitchYaw.z)));
  showText(autodistance_, formatReal(v->cameraAutodistance));

  showFlag(trackball_, v->trackballEnabled, "trackballtrue", "trackballfalse");
  showFlag(gridenable_, v->gridlineEnabled, "gridtrue", "gridfalse");
  showFlag(traceenable_, v->showTraceLines, "tracetrue", "tracefalse");
  showFlag(vectors_, v->showVectors, "vtrue", "vfalse");
  showFlag(predictpaths_, v->showPredictedPaths, "predicttrue", "predictfalse");
  showText(predicttime_, formatReal(v->predictionTime));
  selectItem(tracesrelative_, traceReferenceItem(v->traceReference));
  gridcolor_->setComponents(v->gridlineColor);

  if (QWidget* viewWindow = host_.currentViewWindow()) {
    host_.setWindowTitleAndMinSize(viewWindow, name);
  }
  showTrackingMode(*v);

  const Body* tracked = host_.world().findBodyById(v->trackBodyID);
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
  View* v = host_.currentView();
  if (v == nullptr) {
    return;
  }
  if (!readVectorComponent(sender, cx_, cy_, cz_, v->cameraPosition) &&
      !readVectorComponent(sender, fx_, fy_, fz_, v->cameraFocus)) {
    commitSetting(*v, sender);
  }
  getValues();
}

void ViewWindowController::commitSetting(View& v, QObject* sender) {
  if (sender == trackball_) {
    readFlag(trackball_, "trackballtrue", "trackballfalse", v.trackballEnabled);
  } else if (sender == tr_ || sender == tp_ || sender == ty_) {
    // The three angles make one orientation: any of them commits all three.
    v.trackball->rotation.setRollPitchYaw(degToRad(readReal(tr_->text())),
                                          degToRad(readReal(tp_->text())),
                                          degToRad(readReal(ty_->text())));
  } else if (sender == gridenable_) {
    readFlag(gridenable_, "gridtrue", "gridfalse", v.gridlineEnabled);
  } else if (sender == traceenable_) {
    readFlag(traceenable_, "tracetrue", "tracefalse", v.showTraceLines);
  } else if (sender == tracesrelative_) {
    for (const TraceReference reference :
         {TraceReference::World, TraceReference::TrackedBody, TraceReference::CenterOfMass}) {
      if (itemSelected(tracesrelative_, traceReferenceItem(reference))) {
        v.traceReference = reference;
      }
    }
  } else if (sender == vectors_) {
    readFlag(vectors_, "vtrue", "vfalse", v.showVectors);
  } else if (sender == gridspacing_) {
    v.gridlineSpacing = readReal(gridspacing_->text());
  } else if (sender == gridcolor_) {
    const std::array<float, 3> rgb = gridcolor_->components();
    std::copy(rgb.begin(), rgb.end(), v.gridlineColor);
  } else if (sender == name_) {
    copyName(v.name, name_->text().toStdString());
  } else if (sender == type_) {
    if (itemSelected(type_, "viewtrackcom")) {
      v.trackCenterOfMass = true;
      v.trackBody = false;
    } else if (itemSelected(type_, "viewuserdefined")) {
      v.trackCenterOfMass = false;
      v.trackBody = false;
    } else if (itemSelected(type_, "viewtrackbody")) {
      v.trackCenterOfMass = false;
      v.trackBody = true;
    }
  } else if (sender == bodytotrack_) {
    // An unknown name leaves the tracked body as it was.
    if (const Body* body = host_.world().findBodyByName(bodytotrack_->text().toStdString())) {
      v.trackBodyID = body->id;
    }
  } else if (sender == autodistance_) {
    v.cameraAutodistance = readReal(autodistance_->text());
  } else if (sender == predictpaths_) {
    readFlag(predictpaths_, "predicttrue", "predictfalse", v.showPredictedPaths);
  } else if (sender == predicttime_) {
    v.predictionTime = readReal(predicttime_->text());
  }
}
