#include "view.h"

#include <cstdio>
#include <utility>

namespace {

constexpr std::pair<TraceReference, std::string_view> kTraceReferenceNames[] = {
    {TraceReference::World, "World"},
    {TraceReference::TrackedBody, "Tracked body"},
    {TraceReference::CenterOfMass, "Center of mass"},
};

}  // namespace

View::View(int n) : trackball(std::make_unique<Trackball>(1.0)) {
  std::snprintf(name, sizeof name, "View %i", n);
}

View::~View() = default;

const char* traceReferenceName(TraceReference reference) {
  for (const auto& [choice, name] : kTraceReferenceNames) {
    if (choice == reference) {
      return name.data();
    }
  }
  return "World";
}

std::optional<TraceReference> traceReferenceNamed(std::string_view name) {
  for (const auto& [choice, known] : kTraceReferenceNames) {
    if (known == name) {
      return choice;
    }
  }
  return std::nullopt;
}
