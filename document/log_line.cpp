#include "log_line.h"

#include <charconv>

namespace {

// Formats like printf's "%f" and "%.17g" in the C locale: a log must not
// change with the user's decimal separator.
void appendReal(std::string& out, double value, LogReals reals) {
  // "%f" of the largest double has 309 digits before the point.
  char buffer[330];
  const auto result =
      reals == LogReals::Fixed
          ? std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed, 6)
          : std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::general, 17);
  out.append(buffer, result.ptr);
}

void appendVector(std::string& out, const Vector& v, LogReals reals) {
  for (double c : {v.x, v.y, v.z}) {
    out.push_back('\t');
    appendReal(out, c, reals);
  }
}

}  // namespace

void appendLogLine(std::string& out, const World& world, LogReals reals) {
  appendReal(out, world.elapsedTime, reals);
  forEachItem<Body>(*world.bodies, [&](const Body& body) {
    out.push_back('\t');
    out.append(body.name);
    appendVector(out, body.position, reals);
    appendVector(out, body.velocity, reals);
    appendVector(out, body.acceleration, reals);
  });
  out.push_back('\n');
}
