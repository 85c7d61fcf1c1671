#pragma once

#include <QImage>
#include <QOpenGLWidget>
#include <memory>

#include "body_dragger.h"
#include "view.h"

class QKeyEvent;
class QMouseEvent;
class QTimer;
class QWheelEvent;
struct GLUquadric;
class World;

// The OpenGL view of one view window: it owns the window's View record,
// draws the world from it 24 times a second, moves its camera, picks bodies
// under the pointer and captures itself as an image. Positions handed to the
// camera, the trackball and OpenGL are in device pixels.
class ViewHost;

class OrrenvaleGL : public QOpenGLWidget {
  Q_OBJECT

 public:
  // 1/24 s formed in single precision, in seconds.
  static constexpr double kRedrawInterval = static_cast<double>(1.0f / 24.0f);

  // Takes a view number from the host's world and names the view after it.
  // The host outlives the view.
  explicit OrrenvaleGL(ViewHost& host, QWidget* parent = nullptr);
  ~OrrenvaleGL() override;

  View* view() const { return v_.get(); }
  QTimer* redrawTimer() const { return redrawTimer_; }

  // Frame cycle: prepares OpenGL once, adapts to the size, loads the camera,
  // clears and renders. Runs with this view's context current.
  void drawRect();
  // Draws the scene into the current buffer; also used by picking.
  void render();

  // Camera.
  void resizeGL();
  void updateProjection();
  void updateModelView();
  void keyPanUp();
  void keyPanDown();
  void keyPanLeft();
  void keyPanRight();
  void keyZoomIn();
  void keyZoomOut();
  // Only the sign of z counts for a free camera; a tracking camera scales its
  // distance by 1 - z/20.
  void zoomCamera(double z);

  // Selection.
  void keySelectNext();
  void keySelectPrev();
  void keyDelete();
  // Identifier of the body under the pixel position (x, yTop), device pixels
  // with y from the top, or 0.
  int pick(double x, double yTop);

  // A fresh frame as an upright image of exactly the view's size, without
  // alpha. A view that has never been shown gives a black image.
  QImage captureView();

 signals:
  // Every frame the view draws, as captureView gives it; read back from
  // OpenGL only while something is connected (a movie being recorded).
  void frameDrawn(const QImage& frame);

 protected:
  void initializeGL() override;
  void paintGL() override;
  // The size is adapted at the start of every frame instead.
  void resizeGL(int w, int h) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  // Shift shows what a drag would take hold of; Escape ends a body drag,
  // putting the body back.
  void keyPressEvent(QKeyEvent* event) override;
  void keyReleaseEvent(QKeyEvent* event) override;

 private:
  void redrawWindow();
  // The frame in the view's framebuffer, upright; the context must be
  // current.
  QImage readFrame();
  void prepareOpenGL();
  void releaseOpenGL();
  void multiplyFrustum() const;
  void pan(int direction, bool vertical);
  void drawGridLattice(const World& world) const;
  void drawAxisMarker() const;
  void drawTracePoints(const World& world) const;
  void drawBodies(const World& world, bool selecting) const;
  void drawPredictedPaths(const World& world) const;

  // Pointer handlers, fed from Qt's events; Ctrl + left button acts as the
  // right button.
  void mouseDown(const QMouseEvent& event);
  void mouseDragged(const QMouseEvent& event);
  void mouseUp(const QMouseEvent& event);
  void rightMouseDown(const QMouseEvent& event);
  void rightMouseDragged(const QMouseEvent& event);
  void rightMouseUp(const QMouseEvent& event);
  // Event position in device pixels, y from the top narrowed to single
  // precision.
  QPointF pointerPosition(const QMouseEvent& event) const;

  // A sphere of radius 1 in the tessellation every body is drawn and picked
  // with: 24 slices around, 24 stacks from pole to pole.
  void drawUnitSphere() const;

  // Direct manipulation in design mode: Shift and the left button drag a
  // body in the pan plane, or the tip of its velocity vector. True when a
  // drag began at p; otherwise the press is an ordinary one.
  bool beginBodyDrag(Qt::KeyboardModifiers modifiers, QPointF p);
  std::optional<DragTarget> dragTargetUnder(QPointF p) const;
  // The pointer shape says what a left drag at the last pointer position
  // would do: move a body, aim one, or (the arrow) turn the scene.
  void updatePointerShape(bool shift);

  GLUquadric* pObj = nullptr;
  unsigned int sphereList = 0;
  bool fGLInit = false;
  // Wheel units not yet turned into a whole notch: smooth scrolling (a
  // touchpad) reports a notch in many small steps.
  int wheelRemainder_ = 0;
  QTimer* redrawTimer_ = nullptr;
  ViewHost& host_;
  std::unique_ptr<View> v_;
  BodyDragger dragger_;
  // Where the pointer last was over the view, device pixels.
  QPointF hover_;
};
