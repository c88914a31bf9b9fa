"""Loads the example file with the tool and reads it back with the database's own client.

Environment: that of `scripts/databases run`, and the program in ZELDB. Arguments: the database.
"""

import csv
import io
import os
import pathlib
import subprocess
import sys
import tempfile

from live_tool import LiveTool, expect

EXAMPLE = pathlib.Path(__file__).parents[2] / "examples" / "seattle-weather.csv"
COLUMNS = "date date primary key, precipitation {0}, temp_max {0}, temp_min {0}, wind {0}, " \
          "weather varchar(10)"
SELECT = "select {0}, precipitation, temp_max, temp_min, wind, weather from weather order by 1"


def run(*command, **options):
    return subprocess.run(command, check=True, text=True, stdout=subprocess.PIPE, **options).stdout


def sqlite(sql):
    return run("sqlite3", "-csv", str(pathlib.Path(os.environ["ODBCSYSINI"]) / "sqlite.db"), sql)


def postgresql(sql):
    return run("psql", "-q", "--csv", "-t", "-h", "127.0.0.1", "-U", "app", "-d", "appdb", "-p",
               os.environ["ZEL_TEST_PORT_POSTGRESQL"], "-c", sql,
               env=dict(os.environ, PGPASSWORD=os.environ["ZEL_TEST_PASSWORD"]))


def mariadb(sql):
    rows = run("mariadb", "--no-defaults", "-h", "127.0.0.1", "-u", "app", "-N", "-B", "-P",
               os.environ["ZEL_TEST_PORT_MARIADB"], f"-p{os.environ['ZEL_TEST_PASSWORD']}",
               "appdb", "-e", sql)
    return rows.replace("\t", ",")


DATABASES = {  # client, type of the numbers, the date as text
    "SQLite": (sqlite, "double", "substr(date, 1, 10)"),
    "PostgreSQL": (postgresql, "numeric(5,1)", "date"),
    "MariaDB": (mariadb, "decimal(5,1)", "date"),
}


def main(database):
    client, number, date = DATABASES[database]
    with open(EXAMPLE, newline="", encoding="utf-8") as example:
        sent = list(csv.reader(example))[1:]
    for generation in "12":
        client("drop table if exists weather")
        client(f"create table weather ({COLUMNS.format(number)})")
        with tempfile.TemporaryDirectory() as folder:
            LiveTool(folder, database)("load", "live", "weather", str(EXAMPLE), "--generation",
                                       generation)
        got = list(csv.reader(io.StringIO(client(SELECT.format(date)))))
        for row, (want, have) in enumerate(zip(sent, got), start=2):
            expect(f"{EXAMPLE}:{row}", want, have)
        expect("rows", len(sent), len(got))


main(*sys.argv[1:])
