#include "view_state.h"

#include <cmath>
#include <functional>

#include "engine/quaternion.h"
#include "view/view.h"

namespace {

void putReal(PlistDict& d, const char* key, double value) {
  d.insert(QString::fromLatin1(key), PlistValue::real(value));
}
void putBool(PlistDict& d, const char* key, bool value) {
  d.insert(QString::fromLatin1(key), PlistValue::boolean(value));
}
void putInt(PlistDict& d, const char* key, int64_t value) {
  d.insert(QString::fromLatin1(key), PlistValue::integer(value));
}

// A size in pixels written as an integer: truncated toward zero and kept in
// the 32-bit range, the reading the datafile code gives a real; 0 for NaN.
int64_t truncatedSize(double value) {
  return saturateToInt32(PlistValue::real(value).toInteger().value_or(0));
}

}  // namespace

PlistDict writeViewDict(const View& v) {
  PlistDict d;
  putReal(d, "Camera position X", v.cameraPosition.x);
  putReal(d, "Camera position Y", v.cameraPosition.y);
  putReal(d, "Camera position Z", v.cameraPosition.z);
  putReal(d, "Camera focus X", v.cameraFocus.x);
  putReal(d, "Camera focus Y", v.cameraFocus.y);
  putReal(d, "Camera focus Z", v.cameraFocus.z);
  putBool(d, "Trackball enable", v.trackballEnabled);
  const Vector angles = v.trackball->rotation.toRollPitchYaw();
  putReal(d, "Trackball roll", angles.x);
  putReal(d, "Trackball pitch", angles.y);
  putReal(d, "Trackball yaw", angles.z);
  putBool(d, "Track center of mass enable", v.trackCenterOfMass);
  putReal(d, "Camera autodistance", v.cameraAutodistance);
  putBool(d, "Track body enable", v.trackBody);
  putInt(d, "Track body ID", v.trackBodyID);
  putBool(d, "Gridline enable", v.gridlineEnabled);
  putBool(d, "Show trace lines", v.showTraceLines);
  putBool(d, "Show vectors", v.showVectors);
  putReal(d, "Gridline spacing", v.gridlineSpacing);
  putReal(d, "Gridline color R", static_cast<double>(v.gridlineColor[0]));
  putReal(d, "Gridline color G", static_cast<double>(v.gridlineColor[1]));
  putReal(d, "Gridline color B", static_cast<double>(v.gridlineColor[2]));
  putInt(d, "Selected body ID", v.selectedBodyID);
  putInt(d, "Window width", truncatedSize(v.trackball->width));
  putInt(d, "Window height", truncatedSize(v.trackball->height));
  d.insert(QStringLiteral("View name"), PlistValue::string(QString::fromUtf8(v.name)));
  return d;
}

ViewDictExtras applyViewDict(View& v, const PlistDict& dict) {
  ViewDictExtras extras;
  auto real = [](double& field) {
    return [&field](const PlistValue& value) {
      if (auto r = value.toReal())
        field = *r;
    };
  };
  auto single = [](float& field) {
    return [&field](const PlistValue& value) {
      if (auto r = value.toReal())
        field = narrowToFloat(*r);
    };
  };
  auto flag = [](bool& field) {
    return [&field](const PlistValue& value) {
      if (auto b = value.toBool())
        field = *b;
    };
  };
  auto integer = [](int& field) {
    return [&field](const PlistValue& value) {
      if (auto i = value.toInteger())
        field = saturateToInt32(*i);
    };
  };
  const std::pair<const char*, std::function<void(const PlistValue&)>> table[] = {
      {"Camera position X", real(v.cameraPosition.x)},
      {"Camera position Y", real(v.cameraPosition.y)},
      {"Camera position Z", real(v.cameraPosition.z)},
      {"Camera focus X", real(v.cameraFocus.x)},
      {"Camera focus Y", real(v.cameraFocus.y)},
      {"Camera focus Z", real(v.cameraFocus.z)},
      {"Trackball enable", flag(v.trackballEnabled)},
      {"Trackball roll", real(extras.roll)},
      {"Trackball pitch", real(extras.pitch)},
      {"Trackball yaw", real(extras.yaw)},
      {"Track center of mass enable", flag(v.trackCenterOfMass)},
      {"Camera autodistance", real(v.cameraAutodistance)},
      {"Track body enable", flag(v.trackBody)},
      {"Track body ID", integer(v.trackBodyID)},
      {"Gridline enable", flag(v.gridlineEnabled)},
      {"Show trace lines", flag(v.showTraceLines)},
      {"Show vectors", flag(v.showVectors)},
      {"Gridline spacing", real(v.gridlineSpacing)},
      {"Gridline color R", single(v.gridlineColor[0])},
      {"Gridline color G", single(v.gridlineColor[1])},
      {"Gridline color B", single(v.gridlineColor[2])},
      {"Selected body ID", integer(v.selectedBodyID)},
      {"Window width", single(extras.width)},
      {"Window height", single(extras.height)},
      {"View name",
       [&extras](const PlistValue& value) {
         if (auto t = value.toText())
           extras.name = *t;
       }},
  };
  for (const PlistEntry& entry : dict.entries()) {
    for (const auto& [key, apply] : table) {
      if (entry.key == QLatin1String(key)) {
        apply(entry.value);
        break;
      }
    }
  }
  return extras;
}
