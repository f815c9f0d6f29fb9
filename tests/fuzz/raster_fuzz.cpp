// Input: a raster file. It is mapped as what its header says and as every pixel type; an image that
// was mapped must lie inside the file, and all of it is read, through the row table too.

#include <fcntl.h>

#include <cstring>

#include "fuzz/fuzz_target.h"
#include "raster/mem_mgr.h"
#include "raster/raster_header.h"

namespace {

void ReadAll(const unsigned char* bytes, std::int64_t count) {
  for (std::int64_t i = 0; i < count; ++i) {
    [[maybe_unused]] const volatile unsigned char byte = bytes[i];
  }
}

template <int SIZE>
struct PIXEL {
  unsigned char bytes[SIZE];
};

/// Compares both ends of the row table, counted from some origin, with those of the image.
template <int SIZE>
void CheckRows(MEM_MGR& raster, std::int64_t first_column, std::int64_t first_row) {
  if (raster.BytesPerPixel() != SIZE || raster.DataLength() == 0) {
    return;
  }
  Succeeds([&] {
    const auto* rows = raster.GetNumRecMatrix<PIXEL<SIZE>>(first_column, first_row);
    const IMAGE_BOUNDS& bounds = raster.Bounds();
    Require(rows[bounds.first_row][bounds.first_column].bytes == raster.Data(), "first pixel");
    Require(rows[bounds.last_row][bounds.last_column].bytes + SIZE ==
                raster.Data() + raster.DataLength(),
            "last pixel");
  });
}

void CheckImage(MEM_MGR& raster, std::string_view file) {
  const std::int64_t length = raster.DataLength();
  const std::int64_t offset = static_cast<std::int64_t>(file.size()) - length;
  Require(length >= 0 && offset >= static_cast<std::int64_t>(RASTER_HEADER::size),
          "an image that is longer than its file");
  ReadAll(raster.Data(), length);
  const COLOR_MAP& colors = raster.ColorMap();
  for (const unsigned char* plane : {colors.red, colors.green, colors.blue}) {
    ReadAll(plane, colors.entries);
  }
  std::int32_t origin[2] = {};
  std::memcpy(origin, file.data(), sizeof(origin));
  for (const std::int32_t first_row : {0, origin[1]}) {
    CheckRows<1>(raster, origin[0], first_row);
    CheckRows<2>(raster, origin[0], first_row);
    CheckRows<3>(raster, origin[0], first_row);
    CheckRows<4>(raster, origin[0], first_row);
    CheckRows<8>(raster, origin[0], first_row);
    CheckRows<16>(raster, origin[0], first_row);
  }
  Succeeds([&] { raster.Save("/dev/null", 0600); });
}

/// Bounds from the bytes of the file, for images that come from nowhere else.
void CheckBounds(MEM_MGR& raster, std::string_view file, PIXEL_TYPE type) {
  std::int64_t bounds[4] = {};
  std::memcpy(bounds, file.data(), sizeof(bounds));
  if (Succeeds([&] { raster.CreateInMemory(bounds[0], bounds[1], bounds[2], bounds[3], type); })) {
    Require(raster.DataLength() == 0 || raster.Data()[raster.DataLength() - 1] == 0,
            "memory that is not zero");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const FUZZ_FILE file;
  SilenceLog();
  const std::string_view bytes = TextOf(data, size);
  file.Set(bytes);
  MEM_MGR raster;
  for (const int access : {O_RDONLY, O_RDWR}) {
    if (Succeeds([&] { raster.Map(file.Path(), access); })) {
      CheckImage(raster, bytes);
    }
  }
  for (int code = -1; code <= static_cast<int>(PIXEL_TYPE::RGB) + 1; ++code) {
    const auto type = static_cast<PIXEL_TYPE>(code);
    if (Succeeds([&] { raster.Map(file.Path(), O_RDONLY, type); })) {
      CheckImage(raster, bytes);
    }
    if (size >= RASTER_HEADER::size) {
      CheckBounds(raster, bytes, type);
    }
  }
  return 0;
}
