#include "splash_window.h"

#include <QApplication>
#include <QLinearGradient>
#include <QMouseEvent>
#include <QPainter>
#include <QRadialGradient>
#include <QRandomGenerator>
#include <QScreen>
#include <cmath>

ImageViewSub::ImageViewSub(QWidget* parent) : QLabel(parent) {}

void ImageViewSub::mousePressEvent(QMouseEvent* event) {
  event->accept();
  window()->close();
}

namespace {

// A text line over the picture, transparent but for its letters. The
// platform places it from the bottom edge; here y counts from the top. The
// two lines' boxes overlap by ten pixels: the upper line's text sits at the
// top of its box and the lower line's at the bottom, so one reads above the
// other.
QLabel* addTextLine(QWidget* parent, int x, int yFromBottom, int pointSize, double grey,
                    const QString& text, Qt::Alignment alignment) {
  auto* label = new QLabel(text, parent);
  // The window's layout counts a point as one pixel (72 dots per inch), so
  // the sizes are pixel sizes here; at this screen's own points the lines
  // would be a third taller than their boxes.
  QFont font = QApplication::font();
  font.setPixelSize(pointSize);
  label->setFont(font);
  const int level = static_cast<int>(std::lround(grey * 255.0));
  label->setStyleSheet(QString("color: rgb(%1,%1,%1); background: transparent;").arg(level));
  label->setAlignment(Qt::AlignLeft | alignment);
  label->setGeometry(x, SplashWindow::kHeight - yFromBottom - 18, 290, 18);
  return label;
}

}  // namespace

SplashWindow::SplashWindow() : image_(new ImageViewSub(this)) {
  setObjectName("SplashWindow");
  setWindowFlags(Qt::FramelessWindowHint | Qt::Tool | Qt::WindowStaysOnTopHint);
  setAttribute(Qt::WA_DeleteOnClose);
  setFixedSize(kWidth, kHeight);
  image_->setGeometry(0, 0, kWidth, kHeight);
  image_->setPixmap(makeSplashPicture());
  addTextLine(this, 330, 22, 10, 0.3, "N-Body Gravitation Simulator", Qt::AlignTop);
  addTextLine(this, 330, 14, 9, 0.6,
              QString("Version 2 (%1)").arg(QApplication::applicationVersion()), Qt::AlignBottom);
  if (const QScreen* screen = QApplication::primaryScreen()) {
    move(screen->availableGeometry().center() - rect().center());
  }
}

QPixmap makeSplashPicture() {
  QPixmap pixmap(SplashWindow::kWidth, SplashWindow::kHeight);
  QPainter p(&pixmap);
  p.setRenderHint(QPainter::Antialiasing);
  QLinearGradient sky(0, 0, 0, SplashWindow::kHeight);
  sky.setColorAt(0, QColor(8, 10, 30));
  sky.setColorAt(1, QColor(28, 22, 58));
  p.fillRect(pixmap.rect(), sky);

  // A fixed seed keeps the same sky at every start.
  QRandomGenerator rng(20261123);
  for (int i = 0; i < 160; ++i) {
    const int shade = 120 + static_cast<int>(rng.bounded(135));
    p.setPen(QColor(shade, shade, shade + (255 - shade) / 2));
    p.drawPoint(static_cast<int>(rng.bounded(SplashWindow::kWidth)),
                static_cast<int>(rng.bounded(SplashWindow::kHeight)));
  }

  const QPointF sun(120, 84);
  p.setPen(QPen(QColor(110, 130, 200, 150), 1.2));
  p.setBrush(Qt::NoBrush);
  const double radii[] = {34, 58, 86};
  for (double r : radii) {
    p.drawEllipse(sun, r * 1.25, r * 0.55);
  }
  QRadialGradient glow(sun, 22);
  glow.setColorAt(0, QColor(255, 240, 190));
  glow.setColorAt(0.5, QColor(255, 190, 80));
  glow.setColorAt(1, QColor(255, 140, 40, 0));
  p.setPen(Qt::NoPen);
  p.setBrush(glow);
  p.drawEllipse(sun, 22, 22);
  const QColor planets[] = {QColor(200, 120, 90), QColor(90, 150, 230), QColor(170, 200, 120)};
  const double angles[] = {0.6, 2.5, 4.4};
  for (int i = 0; i < 3; ++i) {
    const QPointF at(sun.x() + radii[i] * 1.25 * std::cos(angles[i]),
                     sun.y() + radii[i] * 0.55 * std::sin(angles[i]));
    p.setBrush(planets[i]);
    p.drawEllipse(at, 4.0 + i, 4.0 + i);
  }

  // A pale band under the two text lines, whose dark and mid greys need a
  // light ground to be read.
  p.setPen(Qt::NoPen);
  p.setBrush(QColor(236, 236, 244));
  p.drawRoundedRect(QRectF(320, 124, 292, 38), 6, 6);

  QFont title = QApplication::font();
  title.setPointSize(34);
  title.setBold(true);
  p.setFont(title);
  p.setPen(QColor(235, 235, 250));
  p.drawText(QRect(300, 40, 310, 60), Qt::AlignLeft | Qt::AlignVCenter, "Orrenvale");
  p.end();
  return pixmap;
}
