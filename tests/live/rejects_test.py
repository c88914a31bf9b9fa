"""A load names every bad row and keeps every good one, on a database.

Environment: that of `scripts/databases run`, and the program in ZELDB. Arguments: the database.
"""

import csv
import os
import pathlib
import subprocess
import sys
import tempfile

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
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        (folder / "zeldb.toml").write_text(f'[live]\nDSN = "{database}"\nUser = "app"\n'
                                           'password_env = "ZEL_TEST_PASSWORD"\n')
        (folder / "f.csv").write_text("\n".join(lines) + "\n")

        def zeldb(*arguments):
            return subprocess.run([os.environ["ZELDB"], *arguments], cwd=folder, text=True,
                                  capture_output=True, check=False)

        for generation in "12":
            zeldb("query", "live", "drop table if exists rejecting")
            zeldb("query", "live", "create table rejecting (id integer not null primary key, "
                  "n integer not null, name varchar(9), check (length(name) <= 7))")
            load = ["load", "live", "rejecting", "f.csv", "--rejects", "r.csv",
                    "--generation", generation]
            tried = zeldb(*load, "--dry-run", "--batch", "300")
            if f"zeldb: {len(BAD)} rows rejected" not in tried.stderr:
                sys.exit(f"dry run, generation {generation}: {tried.stderr}")
            done = zeldb(*load)
            want = f"zeldb: {len(BAD)} rows rejected, named in r.csv; {ROWS - len(BAD)} rows are " \
                   "committed\n"
            if (done.returncode, done.stderr) != (1, want):
                sys.exit(f"generation {generation}: {done.returncode} {done.stderr}")
            with open(folder / "r.csv", newline="", encoding="utf-8") as file:
                rejects = list(csv.DictReader(file))
            if sorted(int(row["line"]) for row in rejects) != sorted(BAD):
                sys.exit(f"generation {generation}: rejected {rejects}")
            if not all(len(row["sqlstate"]) == 5 and row["reason"] for row in rejects):
                sys.exit(f"generation {generation}: no reason in {rejects}")
            got = zeldb("dump", "live", "select id, n, name from rejecting order by id").stdout
            if got.splitlines() != [line for n, line in enumerate(lines, 1) if n not in BAD]:
                sys.exit(f"generation {generation}: other rows than the good ones are there")
        zeldb("query", "live", "drop table rejecting")


main(*sys.argv[1:])
