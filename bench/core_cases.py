"""The core alone, as core_bench times it."""

import json
import subprocess

from contender import Contender

PROGRAM = "bench/core_bench"


def _run(build, arguments):
    """Processor time in ns a pixel of (case, variant): the best of the repetitions."""
    report = json.loads(subprocess.run(
        [build / PROGRAM, "--benchmark_format=json", *arguments],
        check=True, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL).stdout)
    times = {}
    for entry in report["benchmarks"]:
        if entry["run_type"] == "iteration":
            case, _, variant = entry["run_name"].partition("/")
            ns = 1e9 * entry["per_pixel"]
            times[case, variant] = min(ns, times.get((case, variant), ns))
    return times


def _arguments(size, repetitions):
    return ["--size", str(size), f"--benchmark_repetitions={repetitions}",
            "--benchmark_enable_random_interleaving=true", "--benchmark_min_time=0.2"]


def command(size, repetitions):
    return " ".join([PROGRAM, *_arguments(size, repetitions)])


def measure(build, size, repetitions):
    return _run(build, _arguments(size, repetitions))


def _listed(build):
    """(case, variant) in the order of core_bench, without the copy."""
    listed = subprocess.run([build / PROGRAM, "--benchmark_list_tests"], check=True,
                            stdout=subprocess.PIPE, text=True).stdout.split()
    return [tuple(name.split("/")) for name in listed if "/" in name]


def names(build):
    return list(dict.fromkeys(case for case, _ in _listed(build)))


def variants(build):
    """The fastest last."""
    return list(dict.fromkeys(variant for _, variant in _listed(build)))


def best_variant(build, size):
    """Eight taps, 64 sub-pixel positions, on the variant that a run would choose."""
    name = f"L8/{variants(build)[-1]}"
    arguments = ["--size", str(size), f"--benchmark_filter=^{name}$"]
    return Contender(f"core, {name}, {size} x {size}", " ".join([PROGRAM, *arguments]),
                     lambda: min(_run(build, arguments).values()))
