#pragma once

#include <QLabel>
#include <QWidget>

// The image of the splash window; a click on it closes its window and goes
// no further.
class ImageViewSub : public QLabel {
  Q_OBJECT

 public:
  explicit ImageViewSub(QWidget* parent = nullptr);

 protected:
  void mousePressEvent(QMouseEvent* event) override;
};

// The borderless start-up window: the splash picture with two lines of text
// laid over it. It stays until the picture is clicked.
class SplashWindow : public QWidget {
  Q_OBJECT

 public:
  static constexpr int kWidth = 620;
  static constexpr int kHeight = 168;

  SplashWindow();
  ImageViewSub* imageView() const { return image_; }

 private:
  ImageViewSub* image_;
};

// The splash picture, drawn in code: a night sky with orbits and the name.
QPixmap makeSplashPicture();
