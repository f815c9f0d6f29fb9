#include "app/program_version.h"

VERSION_RECORD ProgramVersion() {
  return {.display_name = "Resample",
          .version = "0.0.5",
          .compiled_by = "gcc4.5.0_64b",
          .compile_date = DateFromKeyword("$Date: 2020/02/06 13:09:23 $"),
          .configuration_file = "",
          .full_version = "resample.v0.0.5.linux.gcc4.5.0_64bit.default.20200206130923"};
}
