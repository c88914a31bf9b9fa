"""The doctor names cause and remedy of broken set-ups, and finds healthy ones healthy.

Environment: that of `scripts/databases run`, and the program in ZELDB.
"""

import configparser
import json
import os
import pathlib
import socket
import subprocess
import tempfile
import unittest

SERVERS = pathlib.Path(os.environ["ODBCSYSINI"])
PORTS = {name: os.environ[f"ZEL_TEST_PORT_{name.upper()}"] for name in ("PostgreSQL", "MariaDB")}
SERVICE = 'DSN = "{dsn}"\nUser = "app"\npassword_env = "DOCTOR_PASSWORD"\n'
STEPS = ["services file", "permissions", "service", "odbcinst.ini", "odbc.ini", "data source",
         "driver", "settings", "reach", "plug-in", "login 1", "login 2", "statement", "parameters",
         "scratch table", "text", "NULL", "decimal", "microseconds", "batch", "bad row"]

# set-up: data source, changed keys of it, changes of the service (a text is the whole of it, a pair
# replaces), step, exit code, cause, remedy
BROKEN = {
    "no DSN": (
        None, {}, None, "odbc.ini", 2, "there is no data source at all",
        "write a section with Driver and the place of the database into {ini}, or set ODBCINI to "
        "the file that has one; docs/databases.md shows what it needs"),
    "misspelt DSN": (
        "SQLite", {}, ('"SQLite"', '"SQliet"'), "data source", 2,
        'the service names DSN "SQliet"; there is "SQLite"', 'write DSN = "SQLite" in zeldb.toml'),
    "misspelt key": (
        "SQLite", {}, ("User", "Usr"), "service", 2,
        "the service's keys cannot be used as they are", "write User for Usr"),
    "password not given": (
        "SQLite", {}, ("DOCTOR_PASSWORD", "NOT_GIVEN"), "service", 2,
        "the service's keys cannot be used as they are",
        "set and export NOT_GIVEN before zeldb starts, or use password_file"),
    "services file world-readable": (
        "SQLite", {}, ('password_env = "DOCTOR_PASSWORD"', 'Password = "apppw"'), "permissions", 2,
        "everybody can read a password in zeldb.toml", "chmod 600 zeldb.toml"),
    "driver file missing": (
        "PostgreSQL", {"Driver": "/nowhere/psqlodbcx.so"}, None, "driver", 2,
        "the driver is not installed, or its path is wrong",
        "apt-get install odbc-postgresql, or correct Driver of [PostgreSQL] in {ini}"),
    "driver is no library": (
        "MariaDB", {"Driver": "{ini}"}, None, "driver", 2,
        "the driver manager loads shared libraries for this machine only",
        "correct Driver of [MariaDB] in {ini}"),
    "driver without path": (
        "SQLite", {"Driver": "SQLite4"}, None, "driver", 2,
        'Driver=SQLite4 is no path, and {folder}/odbcinst.ini has no section [SQLite4]; it has '
        '"SQLite3"', "write Driver=SQLite3 in [SQLite] in {ini}"),
    "folder of the file missing": (
        "SQLite", {"Database": "{folder}/none/db"}, None, "reach", 3,
        "the folder of the database's file is missing",
        "mkdir -p {folder}/none, or correct Database of [SQLite] in {ini}"),
    "PostgreSQL down": (
        "PostgreSQL", {"Port": "{free}"}, None, "reach", 3,
        "nothing listens on 127.0.0.1:{free}: the server is down, or the port is wrong",
        "start PostgreSQL there (systemctl start postgresql), or correct Servername and Port of "
        "[PostgreSQL] in {ini}"),
    "MariaDB down": (
        "MariaDB", {"PORT": "{free}"}, None, "reach", 3,
        "nothing listens on 127.0.0.1:{free}: the server is down, or the port is wrong",
        "start MariaDB there (systemctl start mariadb), or correct SERVER and PORT of [MariaDB] in "
        "{ini}"),
    "wrong port": (
        "PostgreSQL", {"Port": PORTS["MariaDB"]}, None, "reach", 3,
        "what listens on 127.0.0.1:" + PORTS["MariaDB"] + " is no PostgreSQL",
        "correct Servername and Port of [PostgreSQL] in {ini}"),
    "server hangs": (
        "MariaDB", {"PORT": "{silent}"}, None, "reach", 3,
        "127.0.0.1:{silent} accepts a connection, but does not greet as MariaDB does",
        "look whether the server hangs, give it more --seconds, or correct SERVER and PORT of "
        "[MariaDB] in {ini}"),
    "unknown host": (
        "MariaDB", {"SERVER": "nowhere.invalid"}, None, "reach", 3,
        'the name "nowhere.invalid" has no address',
        "correct SERVER and PORT of [MariaDB] in {ini}"),
    "wrong password, PostgreSQL": (
        "PostgreSQL", {}, ("DOCTOR_PASSWORD", "HOME"), "login 1", 3,
        'the server does not know user "app", or the password is wrong',
        "correct User and password in zeldb.toml, or: alter role ... password '...'"),
    "wrong password, MariaDB": (
        "MariaDB", {}, ("DOCTOR_PASSWORD", "HOME"), "login 1", 3,
        'the server does not know user "app", or the password is wrong',
        "correct User and password in zeldb.toml, or: alter user ... identified by '...'; "
        "NAME@localhost and NAME@'%' are two users, each with a password"),
    "database missing, PostgreSQL": (
        "PostgreSQL", {"Database": "nodb"}, None, "login 1", 3,
        'database "nodb" is missing on the server',
        "correct Database of [PostgreSQL] in {ini}, or create it: create database ..."),
    "database missing, MariaDB": (
        "MariaDB", {"DATABASE": "nodb"}, None, "login 1", 3,
        'database "nodb" is missing, or user "app" has not the right to do this in it',
        "correct DATABASE of [MariaDB] in {ini}, create the database, or: grant all on DATABASE.* "
        "to the user"),
    "no permission, PostgreSQL": (
        "PostgreSQL", {"Database": "doctordb"}, None, "scratch table", 4,
        'user "app" may create no temporary tables in database "doctordb"',
        "as an administrator: grant temporary on database ... to the user"),
    "no permission, MariaDB": (
        "MariaDB", {"DATABASE": "doctordb"}, ('"app"', '"doctor"'), "scratch table", 4,
        'database "doctordb" is missing, or user "doctor" has not the right to do this in it',
        "correct DATABASE of [MariaDB] in {ini}, create the database, or: grant all on DATABASE.* "
        "to the user"),
    "no parameter description": (
        "PostgreSQL", {"UseServerSidePrepare": "0"}, None, "parameters", 4,
        "the driver does not describe parameters (SQLDescribeParam): no batches, and no second "
        "generation",
        "set UseServerSidePrepare=1 in [PostgreSQL] in {ini}, or remove the line: 1 is the "
        "default"),
    "narrow character set": (
        "MariaDB", {"CHARSET": "utf8"}, None, "text", 4,
        "the character set of the connection or the column has no such characters",
        "set CHARSET=utf8mb4 in [MariaDB] in {ini}, and give the table character set utf8mb4"),
}
# database: the steps that warn, and what is seen
WARNINGS = {
    "SQLite": {
        "decimal": '"123456789012345678901234.0123456789" comes back as "1.23456789012346e+23"',
        "microseconds": '"2024-02-29 12:34:56.123456" comes back as "2024-02-29 12:34:56.123000"',
    },
    "PostgreSQL": {},
    "MariaDB": {},
}


def administer(*statements):
    """Runs statements for both servers as their administrator."""
    scratch = (SERVERS / "scratch").read_text().strip()
    for statement, postgresql, mariadb in statements:
        if postgresql:
            subprocess.run(["psql", "-q", "-h", "127.0.0.1", "-p", PORTS["PostgreSQL"], "-U",
                            "admin", "-d", "postgres", "-c", statement], check=True)
        if mariadb:
            subprocess.run(["mariadb", "--no-defaults", f"--socket={scratch}/maria.sock", "-u",
                            "root", "-e", statement], check=True)


class Doctor(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        silent = self.enterContext(socket.create_server(("127.0.0.1", 0)))
        with socket.socket() as free:
            free.bind(("127.0.0.1", 0))
            self.names = {"folder": folder.name, "ini": f"{folder.name}/odbc.ini",
                          "free": str(free.getsockname()[1]),
                          "silent": str(silent.getsockname()[1])}
        (self.folder / "odbcinst.ini").write_text("[SQLite3]\nDriver=libsqlite3odbc.so\n")

    def write(self, source, keys, service):
        """One data source as the servers' own odbc.ini has it, but for the keys; one service."""
        ini = configparser.ConfigParser(interpolation=None)
        ini.optionxform = str
        ini.read(SERVERS / "odbc.ini")
        text = ""
        if source:
            keys = {key: value.format(**self.names) for key, value in keys.items()}
            text = f"[{source}]\n" + "".join(
                f"{key}={value}\n" for key, value in {**ini[source], **keys}.items())
        (self.folder / "odbc.ini").write_text(text)
        toml = "[live]\n" + SERVICE.format(dsn=source or "any")
        (self.folder / "zeldb.toml").write_text(toml.replace(*service) if service else toml)

    def doctor(self, *arguments):
        done = subprocess.run(
            [os.environ["ZELDB"], "doctor", *arguments], cwd=self.folder, text=True, timeout=100,
            capture_output=True, check=False,
            env=dict(os.environ, ODBCSYSINI=str(self.folder), ODBCINI=self.names["ini"],
                     DOCTOR_PASSWORD="apppw"))
        self.assertNotIn("apppw", done.stdout + done.stderr)
        return done

    def findings(self):
        done = self.doctor("live", "--format", "json", "--seconds", "2")
        rows = [json.loads(line) for line in done.stdout.splitlines()]
        self.assertEqual([row["step"] for row in rows], STEPS, done.stderr)
        return done.returncode, {row["step"]: row for row in rows}

    def test_names_cause_and_remedy(self):
        administer(("create database doctordb", True, True),
                   ("revoke temporary on database doctordb from public", True, False),
                   ("grant select on doctordb.* to doctor@localhost identified by 'apppw'", False,
                    True))
        self.addCleanup(administer, ("drop database doctordb", True, True),
                        ("drop user doctor@localhost", False, True))
        for name, (source, keys, service, step, code, cause, remedy) in BROKEN.items():
            with self.subTest(name):
                self.write(source, keys, service)
                returncode, rows = self.findings()
                failed = {key for key, row in rows.items() if row["status"] == "failed"}
                self.assertEqual((returncode, failed), (code, {step}))
                found = (rows[step]["cause"], rows[step]["remedy"])
                self.assertEqual(found, (cause.format(**self.names), remedy.format(**self.names)))
                for row in rows.values():
                    if row["status"] == "skipped":
                        self.assertEqual(row["seen"], f'because "{step}" has failed')

    def test_finds_healthy_services_healthy(self):
        for source, warnings in WARNINGS.items():
            with self.subTest(source):
                (self.folder / "t.db").touch()
                keys = {"Database": "{folder}/t.db"} if source == "SQLite" else {}
                self.write(source, keys, None)
                before = subprocess.run([os.environ["ZELDB"], "tables", "live"], cwd=self.folder,
                                        capture_output=True, check=False).stdout
                returncode, rows = self.findings()
                self.assertEqual(returncode, 0, rows)
                unwell = {key: row["seen"] for key, row in rows.items() if row["status"] != "ok"}
                self.assertEqual(unwell, warnings)
                after = subprocess.run([os.environ["ZELDB"], "tables", "live"], cwd=self.folder,
                                       capture_output=True, check=False).stdout
                self.assertEqual(before, after)

    def test_examines_every_service_and_leaves_no_new_file(self):
        self.write("SQLite", {"Database": "{folder}/new.db"}, None)
        with open(self.folder / "zeldb.toml", "a", encoding="utf-8") as file:
            file.write('[other]\nDSN = "gone"\nUser = "app"\n')
        done = self.doctor()
        self.assertEqual((done.returncode, done.stderr),
                         (2, "zeldb: 1 step failed, 14 were skipped\n"))
        self.assertIn("\n\nother\n  services file  ok       zeldb.toml, 2 services\n", done.stdout)
        self.assertIn('  data source    failed   "gone" is not there\n'
                      '                 cause    the service names DSN "gone"; there is "SQLite"\n',
                      done.stdout)
        self.assertFalse((self.folder / "new.db").exists())


if __name__ == "__main__":
    unittest.main()
