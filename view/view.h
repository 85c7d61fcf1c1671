#pragma once

#include <memory>
#include <string_view>

#include "engine/list_storable.h"
#include "engine/names.h"
#include "engine/vector.h"
#include "trackball.h"

// What a view draws trace points relative to. With a reference other than
// the world, each point is drawn at its offset from where the reference was
// when the point was recorded, placed around where the reference is now.
enum class TraceReference { World, TrackedBody, CenterOfMass };

// The names the datafile gives the choices, in the order of the
// enumeration.
inline constexpr std::string_view kTraceReferenceNames[] = {"World", "Tracked body",
                                                            "Center of mass"};

// Camera and display settings of one view window. The window's OrrenvaleGL
// creates and owns it; the view palette and the datafile code read and write
// the fields directly. No list holds views.
class View : public ListStorable {
 public:
  // n is the view's creation number; the name becomes "View n".
  explicit View(int n);
  View(const View&) = delete;
  View& operator=(const View&) = delete;
  ~View() override;

  // Ordinal of the view in the datafile it came from; set by the loader only.
  int number = 0;
  Vector cameraPosition = Vector::of(0.0, 0.0, 400.0);
  Vector cameraFocus;
  bool trackballEnabled = true;
  std::unique_ptr<Trackball> trackball;
  bool trackCenterOfMass = false;
  // Distance kept from the tracked point while a tracking mode is on.
  double cameraAutodistance = 200.0;
  bool trackBody = false;
  // 0 names no body.
  int trackBodyID = 0;
  bool gridlineEnabled = true;
  // Drawn as its integer part.
  double gridlineSpacing = 100.0;
  float gridlineColor[3] = {0.1f, 0.1f, 0.1f};
  bool showTraceLines = true;
  // The tracked body is the one trackBodyID names, whether or not the camera
  // follows it: a free camera can watch paths relative to a body.
  TraceReference traceReference = TraceReference::World;
  bool showVectors = true;
  // 0 names no body.
  int selectedBodyID = 0;
  // Also the window title.
  char name[kNameSize] = {};
  // In design mode, each body's predicted path for the next predictionTime
  // units of simulated time is drawn as a faint line in its colour.
  static constexpr double kDefaultPredictionTime = 1.0;
  bool showPredictedPaths = false;
  double predictionTime = kDefaultPredictionTime;
};
