#include "view_fields.h"

#include "document/field_io.h"
#include "engine/quaternion.h"
#include "view.h"

namespace {

constexpr ChoiceMember<View> kTraceReference = {
    [](const View& v) { return static_cast<int32_t>(v.traceReference); },
    [](View& v, int32_t index) { v.traceReference = static_cast<TraceReference>(index); },
    kTraceReferenceNames};

// Stored when used, together.
constexpr int kPrediction = 1;

constexpr ViewField kViewFields[] = {
    {.key = "Camera position", .member = &View::cameraPosition},
    {.key = "Camera focus", .member = &View::cameraFocus},
    {.key = "Trackball enable", .member = &View::trackballEnabled},
    {.key = "Trackball roll", .member = &ViewDictExtras::roll},
    {.key = "Trackball pitch", .member = &ViewDictExtras::pitch},
    {.key = "Trackball yaw", .member = &ViewDictExtras::yaw},
    {.key = "Track center of mass enable", .member = &View::trackCenterOfMass},
    {.key = "Camera autodistance", .member = &View::cameraAutodistance},
    {.key = "Track body enable", .member = &View::trackBody},
    {.key = "Track body ID", .member = &View::trackBodyID},
    {.key = "Gridline enable", .member = &View::gridlineEnabled},
    {.key = "Show trace lines", .member = &View::showTraceLines},
    {.key = "Show vectors", .member = &View::showVectors},
    {.key = "Gridline spacing", .member = &View::gridlineSpacing},
    {.key = "Gridline color", .member = &View::gridlineColor},
    {.key = "Selected body ID", .member = &View::selectedBodyID},
    {.key = "Window width", .member = PixelsMember<ViewDictExtras>{&ViewDictExtras::width}},
    {.key = "Window height", .member = PixelsMember<ViewDictExtras>{&ViewDictExtras::height}},
    {.key = "View name", .member = &View::name},
    {.key = "Traces relative to", .member = kTraceReference},
    {.key = "Show predicted paths",
     .member = &View::showPredictedPaths,
     .flags = kStoredWhenUsed,
     .storedGroup = kPrediction},
    {.key = "Prediction time",
     .member = &View::predictionTime,
     .flags = kStoredWhenUsed,
     .storedGroup = kPrediction},
};

const FieldValues& viewDefaults() {
  static const FieldValues defaults = [] {
    const View view(0);
    const ViewDictExtras extras;
    return readFields(viewFields(), view, extras);
  }();
  return defaults;
}

}  // namespace

std::span<const ViewField> viewFields() {
  return kViewFields;
}

PlistDict writeViewDict(const View& view) {
  const Vector angles = view.trackball->rotation.toRollPitchYaw();
  const ViewDictExtras extras{angles.x, angles.y, angles.z, view.trackball->width,
                              view.trackball->height};
  PlistDict d;
  writeFieldsToDict(viewFields(), viewDefaults(), d, view, extras);
  return d;
}

ViewDictExtras applyViewDict(View& view, const PlistDict& dict) {
  ViewDictExtras extras;
  for (const PlistEntry& entry : dict.entries()) {
    if (const FieldKey* key = findFieldKey(viewFields(), entry.key)) {
      readFieldKey(viewFields()[key->row], key->component, entry.value, {}, view, extras);
    }
  }
  return extras;
}
