#!/usr/bin/env python3
"""Counts instructions a value under callgrind and compares them with a file of earlier counts.

    count.py FILE [--update] -- [NAME=VALUE...] COMMAND [ARGUMENT...] [-- COMMAND ...]

Each command is a program that dumps its counts through countInstructions (counted.h); NAME=VALUE
is put into its environment. What is compared is the difference of a large and a small run, by
unit. Ends with 1 when a count has grown by more than 3 % (and half an instruction), or when one
that FILE holds is missing. --update writes FILE anew.
"""

import itertools
import os
import pathlib
import re
import subprocess
import sys
import tempfile

ALLOWED = 1.03
ALLOWED_ABSOLUTE = 0.5
TRIGGER = re.compile(r"^desc: Trigger: Client Request: (\S+) (\d+) (\S+)$", re.M)
TOTAL = re.compile(r"^(?:totals|summary): (\d+)$", re.M)


def count(command):
    """Returns {name: instructions a unit}, in the order of counting."""
    runs = {}
    with tempfile.TemporaryDirectory(prefix="bench_instructions_") as folder:
        settings = list(itertools.takewhile(lambda word: "=" in word, command))
        environment = dict(os.environ, **dict(setting.split("=", 1) for setting in settings))
        callgrind = ["valgrind", "--tool=callgrind", f"--callgrind-out-file={folder}/out"]
        done = subprocess.run(callgrind + command[len(settings):], capture_output=True, text=True,
                              env=environment)
        if done.returncode != 0:
            sys.exit(f"count.py: {' '.join(command)} failed:\n{done.stdout}{done.stderr}")
        dumps = sorted(pathlib.Path(folder).glob("out.*"), key=lambda path: int(path.suffix[1:]))
        for dump in dumps:
            text = dump.read_text()
            trigger = TRIGGER.search(text)
            if trigger:
                name, _, units = trigger.groups()
                runs.setdefault(name, []).append((float(units), int(TOTAL.search(text)[1])))
    counts = {}
    for name, ((few_units, few), (many_units, many)) in runs.items():
        counts[name] = (many - few) / (many_units - few_units)
    return counts


def read(path):
    lines = path.read_text().splitlines() if path.exists() else []
    rows = (line.split() for line in lines if line and not line.startswith("#"))
    return {name: float(value) for name, value in rows}


def write(path, counts):
    head = "# Instructions a value (hex: a byte), by scripts/bench --instructions --update\n"
    path.write_text(head + "".join(f"{name:44} {value:9.1f}\n" for name, value in counts.items()))


def compare(before, now):
    failures = 0
    for name, value in now.items():
        old = before.get(name)
        grown = old is not None and value > max(old * ALLOWED, old + ALLOWED_ABSOLUTE)
        failures += grown
        was = "new" if old is None else f"was {old:.1f}"
        print(f"{name:44} {value:9.1f}  {was}{'  GROWN' if grown else ''}")
    missing = before.keys() - now.keys()
    for name in sorted(missing):
        print(f"{name:44} is no longer counted")
    return failures + len(missing)


def main():
    path = pathlib.Path(sys.argv[1])
    arguments = sys.argv[2:]
    commands = []
    while "--" in arguments:
        arguments, command = arguments[: len(arguments) - 1 - arguments[::-1].index("--")], \
            arguments[len(arguments) - arguments[::-1].index("--"):]
        commands.insert(0, command)
    counts = {}
    for command in commands:
        counts.update(count(command))
    failures = compare(read(path), counts)
    if "--update" in arguments:
        write(path, counts)
        return 0
    if failures:
        print(f"{failures} counts have grown by more than 3 %, or are missing")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
