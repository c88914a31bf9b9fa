"""Many rows with a few bad ones: all good ones are committed, the bad ones are named with their
lines, in little memory.

Environment: that of `scripts/databases run`, and the program in ZELDB; ZEL_ROWS is the number of
rows (30000), ZEL_MAX_RSS_MIB the memory allowed (any). Arguments: the database, and options for the
load.
"""

import os
import sys
import tempfile
import time

from live_tool import LiveTool, expect

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
        os.dup2(os.open("err", os.O_WRONLY | os.O_CREAT | os.O_TRUNC), 2)
        os.execv(os.environ["ZELDB"], [os.environ["ZELDB"], *arguments])
    _, status, usage = os.wait4(child, 0)
    return (os.waitstatus_to_exitcode(status), usage.ru_maxrss / 1024, time.monotonic() - started,
            (folder / "err").read_text())


def main(database, *options):
    with tempfile.TemporaryDirectory() as folder:
        zeldb = LiveTool(folder, database)
        zeldb.create("many", "id integer not null primary key, n integer, name varchar(12), "
                     "check (length(name) <= 12)")
        zeldb.write("f.csv", "id,n,name\n" + "".join(
            BAD.get(row + 1, "{0},7,row {0}").format(row) + "\n" for row in range(1, ROWS + 1)))
        code, mib, seconds, told = run(
            zeldb.folder, "load", "live", "many", "f.csv", "--rejects", "r.csv", *options)
        print(f"{database} {' '.join(options)}: {seconds:.1f} s, {ROWS / seconds:.0f} rows/s, "
              f"{mib:.0f} MiB")
        want = f"zeldb: 37 rows rejected, named in r.csv; {ROWS - 37} rows are committed\n"
        expect("load", (1, want), (code, told))
        expect("lines", sorted(BAD), [int(row["line"]) for row in zeldb.rejects()])
        there = zeldb("query", "live", "select count(*) as n from many", "--format", "csv").stdout
        expect("rows", f"n\n{ROWS - 37}\n", there)
        zeldb("query", "live", "drop table many")
        if mib > MAX_RSS_MIB:
            sys.exit(f"more than {MAX_RSS_MIB} MiB of memory")


main(*sys.argv[1:])
