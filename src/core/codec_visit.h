#pragma once

#include "core/pixel_codec.h"

/// Logs an ALARM line and throws the text "not supported pixel type".
[[noreturn]] void RefusePixelType();

template <class HANDLE, class... CODECS>
void VisitCodecOf(PIXEL_TYPE type, const HANDLE& handle, CODEC_LIST<CODECS...>) {
  const bool is_found =
      ((type == CODECS::pixel_type && (static_cast<void>(handle(CODECS())), true)) || ...);
  if (!is_found) {
    RefusePixelType();
  }
}

/// Calls `handle` with the codec of a pixel type. `RefusePixelType` for a type without one.
template <class HANDLE>
void VisitCodec(PIXEL_TYPE type, const HANDLE& handle) {
  VisitCodecOf(type, handle, PIXEL_CODECS());
}

/// `RefusePixelType` for a type that is not resampled.
void CheckPixelTypeIsSupported(PIXEL_TYPE type);
