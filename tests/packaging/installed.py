"""What the tests of the installed files share."""
import os
import pathlib
import re
import subprocess
import tempfile
import unittest

PREFIX = pathlib.Path(os.environ["PREFIX"])
SOURCE = pathlib.Path(os.environ["SOURCE"])
ENVIRONMENT = dict(os.environ, PATH=f"{PREFIX}/bin:{os.environ['PATH']}")


def run(*command, **options):
    """Standard output and errors of a command that has to succeed."""
    done = subprocess.run(command, env=ENVIRONMENT, text=True, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, **options)
    if done.returncode != 0:
        raise AssertionError(f"{command}: status {done.returncode}\n{done.stdout}")
    return done.stdout


def parameters():
    """The table of the parameters of resample as its help prints it: by name, what is said of need
    and values, the latter as a list where it is one of words."""
    text = run("resample", "--help")
    text = text[text.index("parameters:"):text.index("environment variables:")]
    entries = re.findall(r"^  (\w+)  \((.*)\)\n      .*\n(?:      values: (.*)\n)?", text,
                         re.MULTILINE)
    return {name: (need, re.findall(r"\w+", values) if re.match(r"\w+, ", values) else [])
            for name, need, values in entries}


def subcommands(*command):
    """The sub-commands of a program, or of one of its sub-commands, from its help."""
    text = run(*command, "--help")
    return re.findall(r"^  ([a-z][a-z-]*)", text[text.index("Subcommands:"):], re.MULTILINE)


class SceneTest(unittest.TestCase):
    """Tests on a small scene of `slctool scene`, resampled."""

    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.folder = pathlib.Path(folder.name)
        run("slctool", "scene", ".", "--samples", "100", "--lines", "80", cwd=cls.folder)
        run("resample", cwd=cls.folder)
