"""How a load begins, goes on after failures, and ends: tables that it makes, lost links, ledgers.

Environment as for tool_test.py.
"""

import fcntl
import glob
import json
import os
import re
import signal
import socket
import sqlite3
import subprocess
import threading
import time
import unittest

from tool_test import HEAD, SQLITE_DRIVER, ZELDB, ToolCase

POSTGRESQL_DRIVER = glob.glob("/usr/lib/*/odbc/psqlodbca.so")[0]
FIVE = HEAD + "".join(f"{n},,,,,\n" for n in range(1, 6))
SECRET = "s;cret{9"


class Preparing(ToolCase):
    def make(self, text, *arguments):
        self.write("f.csv", text)
        return self.run_tool("load", "s", "made", "f.csv", "--create", *arguments)

    def test_types_are_inferred_and_shown(self):
        values = {  # column: its values, the type, the type in SQL
            "b": ("true,FALSE,", "boolean", "bit"),
            "i": ("-5,2147483647,", "integer", "integer"),
            "l": ("1,2147483648,", "long", "bigint"),
            "d": ("0.5,-12.25,1", "decimal(15,2)", "decimal(15,2)"),
            "e": ("12345678901234.25,1,", "decimal(34,2)", "text"),
            "f": ("1e300,-1.5,inf", "float", "double"),
            "y": ("2024-02-29,1900-03-01,", "date", "date"),
            "t": ("2024-02-29,2024-02-29T01:02:03.120000Z,", "bigdatetime", "timestamp"),
            "h": ("00:00:00,23:59:59,", "time", "time"),
            "z": ("007,1,", "string", "text"),
            "p": ("+1,2,", "string", "text"),
            "n": (",,", "string", "text"),
            "m": ("1,x,2.5", "string", "text"),
        }
        columns = [column.split(",") for column, *_ in values.values()]
        text = "\n".join([",".join(values)] + [",".join(row) for row in zip(*columns)]) + "\n"
        done = self.make(text, "--types", "p:long")
        self.assertEqual(done.returncode, 0, done.stderr)
        for name, (_, kind, sql) in values.items():
            if name != "p":
                self.assertIn(f'column "{name}": {kind}, from ', done.stderr)
                self.assertIn(f"`{name}` {sql}", done.stderr)
        self.assertIn('column "p": long, as given\n', done.stderr)
        self.assertRegex(done.stderr, r"(?m)^create table made \(`b` bit, `i` integer, .*\)$")
        self.assertEqual(self.sql("select i, d, e, z, p, h from made where i = -5"),
                         [(-5, 0.5, "12345678901234.25", "007", 1, "00:00:00")])

    def test_what_does_not_fit_further_down_is_a_bad_row(self):
        done = self.make("id,n\n" + "".join(f"{n},{n}\n" for n in range(5)) + "5,much\n",
                         "--sample", "5", "--rejects", "r.csv", "--key", "id")
        self.assertEqual(done.returncode, 1, done.stderr)
        self.assertIn("`id` integer not null, `n` integer, primary key (`id`)", done.stderr)
        self.assertIn("from 5 values in the first 5 rows", done.stderr)
        self.assertEqual(self.sql("select count(*) from made"), [(5,)])
        self.assertIn('7,22018,"f.csv:7:2: ', (self.folder / "r.csv").read_text())

    def test_rows_go_only_with_a_yes(self):
        self.write("f.csv", "id\n7\n")

        def load(table, *arguments):
            return self.run_tool("load", "s", table, "f.csv", *arguments)
        self.sql("create table a (id integer, more integer)")
        self.expect(load("a", "--create"), 2, r"--create: there is a table a with 0 rows; .*")
        for options in (["--replace"], ["--replace", "--one-transaction"]):
            self.sql("insert into a values (1, 1), (2, 2)")
            rows = self.sql("select count(*) from a")[0][0]
            self.expect(load("a", *options), 2,
                        rf"--replace would delete the {rows} rows of a; --yes allows it")
            done = load("a", "--yes", *options)
            self.assertEqual(done.stderr, f"deleting the {rows} rows of a\n")
            self.assertEqual(self.sql("select * from a"), [(7, None)])
        # The old rows stay when the one transaction fails.
        self.write("f.csv", "id\n8\nx\n")
        self.assertEqual(load("a", "--replace", "--yes", "--one-transaction").returncode, 1)
        self.assertEqual(self.sql("select * from a"), [(7, None)])
        self.write("f.csv", "id\n9\n")
        self.assertEqual(load("a", "--create", "--replace").returncode, 2)
        self.assertEqual(load("a", "--create", "--replace", "--yes").returncode, 0)
        self.assertEqual(self.sql("select * from a"), [(9,)])
        self.expect(self.make("a,a\n1,2\n"), 2, r'--create: "a" in the header .*, it comes twice')


class Failing(ToolCase):
    def keys(self):
        return [key for key, in self.sql("select id from t order by id")]

    def test_batches_are_sent_again(self):
        for fault, reconnects in [("SQLConnect -1 08001", 0), ("SQLExecute -5 40001", 0),
                                  ("SQLExecute -5 08S01", 1), ("SQLEndTran -3 40001", 0)]:
            for generation in "12":
                with self.subTest(fault=fault, generation=generation):
                    self.sql("delete from t")
                    done = self.load(FIVE, "--batch", "2", "--retries", "1", "--metrics", "m.prom",
                                     "--generation", generation, fault=fault)
                    self.assertEqual(done.returncode, 0, done.stderr)
                    self.assertRegex(done.stderr, r"\Awarning: .*; trying again in 0\.\d s "
                                                  r"\(1 of 1\)\n\Z")
                    self.assertEqual(self.keys(), [1, 2, 3, 4, 5])
                    self.expect_metrics(retries_total=1, reconnects_total=reconnects,
                                        rows_committed_total=5, batches_total=3, exit_code=0)

    def expect_metrics(self, **expected):
        lines = (self.folder / "m.prom").read_text().splitlines()
        values = dict(line.rsplit(" ", 1) for line in lines if not line.startswith("#"))
        for name, value in expected.items():
            key = f'zeldb_{name}{{verb="load",service="s",table="t"}}'
            self.assertEqual(values.get(key), str(value), name)
            self.assertIn(f"# TYPE zeldb_{name} ", "\n".join(lines))

    def test_metrics_tell_of_a_failure_too(self):
        done = self.load(FIVE + "1,,,,,\nx,,,,,\n", "--metrics", "m.prom", "--rejects", "r.csv")
        self.assertEqual(done.returncode, 1)
        self.expect_metrics(rows_read_total=7, rows_committed_total=5, rows_rejected_total=2,
                            read_bytes_total=len(FIVE) + 14, running=0, exit_code=1)
        self.assertEqual(self.load("", "--metrics", "m.prom").returncode, 6)
        self.expect_metrics(rows_read_total=0, exit_code=6)
        self.assertEqual(self.load("", "--metrics", "no/m.prom").returncode, 6)

    def test_what_is_in_doubt_is_looked_for(self):
        for fault in ("SQLEndTran 3 08S01", "SQLEndTran -3 08S01"):  # committed, or not
            for generation in "12":
                with self.subTest(fault=fault, generation=generation):
                    self.sql("delete from t")
                    done = self.load(FIVE, "--batch", "2", "--key", "id", "--metrics", "m.prom",
                                     "--generation", generation, fault=fault)
                    self.assertEqual((done.returncode, done.stderr), (0, ""))
                    self.assertEqual(self.keys(), [1, 2, 3, 4, 5])
                    self.expect_metrics(in_doubt_total=1, rows_committed_total=5)
        self.expect(self.load(FIVE, "--key", "nothing"), 2, '--key: no column "nothing" is loaded')
        self.sql("create table twice (id integer)")
        self.write("f.csv", "id\n1\n2\n3\n")
        self.sql("insert into twice values (3)")
        done = self.run_tool("load", "s", "twice", "f.csv", "--key", "id",
                             fault="SQLEndTran -2 08S01")
        self.expect(done, 7, r"f.csv:2:1: rows of lines 2 to 4: in doubt, .*; 1 of these 3 rows .*")

    def test_a_locked_database_is_no_fault_of_rows(self):
        self.write("odbc.ini", (self.folder / "odbc.ini").read_text() + "Timeout=100\n")
        other = sqlite3.connect(self.folder / "t.db", isolation_level=None,
                                check_same_thread=False)
        other.execute("begin immediate")
        done = self.load(FIVE, "--rejects", "r.csv")
        self.expect(done, 4, r"f.csv:2:1: rows of lines 2 to 6: .*locked.*; 0 rows are committed")
        self.assertEqual((self.folder / "r.csv").read_text().count("\n"), 1)
        freeing = threading.Timer(1, other.execute, ["rollback"])
        freeing.start()
        done = self.load(FIVE, "--rejects", "r.csv", "--retries", "9")
        freeing.join()
        other.close()
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertEqual(self.keys(), [1, 2, 3, 4, 5])

    def test_time_is_limited_while_a_driver_is_stuck(self):
        with socket.create_server(("127.0.0.1", 0)) as silent:
            self.write("odbc.ini", f"[db]\nDriver={POSTGRESQL_DRIVER}\nServername=127.0.0.1\n"
                                   f"Port={silent.getsockname()[1]}\nDatabase=x\n")
            for verb in (["check", "s"], ["load", "s", "t", "f.csv", "--metrics", "m.prom"]):
                self.write("f.csv", FIVE)
                started = time.monotonic()
                done = self.run_tool(*verb, "--timeout", "0.5")
                self.expect(done, 5, r"0\.5 s are over, the driver does not answer")
                self.assertLess(time.monotonic() - started, 10)
        self.expect_metrics(exit_code=5)

    def test_time_and_signals_end_a_load_between_batches(self):
        os.mkfifo(self.folder / "pipe")
        for code, options, reason, ending in [
                (5, ["--timeout", "2"], "the time given is over", None),
                (130, [], "interrupted", signal.SIGTERM),
                (130, [], "interrupted", signal.SIGINT)]:
            self.sql("delete from t")
            with subprocess.Popen([ZELDB, "load", "s", "t", "pipe", "--batch", "2", *options],
                                  cwd=self.folder, env=self.environment(), text=True,
                                  stderr=subprocess.PIPE) as tool:
                with open(self.folder / "pipe", "w", encoding="utf-8") as pipe:
                    pipe.write(FIVE)
                    pipe.flush()
                    while not self.keys():
                        time.sleep(0.01)
                    if ending:
                        tool.send_signal(ending)
                    complaint = tool.stderr.read()  # also when it waits for more
            self.assertRegex(complaint, rf"\Azeldb: {reason}; [24] rows are committed\n\Z")
            self.assertEqual(tool.returncode, code)

    def test_passwords_are_masked_everywhere(self):
        self.write("odbc.ini", f"[db]\nDriver={POSTGRESQL_DRIVER}\nServername=127.0.0.1\nPort=9\n")
        self.write("secret", SECRET)
        self.write("f.csv", HEAD + f"{SECRET},,,,,\n")
        cases = [f"Password = '{SECRET}'", "password_env = 'SECRET'", "password_file = 'secret'",
                 f"Password = '{SECRET}'\nDatabaseTyp = 'x'", f"Password = {SECRET}",
                 f"Password = '{SECRET}'\nPassword = '{SECRET}'"]
        outputs = []
        for case in cases:
            self.write("zeldb.toml", f"[s]\nDSN = 'db'\nUser = 'u'\n{case}\n")
            for verb in (["check", "s"], ["load", "s", "t", "f.csv"], ["--help"]):
                for form in ("text", "json"):
                    done = subprocess.run(
                        [ZELDB, *verb, "--log-level", "debug", "--log-format", form],
                        cwd=self.folder, env=dict(self.environment(), SECRET=SECRET), text=True,
                        capture_output=True, check=False)
                    outputs.append(done.stdout + done.stderr)
                    if form == "json" and verb != ["--help"]:
                        last = [json.loads(line) for line in done.stderr.splitlines()][-1]
                        self.assertEqual((last["level"], last["exit_code"]),
                                         ("error", done.returncode))
        self.assertNotIn(SECRET, "".join(outputs))
        self.assertNotIn("cret{9", "".join(outputs))
        # Where it comes back from the database's side.
        self.write("odbc.ini", f"[db]\nDriver={SQLITE_DRIVER}\nDatabase={self.folder}/t.db\n")
        self.write("zeldb.toml", f"[s]\nDSN = 'db'\nUser = 'u'\nPassword = '{SECRET}'\n")
        done = self.load(HEAD + f"{SECRET},,,,,\n", "--rejects", "r.csv")
        self.assertEqual(done.returncode, 1)
        self.assertIn('"***"', (self.folder / "r.csv").read_text().replace('""', '"'))


class Resuming(ToolCase):
    def count(self):
        return self.sql("select count(*), count(distinct id) from t")[0]

    def test_a_load_goes_on_where_it_ended(self):
        text = HEAD + "".join(f"{n},,,\"a\n,b\",,\n" for n in range(1, 6)) + "x,,,,,\n7,,,,,\n"
        self.write("f.csv", text)
        load = ["load", "s", "t", "f.csv", "--batch", "2", "--resume"]
        done = self.run_tool(*load, fault="SQLExecute -5 08S01")
        self.expect(done, 3, r".*08S01.*; 2 rows are committed; --resume goes on behind them")
        self.assertEqual(self.count(), (2, 2))
        done = self.run_tool(*load)
        self.expect(done, 1, r'f.csv:12:1: column "id": .*; 4 rows are committed; --resume .*')
        # Now that the bad row is known it may be named.
        for _ in range(2):
            done = self.run_tool(*load, "--rejects", "r.csv")
            self.expect(done, 1, r"1 row rejected, named in r.csv; 6 rows are committed")
            self.assertEqual(self.count(), (6, 6))
            self.assertRegex((self.folder / "r.csv").read_text(), r"\A[^\n]*\n12,22018,[^\n]*\n\Z")
        self.expect(self.run_tool("load", "s", "t", "f.csv", "--ledger", "f.csv.ledger"), 2,
                    r"f.csv.ledger: there is a ledger of an earlier load; .*")

    def test_what_is_in_doubt_is_settled(self):
        for made, answer in (("", "committed"), ("-", "missing")):
            for way in (["--key", "id"], ["--in-doubt", answer]):
                with self.subTest(made=made, way=way):
                    self.sql("delete from t")
                    self.write("f.csv", FIVE)
                    load = ["load", "s", "t", "f.csv", "--batch", "2", "--ledger", "l", "--resume"]
                    (self.folder / "l").unlink(missing_ok=True)
                    done = self.run_tool(*load, fault=f"SQLEndTran {made}3 08S01")
                    self.expect(done, 7, r"f.csv:4:1: rows of lines 4 to 5: in doubt, .*; --key .*")
                    done = self.run_tool(*load)
                    self.expect(done, 7,
                                r"f.csv:4:1: rows of lines 4 to 5: in doubt, the earlier .*")
                    done = self.run_tool(*load, *way)
                    self.assertEqual((done.returncode, done.stderr), (0, ""))
                    self.assertEqual(self.count(), (5, 5))

    def test_a_ledger_in_the_database_leaves_nothing_in_doubt(self):
        self.write("f.csv", FIVE + "x,,,,,\n6,,,,,\n")
        load = ["load", "s", "t", "f.csv", "--batch", "2", "--ledger-table", "led", "--rejects",
                "r.csv"]
        for generation in "12":
            for fault in ("SQLEndTran 9 08S01", "SQLEndTran -9 08S01"):  # committed, or not
                with self.subTest(generation=generation, fault=fault):
                    self.sql("drop table if exists led")
                    self.sql("delete from t")
                    done = self.run_tool(*load, "--generation", generation, "--metrics", "m.prom",
                                         fault=fault)
                    self.expect(done, 1, r"1 row rejected, named in r.csv; 6 rows are committed")
                    self.assertEqual(self.count(), (6, 6))
                    self.assertRegex((self.folder / "m.prom").read_text(), r"in_doubt_total.* 1\n")
        self.expect(self.run_tool(*load), 2,
                    r"led: there is a ledger of an earlier load of f.csv; .*")
        done = self.run_tool(*load, "--resume")
        self.expect(done, 1, r"1 row rejected, named in r.csv; 6 rows are committed")
        self.assertEqual(self.count(), (6, 6))
        self.assertEqual(self.sql("select committed_rows, rejected_rows, complete from led"),
                         [(6, 1, 1)])
        # What had been on its way arrives after the ledger was read: nothing is sent twice.
        for generation in "12":
            self.sql("delete from t where id > 2")
            self.sql(f"update led set at_byte = {len(HEAD) + 14}, at_line = 4, committed_rows = 2, "
                     "rejected_rows = 0, complete = 0")
            self.sql("drop trigger if exists late")
            self.sql("create trigger late before insert on t begin "
                     "update led set at_byte = 60; end")
            done = self.run_tool(*load, "--resume", "--generation", generation)
            self.assertIn("another load has moved the ledger", done.stderr)
            self.assertEqual(self.count(), (2, 2))

    def test_another_load_is_refused(self):
        self.write("f.csv", FIVE)
        load = ["load", "s", "t", "f.csv", "--batch", "2", "--resume"]
        self.run_tool(*load, fault="SQLExecute -5 08S01")
        ledger = self.folder / "f.csv.ledger"
        whole = ledger.read_bytes()
        self.sql("create table other (id integer, big bigint, price double, name text, at text, "
                 "raw blob)")
        for arguments, pattern in [
                (["load", "s", "other", "f.csv", "--resume"], 'had "table: t" and not .*'),
                ([*load, "--null", "x"], 'had "null text: " and not "null text: x"'),
                ([*load, "--types", "big:long"], '.*"types: big:long"')]:
            self.expect(self.run_tool(*arguments), 2,
                        r"f.csv.ledger: this is the ledger of another load, .*" + pattern)
        self.write("f.csv", FIVE.replace("1,", "9,", 1))
        self.expect(self.run_tool(*load), 2, r'.* "start of the file: .*" and not .*')
        self.write("f.csv", FIVE + "6,,,,,\n")
        self.expect(self.run_tool(*load), 2, r'.* "size of the file: .*" and not .*')
        self.write("f.csv", FIVE)
        with open(ledger, "rb") as held:
            fcntl.flock(held, fcntl.LOCK_EX)
            self.expect(self.run_tool(*load), 2, r".*another load is using the ledger")
        # Of two places to write the newer one may be torn, not both.
        number = [int(re.match(rb"\d+", whole[-1024:])[0]), int(re.match(rb"\d+", whole[-512:])[0])]
        newer = len(whole) - (512 if number[1] > number[0] else 1024)
        ledger.write_bytes(whole[:newer] + b"9" * 512 + whole[newer + 512:])
        done = self.run_tool(*load, "--key", "id")
        self.assertEqual((done.returncode, self.count()), (0, (5, 5)), done.stderr)
        ledger.write_bytes(whole[:-1024] + b"9" * 1024)
        self.expect(self.run_tool(*load), 2, r"f.csv.ledger: the ledger is damaged")
        ledger.write_bytes(b"x" * 2048)
        self.expect(self.run_tool(*load), 2, r"f.csv.ledger: this is no ledger of a load")


if __name__ == "__main__":
    unittest.main()
