#pragma once

#include <QColor>
#include <QString>
#include <QWidget>
#include <vector>

#include "palettes/graph_history.h"

class QPainter;
struct AxisTicks;

// One curve of a plot: a quantity, its name in the legend, its colour.
struct PlotLine {
  GraphSeries series;
  QString name;
  QColor color;
};

// What one plot shows: its lines, on a linear or logarithmic value axis;
// integer axes (body counts) tick on whole numbers.
struct PlotContent {
  QString title;
  std::vector<PlotLine> lines;
  bool logarithmic = false;
  bool integers = false;
};

// One plot of the Graphs palette: the quantities its content names, from a
// history, against elapsed time, on axes that fit the samples, with a
// legend, and under the pointer a line through the nearest sample with its
// time and values. It draws whatever the history holds when it paints; its
// owner calls update() when the history has changed.
//
// However many samples there are, a curve is drawn through at most four
// points per pixel column: the first, lowest, highest and last sample of
// the column, which give the same picture as every sample would.
class PlotWidget : public QWidget {
 public:
  PlotWidget(const GraphHistory& history, PlotContent content, QWidget* parent = nullptr);

  const PlotContent& content() const { return content_; }
  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void leaveEvent(QEvent* event) override;

 private:
  // The range of the plotted values the axis must hold; false when no
  // sample has a value the axis can show.
  bool valueRange(double& min, double& max) const;
  void drawLegend(QPainter& p, const AxisTicks* yAxis) const;
  void drawLine(QPainter& p, const PlotLine& line, const QRectF& area, const AxisTicks& x,
                const AxisTicks& y) const;
  void drawReadout(QPainter& p, const QRectF& area, const AxisTicks& x, const AxisTicks& y) const;

  const GraphHistory& history_;
  PlotContent content_;
  // The pointer's x in widget pixels, or negative when it is elsewhere.
  double hoverX_ = -1.0;
};
