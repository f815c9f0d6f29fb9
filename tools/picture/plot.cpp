#include "picture/plot.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "picture/ticks.h"

namespace {

constexpr COLOUR ink{40, 40, 44};
constexpr COLOUR grid_ink{225, 225, 230};

constexpr int edge = 14;
constexpr int gap = 6;
constexpr int tick_length = 5;
constexpr int marker = 2;  ///< half the side of a point
constexpr int x_tick_distance = 70;
constexpr int y_tick_distance = 34;
constexpr int legend_sample = 18;

/// The values of an axis and the picture pixels that they lie at.
struct AXIS {
  double low = std::numeric_limits<double>::infinity();
  double high = -std::numeric_limits<double>::infinity();

  void Include(double value) {
    if (std::isfinite(value)) {
      low = std::min(low, value);
      high = std::max(high, value);
    }
  }

  /// Leaves some room on both sides, also where there is one value or none.
  void Widen() {
    if (!(low <= high)) {
      low = high = 0.0;
    }
    const double room = high > low ? 0.04 * (high - low) : std::max(1.0, 0.04 * std::abs(low));
    low -= room;
    high += room;
  }

  int Position(double value, int length) const {
    return static_cast<int>(std::lround((value - low) / (high - low) * (length - 1)));
  }

  std::vector<TICK> Ticks(int length, int distance) const {
    return RoundTicks(low, high, (high - low) * distance / length);
  }
};

class PLOT_PAINTER {
 public:
  explicit PLOT_PAINTER(const PLOT& plot)
      : plot_(plot),
        x_(AxisOf(plot, &PLOT_SERIES::x)),
        y_(AxisOf(plot, &PLOT_SERIES::y)),
        y_ticks_(y_.Ticks(plot.height, y_tick_distance)),
        left_(edge + TextHeight(FONT::NORMAL) + gap + LabelWidth() + gap + tick_length),
        top_(edge + TextHeight(FONT::TITLE) + gap + TextHeight(FONT::SMALL) + 2 * gap),
        canvas_(std::max(left_ + plot.width, left_ + TextWidth(FONT::TITLE, plot.title)) + edge,
                top_ + plot.height + tick_length + 2 * gap + TextHeight(FONT::SMALL) +
                    TextHeight(FONT::NORMAL) + edge) {}

  CANVAS Paint() && {
    canvas_.Text(left_, edge + TextHeight(FONT::TITLE) / 2, ALIGN::BEGIN, FONT::TITLE, plot_.title,
                 black);
    PaintLegend();
    PaintXAxis();
    PaintYAxis();
    for (const PLOT_SERIES& series : plot_.series) {
      PaintSeries(series);
    }
    canvas_.Frame(left_ - 1, top_ - 1, left_ + plot_.width, top_ + plot_.height, ink);
    return std::move(canvas_);
  }

 private:
  static AXIS AxisOf(const PLOT& plot, std::vector<double> PLOT_SERIES::*values) {
    AXIS axis;
    for (const PLOT_SERIES& series : plot.series) {
      for (const double value : series.*values) {
        axis.Include(value);
      }
      if (series.style == PLOT_SERIES::STYLE::BARS && values == &PLOT_SERIES::y) {
        axis.Include(0.0);
      }
    }
    axis.Widen();
    return axis;
  }

  int LabelWidth() const {
    int width = 0;
    for (const TICK& tick : y_ticks_) {
      width = std::max(width, TextWidth(FONT::SMALL, tick.label));
    }
    return width;
  }

  int X(double value) const { return left_ + x_.Position(value, plot_.width); }
  int Y(double value) const { return top_ + plot_.height - 1 - y_.Position(value, plot_.height); }

  void PaintLegend() {
    int x = left_;
    const int y = edge + TextHeight(FONT::TITLE) + gap + TextHeight(FONT::SMALL) / 2;
    for (const PLOT_SERIES& series : plot_.series) {
      if (!series.name.empty()) {
        canvas_.Fill(x, y - marker, x + legend_sample, y + marker, series.colour);
        x += legend_sample + gap;
        canvas_.Text(x, y, ALIGN::BEGIN, FONT::SMALL, series.name, ink);
        x += TextWidth(FONT::SMALL, series.name) + 3 * gap;
      }
    }
  }

  void PaintXAxis() {
    const int axis_y = top_ + plot_.height;
    const int label_y = axis_y + tick_length + gap + TextHeight(FONT::SMALL) / 2;
    for (const TICK& tick : x_.Ticks(plot_.width, x_tick_distance)) {
      const int x = X(tick.value);
      canvas_.Line(x, top_, x, axis_y - 1, grid_ink);
      canvas_.Line(x, axis_y, x, axis_y + tick_length, ink);
      canvas_.Text(x, label_y, ALIGN::CENTRE, FONT::SMALL, tick.label, ink);
    }
    canvas_.Text(left_ + plot_.width / 2,
                 label_y + (TextHeight(FONT::SMALL) + TextHeight(FONT::NORMAL)) / 2 + gap,
                 ALIGN::CENTRE, FONT::NORMAL, plot_.x_name, ink);
  }

  void PaintYAxis() {
    for (const TICK& tick : y_ticks_) {
      const int y = Y(tick.value);
      canvas_.Line(left_, y, left_ + plot_.width - 1, y, grid_ink);
      canvas_.Line(left_ - 1 - tick_length, y, left_ - 1, y, ink);
      canvas_.Text(left_ - 1 - tick_length - gap, y, ALIGN::END, FONT::SMALL, tick.label, ink);
    }
    canvas_.TextUp(edge + TextHeight(FONT::NORMAL) / 2, top_ + plot_.height / 2, ALIGN::CENTRE,
                   FONT::NORMAL, plot_.y_name, ink);
  }

  void PaintSeries(const PLOT_SERIES& series) {
    const double bar_width = series.x.size() > 1 ? series.x[1] - series.x[0] : 1.0;
    for (std::size_t i = 0; i < series.x.size(); ++i) {
      if (!IsPoint(series, i)) {
        continue;
      }
      const int x = X(series.x[i]);
      const int y = Y(series.y[i]);
      switch (series.style) {
        case PLOT_SERIES::STYLE::POINTS:
          canvas_.Fill(x - marker, y - marker, x + marker, y + marker, series.colour);
          break;
        case PLOT_SERIES::STYLE::BARS:
          canvas_.Fill(std::max(left_, X(series.x[i] - 0.5 * bar_width)), y,
                       std::min(left_ + plot_.width - 1, X(series.x[i] + 0.5 * bar_width) - 1),
                       Y(0.0), series.colour);
          break;
        case PLOT_SERIES::STYLE::LINE:
          if (i > 0 && IsPoint(series, i - 1)) {
            canvas_.Line(X(series.x[i - 1]), Y(series.y[i - 1]), x, y, series.colour);
          }
          break;
      }
    }
  }

  static bool IsPoint(const PLOT_SERIES& series, std::size_t i) {
    return std::isfinite(series.x[i]) && std::isfinite(series.y[i]);
  }

  const PLOT& plot_;
  const AXIS x_;
  const AXIS y_;
  const std::vector<TICK> y_ticks_;
  const int left_;  ///< of the area between the axes
  const int top_;
  CANVAS canvas_;
};

}  // namespace

CANVAS Draw(const PLOT& plot) {
  return PLOT_PAINTER(plot).Paint();
}
