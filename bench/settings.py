"""What the settings of a run cost: kernel length, sub-pixel positions, slopes of the mapping, Doppler
centroid. Whole runs on scenes of `slctool scene`, one thread, processor time."""

import os
import re
import subprocess

from contender import Contender

WARPS = (0.4, 4, 20)
POSITIONS = (16, 64, 256, 1024, 4096)
LENGTHS = (8, 16)
CENTROIDS = (0.2, 1, 4, 10, 20)  # PRF


def _scene(build, directory, size, *options):
    subprocess.run([build / "slctool", "scene", directory, "--samples", str(size), "--lines",
                    str(size), *map(str, options)], check=True, stdout=subprocess.DEVNULL)
    return directory


def _run(build, scene, size, length, positions):
    """Processor time of a run, in nanoseconds a pixel."""
    command = [build / "resample", "-KERNEL_LENGTH", str(length), "-KERNEL_SUBPIX_POS",
               str(positions)]

    def measure():
        for name in ("resampled.ras", "resampled_mask.ras"):
            (scene / name).unlink(missing_ok=True)
        process = subprocess.Popen(command, cwd=scene, stdout=subprocess.DEVNULL,
                                   env={**os.environ, "PARALLEL": "1"})
        _, status, usage = os.wait4(process.pid, 0)
        if status != 0:
            raise RuntimeError(f"resample failed in {scene}")
        return 1e9 * (usage.ru_utime + usage.ru_stime) / size**2

    return Contender(f"L{length} N{positions}", "resample", measure)


def positions_and_warps(build, directory, size):
    """One contender for every length, warp and number of sub-pixel positions."""
    scenes = {warp: _scene(build, directory / f"warp{warp}", size, "--warp", warp)
              for warp in WARPS}
    return {(length, warp, positions): _run(build, scenes[warp], size, length, positions)
            for length in LENGTHS for warp in WARPS for positions in POSITIONS}


def centroids(build, directory, size):
    """One contender for every length and centroid."""
    contenders = {}
    for turns in CENTROIDS:
        scene = _scene(build, directory / f"centroid{turns}", size, "--warp", 0.4)
        pool = scene / "slave.pool"
        prf = float(re.search(r"^prf +FLT_15 +(\S+)$", pool.read_text(), re.M)[1])
        text = re.sub(r"(fdc_poly_coeff +FLT_15_M +0 \d+ 0 )\d+\s*\{\s*(?:\{[^}]*\}\s*)+",
                      lambda found: _constant(found[1], turns * prf), pool.read_text())
        pool.write_text(text)
        for length in LENGTHS:
            contenders[length, turns] = _run(build, scene, size, length, 64)
    return dict(sorted(contenders.items()))


def _constant(begin, frequency):
    return f"{begin}1\n{{\n" + 5 * f"{{\n{frequency!r}\n}}\n"
