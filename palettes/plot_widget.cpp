#include "palettes/plot_widget.h"

#include <QMouseEvent>
#include <QPainter>
#include <QPolygonF>
#include <algorithm>
#include <climits>
#include <cmath>

#include "palettes/plot_axis.h"

namespace {

// Room between ticks, in pixels, so that labels never touch.
constexpr double kPixelsPerXTick = 90.0;
constexpr double kPixelsPerYTick = 28.0;
constexpr int kGap = 6;

// Where the value axis of a plot lies inside the widget.
struct Frame {
  QRectF area;
  AxisTicks x;
  AxisTicks y;
};

QString text(const std::string& s) {
  return QString::fromStdString(s);
}

// A value under the pointer: ten significant digits show where a conserved
// quantity starts to drift.
QString readoutValue(double value) {
  return std::isnan(value) ? QStringLiteral("\u2013") : QString::number(value, 'g', 10);
}

}  // namespace

PlotWidget::PlotWidget(const GraphHistory& history, PlotContent content, QWidget* parent)
    : QWidget(parent), history_(history), content_(std::move(content)) {
  setMouseTracking(true);
  setAttribute(Qt::WA_OpaquePaintEvent);
}

QSize PlotWidget::sizeHint() const {
  return {420, 8 * fontMetrics().height()};
}

QSize PlotWidget::minimumSizeHint() const {
  return {200, 5 * fontMetrics().height()};
}

bool PlotWidget::valueRange(double& min, double& max) const {
  min = INFINITY;
  max = -INFINITY;
  for (const PlotLine& line : content_.lines) {
    for (const double v : history_.values(line.series)) {
      if (std::isfinite(v) && (!content_.logarithmic || v > 0.0)) {
        min = std::min(min, v);
        max = std::max(max, v);
      }
    }
  }
  return min <= max;
}

void PlotWidget::paintEvent(QPaintEvent* /*event*/) {
  QPainter p(this);
  p.fillRect(rect(), palette().color(QPalette::Base));
  p.setRenderHint(QPainter::Antialiasing);
  const QFontMetrics fm = fontMetrics();
  const int top = fm.height() + kGap;
  double min = 0.0;
  double max = 0.0;
  if (history_.empty() || !valueRange(min, max)) {
    drawLegend(p, nullptr);
    p.setPen(palette().color(QPalette::PlaceholderText));
    p.drawText(rect().adjusted(0, top, 0, 0), Qt::AlignCenter,
               history_.empty() ? tr("Samples appear while the simulation runs")
                                : tr("No values to plot"));
    return;
  }
  const double plotHeight = height() - top - fm.height() - kGap;
  const int yTicks = std::max(1, static_cast<int>(plotHeight / kPixelsPerYTick));
  Frame f;
  f.y = content_.logarithmic ? logAxis(min, max, yTicks)
                             : linearAxis(min, max, yTicks, content_.integers);
  // Room for any label up to the length of "-8.888e+88", so that the plots
  // of a palette line up and share their time ticks.
  int labelWidth = fm.horizontalAdvance(QStringLiteral("-8.888e+88"));
  for (const std::string& label : f.y.labels) {
    labelWidth = std::max(labelWidth, fm.horizontalAdvance(text(label)));
  }
  const double left = labelWidth + 2 * kGap;
  const double plotWidth = width() - left - 2 * kGap;
  const std::vector<double>& t = history_.times();
  f.x = linearAxis(t.front(), t.back(), std::max(1, static_cast<int>(plotWidth / kPixelsPerXTick)),
                   false, AxisEnds::AtValues);
  f.area = QRectF(left, top, plotWidth, plotHeight);
  if (!(f.area.width() > 1.0 && f.area.height() > 1.0)) {
    return;
  }

  const QColor grid = palette().color(QPalette::Midlight);
  const QColor ink = palette().color(QPalette::Text);
  p.setPen(QPen(grid, 1.0));
  for (std::size_t i = 0; i < f.y.values.size(); ++i) {
    const double y = f.area.bottom() - f.y.fraction(f.y.values[i]) * f.area.height();
    p.drawLine(QPointF(f.area.left(), y), QPointF(f.area.right(), y));
  }
  for (std::size_t i = 0; i < f.x.values.size(); ++i) {
    const double x = f.area.left() + f.x.fraction(f.x.values[i]) * f.area.width();
    p.drawLine(QPointF(x, f.area.top()), QPointF(x, f.area.bottom()));
  }
  p.setPen(ink);
  for (std::size_t i = 0; i < f.y.values.size(); ++i) {
    const double y = f.area.bottom() - f.y.fraction(f.y.values[i]) * f.area.height();
    p.drawText(QRectF(0, y - fm.height() / 2.0, left - kGap, fm.height()),
               Qt::AlignRight | Qt::AlignVCenter, text(f.y.labels[i]));
  }
  for (std::size_t i = 0; i < f.x.values.size(); ++i) {
    const double x = f.area.left() + f.x.fraction(f.x.values[i]) * f.area.width();
    p.drawText(QRectF(x - kPixelsPerXTick / 2, f.area.bottom() + 2, kPixelsPerXTick, fm.height()),
               Qt::AlignHCenter | Qt::AlignTop, text(f.x.labels[i]));
  }
  p.drawRect(f.area);

  p.save();
  p.setClipRect(f.area.adjusted(-1, -1, 1, 1));
  for (const PlotLine& line : content_.lines) {
    drawLine(p, line, f.area, f.x, f.y);
  }
  p.restore();
  drawLegend(p, &f.y);
  if (hoverX_ >= f.area.left() && hoverX_ <= f.area.right()) {
    drawReadout(p, f.area, f.x, f.y);
  }
}

void PlotWidget::drawLegend(QPainter& p, const AxisTicks* yAxis) const {
  const QFontMetrics fm = fontMetrics();
  double x = kGap;
  const double middle = kGap / 2.0 + fm.height() / 2.0;
  QFont bold = font();
  bold.setBold(true);
  p.setFont(bold);
  p.setPen(palette().color(QPalette::Text));
  const QString title = content_.title + (content_.logarithmic ? tr(" (log)") : QString());
  p.drawText(QPointF(x, kGap / 2.0 + fm.ascent()), title);
  x += QFontMetrics(bold).horizontalAdvance(title) + 2 * kGap;
  p.setFont(font());
  if (content_.lines.size() > 1) {
    for (const PlotLine& line : content_.lines) {
      p.setPen(QPen(line.color, 3.0));
      p.drawLine(QPointF(x, middle), QPointF(x + 14, middle));
      x += 18;
      p.setPen(palette().color(QPalette::Text));
      p.drawText(QPointF(x, kGap / 2.0 + fm.ascent()), line.name);
      x += fm.horizontalAdvance(line.name) + 2 * kGap;
    }
  } else if (!content_.lines.empty()) {
    p.setPen(QPen(content_.lines.front().color, 3.0));
    p.drawLine(QPointF(x, middle), QPointF(x + 14, middle));
  }
  if (yAxis != nullptr && !yAxis->offset.empty()) {
    p.setPen(palette().color(QPalette::PlaceholderText));
    p.drawText(QRectF(0, kGap / 2.0, width() - kGap, fm.height()), Qt::AlignRight,
               tr("offset %1").arg(text(yAxis->offset)));
  }
}

void PlotWidget::drawLine(QPainter& p, const PlotLine& line, const QRectF& area, const AxisTicks& x,
                          const AxisTicks& y) const {
  const std::vector<double>& t = history_.times();
  const std::vector<double>& v = history_.values(line.series);
  // A one-pixel cosmetic pen is drawn by Qt's line rasteriser, not through
  // an outline of the stroke: four times faster on dense curves.
  QPen pen(line.color, 1.0);
  pen.setCosmetic(true);
  p.setPen(pen);
  QPolygonF points;
  points.reserve(4 * static_cast<qsizetype>(area.width()) + 8);
  // The column being gathered: its pixel x and the pixel y of its first,
  // lowest, highest and last sample (y grows downwards).
  int column = INT_MIN;
  double columnX = 0.0;
  double first = 0.0;
  double low = 0.0;
  double high = 0.0;
  double last = 0.0;
  const auto add = [&points](double px, double py) {
    if (points.isEmpty() || points.back() != QPointF(px, py)) {
      points.append(QPointF(px, py));
    }
  };
  const auto closeColumn = [&] {
    if (column != INT_MIN) {
      add(columnX, first);
      add(columnX, low);
      add(columnX, high);
      add(columnX, last);
    }
  };
  // A sample without a value breaks the curve.
  const auto endCurve = [&] {
    closeColumn();
    column = INT_MIN;
    if (points.size() == 1) {
      p.drawPoint(points.front());
    } else if (points.size() > 1) {
      p.drawPolyline(points);
    }
    points.clear();
  };
  for (std::size_t i = 0; i < t.size(); ++i) {
    const double fy = y.fraction(v[i]);
    if (std::isnan(fy)) {
      endCurve();
      continue;
    }
    const double px = area.left() + x.fraction(t[i]) * area.width();
    const double py = area.bottom() - fy * area.height();
    const int c = static_cast<int>(std::floor(px));
    if (c != column) {
      closeColumn();
      column = c;
      columnX = px;
      first = low = high = last = py;
    } else {
      low = std::max(low, py);
      high = std::min(high, py);
      last = py;
    }
  }
  endCurve();
}

void PlotWidget::drawReadout(QPainter& p, const QRectF& area, const AxisTicks& x,
                             const AxisTicks& y) const {
  const double time = x.lo + (hoverX_ - area.left()) / area.width() * (x.hi - x.lo);
  const std::size_t i = history_.nearest(time);
  const double sampleX = area.left() + x.fraction(history_.times()[i]) * area.width();
  p.setPen(QPen(palette().color(QPalette::Text), 1.0, Qt::DotLine));
  p.drawLine(QPointF(sampleX, area.top()), QPointF(sampleX, area.bottom()));
  QStringList lines{tr("t = %1").arg(readoutValue(history_.times()[i]))};
  for (const PlotLine& line : content_.lines) {
    const double value = history_.values(line.series)[i];
    lines.append(QStringLiteral("%1 = %2").arg(line.name, readoutValue(value)));
    const double fy = y.fraction(value);
    if (!std::isnan(fy)) {
      p.setPen(QPen(line.color, 5.0, Qt::SolidLine, Qt::RoundCap));
      p.drawPoint(QPointF(sampleX, area.bottom() - fy * area.height()));
    }
  }
  const QFontMetrics fm = fontMetrics();
  int w = 0;
  for (const QString& l : lines) {
    w = std::max(w, fm.horizontalAdvance(l));
  }
  const double h = fm.height() * static_cast<double>(lines.size());
  // The box sits on the side of the line away from the centre, so the
  // curve under the pointer stays visible.
  const bool onRight = sampleX < area.center().x();
  QRectF box(onRight ? sampleX + kGap : sampleX - kGap - w - 2 * kGap, area.top() + kGap,
             w + 2 * kGap, h + kGap);
  QColor back = palette().color(QPalette::ToolTipBase);
  back.setAlpha(220);
  p.setPen(palette().color(QPalette::Mid));
  p.setBrush(back);
  p.drawRect(box);
  p.setPen(palette().color(QPalette::ToolTipText));
  p.drawText(box.adjusted(kGap, kGap / 2.0, 0, 0), Qt::AlignLeft | Qt::AlignTop,
             lines.join(QLatin1Char('\n')));
}

void PlotWidget::mouseMoveEvent(QMouseEvent* event) {
  hoverX_ = event->position().x();
  update();
}

void PlotWidget::leaveEvent(QEvent* /*event*/) {
  hoverX_ = -1.0;
  update();
}
