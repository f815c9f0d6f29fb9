"""The program as a process, from its start to its exit."""

import os
import subprocess
import time

from contender import Contender


def seconds_of(command, scene, **environment):
    """Wall time of a process in the scene's directory."""
    start = time.perf_counter()
    subprocess.run(command, cwd=scene.directory, check=True, stdout=subprocess.DEVNULL,
                   env={**os.environ, **environment})
    return time.perf_counter() - start


def resample(build, scene, threads):
    """A run of the program. Its outputs do not exist when it starts."""
    def measure():
        for name in ("resampled.ras", "resampled_mask.ras"):
            scene.path(name).unlink(missing_ok=True)
        return 1e9 * seconds_of([build / "resample"], scene, PARALLEL=str(threads)) / scene.size**2

    return Contender(f"run, {threads} thread{'s' if threads > 1 else ''}",
                     f"PARALLEL={threads} resample", measure)
