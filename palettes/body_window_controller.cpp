#include "palettes/body_window_controller.h"

#include <QComboBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "engine/body_fields.h"
#include "engine/world.h"
#include "palettes/color_well.h"
#include "palettes/number_text.h"
#include "palettes/palette_host.h"
#include "view/view.h"

BodyWindowController::BodyWindowController(PaletteHost& host, QObject* parent)
    : PaletteController(host, QStringLiteral("BodyPalette"), tr("Body"), parent) {
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

  // Each control shows and commits one value of the body table's rows, in
  // the order of the refresh.
  const auto table = bodyFields();
  auto* form = new QFormLayout;
  const auto bind = [&](const BodyField* field, std::initializer_list<QWidget*> controls) {
    int component = 0;
    for (QWidget* control : controls) {
      fields_.push_back(fieldControl(control, field, component++));
    }
    addFieldRow(form, *field, controls);
  };
  bind(fieldOf(table, &Body::name), {name_});
  bind(fieldOf(table, &Body::position), {px_, py_, pz_});
  bind(fieldOf(table, &Body::velocity), {vx_, vy_, vz_});
  bind(fieldOf(table, &Body::acceleration), {ax_, ay_, az_});
  bind(fieldOf(table, &Body::mass), {mass_});
  bind(fieldOf(table, &Body::radius), {radius_});
  bind(fieldOf(table, &Body::color), {color_});
  const auto bindFlag = [&](const BodyField* field, QComboBox* popUp, const char* trueItem,
                            const char* falseItem) {
    fields_.push_back(flagControl(popUp, field, trueItem, falseItem));
    addFieldRow(form, *field, {popUp});
  };
  bindFlag(fieldOf(table, &Body::traceEnable), traceenable_, "tracetrue", "tracefalse");
  bindFlag(fieldOf(table, &Body::showVectors), vectorenable_, "vectortrue", "vectorfalse");
  windowLayout()->addLayout(form);
  windowLayout()->addWidget(deleteButton_, 0, Qt::AlignRight);
}

void BodyWindowController::windowWillClose() {
  host_.showBodyPaletteFromMenu(this);
}

Body* BodyWindowController::inspectedBody() const {
  const View* v = host_.currentView();
  if (v == nullptr) {
    return nullptr;
  }
  return host_.world().findBodyById(v->selectedBodyID);
}

void BodyWindowController::setCEnabled(bool enabled) {
  for (const FieldControl<Body>& c : fields_) {
    setControlEnabled(c.control, enabled);
  }
  setControlEnabled(deleteButton_, enabled);
}

void BodyWindowController::getValues() {
  const Body* body = inspectedBody();
  if (body == nullptr) {
    setCEnabled(false);
    return;
  }
  setCEnabled(true);
  for (const FieldControl<Body>& c : fields_) {
    showField(c, *body);
  }
}

void BodyWindowController::setValues(QObject* sender) {
  if (host_.currentView() == nullptr) {
    return;
  }
  const FieldControl<Body>* c = controlOf<Body>(fields_, sender);
  Body* body = inspectedBody();
  if (c != nullptr && body != nullptr) {
    host_.commitBodyEdit(*body, [&] {
      if (c->control == name_) {
        // The controller renames the body's Body-menu item and the body.
        host_.worldRenameBody(body, name_->text().toStdString());
      } else {
        commitField(*c, *body);
      }
    });
  }
  getValues();
}

void BodyWindowController::clickDelete(QObject*) {
  if (const Body* body = inspectedBody()) {
    host_.deleteBody(body->id);
    // The view keeps its selection; the palette empties at once rather than
    // at the next refresh.
    getValues();
  }
}
