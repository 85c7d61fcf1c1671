// Drawing of one frame: grid lattice, axis marker, trace points, vectors and
// bodies.
#include <GL/glu.h>

#include <unordered_map>

#include "engine/position_point.h"
#include "engine/world.h"
#include "grid_lattice.h"
#include "orrenvale_gl.h"
#include "path_predictor.h"
#include "trace_shifts.h"
#include "view_host.h"

namespace {

// Axis marker: half-length along its axis and half-width across it, world
// units.
constexpr float kMarkerLength = 10.0f;
constexpr float kMarkerWidth = 0.5f;
// A predicted path is drawn in its body's colour at this brightness: faint
// against the black sky, and cheap, with no blending.
constexpr float kPathBrightness = 0.45f;

void vertex(const Vector& p) {
  glVertex3d(p.x, p.y, p.z);
}

// One flat diamond of the axis marker: the positive tip in the axis colour,
// the other corners white. All four colours carry alpha 0; blending is off.
void markerQuad(const float (&color)[3], const Vector& tip, const Vector& side) {
  glColor4f(color[0], color[1], color[2], 0.0f);
  vertex(tip);
  glColor4f(1.0f, 1.0f, 1.0f, 0.0f);
  vertex(side);
  vertex(-1.0 * tip);
  vertex(-1.0 * side);
}

}  // namespace

void OrrenvaleGL::render() {
  if (!fGLInit) {
    return;
  }
  const World& world = host_.world();
  const View& v = *v_;
  GLint mode = GL_RENDER;
  glGetIntegerv(GL_RENDER_MODE, &mode);
  const bool selecting = mode == GL_SELECT;
  glDisable(GL_LIGHTING);
  if (v.gridlineEnabled) {
    drawGridLattice(world);
    drawAxisMarker();
  }
  if (v.showTraceLines) {
    drawTracePoints(world);
  }
  if (v.showVectors) {
    // Velocity and acceleration at scale 1, fading from the start colour to
    // black at the tip.
    glBegin(GL_LINES);
    forEachItem<Body>(*world.bodies, [](const Body& b) {
      if (!b.showVectors) {
        return;
      }
      glColor3f(b.color[0], b.color[1], b.color[2]);
      vertex(b.position);
      glColor3f(0.0f, 0.0f, 0.0f);
      vertex(b.position + b.velocity);
      glColor3f(1.0f, 1.0f, 1.0f);
      vertex(b.position);
      glColor3f(0.0f, 0.0f, 0.0f);
      vertex(b.position + b.acceleration);
    });
    glEnd();
  }
  // Picking hits bodies only; the paths are not drawn for it.
  if (v.showPredictedPaths && !selecting) {
    drawPredictedPaths(world);
  }
  glEnable(GL_LIGHTING);
  drawBodies(world, selecting);
}

void OrrenvaleGL::drawPredictedPaths(const World& world) const {
  const PredictedPaths* predicted = host_.predictedPaths(v_->predictionTime);
  if (predicted == nullptr) {
    return;
  }
  // The colours are the bodies' own as they are now: a change of colour
  // does not change where a body goes.
  std::unordered_map<int32_t, const float*> colors;
  forEachItem<Body>(*world.bodies, [&](const Body& b) { colors.emplace(b.id, b.color); });
  const std::size_t samples = predicted->samplesUntil(v_->predictionTime);
  // Each path is one array draw straight from the samples: thousands of
  // points cost a handful of calls.
  glEnableClientState(GL_VERTEX_ARRAY);
  for (const PredictedPaths::Path& path : predicted->paths) {
    const auto color = colors.find(path.id);
    const std::size_t n = std::min(samples, path.points.size());
    if (color == colors.end() || n < 2) {
      continue;
    }
    const float* c = color->second;
    glColor3f(c[0] * kPathBrightness, c[1] * kPathBrightness, c[2] * kPathBrightness);
    glVertexPointer(3, GL_DOUBLE, sizeof(Vector), &path.points.front().x);
    glDrawArrays(GL_LINE_STRIP, 0, static_cast<GLsizei>(n));
  }
  glDisableClientState(GL_VERTEX_ARRAY);
}

void OrrenvaleGL::drawTracePoints(const World& world) const {
  TraceShifts shifts(*v_, world);
  // One dot per recorded step, oldest first.
  glBegin(GL_POINTS);
  if (shifts.active()) {
    forEachItem<PositionPoint>(*world.tracePoints, [&shifts](const PositionPoint& p) {
      const Vector at = Vector::of(p.x, p.y, p.z) + shifts.shiftFor(p.frame);
      glColor3f(p.color[0], p.color[1], p.color[2]);
      glVertex3f(static_cast<float>(at.x), static_cast<float>(at.y), static_cast<float>(at.z));
    });
  } else {
    forEachItem<PositionPoint>(*world.tracePoints, [](const PositionPoint& p) {
      glColor3f(p.color[0], p.color[1], p.color[2]);
      glVertex3f(static_cast<float>(p.x), static_cast<float>(p.y), static_cast<float>(p.z));
    });
  }
  glEnd();
}

void OrrenvaleGL::drawBodies(const World& world, bool selecting) const {
  // The far half of a closed sphere is always hidden, and skipping it saves
  // about a quarter of the frame under software rendering, where the sphere
  // triangles bound the frame rate. Picking keeps both halves, so a hit still
  // reaches to the back of each sphere.
  if (!selecting) {
    glEnable(GL_CULL_FACE);
  }
  const int selected = v_->selectedBodyID;
  forEachItem<Body>(*world.bodies, [&](const Body& b) {
    glPushName(static_cast<GLuint>(b.id));
    glPushMatrix();
    // The selected body is drawn in its flat colour, without shading.
    const bool isSelected = b.id == selected;
    if (isSelected) {
      glDisable(GL_LIGHTING);
    }
    glColor3f(b.color[0], b.color[1], b.color[2]);
    glTranslatef(static_cast<float>(b.position.x), static_cast<float>(b.position.y),
                 static_cast<float>(b.position.z));
    glPushMatrix();
    const auto r = static_cast<float>(b.radius);
    glScalef(r, r, r);
    // Calling a display list in selection mode crashes Mesa's llvmpipe, so
    // picking draws the sphere directly.
    if (selecting) {
      drawUnitSphere();
    } else {
      glCallList(sphereList);
    }
    glPopMatrix();
    if (isSelected) {
      glEnable(GL_LIGHTING);
    }
    glPopMatrix();
    glPopName();
  });
  glDisable(GL_CULL_FACE);
}

void OrrenvaleGL::drawGridLattice(const World& world) const {
  const View& v = *v_;
  const std::optional<GridLattice> lattice =
      gridLattice(v.gridlineSpacing, world.minCorner(), world.maxCorner());
  if (!lattice) {
    return;
  }
  const GridLattice& g = *lattice;
  const auto value = [&g](int32_t k) { return static_cast<double>(int64_t{k} * g.spacing); };
  glColor3f(v.gridlineColor[0], v.gridlineColor[1], v.gridlineColor[2]);
  glBegin(GL_LINES);
  // Lines end on the box faces, not on lattice values.
  for (int32_t kz = g.first[2]; kz <= g.last[2]; ++kz) {
    for (int32_t kx = g.first[0]; kx <= g.last[0]; ++kx) {
      glVertex3d(value(kx), g.lo.y, value(kz));
      glVertex3d(value(kx), g.hi.y, value(kz));
    }
  }
  for (int32_t ky = g.first[1]; ky <= g.last[1]; ++ky) {
    for (int32_t kx = g.first[0]; kx <= g.last[0]; ++kx) {
      glVertex3d(value(kx), value(ky), g.lo.z);
      glVertex3d(value(kx), value(ky), g.hi.z);
    }
  }
  for (int32_t ky = g.first[1]; ky <= g.last[1]; ++ky) {
    for (int32_t kz = g.first[2]; kz <= g.last[2]; ++kz) {
      glVertex3d(g.lo.x, value(ky), value(kz));
      glVertex3d(g.hi.x, value(ky), value(kz));
    }
  }
  glEnd();
}

void OrrenvaleGL::drawAxisMarker() const {
  static constexpr float kRed[3] = {1.0f, 0.0f, 0.0f};
  static constexpr float kGreen[3] = {0.0f, 1.0f, 0.0f};
  static constexpr float kBlue[3] = {0.0f, 0.0f, 1.0f};
  const double l = kMarkerLength;
  const double w = kMarkerWidth;
  // Two crossed diamonds per axis.
  glBegin(GL_QUADS);
  markerQuad(kRed, Vector::of(l, 0, 0), Vector::of(0, w, 0));
  markerQuad(kRed, Vector::of(l, 0, 0), Vector::of(0, 0, w));
  markerQuad(kGreen, Vector::of(0, l, 0), Vector::of(w, 0, 0));
  markerQuad(kGreen, Vector::of(0, l, 0), Vector::of(0, 0, w));
  markerQuad(kBlue, Vector::of(0, 0, l), Vector::of(0, w, 0));
  markerQuad(kBlue, Vector::of(0, 0, l), Vector::of(w, 0, 0));
  glEnd();
}

void OrrenvaleGL::drawUnitSphere() const {
  gluSphere(pObj, 1.0, 24, 24);
}
