"""Loads that are killed and resumed, and loads whose connection breaks: no row is lost, none is
there twice, each bad one is named once.

Environment: that of `scripts/databases run`, and the program in ZELDB; ZEL_KILLS is how often each
load is killed (3), ZEL_ROWS how many rows it has. Arguments: the database.
"""

import os
import pathlib
import random
import re
import signal
import socket
import subprocess
import sys
import tempfile
import threading
import time

from live_tool import LiveTool, expect

KILLS = int(os.environ.get("ZEL_KILLS", "3"))
ROWS = int(os.environ.get("ZEL_ROWS", "20000"))
BAD = {line: f"{line - 1},bad" for line in range(777, ROWS, max(ROWS // 9, 1))}
# What tells which rows are in: the table's own key, or a ledger beside it.
WAYS = {"file": ["--key", "id"], "table": ["--ledger-table", "resuming_ledger"]}
PORT = {"PostgreSQL": "ZEL_TEST_PORT_POSTGRESQL", "MariaDB": "ZEL_TEST_PORT_MARIADB"}


class Proxy:
    """Passes bytes between a client and a server, and cuts the link around the n-th commit."""

    def __init__(self, port, commit, answered):
        self.server = int(port)
        self.commit, self.answered = commit, answered
        self.seen = 0
        self.mute = set()  # servers whose answers get lost
        self.listener = socket.create_server(("127.0.0.1", 0))
        self.port = self.listener.getsockname()[1]
        threading.Thread(target=self.accept, daemon=True).start()

    def accept(self):
        while True:
            client, _ = self.listener.accept()
            server = socket.create_connection(("127.0.0.1", self.server))
            threading.Thread(target=self.forward, args=(client, server), daemon=True).start()
            threading.Thread(target=self.back, args=(server, client), daemon=True).start()

    def forward(self, client, server):
        while data := self.receive(client):
            if re.search(rb"(?i)commit\b", data[-40:]):
                self.seen += 1
                if self.seen == self.commit:
                    self.mute.add(server)
                    if self.answered:
                        server.sendall(data)
                        time.sleep(0.3)
                    break
            server.sendall(data)
        for link in (client, server):
            try:
                link.shutdown(socket.SHUT_RDWR)
            except OSError:
                pass

    def back(self, server, client):
        while data := self.receive(server):
            try:
                if server not in self.mute:
                    client.sendall(data)
            except OSError:
                return

    @staticmethod
    def receive(link):
        try:
            return link.recv(65536)
        except OSError:
            return b""


class Case(LiveTool):
    def __init__(self, folder, database, way):
        super().__init__(folder, database)
        self.database, self.way = database, way
        lines = ["id,n"] + [BAD.get(n + 1, f"{n},{n * 2}") for n in range(1, ROWS + 1)]
        self.write("f.csv", "\n".join(lines) + "\n")
        self.load = ["load", "live", "resuming", "f.csv", "--resume", "--rejects", "r.csv",
                     "--batch", "200", *WAYS[way]]

    def start_afresh(self):
        self.drop_tables()
        self.create("resuming", "id integer not null primary key, n integer")
        for name in ("f.csv.ledger", "r.csv"):
            (self.folder / name).unlink(missing_ok=True)

    def drop_tables(self):
        for table in ("resuming", "resuming_ledger"):
            self("query", "live", f"drop table if exists {table}")

    def finish(self, *options):
        done = self(*self.load, *options, code=1)
        expect("last line", f"zeldb: {len(BAD)} rows rejected, named in r.csv; "
               f"{ROWS - len(BAD)} rows are committed", done.stderr.splitlines()[-1])
        numbers = [n for n in range(1, ROWS + 1) if n + 1 not in BAD]
        expect("rows", f"{len(numbers)},{len(numbers)},{sum(2 * n % 1000 for n in numbers)}",
               self("dump", "live", "select count(*), count(distinct id), sum(n % 1000) "
                    "from resuming").stdout.splitlines()[-1])
        expect("lines", sorted(BAD), [int(row["line"]) for row in self.rejects()])
        return done.stderr

    def kill(self, seconds):
        """Whether the load was still at work."""
        with subprocess.Popen(self.command(*self.load), cwd=self.folder, stdout=subprocess.DEVNULL,
                              stderr=subprocess.DEVNULL) as tool:
            begun = self.folder / ("f.csv.ledger" if self.way == "file" else "r.csv")
            while not begun.exists() and tool.poll() is None:
                time.sleep(0.001)
            time.sleep(seconds)
            tool.send_signal(signal.SIGKILL)
        return tool.returncode == -signal.SIGKILL

    def test_kills(self):
        self.start_afresh()
        started = time.monotonic()
        self.finish()
        whole = time.monotonic() - started
        kills = 0
        while kills < KILLS:
            self.start_afresh()
            if self.kill(random.uniform(0, whole * 0.8)):
                kills += 1
                self.kill(random.uniform(0, whole * 0.3))
            self.finish()
        print(f"{self.database}, ledger in a {self.way}: {kills} times killed and resumed, "
              f"{ROWS} rows in {whole:.1f} s")

    def test_lost_links(self):
        for answered in (False, True):
            proxy = Proxy(os.environ[PORT[self.database]], 19, answered)
            odbc = pathlib.Path(os.environ["ODBCINI"]).read_text()
            for name in PORT.values():
                odbc = odbc.replace(os.environ[name], str(proxy.port))
            (self.folder / "odbc.ini").write_text(odbc)
            self.environment["ODBCINI"] = str(self.folder / "odbc.ini")
            self.start_afresh()
            told = self.finish("--retries", "5", "--metrics", "m.prom")
            if proxy.seen <= 19:
                sys.exit(f"the link was not cut: {proxy.seen} commits; {told}")
            metrics = (self.folder / "m.prom").read_text()
            if not re.search(r"zeldb_in_doubt_total\{.*\} 1\n", metrics):
                sys.exit(f"nothing was in doubt: {metrics}")


def main(database):
    for way in WAYS:
        with tempfile.TemporaryDirectory() as folder:
            case = Case(folder, database, way)
            case.test_kills()
            if database in PORT:
                case.test_lost_links()
            case.drop_tables()


main(*sys.argv[1:])
