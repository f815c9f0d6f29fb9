import os
import pathlib
import pty
import re
import shutil
import signal
import tempfile
import unittest

import installed

SHARE = installed.PREFIX / "share"
# Completes the words $2 ..., the last of which is unfinished, with the file $1.
BASH = """
source "$1"; shift
COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1))
$(complete -p "$1" | sed -E 's/.* -F ([^ ]+) .*/\\1/') "$1"; printf '%s\\n' "${COMPREPLY[@]}"
"""
# The key ^X shows the line between << and >> and empties it.
ZSHRC = """
fpath=(%s $fpath)
autoload -Uz compinit; compinit -u -D
show() { zle -I; print -r -- "<<$BUFFER>>"; BUFFER= }
zle -N show; bindkey '^X' show
""" % (SHARE / "zsh/site-functions")


def bash(*words):
    path = SHARE / "bash-completion/completions" / words[0]
    return installed.run("bash", "-c", BASH, "bash", path, *words).split()


class Bash(unittest.TestCase):
    def test_offers_every_parameter_of_resample(self):
        offered = bash("resample", "-")
        self.assertEqual([name for name in installed.parameters() if f"-{name}" not in offered], [])
        for name, (_, values) in installed.parameters().items():
            self.assertEqual(bash("resample", f"-{name}", "")[:len(values)], values)
        self.assertEqual(bash("resample", "-SlaveIn", ""), [])  # files

    def test_offers_what_the_help_of_slctool_tells(self):
        self.assertEqual(bash("slctool", ""), installed.subcommands("slctool"))
        self.assertEqual(bash("slctool", "png", ""), installed.subcommands("slctool", "png"))
        self.assertEqual(bash("slctool", "compare", "a", "b", "--m"),
                         ["--mask", "--margin", "--min-coherence"])
        self.assertEqual(bash("slctool", "scene", "--mapping-format", ""), ["matrix", "polynomial"])
        self.assertCountEqual(bash("slctool", "scene", "--pixel-type", "c"), ["cint16", "cfloat16"])
        self.assertEqual(bash("slctool", "info", ""), [])  # files
        self.assertEqual(bash("resample-stack", "st"), ["status", "stop"])
        self.assertEqual(bash("resample-stack", "a.json", "--re"), ["--retries"])


def zsh(lines):
    """What a TAB makes of each line that is typed, in an empty folder but for ".zshrc"."""
    with tempfile.TemporaryDirectory() as folder:
        (pathlib.Path(folder) / ".zshrc").write_text(ZSHRC)
        process, terminal = pty.fork()
        if process == 0:
            os.chdir(folder)
            os.execvpe("zsh", ["zsh", "-i"],
                       dict(installed.ENVIRONMENT, ZDOTDIR=folder, TERM="dumb"))
        shown = []
        for line in lines:
            os.write(terminal, f"{line}\t\x18".encode())
            output, found = "", None
            while found is None:
                output += os.read(terminal, 4096).decode()
                found = re.search("<<(.*)>>", output)
            shown.append(found[1].rstrip())
        os.kill(process, signal.SIGKILL)
        os.waitpid(process, 0)
        os.close(terminal)
        return shown


class Zsh(unittest.TestCase):
    def test_knows_every_parameter_of_resample(self):
        text = (SHARE / "zsh/site-functions/_resample").read_text()
        known = {name: rest for name, rest in re.findall(r"-(\w+)\[(.*)", text)}
        for name, (_, values) in installed.parameters().items():
            self.assertIn(" ".join(values), known[name].replace("$levels", " ".join(values)))

    @unittest.skipUnless(shutil.which("zsh"), "needs zsh")
    def test_completes(self):
        ends = {"resample -KERNEL_T": "YPE", "resample -KERNEL_TYPE cub": "ic_convolution",
                "resample -lsl NO": "_MESSAGE", "resample -pcf .zsh": "rc",
                "slctool comp": "are", "slctool png inter": "ferogram",
                "slctool compare a b --min": "-coherence",
                "slctool scene --mapping-format p": "olynomial", "slctool info .zsh": "rc",
                "resample-stack status a --wa": "tch", "resample-stack .zsh": "rc"}
        self.assertEqual(zsh(ends), [line + end for line, end in ends.items()])


if __name__ == "__main__":
    unittest.main()
