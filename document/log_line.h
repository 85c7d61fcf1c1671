#pragma once

#include <string>

#include "engine/world.h"

// How the reals of a log line are written: "%f" (six digits after the point),
// or "%.17g", which reads back to the same double.
enum class LogReals { Fixed, Exact };

// Appends one line of body states: the elapsed time, then for every body in
// list order a tab and its name, position, velocity and acceleration, each
// value after a tab, then a newline. Names are written as their bytes.
void appendLogLine(std::string& out, const World& world, LogReals reals = LogReals::Fixed);
