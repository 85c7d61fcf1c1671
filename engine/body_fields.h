#pragma once

#include <span>

#include "body.h"
#include "field_table.h"

using BodyField = Field<Body>;

// The fields of a body that are stored, shown, edited and undone, in the
// order of the datafile's body dictionary. The force and the integrator's
// scratch fields are not among them: every step writes them before it reads
// them.
std::span<const BodyField> bodyFields();

// A field's problem when its value is not a finite number (NaN or infinite).
const char* notFiniteProblem(double value);
