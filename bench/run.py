#!/usr/bin/env python3
"""Runs the published figures and writes docs/performance.md with its pictures.

    run.py BIN [--quick] [--no-databases]

BIN holds the built programs. The contenders of a figure are processes that take turns, each over a
connection of its own, so that what slows the machine for a while slows all of them. Rounds are
short and many; a figure is the median of their ratios to the floor, with the quartiles. Databases
are those of the environment that `scripts/databases run` sets; the stub driver's data source is in
BENCH_STUB_INI. Contenders run with the server's allocator, and where it is said with the C
library's.
"""

import os
import pathlib
import re
import statistics
import subprocess
import sys

import growth
import report

ROOT = pathlib.Path(__file__).resolve().parent.parent
KINDS = "ibdstaf"
TABLE = "bench_rows"
INSERT = f"insert into {TABLE} values (?,?,?,?,?,?,?)"
PROCESSES = 5  # one after the other: how memory lies is a matter of luck for each
DATABASES = ("SQLITE", "POSTGRESQL", "MARIADB")
SERVERS_ALLOCATOR = {"LD_PRELOAD": "libtcmalloc_minimal.so.4"}
# What a figure's name says besides, and the environment.
ALLOCATORS = (("", SERVERS_ALLOCATOR), (", C library's allocator", {"LD_PRELOAD": ""}))


class Contender:
    """A process that answers each line with seconds."""

    def __init__(self, command, environment=None):
        self.name = pathlib.Path(command[0]).name
        self.process = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                        text=True, env={**os.environ, **(environment or {})})
        # All on one processor: they take turns, and two may run at different speeds.
        os.sched_setaffinity(self.process.pid, {max(os.sched_getaffinity(0))})

    def ask(self, line):
        try:
            self.process.stdin.write(line + "\n")
            self.process.stdin.flush()
            answer = self.process.stdout.readline()
        except BrokenPipeError:
            answer = ""
        if not answer:
            raise RuntimeError(f"{self.process.args} failed at: {line}")
        return float(answer)

    def close(self):
        self.process.stdin.close()
        self.process.wait()


class Session:
    """Programs and data sources of a run."""

    def __init__(self, binaries, quick):
        self.bin = pathlib.Path(binaries)
        self.quick = quick
        self.rounds = 15 if quick else 61
        self.database_rounds = 15 if quick else 183  # servers' times scatter more
        self.rows = 5000
        stub_ini = os.environ["BENCH_STUB_INI"]
        self.stub = {"ODBCINI": stub_ini, "ODBCSYSINI": str(pathlib.Path(stub_ini).parent)}

    def contender(self, name, dsn="Stub", environment=None):
        user = os.environ.get("ZEL_TEST_USER", "u")
        password = os.environ.get("ZEL_TEST_PASSWORD", "p")
        if name.endswith(".py"):
            command = ["/usr/bin/python3", str(ROOT / "bench/peers" / name)]
        elif name.endswith("_peer"):
            command = [str(self.bin / f"bench_{name}")]
        else:
            command = [str(self.bin / "bench_contender"), name]
        stub = self.stub if dsn == "Stub" else {}
        return Contender(command + [dsn, user, password],
                         {**SERVERS_ALLOCATOR, **stub, **(environment or {})})

    def start(self, names, line, dsn, environment):
        """The contenders by name, warm; a peer that cannot do it is left out."""
        contenders = {}
        for name in names:
            try:
                contender = self.contender(name, dsn, environment)
                contender.ask(line)
                contenders[name] = contender
            except RuntimeError as failure:
                print(f"  left out: {failure}", file=sys.stderr)
        return contenders

    def ratios(self, names, line, dsn="Stub", rounds=None, environment=None):
        """{name: (median, lower, upper quartile)} of the ratios to the first contender's time."""
        found = {name: [] for name in names}
        for _ in range(PROCESSES):
            contenders = self.start([name for name in names if name in found], line, dsn,
                                    environment)
            found = {name: found[name] for name in contenders}
            for turn in range(max(1, (rounds or self.rounds) // PROCESSES)):
                order = list(contenders)[::1 if turn % 2 else -1]
                times = {name: contenders[name].ask(line) for name in order}
                for name, time in times.items():
                    found[name].append(time / times[names[0]])
            for contender in contenders.values():
                contender.close()
        return {name: (statistics.median(values), *statistics.quantiles(values, n=4)[::2])
                for name, values in found.items()}


def read_counts():
    rows = (line.split() for line in (ROOT / "bench/instructions.txt").read_text().splitlines()
            if not line.startswith("#"))
    return {name: float(count) for name, count in rows}


def stub_figures(session, result):
    line = f"read {session.rows} {KINDS} fetch {session.rows} {KINDS}"
    counts = read_counts()
    for figure, generation, target, peer in ((1, "second", 1.15, "nanodbc 1.16"),
                                             (2, "first", 1.40, "POCO 1.77")):
        floor = f"plain-as-{generation}"
        for suffix, environment in ALLOCATORS:
            found = session.ratios([floor, generation], line, rounds=3 * session.rounds,
                                   environment=environment)
            result.add(figure, f"{generation} generation over the stub driver, time{suffix}",
                       found[generation], target, peer)
        limit, peers = ((430, "nanodbc 442"), (520, "POCO 601"))[figure - 1]
        for (suffix, _), which in zip(ALLOCATORS, ("", "-c-allocator")):
            result.add(figure, f"instructions a value{suffix}",
                       counts[f"{generation}-generation{which}"], limit, peers,
                       floor=counts[floor + which])
    for figure, name, extra in ((1, "integer", 32), (2, "timestamp", 150)):
        generation = ("second", "first")[figure - 1]
        floor = counts[f"plain-as-{generation}-{name}"]
        ours = counts[f"{generation}-generation-{name}"]
        result.add(figure, f"instructions a value, {name} columns", ours, floor + extra, "",
                   floor=floor)


PEERS = ("soci_peer", "poco_peer", "qt_peer", "pyodbc_peer.py")


def database_figures(session, result):
    for variable in DATABASES:
        dsn = os.environ[f"ZEL_TEST_DSN_{variable}"]
        rows = 2 * session.rows
        rounds = session.database_rounds
        user, password = os.environ["ZEL_TEST_USER"], os.environ["ZEL_TEST_PASSWORD"]
        create = [str(session.bin / "bench_contender"), "create", dsn, user, password]
        subprocess.run(create, check=True)
        writing = session.ratios(["plain-batch", "first-batch"],
                                 f"write {session.rows} {INSERT}", dsn, rounds)
        result.add(4, f"batch insert, {dsn}", writing["first-batch"], 1.03, "")
        # Safe transfer: the plain one has one length for all parameters, which no such row suits.
        writing = session.ratios(["plain-rows", "second-rows-safe"],
                                 f"write {session.rows // 2} {INSERT}", dsn, rounds)
        result.add(5, f"row insert, safe, {dsn}", writing["second-rows-safe"], 1.05, "")
        subprocess.run(create, check=True)
        writer = session.contender("plain-batch", dsn)
        writer.ask(f"write {rows} {INSERT}")
        writer.close()
        line = f"read {rows} {KINDS} select * from {TABLE}"
        named = ""
        if not session.quick:
            found = session.ratios(["plain-as-second", *PEERS], line, dsn, rounds=9)
            named = ", ".join(f"{name.split('_')[0]} {value[0]:.2f}"
                              for name, value in found.items() if name in PEERS)
        found = session.ratios(["plain-as-second", "second", "second-safe"], line, dsn, rounds)
        result.add(3, f"fetch, second generation, {dsn}", found["second"], 1.03, named)
        result.add(3, f"fetch, second generation, safe, {dsn}", found["second-safe"], 1.03, "")
        found = session.ratios(["plain-as-first", "first"], line, dsn, rounds)
        result.add(3, f"fetch, first generation, {dsn}", found["first"], 1.06, "")


LONG_TEXTS = {"SQLITE": "select replace(hex(zeroblob({})), '00', 'x')",
              "POSTGRESQL": "select repeat('x', {})::text", "MARIADB": "select repeat('x', {})"}


def long_figures(session, result):
    for variable in DATABASES:
        dsn = os.environ[f"ZEL_TEST_DSN_{variable}"]
        line = "read 1 s " + LONG_TEXTS[variable].format(10**7)
        names = ("first", "second", "second-safe")
        for suffix, environment in ALLOCATORS:
            found = session.ratios(["plain-long", *names], line, dsn, environment=environment)
            for name in names:
                result.add(6, f"10 MB text, {name}, {dsn}{suffix}", found[name], 1.02, "")
    line = f"read 1 s fetch 1 X{10**8}"
    for suffix, environment in ALLOCATORS:
        found = session.ratios(["plain-long", "first", "second-safe"], line,
                               rounds=session.rounds // 4, environment=environment)
        for name in ("first", "second-safe"):
            result.add(6, f"100 MB text of untold length, {name}, stub driver{suffix}",
                       found[name], 1.02, "")


VALUES = re.compile(r"^(\d+) +(.+?) +(?:met|MISSED) +target (\S+) +ours (\S+)(.*)$")


def value_figures(session, result):
    done = subprocess.run([str(session.bin / "bench_values")], capture_output=True, text=True,
                          check=True)
    for line in done.stdout.splitlines():
        match = VALUES.match(line)
        if match:
            figure, what, target, ours, others = match.groups()
            result.add(int(figure), what, float(ours), float(target),
                       re.sub(r"\s+", " ", others.split("(")[0]).strip())


def main():
    arguments = sys.argv[1:]
    session = Session(arguments[0], "--quick" in arguments)
    result = report.Report(ROOT)
    if "--no-databases" not in arguments:
        database_figures(session, result)
        long_figures(session, result)
    stub_figures(session, result)  # when the servers have nothing to do any more
    curves = growth.measure(session, ALLOCATORS)
    growth.long_text(curves, result)
    value_figures(session, result)
    result.print()
    if not session.quick:
        result.write(curves)
    return 0


if __name__ == "__main__":
    sys.exit(main())
