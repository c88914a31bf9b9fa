"""Many rows with a few bad ones: all good ones are committed, the bad ones are named with their
lines, in little memory.

Environment: that of `scripts/databases run`, and the program in ZELDB; ZEL_ROWS is the number of
rows (30000), ZEL_MAX_RSS_MIB the memory allowed (any). Arguments: the database, and options for the
load.
"""

import csv
import os
import pathlib
import sys
import tempfile
import time

ROWS = int(os.environ.get("ZEL_ROWS", "30000"))
MAX_RSS_MIB = float(os.environ.get("ZEL_MAX_RSS_MIB", "inf"))
FAULTS = ["{0},many,x", "{0},1,far too long a name", "3,1,twice", "{0},1"]
BAD = {2 + (at + 1) * (ROWS // 38): FAULTS[at % len(FAULTS)] for at in range(37)}


def run(folder, *arguments):
    """The exit code, memory in MiB, seconds, and what went to standard error."""
    started = time.monotonic()
    child = os.fork()
    if child == 0:
        os.chdir(folder)
        for stream, name in ((1, "out"), (2, "err")):
            os.dup2(os.open(name, os.O_WRONLY | os.O_CREAT | os.O_TRUNC), stream)
        os.execv(os.environ["ZELDB"], [os.environ["ZELDB"], *arguments])
    _, status, usage = os.wait4(child, 0)
    return (os.waitstatus_to_exitcode(status), usage.ru_maxrss / 1024, time.monotonic() - started,
            (folder / "err").read_text())


def load(folder, database, *options):
    for sql in ("drop table if exists many", "create table many (id integer not null primary key, "
                "n integer, name varchar(12), check (length(name) <= 12))"):
        code, _, _, told = run(folder, "query", "live", sql)
        if code:
            sys.exit(told)
    code, mib, seconds, told = run(folder, "load", "live", "many", "f.csv", *options)
    print(f"{database} {' '.join(options)}: {seconds:.1f} s, {ROWS / seconds:.0f} rows/s, "
          f"{mib:.0f} MiB")
    if mib > MAX_RSS_MIB:
        sys.exit(f"more than {MAX_RSS_MIB} MiB of memory")
    return code, told


def main(database, *options):
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        (folder / "zeldb.toml").write_text(f'[live]\nDSN = "{database}"\nUser = "app"\n'
                                           'password_env = "ZEL_TEST_PASSWORD"\n')
        with open(folder / "f.csv", "w", encoding="utf-8") as file:
            file.write("id,n,name\n")
            for row in range(1, ROWS + 1):
                file.write(BAD.get(row + 1, "{0},7,row {0}").format(row) + "\n")
        code, told = load(folder, database, "--rejects", "r.csv", *options)
        want = f"zeldb: 37 rows rejected, named in r.csv; {ROWS - 37} rows are committed\n"
        if (code, told) != (1, want):
            sys.exit(f"exit code {code}: {told}")
        with open(folder / "r.csv", newline="", encoding="utf-8") as file:
            named = [int(row["line"]) for row in csv.DictReader(file)]
        if named != sorted(BAD):
            sys.exit(f"named {named}, not {sorted(BAD)}")
        run(folder, "query", "live", "select count(*) as n from many", "--format", "csv")
        if (folder / "out").read_text() != f"n\n{ROWS - 37}\n":
            sys.exit(f"{(folder / 'out').read_text()} rows are there")
        run(folder, "query", "live", "drop table many")


main(*sys.argv[1:])
