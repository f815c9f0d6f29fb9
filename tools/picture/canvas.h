#pragma once

#include <memory>
#include <string>

#include "picture/colour.h"

struct gdImageStruct;

/// Letters of a fixed width that the drawing library has built in; no font file is needed.
enum class FONT { SMALL, NORMAL, TITLE };

/// Where a text lies along its direction, seen from the point it is drawn at.
enum class ALIGN { BEGIN, CENTRE, END };

/// A true-colour picture, white at first, whose pixels count from the upper left corner. What
/// lies outside is not drawn.
class CANVAS {
 public:
  /// Throws std::bad_alloc when there is no memory for the picture.
  CANVAS(int width, int height);

  int Width() const noexcept;
  int Height() const noexcept;
  COLOUR Pixel(int x, int y) const noexcept;

  void SetPixel(int x, int y, COLOUR colour) noexcept;
  /// Line and rectangles include both corners.
  void Line(int x0, int y0, int x1, int y1, COLOUR colour) noexcept;
  void Frame(int x0, int y0, int x1, int y1, COLOUR colour) noexcept;
  void Fill(int x0, int y0, int x1, int y1, COLOUR colour) noexcept;

  /// A text in UTF-8 whose middle height is y. Letters beyond Latin ones become question marks.
  void Text(int x, int y, ALIGN align, FONT font, const std::string& text, COLOUR colour);
  /// A text that reads upwards, whose middle height is x.
  void TextUp(int x, int y, ALIGN align, FONT font, const std::string& text, COLOUR colour);

  /// Draws another picture with its upper left corner at (x, y).
  void Paste(const CANVAS& other, int x, int y) noexcept;

  /// The bytes of a PNG file. Throws std::bad_alloc.
  std::string Png() const;
  /// Throws std::runtime_error, which names the path, when the file cannot be written.
  void WritePng(const std::string& path) const;

 private:
  struct DESTROYER {
    void operator()(gdImageStruct* image) const noexcept;
  };

  std::unique_ptr<gdImageStruct, DESTROYER> image_;
};

/// A picture with two others in it, side by side. Throws std::bad_alloc.
CANVAS Beside(const CANVAS& left, const CANVAS& right);

/// Extent of a text in picture pixels.
int TextWidth(FONT font, const std::string& text) noexcept;
int TextHeight(FONT font) noexcept;
