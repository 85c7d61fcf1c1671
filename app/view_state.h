#pragma once

#include "document/plist_value.h"

class View;

// The view dictionary of a datafile's "Views" section, written from a view
// and applied to one.
PlistDict writeViewDict(const View& view);

// What a view dictionary says beyond the View's own fields: the trackball's
// angles and the drawing-area size, which the loader applies after the last
// key, and the stored name, which goes through the window's title.
struct ViewDictExtras {
  double roll = 0.0;
  double pitch = 0.0;
  double yaw = 0.0;
  float width = 100.0f;
  float height = 100.0f;
  std::optional<QString> name;
};

// Applies every known key of a view dictionary to the view; unknown keys are
// ignored and values of another type give their numeric, truth or integer
// value, or leave the field when they have none.
ViewDictExtras applyViewDict(View& view, const PlistDict& dict);
