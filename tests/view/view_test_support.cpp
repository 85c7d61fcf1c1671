#include "view_test_support.h"

#include <QCoreApplication>
#include <QMouseEvent>
#include <QtTest/QTest>
#include <cstdlib>

OrrenvaleGL& ViewFixture::openView(int w, int h) {
  views.push_back(std::make_unique<OrrenvaleGL>(host));
  OrrenvaleGL& view = *views.back();
  view.resize(w, h);
  view.show();
  EXPECT_TRUE(QTest::qWaitForWindowExposed(&view));
  EXPECT_EQ(view.size(), QSize(w, h));
  return view;
}

Body* ViewFixture::addBody(const Vector& position, double radius, float r, float g, float b) {
  Body* body = world().createBody();
  body->position = position;
  body->radius = radius;
  body->color[0] = r;
  body->color[1] = g;
  body->color[2] = b;
  return body;
}

std::string sizeName(const ::testing::TestParamInfo<QSize>& info) {
  return std::to_string(info.param.width()) + "x" + std::to_string(info.param.height());
}

void moveWithButtons(QWidget& w, QPointF to, Qt::MouseButtons buttons,
                     Qt::KeyboardModifiers modifiers) {
  QMouseEvent move(QEvent::MouseMove, to, w.mapToGlobal(to), Qt::NoButton, buttons, modifiers);
  QCoreApplication::sendEvent(&w, &move);
}

void drag(QWidget& w, Qt::MouseButton button, QPointF from, QPointF to,
          Qt::KeyboardModifiers modifiers, int moves) {
  QTest::mousePress(&w, button, modifiers, from.toPoint());
  for (int i = 1; i <= moves; ++i) {
    moveWithButtons(w, from + (to - from) * i / moves, button, modifiers);
  }
  QTest::mouseRelease(&w, button, modifiers, to.toPoint());
}

PixelTest pureRed() {
  return [](QRgb p) { return qRed(p) > 20 && qGreen(p) == 0 && qBlue(p) == 0; };
}

PixelTest pureGreen() {
  return [](QRgb p) { return qGreen(p) > 20 && qRed(p) == 0 && qBlue(p) == 0; };
}

PixelTest pureBlue() {
  return [](QRgb p) { return qBlue(p) > 20 && qRed(p) == 0 && qGreen(p) == 0; };
}

bool isBlack(QRgb p) {
  return qRed(p) == 0 && qGreen(p) == 0 && qBlue(p) == 0;
}

int countPixels(const QImage& image, const PixelTest& test) {
  int n = 0;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      n += test(image.pixel(x, y)) ? 1 : 0;
    }
  }
  return n;
}

std::optional<QPointF> centroid(const QImage& image, const PixelTest& test) {
  double sx = 0;
  double sy = 0;
  int n = 0;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      if (test(image.pixel(x, y))) {
        sx += x;
        sy += y;
        ++n;
      }
    }
  }
  if (n == 0) {
    return std::nullopt;
  }
  return QPointF(sx / n, sy / n);
}

bool near(QRgb p, int r, int g, int b, int tolerance) {
  return std::abs(qRed(p) - r) <= tolerance && std::abs(qGreen(p) - g) <= tolerance &&
         std::abs(qBlue(p) - b) <= tolerance;
}
