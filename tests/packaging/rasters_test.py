import sys
import unittest

import numpy as np

import installed

sys.path.insert(0, str(installed.PREFIX / "share/doc/resample/examples"))
import rasters


def words_of(text):
    return dict(line.split("=") for line in text.split())


class Rasters(installed.SceneTest):
    def test_have_the_values_that_slctool_finds(self):
        slave = rasters.to_complex(rasters.read_raster(self.folder / "slave.ras"))
        print(installed.run("slctool", "info", "slave.ras", cwd=self.folder))


if __name__ == "__main__":
    unittest.main()
