"""A stack of slaves on this machine, over the number of runs at a time."""

import json
import shutil

from contender import Contender
from whole_runs import seconds_of

RUNS_OWN = ("SlaveIn", "SlaveOut", "MaskOut")


def write(scene, count):
    """A description of slaves with pools and mapping matrices in common and an image each."""
    (scene.directory / "out").mkdir(exist_ok=True)
    common = dict(line.split() for line in scene.path("pcf.resample").read_text().splitlines())
    common.update({"SlaveIn": "{name}.ras", "SlaveOut": "out/{name}.ras",
                   "MaskOut": "out/{name}_mask.ras"})
    names = [f"s{i:02}" for i in range(count)]
    for name in names:
        shutil.copyfile(scene.path("slave.ras"), scene.path(f"{name}.ras"))
    scene.path("stack.json").write_text(
        json.dumps({"common": common, "slaves": [{"name": name} for name in names]}))
    return names


def _clear(scene):
    shutil.rmtree(scene.directory / "stack.stack", ignore_errors=True)
    for output in (scene.directory / "out").iterdir():
        output.unlink()


def one_by_one(build, scene, names, threads):
    """Plain runs in a row, each on all processors."""
    def measure():
        _clear(scene)
        seconds = sum(seconds_of([build / "resample", "-SlaveIn", f"{name}.ras", "-SlaveOut",
                                  f"out/{name}.ras", "-MaskOut", f"out/{name}_mask.ras"],
                                 scene, PARALLEL=str(threads)) for name in names)
        return 1e9 * seconds / scene.size**2 / len(names)

    return Contender("plain runs, one by one", f"PARALLEL={threads} resample, {len(names)} times",
                     measure)


def at_a_time(build, scene, names, concurrent):
    """The stack with so many runs at a time, which share the processors."""
    def measure():
        _clear(scene)
        seconds = seconds_of([build / "resample-stack", "stack.json", "--local", str(concurrent)],
                             scene)
        return 1e9 * seconds / scene.size**2 / len(names)

    return Contender(f"stack, {concurrent} at a time", f"resample-stack --local {concurrent}",
                     measure)
