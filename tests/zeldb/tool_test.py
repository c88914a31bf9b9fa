"""The tool as its users meet it: arguments in, rows, one line of complaint and an exit code out.

Works on a SQLite database of its own. The environment names the program (ZELDB) and the library
that makes ODBC calls fail (ODBC_FAULT_LIBRARY).
"""

import glob
import json
import os
import pathlib
import re
import signal
import sqlite3
import subprocess
import tempfile
import time
import unittest

ZELDB = os.environ["ZELDB"]
FAULTS = os.environ["ODBC_FAULT_LIBRARY"]
SQLITE_DRIVER = glob.glob("/usr/lib/*/odbc/libsqlite3odbc.so")[0]
TABLE = ("create table t (id integer primary key, big bigint, price double, name varchar(20), "
         "at timestamp, raw blob)")
HEAD = "id,big,price,name,at,raw\n"


class ToolCase(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.write("odbcinst.ini", "")
        self.write("odbc.ini", f"[db]\nDriver={SQLITE_DRIVER}\nDatabase={self.folder}/t.db\n")
        self.write("zeldb.toml", '[s]\nDSN = "db"\nUser = "u"\n'
                                 '[gone]\nDSN = "nowhere"\nUser = "u"\n')
        self.sql(TABLE)

    def write(self, name, text):
        path = self.folder / name
        path.write_bytes(text if isinstance(text, bytes) else text.encode())
        return path

    def sql(self, statement):
        with sqlite3.connect(self.folder / "t.db") as database:
            return database.execute(statement).fetchall()

    def environment(self, fault=None):
        # The installer library's cache would count as a leak when its user, the ODBC driver, is
        # unloaded; preloaded, it stays.
        environment = dict(os.environ, ODBCSYSINI=str(self.folder),
                           ODBCINI=str(self.folder / "odbc.ini"),
                           LD_PRELOAD="libodbcinst.so.2", ASAN_OPTIONS="verify_asan_link_order=0")
        if fault:
            environment.update(LD_PRELOAD=f"libodbcinst.so.2 {FAULTS}", ODBC_FAULT=fault)
        return environment

    def run_tool(self, *arguments, fault=None):
        return subprocess.run([ZELDB, *arguments], cwd=self.folder, text=True, timeout=60,
                              stdin=subprocess.DEVNULL, capture_output=True,
                              env=self.environment(fault), check=False)

    def expect(self, done, code, pattern):
        """One line on standard error that the pattern matches, and the exit code."""
        self.assertRegex(done.stderr, rf"\Azeldb: {pattern}\n\Z")
        self.assertEqual(done.returncode, code, done.stderr)

    def expect_rows(self, done, summary):
        """Success, and a summary that begins so."""
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertRegex(done.stdout, rf"\A{summary} in \d+\.\d s, \d+ rows/s\n\Z")

    def load(self, text, *arguments, fault=None):
        self.write("f.csv", text)
        return self.run_tool("load", "s", "t", "f.csv", *arguments, fault=fault)


class CommandLine(ToolCase):
    def test_wrong_use_is_told_in_one_line(self):
        cases = [
            ([], r".*subcommand.*"),
            (["fly"], r".*"),
            (["check"], r".*SERVICE.*"),
            (["check", "s", "--nonsense"], r".*nonsense.*"),
            (["load", "s", "t", "f.csv", "--batch", "0"], r".*batch.*"),
            (["load", "s", "t", "f.csv", "--batch", "many"], r".*batch.*"),
            (["load", "s", "t", "f.csv", "--types", "id=integer"],
             r'types: "id=integer" is not NAME:TYPE'),
            (["load", "s", "t", "f.csv", "--types", "id:number"], r'"number" is no type'),
            (["query", "s", "select ?", "--param", "integer:1", "--param", "integer:x"],
             r'parameter 2: integer constant does not begin with a legal character: "x"'),
            (["query", "s", "select 1", "--format", "xml"], r".*format.*xml.*"),
            (["query", "s", "select 1", "--tz", "Berlim"], r'.*no time zone "Berlim".*'),
            (["check", "other"], r'zeldb.toml: no service "other"; there is gone, s'),
            (["check", "s", "--services", "no.toml"], r"no.toml: services file cannot be read"),
            (["check", "s", "--driver", "no.so"], r"driver plug-in: .*no.so.*"),
            (["check", "s", "--driver", SQLITE_DRIVER],
             r"driver plug-in: .*libsqlite3odbc.so has no FactoryDriver"),
        ]
        for arguments, pattern in cases:
            with self.subTest(arguments):
                self.expect(self.run_tool(*arguments), 2, pattern)

    def test_help_names_verbs_and_exit_codes(self):
        done = self.run_tool("--help")
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        for text in ("check", "tables", "describe", "query", "load", "dump", "copy",
                     "--services", "7    in doubt"):
            self.assertIn(text, done.stdout)

    def test_check_connects(self):
        done = self.run_tool("check", "s")
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertRegex(done.stdout, r"(?m)^database type +OTHERS$")
        self.assertRegex(done.stdout, r"(?m)^safe transfer +on$")
        self.expect(self.run_tool("check", "gone"), 3, r'service "gone": .*\(SQLSTATE IM002, .*\)')


class Catalogue(ToolCase):
    def test_tables_and_views_are_listed(self):
        self.sql("create view v as select 1 as one")
        done = self.run_tool("tables", "s", "--format", "csv")
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertEqual(sorted(done.stdout.splitlines()), ["name", "t", "v"])
        self.expect(self.run_tool("tables", "gone"), 3, r".*IM002.*")

    def test_columns_are_described(self):
        self.sql("create table d (a integer not null, b varchar(30) not null, c blob, "
                 "primary key (a, b))")
        done = self.run_tool("describe", "s", "d", "--format", "csv")
        self.assertEqual((done.returncode, done.stdout, done.stderr),
                         (0, "name,type,size,scale,nullable,key\n"
                             "a,integer,9,,false,true\n"
                             "b,string,30,,false,true\n"
                             "c,binary,,,true,false\n", ""))
        self.expect(self.run_tool("describe", "s", "nowhere"), 4,
                    r'the catalogue has no table "nowhere"')


class Query(ToolCase):
    def test_rows_and_parameters(self):
        done = self.run_tool("query", "s",
                             "insert into t (id, big, price, name, at, raw) values (?,?,?,?,?,?)",
                             "--param", "integer:7", "--param", "long:9223372036854775807",
                             "--param", "float:0.1", "--param", "string:a:b é",
                             "--param", "bigdatetime:2024-02-29 01:02:03", "--param", "binary")
        self.assertEqual((done.returncode, done.stdout), (0, "1 row changed\n"), done.stderr)
        self.check_row("1")
        self.check_row("2")

    def check_row(self, generation):
        done = self.run_tool("query", "s", "select id, big, price, name, at from t",
                             "--generation", generation)
        self.assertEqual(done.stderr, "")
        self.assertEqual([re.split(" {2,}", line.strip()) for line in done.stdout.splitlines()], [
            ["id", "big", "price", "name", "at"],
            ["--", "-" * 19, "-----", "-----", "-" * 26],
            ["7", "9223372036854775807", "0.1", "a:b é", "2024-02-29 01:02:03.000000"],
            ["(1 row)"]])

    def test_every_form_of_output(self):
        self.sql("insert into t (id, name, at) values "
                 "(1, 'é,\"x', '2024-07-01 22:30:00.250'), (2, '', null)")
        sql = "select id, name, at, price from t order by id"
        csv = 'id,name,at,price\n1,"é,""x",2024-07-0{},\n2,"",,\n'
        for generation in "12":
            with self.subTest(generation):
                def output(*arguments, generation=generation):
                    done = self.run_tool("query", "s", sql, "--generation", generation, *arguments)
                    self.assertEqual((done.returncode, done.stderr), (0, ""))
                    return done.stdout
                self.assertEqual(output("--format", "csv"), csv.format("1T22:30:00.250000Z"))
                self.assertEqual(output("--format", "csv", "--tz", "Europe/Berlin"),
                                 csv.format("2T00:30:00.250000+02:00"))
                rows = [{"id": 1, "name": 'é,"x', "at": "2024-07-01T22:30:00.250000Z",
                         "price": None},
                        {"id": 2, "name": "", "at": None, "price": None}]
                self.assertEqual(json.loads(output("--format", "json")), rows)
                lines = output("--format", "jsonl").splitlines()
                self.assertEqual([json.loads(line) for line in lines], rows)
                self.assertIn("| 1 | é,\"x | 2024-07-01 22:30:00.250000 |  |\n",
                              output("--format", "markdown"))

    def test_statements_without_rows(self):
        for sql, output in [("delete from t", "0 rows changed\n"),
                            ("create table u (a integer)", None),
                            ("drop table u", None)]:
            done = self.run_tool("query", "s", sql)
            self.assertEqual((done.returncode, done.stderr), (0, ""), sql)
            if output:
                self.assertEqual(done.stdout, output)

    def test_refusals(self):
        for sql in ("select * from nowhere", "selec 1", "insert into t (id) values ('x', 'y')"):
            for generation, place in (("1", ""), ("2", "statement: ")):
                self.expect(self.run_tool("query", "s", sql, "--generation", generation), 4,
                            place + r".+ \(SQLSTATE \w{5}, native -?\d+\)")
        self.expect(self.run_tool("query", "gone", "select 1", "--generation", "2"), 3,
                    r'service "gone": .+ \(SQLSTATE IM002, native 0\)')
        self.expect(self.load(HEAD + "1,,,,,\n1,,,,,\n", "--generation", "2"), 4,
                    r"f.csv:3:1: statement: .*UNIQUE.*; 0 rows are committed")

    def test_a_long_result_is_whole(self):
        sql = "with recursive c(x) as (select 1 union all select x + 1 from c where x < 5000) " \
              "select x from c"
        lines = self.run_tool("query", "s", sql).stdout.splitlines()
        self.assertEqual([line.strip() for line in lines[2:-1]], [str(x + 1) for x in range(5000)])


class Load(ToolCase):
    def test_every_value_arrives(self):
        for generation in "12":
            with self.subTest(generation):
                self.sql("delete from t")
                self.check_every_value(generation)

    def check_every_value(self, generation):
        done = self.load('name,id,"big",PRICE,at,raw\n'
                         '"line\none, ""quoted""",1,-9223372036854775808,0.1,1969-12-31T23:59:59,'
                         '00FF\n'
                         '"",2,,,,\n'
                         ',3,0,1e300,2024-02-29,"41"\n', "--generation", generation)
        self.expect_rows(done, "3 rows loaded into t")
        self.assertEqual(
            self.sql("select id, big, price, name, substr(at, 1, 19), raw from t"),
            [(1, -2**63, 0.1, 'line\none, "quoted"', "1969-12-31 23:59:59", b"\x00\xff"),
             (2, None, None, "", None, None),
             (3, 0, 1e300, None, "2024-02-29 00:00:00", b"A")])

    def test_bad_input_commits_whole_batches_only(self):
        good = "".join(f"{n},,,,,\n" for n in range(1, 6))
        cases = [  # text, exit code, complaint, rows committed
            ("", 6, r"f.csv:1:1: the file has no header", 0),
            ("id,other\n1,2\n", 2, r'f.csv:1:2: table t has no column "other"', 0),
            ("id,,big\n", 2, r'f.csv:1:2: table t has no column ""', 0),
            ("id,big,Id\n", 2, r'f.csv:1:3: table t has no column "Id" left, it comes twice', 0),
            (HEAD + good + "6,,,,\n", 1, r"f.csv:7:6: the row has 5 fields, the header 6; .*", 4),
            (HEAD + good + "6,,,,,,,\n", 1, r"f.csv:7:7: the row has 8 fields, .* 6; .*", 4),
            (HEAD + good + "6,1.5,,,,\n", 1, r'f.csv:7:2: column "big": .*: "1.5"; .*', 4),
            (HEAD + good + "\n\nx,,,,,\n", 1, r'f.csv:9:1: column "id": integer constant .*: "x"; '
             r"4 rows are committed", 4),
            (HEAD + good + "6,,,,,0\n", 1, r'f.csv:7:6: column "raw": Odd .*: "0"; .*', 4),
            (HEAD + good + '6,,,,,"1"2\n', 6, r"f.csv:7:6: a quote in a field .*", 0),
            (HEAD + good + '6,,,"\n', 6, r"f.csv:7:4: the file ends within quotes; .*", 4),
            (HEAD + good + "5,,,,,\n", 4, r"f.csv:6:1: rows of lines 6 to 7: .*UNIQUE.*; 4 .*", 4),
        ]
        for text, code, pattern, rows in cases:
            with self.subTest(text[-30:]):
                self.sql("delete from t")
                self.expect(self.load(text, "--batch", "2"), code, pattern)
                self.assertEqual(self.sql("select count(*) from t"), [(rows,)])

    def test_one_transaction_is_all_or_nothing(self):
        rows = "".join(f"{n},,,,,\n" for n in range(1, 10))
        done = self.load(HEAD + rows + "1,,,,,\n", "--batch", "2", "--one-transaction")
        self.expect(done, 4, r"f.csv:2:1: rows of lines 2 to 11: .*; 0 rows are committed")
        self.assertEqual(self.sql("select count(*) from t"), [(0,)])
        done = self.load(HEAD + rows, "--batch", "2", "--one-transaction")
        self.expect_rows(done, "9 rows loaded into t")

    def test_missing_things(self):
        done = self.run_tool("load", "s", "t", "none.csv")
        self.expect(done, 6, r"none.csv: No such file or directory")
        self.write("f.csv", HEAD)
        self.expect(self.run_tool("load", "s", "nowhere", "f.csv"), 4, r".*nowhere.*")
        self.expect(self.run_tool("load", "gone", "t", "f.csv"), 3, r".*IM002.*")

    def test_types_override_the_table(self):
        self.sql("create table words (a varchar(10), b varchar(10))")
        self.write("f.csv", "a,b\n1,2\n1.005,2\n")
        done = self.run_tool("load", "s", "words", "f.csv", "--types", "a:decimal(4,2)")
        self.expect(done, 1, r'f.csv:3:1: column "a": 3 digits behind .*: "1.005"; 0 rows .*')
        done = self.run_tool("load", "s", "words", "f.csv", "--types", "c:integer")
        self.expect(done, 2, r'f.csv:1:1: the header has no column "c"')

    def test_failures_of_the_database(self):
        text = HEAD + "".join(f"{n},,,,,\n" for n in range(1, 6))
        cases = [  # fault, exit code, complaint, rows in the table
            ("SQLEndTran 3 08S01", 7, r"in doubt, .*08S01.*", 4),
            ("SQLEndTran 3 57P01", 7, r"in doubt, .*57P01.*", 4),
            ("SQLEndTran -3 40001", 4, r"commit: .*40001.*", 2),
            ("SQLExecute -5 08S01", 3, r".*08S01.*", 2),
            ("SQLExecute -5 HYT00", 5, r".*HYT00.*", 2),
            ("SQLExecute -5 40001", 4, r".*40001.*", 2),
            ("SQLExecute -5 42501", 4, r".*42501.*", 2),
        ]
        for fault, code, pattern, rows in cases:
            for rejects in ([], ["--rejects", "r.csv"]):  # none of them is a row's fault
                with self.subTest(fault=fault, rejects=rejects):
                    self.sql("delete from t")
                    self.expect(self.load(text, "--batch", "2", *rejects, fault=fault), code,
                                f"f.csv:4:1: rows of lines 4 to 5: {pattern}; 2 rows are committed")
                    self.assertEqual(self.sql("select count(*) from t"), [(rows,)])
        self.expect(self.load(text, "--rejects", "no/r.csv"), 6, "no/r.csv: No such file .*")

    def test_bad_rows_are_named_and_good_ones_kept(self):
        text = HEAD + "1,,,,,\n2,x,,,,\n3,,,\n4,,,\"two\nlines\",,\n1,,,,,\n6,,,,,\n1,,,,,\n" \
                      "8,,,,,\n"
        names = ["3,22018", "4,21S01", "7,HY000", "9,HY000"]
        head = "line,sqlstate,reason"
        cases = [  # options, exit code, complaint, rows named, keys in the table
            (["--batch", "8"], 1, "4 rows rejected, named in r.csv; 4 rows are committed", 4,
             [1, 4, 6, 8]),
            (["--batch", "1"], 1, "4 rows rejected, named in r.csv; 4 rows are committed", 4,
             [1, 4, 6, 8]),
            (["--batch", "3", "--max-errors", "4"], 1, "4 rows rejected, .*; 4 rows .*", 4,
             [1, 4, 6, 8]),
            (["--batch", "1", "--max-errors", "2"], 1,
             "3 rows rejected, named in r.csv, more than the 2 allowed; 2 rows are committed", 3,
             [1, 4]),
            (["--max-errors", "0"], 1, "1 row rejected, .* the 0 allowed; 0 rows are committed", 1,
             []),
            # It sees its own rows, of other batches too.
            (["--dry-run", "--batch", "2"], 1, "4 rows .*; 0 rows are committed", 4, []),
        ]
        for generation in "12":
            for options, code, pattern, count, keys in cases:
                with self.subTest(generation=generation, options=options):
                    self.sql("delete from t")
                    done = self.load(text, "--rejects", "r.csv", "--generation", generation,
                                     *options)
                    self.expect(done, code, pattern)
                    lines = (self.folder / "r.csv").read_text().splitlines()
                    self.assertEqual([line[:7] for line in lines], [head[:7]] + names[:count])
                    self.assertEqual(self.sql("select id from t order by id"),
                                     [(key,) for key in keys])
                    for line in lines[3:]:
                        self.assertRegex(line, r"^\d,HY000,.*UNIQUE")

    def test_a_dry_run_changes_nothing(self):
        rows = "1,,,,,\n2,,,,,\n"
        for generation in "12":
            done = self.load(HEAD + rows, "--dry-run", "--batch", "1", "--generation", generation)
            self.expect_rows(done, "2 rows would be loaded into t")
        self.expect(self.load(HEAD + rows + "1,,,,,\n", "--dry-run", "--batch", "1"), 4,
                    ".*UNIQUE.*; 0 rows .*")
        self.assertEqual(self.sql("select count(*) from t"), [(0,)])

    def test_other_delimiters_and_nulls(self):
        for option, character in [("tab", "\t"), (";", ";"), ("|", "|")]:
            self.sql("delete from t")
            text = "id,big,name\n1,NULL,NULL\n2,3,\n4,5,\"a, b\"\n"
            done = self.load(text.replace(",", character).replace(f"a{character} b", "a, b"),
                             "--delimiter", option, "--null", "NULL")
            self.assertEqual((done.returncode, done.stderr), (0, ""))
            self.assertEqual(self.sql("select id, big, name from t"),
                             [(1, None, None), (2, 3, None), (4, 5, "a, b")])
        for option in ("", "ab", "é", '"', "\n"):
            self.expect(self.load(HEAD, "--delimiter", option), 2, ".*delimiter.*")


class Dump(ToolCase):
    def dump(self, *arguments):
        return self.run_tool("dump", "s", *arguments)

    def test_a_dump_loads_again(self):
        self.sql("create table one (a varchar(10))")
        for name, rows in [("t", "(1, 5, 0.1, 'a,\"b\n', '2024-01-02 03:04:05.678', x'00ff'), "
                                 "(2, null, null, '', null, x''), "
                                 "(3, null, null, null, null, null)"),
                           ("one", "(null), (''), ('x'), (null)")]:
            self.sql(f"insert into {name} values {rows}")
            for generation in "12":
                with self.subTest(table=name, generation=generation):
                    done = self.dump(name, "--out", "1.csv", "--generation", generation)
                    self.assertEqual((done.returncode, done.stderr), (0, ""))
                    before = self.sql(f"select * from {name}")
                    self.sql(f"delete from {name}")
                    self.run_tool("load", "s", name, "1.csv", "--generation", generation)
                    self.assertEqual(self.sql(f"select * from {name}"), before)
                    self.dump(name, "--out", "2.csv", "--generation", generation)
                    self.assertEqual((self.folder / "1.csv").read_bytes(),
                                     (self.folder / "2.csv").read_bytes())

    def test_queries_and_forms(self):
        self.sql("insert into t (id, name) values (1, ''), (2, null)")
        done = self.dump("select id, name from t order by id", "--format", "jsonl")
        self.assertEqual(done.stdout, '{"id":1,"name":""}\n{"id":2,"name":null}\n')
        done = self.dump("select id from t where id < 0")
        self.assertEqual((done.returncode, done.stdout), (0, "id\n"))
        done = self.dump("t", "--out", "f.csv")
        self.assertEqual(done.stdout, "2 rows dumped to f.csv\n")

    def test_a_file_is_replaced_whole_or_not_at_all(self):
        long = "with recursive c(x) as (select 1 union all select x + 1 from c where x < 99999) " \
               "select x from c"
        self.write("old.csv", "old")
        (self.folder / "link.csv").symlink_to("old.csv")
        (self.folder / "folder").mkdir()
        before = sorted(path.name for path in self.folder.iterdir())
        cases = [  # arguments, fault, exit code, complaint
            ((long, "--out", "old.csv"), "SQLFetch -5000 08S01", 3, r"reading rows: .*08S01.*"),
            (("nowhere", "--out", "old.csv"), None, 4, r".*nowhere.*"),
            (("delete from t", "--out", "old.csv"), None, 2, r"a dump changes nothing; .*"),
            ((long, "--out", "no/f.csv"), None, 6, r"no/f.csv: No such file or directory"),
            ((long, "--out", "folder"), None, 6, r".*folder: Is a directory"),
            ((long, "--out", "/dev/full"), None, 6, r"/dev/full: No space left on device"),
        ]
        for arguments, fault, code, pattern in cases:
            with self.subTest(arguments):
                done = self.run_tool("dump", "s", *arguments, fault=fault)
                self.expect(done, code, pattern)
                self.assertEqual((self.folder / "old.csv").read_text(), "old")
                self.assertEqual(sorted(path.name for path in self.folder.iterdir()), before)
        self.assertEqual(self.dump("t", "--out", "link.csv").returncode, 0)
        self.assertTrue((self.folder / "link.csv").is_symlink())
        self.assertEqual((self.folder / "old.csv").read_text(), HEAD)


class Copy(ToolCase):
    def setUp(self):
        super().setUp()
        self.write("odbc.ini", (self.folder / "odbc.ini").read_text() +
                   f"[other]\nDriver={SQLITE_DRIVER}\nDatabase={self.folder}/other.db\n")
        self.write("zeldb.toml", '[s]\nDSN = "db"\nUser = "u"\n'
                                 '[o]\nDSN = "other"\nUser = "u"\n')
        self.other(TABLE)

    def other(self, statement):
        with sqlite3.connect(self.folder / "other.db") as database:
            return database.execute(statement).fetchall()

    def test_every_value_arrives(self):
        self.sql("insert into t values (1, 9223372036854775807, 0.1, 'a,\"b\n', "
                 "'2024-01-02 03:04:05.678', x'00ff'), (2, 0, -1e300, '', null, x''), "
                 "(3, null, null, null, null, null)")
        for generation in "12":
            for options in ([], ["--batch", "1"], ["--one-transaction"]):
                with self.subTest(generation=generation, options=options):
                    self.other("delete from t")
                    done = self.run_tool("copy", "s.t", "o.t", "--generation", generation, *options)
                    self.expect_rows(done, "3 rows copied to o.t")
                    self.assertEqual(self.other("select * from t"), self.sql("select * from t"))

    def test_failures_of_either_side(self):
        self.sql("with recursive c(n) as (select 1 union all select n + 1 from c where n < 600) "
                 "insert into t (id) select n from c")
        copy = ["copy", "s.t", "o.t", "--batch", "300"]
        done = self.run_tool(*copy, fault="SQLFetch -400 08S01")
        self.expect(done, 3,
                    r"reading rows: injected \(SQLSTATE 08S01, .*\); 300 rows are committed")
        self.other("delete from t")
        done = self.run_tool(*copy, "--retries", "1", fault="SQLExecute -6 40001")
        self.assertEqual((done.returncode, done.stderr.count("trying again")), (0, 1), done.stderr)
        done = self.run_tool(*copy, "--rejects", "r.csv", "--metrics", "m.prom")
        self.expect(done, 1, r"600 rows rejected, named in r.csv; 0 rows are committed")
        self.assertIn('rejected_total{verb="copy",service="o",table="t"} 600',
                      (self.folder / "m.prom").read_text())
        self.assertEqual(self.other("select count(*) from t"), [(600,)])

    def test_what_does_not_fit_is_refused(self):
        self.sql("create table a (id bigint, name varchar(9))")
        self.sql("insert into a values (1, 'x'), (2, 'x'), (2147483648, 'x'), (4, 'x')")
        self.sql("create table b (id integer, new integer)")
        self.sql("create table c (id integer)")
        self.sql("insert into c values (7), (8), (7), (9)")
        cases = [  # from, to, exit code, complaint, rows there afterwards
            ("s.a", "o.t", 1, r's.a: row 3: column "id": .*: "2147483648"; 2 rows .*', 2),
            ("s.c", "o.t", 4, r"s.c: rows 3 to 4: .*UNIQUE.*; 2 rows are committed", 2),
            ("s.b", "o.t", 2, r's.b: table t has no column "new"', 0),
            ("s.nowhere", "o.t", 4, r".*nowhere.*", 0),
            ("s.a", "o.nowhere", 4, r".*nowhere.*", 0),
            ("s", "o.t", 2, r'"s" is not SERVICE.TABLE', 0),
            ("s.a", "x.t", 2, r'.*no service "x".*', 0),
        ]
        for source, target, code, pattern, rows in cases:
            with self.subTest(source):
                self.other("delete from t")
                self.expect(self.run_tool("copy", source, target, "--batch", "2"), code, pattern)
                self.assertEqual(self.other("select count(*) from t"), [(rows,)])


class Bench(ToolCase):
    def tables(self):
        return self.sql("select name from sqlite_master where type = 'table'")

    def test_figures_are_shown_and_nothing_remains(self):
        done = self.run_tool("bench", "s", "--rows", "200", "--rounds", "1")
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        for work in ("insert", "fetch"):
            for generation in ("first", "second"):
                line = rf"(?m)^{work}, {generation} generation +\d+ +\d+ +\d"
                self.assertRegex(done.stdout, line)
        self.assertEqual(self.tables(), [("t",)])

    def test_interrupting_drops_the_table(self):
        with subprocess.Popen([ZELDB, "bench", "s", "--rounds", "1000"], cwd=self.folder,
                              env=self.environment(), text=True, stderr=subprocess.PIPE,
                              stdout=subprocess.DEVNULL) as tool:
            while self.tables() == [("t",)]:
                time.sleep(0.01)
            tool.send_signal(signal.SIGINT)
            complaint = tool.stderr.read()
        self.assertEqual((tool.returncode, complaint), (130, "zeldb: interrupted\n"))
        self.assertEqual(self.tables(), [("t",)])


if __name__ == "__main__":
    unittest.main()
