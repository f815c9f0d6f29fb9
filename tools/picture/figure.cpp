#include "picture/figure.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr COLOUR ink{40, 40, 44};
constexpr COLOUR faint_ink{110, 110, 118};
constexpr COLOUR no_data_colour{226, 226, 232};
constexpr const char* no_data_label = "no data";

constexpr int edge = 14;  ///< free space along the edges of the picture
constexpr int gap = 6;    ///< between things that belong together
constexpr int tick_length = 5;
constexpr int bar_width = 20;
constexpr int bar_distance = 26;
constexpr int smallest_bar_height = 120;
constexpr int sample_tick_distance = 70;  ///< at least
constexpr int line_tick_distance = 40;

/// Widest of the labels, in picture pixels.
int LabelWidth(const std::vector<TICK>& ticks) {
  int width = 0;
  for (const TICK& tick : ticks) {
    width = std::max(width, TextWidth(FONT::SMALL, tick.label));
  }
  return width;
}

std::vector<TICK> AxisTicks(std::int64_t pixels, int length, int distance) {
  const double pixels_apart = static_cast<double>(pixels) * distance / length;
  return RoundTicks(0.0, static_cast<double>(pixels - 1), std::max(1.0, pixels_apart));
}

/// Picture pixel, counted from the start of the axis, of the middle of an image pixel.
int AxisPosition(double pixel, std::int64_t pixels, int length) {
  return static_cast<int>((pixel + 0.5) * length / static_cast<double>(pixels));
}

class FIGURE_PAINTER {
 public:
  explicit FIGURE_PAINTER(const FIGURE& figure)
      : figure_(figure),
        has_gaps_(std::any_of(figure.values.Cells().begin(), figure.values.Cells().end(),
                              [](double value) { return std::isnan(value); })),
        sample_ticks_(AxisTicks(figure.samples, figure.width, sample_tick_distance)),
        line_ticks_(AxisTicks(figure.lines, figure.height, line_tick_distance)),
        left_(edge + TextHeight(FONT::NORMAL) + gap + LabelWidth(line_ticks_) + gap + tick_length),
        top_(edge + (figure.title.empty()
                         ? gap
                         : TextHeight(FONT::TITLE) + gap + TextHeight(FONT::SMALL) + 2 * gap)),
        bar_left_(left_ + figure.width + bar_distance),
        bar_height_(std::max(figure.height, smallest_bar_height)),
        canvas_(PictureWidth(), PictureHeight()) {}

  CANVAS Paint() && {
    PaintTitle();
    PaintImage();
    PaintSampleAxis();
    PaintLineAxis();
    PaintColourBar();
    return std::move(canvas_);
  }

 private:
  int ScaleLabelWidth() const {
    const int width = LabelWidth(figure_.scale.ticks);
    return has_gaps_ ? std::max(width, TextWidth(FONT::SMALL, no_data_label)) : width;
  }

  int PictureWidth() const {
    const int with_bar = bar_left_ + bar_width + tick_length + gap + ScaleLabelWidth() + 2 * gap +
                         TextHeight(FONT::NORMAL);
    const int with_title = left_ + std::max(TextWidth(FONT::TITLE, figure_.title),
                                            TextWidth(FONT::SMALL, figure_.subtitle));
    return std::max(with_bar, with_title) + edge;
  }

  int PictureHeight() const {
    return top_ + bar_height_ + tick_length + gap + TextHeight(FONT::SMALL) + gap +
           TextHeight(FONT::NORMAL) + edge;
  }

  COLOUR ColourOf(double value) const {
    const COLOUR_SCALE& scale = figure_.scale;
    if (std::isnan(value)) {
      return no_data_colour;
    }
    return scale.map(std::clamp((value - scale.low) / (scale.high - scale.low), 0.0, 1.0));
  }

  void PaintTitle() {
    const int title_y = edge + TextHeight(FONT::TITLE) / 2;
    canvas_.Text(left_, title_y, ALIGN::BEGIN, FONT::TITLE, figure_.title, black);
    canvas_.Text(left_, title_y + (TextHeight(FONT::TITLE) + TextHeight(FONT::SMALL)) / 2 + gap,
                 ALIGN::BEGIN, FONT::SMALL, figure_.subtitle, faint_ink);
  }

  void PaintImage() {
    const CELL_GRID<double>& values = figure_.values;
    for (int y = 0; y < figure_.height; ++y) {
      const auto row = static_cast<int>(std::int64_t{y} * values.Rows() / figure_.height);
      for (int x = 0; x < figure_.width; ++x) {
        const auto column = static_cast<int>(std::int64_t{x} * values.Columns() / figure_.width);
        canvas_.SetPixel(left_ + x, top_ + y, ColourOf(values.At(column, row)));
      }
    }
    canvas_.Frame(left_ - 1, top_ - 1, left_ + figure_.width, top_ + figure_.height, ink);
  }

  void PaintSampleAxis() {
    const int axis_y = top_ + figure_.height + 1;
    const int label_y = axis_y + tick_length + gap + TextHeight(FONT::SMALL) / 2;
    for (const TICK& tick : sample_ticks_) {
      const int x = left_ + AxisPosition(tick.value, figure_.samples, figure_.width);
      canvas_.Line(x, axis_y, x, axis_y + tick_length - 1, ink);
      canvas_.Text(x, label_y, ALIGN::CENTRE, FONT::SMALL, tick.label, ink);
    }
    const int name_y = label_y + TextHeight(FONT::SMALL) / 2 + gap + TextHeight(FONT::NORMAL) / 2;
    canvas_.Text(left_ + figure_.width / 2, name_y, ALIGN::CENTRE, FONT::NORMAL, "sample", ink);
  }

  void PaintLineAxis() {
    const int axis_x = left_ - 2;
    for (const TICK& tick : line_ticks_) {
      const int y = top_ + AxisPosition(tick.value, figure_.lines, figure_.height);
      canvas_.Line(axis_x - tick_length + 1, y, axis_x, y, ink);
      canvas_.Text(axis_x - tick_length - gap, y, ALIGN::END, FONT::SMALL, tick.label, ink);
    }
    canvas_.TextUp(edge + TextHeight(FONT::NORMAL) / 2, top_ + figure_.height / 2, ALIGN::CENTRE,
                   FONT::NORMAL, "line", ink);
  }

  void PaintColourBar() {
    const COLOUR_SCALE& scale = figure_.scale;
    const int bar_right = bar_left_ + bar_width - 1;
    const int bar_bottom = top_ + bar_height_ - 1;
    for (int y = 0; y < bar_height_; ++y) {
      const COLOUR colour = scale.map((bar_height_ - 1 - y) / (bar_height_ - 1.0));
      canvas_.Line(bar_left_, top_ + y, bar_right, top_ + y, colour);
    }
    canvas_.Frame(bar_left_ - 1, top_ - 1, bar_right + 1, bar_bottom + 1, ink);
    const int label_x = bar_right + 2 + tick_length + gap;
    for (const TICK& tick : scale.ticks) {
      const double position = (tick.value - scale.low) / (scale.high - scale.low);
      const int y = bar_bottom - static_cast<int>(std::lround(position * (bar_height_ - 1)));
      canvas_.Line(bar_right + 2, y, bar_right + 1 + tick_length, y, ink);
      canvas_.Text(label_x, y, ALIGN::BEGIN, FONT::SMALL, tick.label, ink);
    }
    canvas_.TextUp(label_x + ScaleLabelWidth() + 2 * gap + TextHeight(FONT::NORMAL) / 2,
                   top_ + bar_height_ / 2, ALIGN::CENTRE, FONT::NORMAL, scale.name, ink);
    if (has_gaps_) {
      const int patch_top = bar_bottom + 3 * gap;
      const int patch_bottom = patch_top + TextHeight(FONT::SMALL);
      canvas_.Fill(bar_left_, patch_top, bar_right, patch_bottom, no_data_colour);
      canvas_.Frame(bar_left_ - 1, patch_top - 1, bar_right + 1, patch_bottom + 1, ink);
      canvas_.Text(label_x, (patch_top + patch_bottom) / 2, ALIGN::BEGIN, FONT::SMALL,
                   no_data_label, ink);
    }
  }

  const FIGURE& figure_;
  const bool has_gaps_;  ///< cells without a value
  const std::vector<TICK> sample_ticks_;
  const std::vector<TICK> line_ticks_;
  const int left_;  ///< of the image itself
  const int top_;
  const int bar_left_;
  const int bar_height_;
  CANVAS canvas_;
};

}  // namespace

CANVAS Draw(const FIGURE& figure) {
  return FIGURE_PAINTER(figure).Paint();
}
