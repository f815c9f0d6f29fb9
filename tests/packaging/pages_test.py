import re
import shutil
import unittest

import installed

PAGES = sorted((installed.PREFIX / "share/man").glob("man*/*"))


def page(name):
    return next(path for path in PAGES if path.name == name).read_text()


class Pages(unittest.TestCase):
    def test_tell_every_parameter_as_the_help_does(self):
        text = (installed.SOURCE / "docs/operation.md").read_text()
        tables = text[text.index("### Parameters of the program"):text.index("### Environment")]
        rows = re.findall(r"^\| (`.*?) \| (.*?) \| (.*) \|$", tables, re.MULTILINE)
        documented = {name: row for row in rows for name in re.findall(r"`(\w+)`", row[0])}
        items = re.split(r"^\.It ", page("resample.1"), flags=re.MULTILINE)
        items = {name: item for item in items
                 for name in re.findall(r"\bFl (\w+)", item.split("\n")[0])}
        parameters = installed.parameters()
        self.assertEqual(list(documented), list(parameters))
        for name, (need, values) in parameters.items():
            self.assertEqual(documented[name][1] == "yes", need == "required", name)
            self.assertEqual("\nRequired.\n" in items[name], need == "required", name)
            for value in values:
                self.assertIn(value, items[name])

    def test_tell_every_subcommand(self):
        for program in ("slctool", "resample-stack"):
            told = re.findall(r"^\.It Cm (\S+)", page(f"{program}.1"), re.MULTILINE)
            self.assertEqual([name for name in installed.subcommands(program) if name not in told],
                             [])
        told = re.findall(r"\bFl Fl (\S+)", page("resample-stack.1"))
        options = re.findall(r"^  .*?--([a-z-]+)", installed.run("resample-stack", "--help"),
                             re.MULTILINE)
        self.assertEqual([name for name in options if name not in [*told, "help"]], [])

    def test_of_the_evidence_names_tests_that_are_there(self):
        sources = "".join(path.read_text() for path in (installed.SOURCE / "tests").glob("**/*.cpp"))
        there = re.findall(r"^TEST(?:_F|_P)?\((\w+),\s*(\w+)\)", sources, re.MULTILINE)
        text = (installed.SOURCE / "docs/maintainers/evidence.md").read_text()
        named = re.findall(r"`([A-Z]\w+)\.(\w+)`", text)
        self.assertEqual(sorted({*named} - {*there}), [])

    @unittest.skipUnless(shutil.which("mandoc"), "needs mandoc")
    def test_are_well_formed(self):
        self.assertEqual([path.name for path in PAGES], [
            "resample-stack.1", "resample.1", "slctool.1", "resample-pool.5", "resample-raster.5"])
        installed.run("mandoc", "-T", "lint", "-W", "warning", *PAGES)


if __name__ == "__main__":
    unittest.main()
