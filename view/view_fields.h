#pragma once

#include <span>

#include "document/plist_value.h"
#include "engine/field_table.h"

class View;

// What a view dictionary holds beyond the View's own fields: the trackball's
// angles and the drawing-area size, which the loader applies after the last
// key.
struct ViewDictExtras {
  double roll = 0.0;
  double pitch = 0.0;
  double yaw = 0.0;
  // Read as single precision; written truncated to whole pixels.
  double width = 100.0;
  double height = 100.0;
};

using ViewField = Field<View, ViewDictExtras>;

// The keys of a view dictionary of a datafile's "Views" section, in the order
// in which they are written. The predicted-path settings come last and are
// written only when a view uses them, so that the datafiles of views that
// never showed predicted paths keep exactly the keys they always had.
std::span<const ViewField> viewFields();

// The view dictionary written from a view.
PlistDict writeViewDict(const View& view);

// Applies every known key of a view dictionary to the view (its name
// included); unknown keys are ignored and values of another type give their
// numeric, truth or integer value, or leave the field when they have none.
ViewDictExtras applyViewDict(View& view, const PlistDict& dict);
