#include "picture/canvas.h"

#include <gd.h>
#include <gdfontg.h>
#include <gdfontl.h>
#include <gdfonts.h>
#include <iconv.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <new>
#include <stdexcept>

#include "common/new_files.h"

namespace {

gdFontPtr Letters(FONT font) noexcept {
  switch (font) {
    case FONT::SMALL:
      return gdFontGetSmall();
    case FONT::TITLE:
      return gdFontGetGiant();
    default:
      return gdFontGetLarge();
  }
}

int Packed(COLOUR colour) noexcept {
  return gdTrueColor(colour.red, colour.green, colour.blue);
}

/// From UTF-8 to the letters of the drawing library, which are those of ISO 8859-2.
class LETTER_CONVERTER {
 public:
  LETTER_CONVERTER() noexcept : converter_(iconv_open("ISO-8859-2//TRANSLIT", "UTF-8")) {}
  LETTER_CONVERTER(const LETTER_CONVERTER&) = delete;
  LETTER_CONVERTER& operator=(const LETTER_CONVERTER&) = delete;
  ~LETTER_CONVERTER() {
    if (!IsMinusOne(converter_)) {
      iconv_close(converter_);
    }
  }

  /// A question mark for a letter that is not shown.
  char Convert(std::string letter) noexcept {
    char converted = '?';
    char* from = letter.data();
    char* to = &converted;
    std::size_t from_left = letter.size();
    std::size_t to_left = 1;
    const bool is_shown = !IsMinusOne(converter_) &&
                          iconv(converter_, &from, &from_left, &to, &to_left) != failed &&
                          from_left == 0;
    return is_shown ? converted : '?';
  }

 private:
  static constexpr auto failed = static_cast<std::size_t>(-1);

  static bool IsMinusOne(iconv_t converter) noexcept {
    return reinterpret_cast<std::intptr_t>(converter) == -1;
  }

  iconv_t converter_;
};

/// Whether the byte begins a letter of UTF-8; the others of a letter are 10xxxxxx.
bool IsFirstByte(char byte) noexcept {
  return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
}

/// One byte a letter.
std::string Drawable(const std::string& text) {
  LETTER_CONVERTER converter;
  std::string drawable;
  for (std::size_t begin = 0; begin < text.size();) {
    std::size_t end = begin + 1;
    while (end < text.size() && !IsFirstByte(text[end])) {
      ++end;
    }
    drawable += converter.Convert(text.substr(begin, end - begin));
    begin = end;
  }
  return drawable;
}

unsigned char* Bytes(std::string& text) noexcept {
  return reinterpret_cast<unsigned char*>(text.data());
}

/// How far before its point a text of this length begins.
int Lead(ALIGN align, int length) noexcept {
  switch (align) {
    case ALIGN::BEGIN:
      return 0;
    case ALIGN::CENTRE:
      return length / 2;
    default:
      return length;
  }
}

struct FREER {
  void operator()(void* memory) const noexcept { gdFree(memory); }
};

}  // namespace

void CANVAS::DESTROYER::operator()(gdImageStruct* image) const noexcept {
  gdImageDestroy(image);
}

CANVAS::CANVAS(int width, int height) : image_(gdImageCreateTrueColor(width, height)) {
  if (!image_) {
    throw std::bad_alloc();
  }
  Fill(0, 0, width - 1, height - 1, white);
}

int CANVAS::Width() const noexcept {
  return gdImageSX(image_.get());
}

int CANVAS::Height() const noexcept {
  return gdImageSY(image_.get());
}

COLOUR CANVAS::Pixel(int x, int y) const noexcept {
  const int packed = gdImageGetTrueColorPixel(image_.get(), x, y);
  return {static_cast<unsigned char>(gdTrueColorGetRed(packed)),
          static_cast<unsigned char>(gdTrueColorGetGreen(packed)),
          static_cast<unsigned char>(gdTrueColorGetBlue(packed))};
}

void CANVAS::SetPixel(int x, int y, COLOUR colour) noexcept {
  gdImageSetPixel(image_.get(), x, y, Packed(colour));
}

void CANVAS::Line(int x0, int y0, int x1, int y1, COLOUR colour) noexcept {
  gdImageLine(image_.get(), x0, y0, x1, y1, Packed(colour));
}

void CANVAS::Frame(int x0, int y0, int x1, int y1, COLOUR colour) noexcept {
  gdImageRectangle(image_.get(), x0, y0, x1, y1, Packed(colour));
}

void CANVAS::Fill(int x0, int y0, int x1, int y1, COLOUR colour) noexcept {
  gdImageFilledRectangle(image_.get(), x0, y0, x1, y1, Packed(colour));
}

void CANVAS::Text(int x, int y, ALIGN align, FONT font, const std::string& text, COLOUR colour) {
  std::string drawable = Drawable(text);
  gdImageString(image_.get(), Letters(font), x - Lead(align, TextWidth(font, text)),
                y - TextHeight(font) / 2, Bytes(drawable), Packed(colour));
}

void CANVAS::TextUp(int x, int y, ALIGN align, FONT font, const std::string& text, COLOUR colour) {
  std::string drawable = Drawable(text);
  gdImageStringUp(image_.get(), Letters(font), x - TextHeight(font) / 2,
                  y + Lead(align, TextWidth(font, text)), Bytes(drawable), Packed(colour));
}

void CANVAS::Paste(const CANVAS& other, int x, int y) noexcept {
  gdImageCopy(image_.get(), other.image_.get(), x, y, 0, 0, other.Width(), other.Height());
}

std::string CANVAS::Png() const {
  int size = 0;
  const std::unique_ptr<void, FREER> png(gdImagePngPtr(image_.get(), &size));
  if (!png) {
    throw std::bad_alloc();
  }
  return {static_cast<const char*>(png.get()), static_cast<std::size_t>(size)};
}

void CANVAS::WritePng(const std::string& path) const {
  WriteWholeFile(path, Png());
}

CANVAS Beside(const CANVAS& left, const CANVAS& right) {
  CANVAS both(left.Width() + right.Width(), std::max(left.Height(), right.Height()));
  both.Paste(left, 0, 0);
  both.Paste(right, left.Width(), 0);
  return both;
}

int TextWidth(FONT font, const std::string& text) noexcept {
  return Letters(font)->w * static_cast<int>(std::count_if(text.begin(), text.end(), IsFirstByte));
}

int TextHeight(FONT font) noexcept {
  return Letters(font)->h;
}
