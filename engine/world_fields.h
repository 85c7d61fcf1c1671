#pragma once

#include <span>
#include <string_view>

#include "field_table.h"
#include "world.h"

using WorldField = Field<World>;

// The world's simulation parameters, in the order of the datafile's root
// dictionary. The parameters added since the first datafiles are stored only
// when used.
std::span<const WorldField> worldFields();

// The names of the integrators and of the gravity modes, in the order of
// their enumerations: "RK4", "Leapfrog", "Wisdom-Holman", "Gauss-Radau";
// "Exact", "Tree".
std::span<const std::string_view> integratorNames();
std::span<const std::string_view> gravityNames();

// The bound that the simulation clock puts on milliseconds per update: above
// 0.01 as given, exactly 0 stays 0 (run as fast as possible), anything else
// (negative and NaN included) becomes 0.01.
float boundedWorldSpeed(float milliseconds);
