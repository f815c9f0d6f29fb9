import re
import shutil
import unittest

import installed

PAGES = sorted((installed.PREFIX / "share/man").glob("man*/*"))


def page(name):
    return next(path for path in PAGES if path.name == name).read_text()


class Pages(unittest.TestCase):
    def test_tell_every_parameter_and_subcommand(self):
        for told in (re.findall(r"\bFl (\w+)", page("resample.1")),
                     re.findall(r"^  (\w+)  \(", installed.run("resample", "--help"), re.MULTILINE)):
            self.assertEqual([name for name in installed.parameters() if name not in told], [])
        told = re.findall(r"^\.It Cm (\S+)", page("slctool.1"), re.MULTILINE)
        self.assertEqual([name for name in installed.subcommands() if name not in told], [])

    @unittest.skipUnless(shutil.which("mandoc"), "needs mandoc")
    def test_are_well_formed(self):
        self.assertEqual([path.name for path in PAGES], [
            "resample.1", "slctool.1", "resample-pool.5", "resample-raster.5"])
        installed.run("mandoc", "-T", "lint", "-W", "warning", *PAGES)


if __name__ == "__main__":
    unittest.main()
