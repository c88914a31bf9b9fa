"""A load names every bad row and keeps every good one, on a database.

Environment: that of `scripts/databases run`, and the program in ZELDB. Arguments: the database.
"""

import sys
import tempfile

from live_tool import LiveTool, expect

ROWS = 3000
BAD = {  # line of the file: the row
    2: "1,many,x",
    3: "2,1",
    500: "499,7,too long",
    501: "500,,x",
    502: "9,7,twice",
    1999: "12,7,twice",
    3001: "13,7,twice",
}


def main(database):
    lines = ["id,n,name"] + [BAD.get(n + 1, f"{n},{n * 2},r{n}") for n in range(1, ROWS + 1)]
    with tempfile.TemporaryDirectory() as folder:
        zeldb = LiveTool(folder, database)
        zeldb.write("f.csv", "\n".join(lines) + "\n")
        for generation in "12":
            zeldb.create("rejecting", "id integer not null primary key, n integer not null, "
                         "name varchar(9), check (length(name) <= 7)")
            load = ["load", "live", "rejecting", "f.csv", "--rejects", "r.csv", "--generation",
                    generation]
            for options, committed in ((["--dry-run", "--batch", "300"], 0),
                                       ([], ROWS - len(BAD))):
                expect(options, f"zeldb: {len(BAD)} rows rejected, named in r.csv; {committed} "
                       "rows are committed\n", zeldb(*load, *options, code=1).stderr)
                rejects = zeldb.rejects()
                expect("lines", sorted(BAD), sorted(int(row["line"]) for row in rejects))
                expect("rows without a reason", [], [
                    row for row in rejects if len(row["sqlstate"]) != 5 or not row["reason"]])
            got = zeldb("dump", "live", "select id, n, name from rejecting order by id").stdout
            expect("table", [line for n, line in enumerate(lines, 1) if n not in BAD],
                   got.splitlines())
        zeldb("query", "live", "drop table rejecting")


main(*sys.argv[1:])
