"""Values of every type go into a table and come out again with the tool, byte by byte the same.

Environment: that of `scripts/databases run`, and the program in ZELDB. Arguments: the database.
"""

import os
import pathlib
import subprocess
import sys
import tempfile

FRACTION = {"SQLite": ("123000", "000000")}  # SQLite's driver keeps milliseconds
BLANK = "nothing at all"

# Column, its type on each database, texts in the form of a dump.
COLUMNS = [
    ("id", "integer primary key", "integer primary key", "integer primary key", None),
    ("i", "integer", "integer", "integer", ("-2147483648", "2147483647", "0")),
    ("b", "bigint", "bigint", "bigint", ("-9223372036854775808", "9223372036854775807", "0")),
    ("d", "varchar(40)", "numeric(34,10)", "decimal(34,10)",
     ("-999999999999999999999999.9999999999", "0.0000000001", "1.5000000000")),
    ("f", "double", "double precision", "double", ("0.1", "-1e+300", "5e-324")),
    ("o", "bit", "boolean", "bit(1)", ("true", "false", "true")),
    ("s", "varchar(200)", "varchar(200)", "varchar(200)",
     ('"two\nlines, and ""quotes"""', "é € 😀 ไทย", ' ')),
    ("e", "varchar(20)", "varchar(20)", "varchar(20)", ('""', BLANK, "NULL")),
    ("t", "timestamp", "timestamp(6)", "datetime(6)",
     ("2024-02-29T12:30:45.{0}Z", "1969-12-31T23:59:59.{1}Z", "9999-12-31T00:00:00.{0}Z")),
    ("y", "date", "date", "date", ("1969-12-31", "2024-02-29", "1900-03-01")),
    ("h", "time", "time", "time", ("00:00:00", "23:59:59", "12:30:00")),
    ("x", "blob", "bytea", "varbinary(300)", ('""', "00FF0A0D22", "41")),
    ("l", "text", "text", "longtext", ("z" * 70000, '"\r\n"', '"  a,b  "')),
]
DATABASES = ["SQLite", "PostgreSQL", "MariaDB"]


def expected(database):
    """The file: three rows of values and one of NULLs."""
    fractions = FRACTION.get(database, ("123456", "999999"))
    lines = [",".join(name for name, *_ in COLUMNS)]
    for row in range(3):
        fields = [str(row + 1)] + [texts[row] for *_, texts in COLUMNS[1:]]
        lines.append(",".join("" if text == BLANK else text.format(*fractions)
                              for text in fields))
    lines.append("4" + "," * (len(COLUMNS) - 1))
    return "\n".join(lines) + "\n"


def main(database):
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        (folder / "zeldb.toml").write_text(f'[live]\nDSN = "{database}"\nUser = "app"\n'
                                           'password_env = "ZEL_TEST_PASSWORD"\n')

        def zeldb(*arguments):
            subprocess.run([os.environ["ZELDB"], *arguments], check=True, cwd=folder)

        at = DATABASES.index(database)
        columns = ", ".join(f"{column[0]} {column[1 + at]}" for column in COLUMNS)
        (folder / "sent.csv").write_bytes(expected(database).encode())
        for loading in "12":
            zeldb("query", "live", "drop table if exists round_trip")
            zeldb("query", "live", f"create table round_trip ({columns})")
            zeldb("load", "live", "round_trip", "sent.csv", "--generation", loading)
            for dumping in "12":
                zeldb("dump", "live", "round_trip", "--out", "got.csv", "--generation", dumping)
                sent, got = ((folder / file).read_bytes().decode().split(",")
                             for file in ("sent.csv", "got.csv"))
                for want, have in zip(sent, got):
                    if want != have:
                        sys.exit(f"generations {loading} and {dumping}: "
                                 f"sent {want[:80]!r}, got {have[:80]!r}")
                if len(sent) != len(got):
                    sys.exit(f"generations {loading} and {dumping}: the rest is missing")
        zeldb("query", "live", "drop table round_trip")


main(*sys.argv[1:])
