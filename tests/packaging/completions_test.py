import shutil
import unittest

import installed

SHARE = installed.PREFIX / "share"
# Completes the words $2 ..., the last of which is unfinished, with the file $1.
BASH = """
source "$1"; shift
COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1))
_$1 "$1"; printf '%s\\n' "${COMPREPLY[@]}"
"""
# Types the line $2 and a TAB into a shell that looks into the folder $1, and lists all that is offered.
ZSH = """
zmodload zsh/zpty
zpty shell "PS1= TERM=dumb zsh -f -i"
zpty -w shell "fpath=($1 \\$fpath); autoload -Uz compinit; compinit -u -d $HOME/.dump"
zpty -w shell "zstyle ':completion:*' list-packed no; zstyle ':completion:*' menu no"
zpty -w shell "LISTMAX=999 COLUMNS=300 LINES=200; print ready"
zpty -r shell output '*ready*ready*'
zpty -n -w shell "$2"$'\\t\\t'
"""


def bash(*words):
    path = SHARE / "bash-completion/completions" / words[0]
    return installed.run("bash", "-c", BASH, "bash", path, *words).split()


class Bash(unittest.TestCase):
    def test_offers_every_parameter_of_resample(self):
        offered = bash("resample", "-")
        self.assertEqual([name for name in installed.parameters() if f"-{name}" not in offered], [])
        self.assertEqual(bash("resample", "-KERNEL_TYPE", "cubic"), ["cubic_convolution"])
        self.assertEqual(bash("resample", "-SlaveIn", ""), [])  # files

    def test_offers_what_the_help_of_slctool_tells(self):
        self.assertEqual(bash("slctool", ""), installed.subcommands())
        self.assertEqual(bash("slctool", "png", ""), installed.subcommands("png"))
        self.assertEqual(bash("slctool", "compare", "a", "b", "--m"),
                         ["--mask", "--margin", "--min-coherence"])
        self.assertEqual(bash("slctool", "scene", "--mapping-format", ""), ["matrix", "polynomial"])
        self.assertCountEqual(bash("slctool", "scene", "--pixel-type", "c"), ["cint16", "cfloat16"])
        self.assertEqual(bash("slctool", "info", ""), [])  # files


@unittest.skipUnless(shutil.which("zsh"), "needs zsh")
class Zsh(unittest.TestCase):
    pass


if __name__ == "__main__":
    unittest.main()
