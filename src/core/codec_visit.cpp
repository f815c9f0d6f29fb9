#include "core/codec_visit.h"

#include "logging/logging.h"

using enum LOGGING_LEVEL_T;

void RefusePixelType() {
  Log() << ALARM << "ERROR : Non supported pixel type has been provided.";
  throw "not supported pixel type";
}

void CheckPixelTypeIsSupported(PIXEL_TYPE type) {
  VisitCodec(type, [](auto) {});
}
