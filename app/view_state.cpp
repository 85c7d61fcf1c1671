#include "view_state.h"

#include <QLatin1String>
#include <span>

#include "engine/quaternion.h"
#include "view/view.h"

namespace {

// How a key's value is kept: a real, a single-precision real (widened when
// written, narrowed when read), a flag, a 32-bit integer, a size in pixels
// (written as a whole number, read as single precision), the name, or the
// trace reference (by its name; a name it does not know leaves it).
enum class Kind { Real, Single, Flag, Integer, Pixels, Name, TraceReference };

// Where a key's value lives, in the view or in the extras.
using Field = void* (*)(View&, ViewDictExtras&);

struct ViewKey {
  QLatin1String key;
  Kind kind;
  Field field;
};

// The keys of a view dictionary, in the order in which they are written.
const ViewKey kViewKeys[] = {
    {QLatin1String("Camera position X"), Kind::Real,
     [](View& v, ViewDictExtras&) -> void* { return &v.cameraPosition.x; }},
    {QLatin1String("Camera position Y"), Kind::Real,
     [](View& v, ViewDictExtras&) -> void* { return &v.cameraPosition.y; }},
    {QLatin1String("Camera position Z"), Kind::Real,
     [](View& v, ViewDictExtras&) -> void* { return &v.cameraPosition.z; }},
    {QLatin1String("Camera focus X"), Kind::Real,
     [](View& v, ViewDictExtras&) -> void* { return &v.cameraFocus.x; }},
    {QLatin1String("Camera focus Y"), Kind::Real,
     [](View& v, ViewDictExtras&) -> void* { return &v.cameraFocus.y; }},
    {QLatin1String("Camera focus Z"), Kind::Real,
     [](View& v, ViewDictExtras&) -> void* { return &v.cameraFocus.z; }},
    {QLatin1String("Trackball enable"), Kind::Flag,
     [](View& v, ViewDictExtras&) -> void* { return &v.trackballEnabled; }},
    {QLatin1String("Trackball roll"), Kind::Real,
     [](View&, ViewDictExtras& e) -> void* { return &e.roll; }},
    {QLatin1String("Trackball pitch"), Kind::Real,
     [](View&, ViewDictExtras& e) -> void* { return &e.pitch; }},
    {QLatin1String("Trackball yaw"), Kind::Real,
     [](View&, ViewDictExtras& e) -> void* { return &e.yaw; }},
    {QLatin1String("Track center of mass enable"), Kind::Flag,
     [](View& v, ViewDictExtras&) -> void* { return &v.trackCenterOfMass; }},
    {QLatin1String("Camera autodistance"), Kind::Real,
     [](View& v, ViewDictExtras&) -> void* { return &v.cameraAutodistance; }},
    {QLatin1String("Track body enable"), Kind::Flag,
     [](View& v, ViewDictExtras&) -> void* { return &v.trackBody; }},
    {QLatin1String("Track body ID"), Kind::Integer,
     [](View& v, ViewDictExtras&) -> void* { return &v.trackBodyID; }},
    {QLatin1String("Gridline enable"), Kind::Flag,
     [](View& v, ViewDictExtras&) -> void* { return &v.gridlineEnabled; }},
    {QLatin1String("Show trace lines"), Kind::Flag,
     [](View& v, ViewDictExtras&) -> void* { return &v.showTraceLines; }},
    {QLatin1String("Show vectors"), Kind::Flag,
     [](View& v, ViewDictExtras&) -> void* { return &v.showVectors; }},
    {QLatin1String("Gridline spacing"), Kind::Real,
     [](View& v, ViewDictExtras&) -> void* { return &v.gridlineSpacing; }},
    {QLatin1String("Gridline color R"), Kind::Single,
     [](View& v, ViewDictExtras&) -> void* { return &v.gridlineColor[0]; }},
    {QLatin1String("Gridline color G"), Kind::Single,
     [](View& v, ViewDictExtras&) -> void* { return &v.gridlineColor[1]; }},
    {QLatin1String("Gridline color B"), Kind::Single,
     [](View& v, ViewDictExtras&) -> void* { return &v.gridlineColor[2]; }},
    {QLatin1String("Selected body ID"), Kind::Integer,
     [](View& v, ViewDictExtras&) -> void* { return &v.selectedBodyID; }},
    {QLatin1String("Window width"), Kind::Pixels,
     [](View&, ViewDictExtras& e) -> void* { return &e.width; }},
    {QLatin1String("Window height"), Kind::Pixels,
     [](View&, ViewDictExtras& e) -> void* { return &e.height; }},
    {QLatin1String("View name"), Kind::Name,
     [](View&, ViewDictExtras& e) -> void* { return &e.name; }},
    {QLatin1String("Traces relative to"), Kind::TraceReference,
     [](View& v, ViewDictExtras&) -> void* { return &v.traceReference; }},
};

// The predicted-path settings, written after the others and only when a
// view uses them, so that the datafiles of views that never showed predicted
// paths keep exactly the keys they always had. The design state keeps them
// this way across a run.
const ViewKey kPredictionKeys[] = {
    {QLatin1String("Show predicted paths"), Kind::Flag,
     [](View& v, ViewDictExtras&) -> void* { return &v.showPredictedPaths; }},
    {QLatin1String("Prediction time"), Kind::Real,
     [](View& v, ViewDictExtras&) -> void* { return &v.predictionTime; }},
};

bool usesPrediction(const View& v) {
  return v.showPredictedPaths || !sameBits(v.predictionTime, View::kDefaultPredictionTime);
}

// The entry of either table with the given key, or null.
const ViewKey* findKey(const QString& key) {
  for (const auto& table :
       {std::span<const ViewKey>(kViewKeys), std::span<const ViewKey>(kPredictionKeys)}) {
    for (const ViewKey& entry : table) {
      if (key == entry.key) {
        return &entry;
      }
    }
  }
  return nullptr;
}

PlistValue valueOf(Kind kind, void* field) {
  switch (kind) {
    case Kind::Real:
      return PlistValue::real(*static_cast<double*>(field));
    case Kind::Single:
      return PlistValue::real(static_cast<double>(*static_cast<float*>(field)));
    case Kind::Flag:
      return PlistValue::boolean(*static_cast<bool*>(field));
    case Kind::Integer:
      return PlistValue::integer(*static_cast<int*>(field));
    case Kind::Pixels:
      // Truncated toward zero and kept in the 32-bit range; 0 for NaN.
      return PlistValue::integer(
          saturateToInt32(realToInteger(*static_cast<double*>(field)).value_or(0)));
    case Kind::TraceReference:
      return PlistValue::string(
          QLatin1String(traceReferenceName(*static_cast<TraceReference*>(field))));
    case Kind::Name:
      break;
  }
  return PlistValue::string(static_cast<std::optional<QString>*>(field)->value_or(QString()));
}

void apply(Kind kind, void* field, const PlistValue& value) {
  switch (kind) {
    case Kind::Real:
      if (auto r = value.toReal()) {
        *static_cast<double*>(field) = *r;
      }
      break;
    case Kind::Single:
      if (auto r = value.toReal()) {
        *static_cast<float*>(field) = narrowToFloat(*r);
      }
      break;
    case Kind::Pixels:
      if (auto r = value.toReal()) {
        *static_cast<double*>(field) = static_cast<double>(narrowToFloat(*r));
      }
      break;
    case Kind::Flag:
      if (auto b = value.toBool()) {
        *static_cast<bool*>(field) = *b;
      }
      break;
    case Kind::Integer:
      if (auto i = value.toInteger()) {
        *static_cast<int*>(field) = saturateToInt32(*i);
      }
      break;
    case Kind::Name:
      if (auto t = value.toText()) {
        *static_cast<std::optional<QString>*>(field) = *t;
      }
      break;
    case Kind::TraceReference:
      if (auto t = value.toText()) {
        auto* reference = static_cast<TraceReference*>(field);
        *reference = traceReferenceNamed(t->toStdString()).value_or(*reference);
      }
      break;
  }
}

}  // namespace

PlistDict writeViewDict(const View& view) {
  // The table gives write access to fields that are only read here.
  View& v = const_cast<View&>(view);
  const Vector angles = v.trackball->rotation.toRollPitchYaw();
  ViewDictExtras extras{angles.x,
                        angles.y,
                        angles.z,
                        v.trackball->width,
                        v.trackball->height,
                        QString::fromUtf8(v.name)};
  PlistDict d;
  for (const ViewKey& entry : kViewKeys) {
    d.insert(entry.key, valueOf(entry.kind, entry.field(v, extras)));
  }
  if (usesPrediction(v)) {
    for (const ViewKey& entry : kPredictionKeys) {
      d.insert(entry.key, valueOf(entry.kind, entry.field(v, extras)));
    }
  }
  return d;
}

ViewDictExtras applyViewDict(View& v, const PlistDict& dict) {
  ViewDictExtras extras;
  for (const PlistEntry& entry : dict.entries()) {
    if (const ViewKey* key = findKey(entry.key)) {
      apply(key->kind, key->field(v, extras), entry.value);
    }
  }
  return extras;
}
