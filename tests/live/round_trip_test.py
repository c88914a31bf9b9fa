"""Values of every type go into a table and come out again with the tool, byte by byte the same; and
from there into the tables of the other databases.

Environment: that of `scripts/databases run`, and the program in ZELDB. Arguments: the database.
"""

import itertools
import sys
import tempfile

from live_tool import LiveTool, expect

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


class Tool(LiveTool):
    def create_at(self, database, table):
        at = DATABASES.index(database)
        self.create(table, ", ".join(f"{column[0]} {column[1 + at]}" for column in COLUMNS),
                    database)

    def load(self, database, table, text, generation):
        self.create_at(database, table)
        self.write("sent.csv", text)
        self("load", database, table, "sent.csv", "--generation", generation)

    def expect_table(self, database, table, text, generation):
        self("dump", database, table, "--out", "got.csv", "--generation", generation)
        got = (self.folder / "got.csv").read_bytes().decode()
        for want, have in itertools.zip_longest(text.split(","), got.split(",")):
            expect(f"{table}, read by {generation}", want, have)


def main(database):
    with tempfile.TemporaryDirectory() as folder:
        tool = Tool(folder, *DATABASES)
        text = expected(database)
        for loading in "12":
            tool.load(database, f"loaded_by_{loading}", text, loading)
            for dumping in "12":
                tool.expect_table(database, f"loaded_by_{loading}", text, dumping)
        text = expected("SQLite")  # what all three can hold
        tool.load(database, "copied", text, "1")
        for target in DATABASES:
            for generation in "12" if target != database else "":
                table = f"from_{database.lower()}"
                tool.create_at(target, table)
                tool("copy", f"{database}.copied", f"{target}.{table}", "--generation", generation)
                tool.expect_table(target, table, text, generation)


main(*sys.argv[1:])
