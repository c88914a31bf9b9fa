"""Tables that a load makes hold what it was given, and columns refuse what they would cut.

Environment: that of `scripts/databases run`, and the program in ZELDB. Arguments: the database.
"""

import sys
import tempfile

from live_tool import LiveTool, expect

FIELDS = {  # column: values, as they come out again
    "id": ["1", "2", "3"],
    "big": ["-9223372036854775808", "9223372036854775807", ""],
    "flag": ["true", "false", ""],
    "price": ["0.50", "-1234567890123.25", ""],
    "exact": ["123456789012345678901234.5000", "0.0001", ""],
    "ratio": ["1e+300", "-0.5", ""],
    "day": ["2024-02-29", "1900-03-01", ""],
    "at": ["2024-02-29T12:30:45.123000Z", "1969-12-31T23:59:59.000000Z", ""],
    "hour": ["23:59:59", "00:00:00", ""],
    "name": ["é € 😀 ไทย", '""', ""],
}
# Column types, a good value, and one that the column would cut.
NARROW = [
    ("PostgreSQL MariaDB", "date", "2024-02-29", "2024-02-29T00:00:01Z", "22018"),
    ("PostgreSQL MariaDB", "timestamp(3)", "2024-02-29 01:02:03.125", "2024-02-29 01:02:03.1251",
     "22018"),
    ("PostgreSQL", "timestamp(0)", "2024-02-29 01:02:03", "2024-02-29 01:02:03.5", "22018"),
    ("MariaDB", "datetime", "2024-02-29 01:02:03", "2024-02-29 01:02:03.5", "22018"),
    ("SQLite", "timestamp", "2024-02-29 01:02:03.125", "2024-02-29 01:02:03.1251", "22018"),
    ("PostgreSQL MariaDB", "numeric(28,6)", "0.000001", "0.0000001", "22018"),
    ("SQLite", "decimal(20,6)", "0.000001", "12345678901.234567", "22018"),
    ("PostgreSQL MariaDB", "varchar(3)", "aé€", "aé€ ", "22001"),
    ("SQLite", "double", "inf", "nan", "22018"),
    ("MariaDB", "double", "1", "inf", "22018"),
    ("MariaDB", "double", "1", "nan", "22018"),
]


class Tool(LiveTool):
    def load(self, table, text, *options, code=0):
        self.write("f.csv", text)
        return self("load", "live", table, "f.csv", *options, code=code)


def test_created_table(zeldb, database):
    rows = [list(row) for row in zip(*FIELDS.values())]
    text = "\n".join([",".join(FIELDS)] + [",".join(row) for row in rows]) + "\n"
    told = zeldb.load("made", text, "--create", "--key", "id").stderr
    if "primary key" not in told:
        sys.exit(told)
    if "a table made with 3 rows" not in zeldb.load("made", text, "--create", code=2).stderr:
        sys.exit("a table is made over another")
    zeldb.load("made", text, "--create", "--replace", "--yes", "--key", "name,id",
               code=4)  # a name is NULL
    zeldb.load("made", text, "--create", "--replace", "--yes")
    for generation in "12":
        zeldb.load("made", text, "--replace", "--yes", "--generation", generation)
        got = zeldb("dump", "live", "made").stdout
        # SQLite has no trailing zeros in decimals.
        want = text if database != "SQLite" else text.replace("0.50,", "0.5,")
        expect("table", want, got)


def test_narrow_columns(zeldb, database):
    for databases, kind, good, bad, state in NARROW:
        if database not in databases:
            continue
        zeldb.create("narrow", f"v {kind}")
        zeldb.load("narrow", f"v\n{good}\n{bad}\n", "--rejects", "r.csv", code=1)
        expect(kind, [("3", state)], [(row["line"], row["sqlstate"]) for row in zeldb.rejects()])
    if database == "PostgreSQL":
        text = "v\nnan\ninf\n-inf\n"
        zeldb("query", "live", "drop table if exists narrow")
        zeldb.load("narrow", text, "--create")
        expect("special floats", text, zeldb("dump", "live", "narrow").stdout)


def main(database):
    with tempfile.TemporaryDirectory() as folder:
        zeldb = Tool(folder, database)
        for table in ("made", "narrow"):
            zeldb("query", "live", f"drop table if exists {table}")
        test_created_table(zeldb, database)
        test_narrow_columns(zeldb, database)
        for table in ("made", "narrow"):
            zeldb("query", "live", f"drop table {table}")


main(*sys.argv[1:])
