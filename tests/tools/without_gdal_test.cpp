#include "export/export_command.h"
#include "import/import_command.h"
#include "product/product_command.h"
#include "tools/command_test.h"
#include "vrt/vrt_command.h"

namespace {

using WITHOUT_GDAL = COMMAND_TEST;

TEST_F(WITHOUT_GDAL, WhatNeedsItSaysSoAndTheRestWorks) {
  Real("map.ras", 3, 2, [](int, int) { return 1.0; });
  const std::string map = Path("map.ras");
  EXPECT_THROW(Run(AddImportCommand, "import " + map + " " + Path("b.ras")), std::runtime_error);
  EXPECT_THROW(Run(AddExportCommand, "export " + map + " " + Path("b.tif")), std::runtime_error);
  EXPECT_THROW(Run(AddProductCommand, "product a.h5 --as slave"), std::runtime_error);
  EXPECT_EQ(Run(AddVrtCommand, "vrt " + map), map + ".vrt\n");
}

}  // namespace
