#pragma once

#include <QString>
#include <optional>

#include "document/plist_value.h"

class View;

// What a view dictionary holds beyond the View's own fields: the trackball's
// angles and the drawing-area size, which the loader applies after the last
// key, and the name, which goes through the window's title.
struct ViewDictExtras {
  double roll = 0.0;
  double pitch = 0.0;
  double yaw = 0.0;
  // Read as single precision; written truncated to whole pixels.
  double width = 100.0;
  double height = 100.0;
  std::optional<QString> name;
};

// The view dictionary of a datafile's "Views" section, written from a view
// and applied to one, through one table of keys.
PlistDict writeViewDict(const View& view);

// Applies every known key of a view dictionary to the view; unknown keys are
// ignored and values of another type give their numeric, truth or integer
// value, or leave the field when they have none.
ViewDictExtras applyViewDict(View& view, const PlistDict& dict);
