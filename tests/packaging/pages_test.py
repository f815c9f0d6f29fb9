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
        for program in ("slctool", "resample-stack"):
            told = re.findall(r"^\.It Cm (\S+)", page(f"{program}.1"), re.MULTILINE)
            self.assertEqual([name for name in installed.subcommands(program) if name not in told],
                             [])
        told = re.findall(r"\bFl Fl (\S+)", page("resample-stack.1"))
        options = re.findall(r"^  .*?--([a-z-]+)", installed.run("resample-stack", "--help"),
                             re.MULTILINE)
        self.assertEqual([name for name in options if name not in [*told, "help"]], [])

    @unittest.skipUnless(shutil.which("mandoc"), "needs mandoc")
    def test_are_well_formed(self):
        self.assertEqual([path.name for path in PAGES], [
            "resample-stack.1", "resample.1", "slctool.1", "resample-pool.5", "resample-raster.5"])
        installed.run("mandoc", "-T", "lint", "-W", "warning", *PAGES)


if __name__ == "__main__":
    unittest.main()
