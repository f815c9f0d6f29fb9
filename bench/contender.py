"""What is timed, and the table of the results."""

import dataclasses
from typing import Callable


@dataclasses.dataclass
class Contender:
    """`measure` does the work once and returns nanoseconds a pixel of the output."""
    name: str
    command: str
    measure: Callable[[], float]


@dataclasses.dataclass
class Row:
    name: str
    ns_per_pixel: float
    ratio: str
    command: str


def best_times(contenders, repetitions):
    """The best of each; they take turns, so that a slow moment of the machine meets all."""
    times = [[] for _ in contenders]
    for _ in range(repetitions):
        for contender, measured in zip(contenders, times):
            measured.append(contender.measure())
    return [min(measured) for measured in times]


def print_table(title, rows):
    print(f"\n{title}\n\n| what | ns a pixel | ratio | command |\n|---|---|---|---|")
    for row in rows:
        print(f"| {row.name} | {row.ns_per_pixel:.2f} | {row.ratio} | `{row.command}` |", flush=True)
