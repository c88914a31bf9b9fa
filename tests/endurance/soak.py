"""Runs the soak (the program in SOAK) on databases whose connections all break now and then.

    soak.py SECONDS [FAULT_SECONDS]

Needs the environment of `scripts/databases run`. Connections to the servers go through a proxy that
resets them every FAULT_SECONDS (30).
"""

import os
import pathlib
import re
import subprocess
import sys
import tempfile

from lost_server import CLIENTS, COLUMNS, ask
from proxy import Proxy

CONNECTIONS = 24


def configure(folder):
    """The soak's data sources; returns the proxies in front of the servers."""
    ini = pathlib.Path(os.environ["ODBCINI"]).read_text(encoding="utf-8")
    proxies = []
    for name, client in CLIENTS.items():
        port = os.environ[f"ZEL_TEST_PORT_{name.upper()}"]
        proxies.append(Proxy(int(port)))
        ini = re.sub(rf"(?mi)^(port)={port}$", rf"\1={proxies[-1].port}", ini)
        for number in range(1, CONNECTIONS + 1):
            ask(client, f"drop table if exists soak{number}", port)
            ask(client, f"create table soak{number} ({COLUMNS})", port)
    driver = re.search(r"\[SQLite\]\nDriver=(.*)\n", ini)[1]
    for number in range(1, CONNECTIONS + 1):
        file = folder / f"{number}.db"
        subprocess.run(["sqlite3", file, "pragma journal_mode=wal; pragma synchronous=off;"
                        f"create table soak{number} ({COLUMNS})"], check=True,
                       stdout=subprocess.DEVNULL)
        ini += f"\n[SQLite{number}]\nDriver={driver}\nDatabase={file}\nSyncPragma=OFF\n"
    (folder / "odbc.ini").write_text(ini, encoding="utf-8")
    (folder / "odbcinst.ini").touch()
    return proxies


def main(seconds, fault_seconds):
    with tempfile.TemporaryDirectory() as folder:
        proxies = configure(pathlib.Path(folder))
        env = dict(os.environ, ODBCSYSINI=folder, ODBCINI=f"{folder}/odbc.ini",
                   MALLOC_ARENA_MAX="4")
        with subprocess.Popen([os.environ["SOAK"], str(seconds), "SQLite", *CLIENTS],
                              env=env) as soak:
            faults = 0
            while True:
                try:
                    code = soak.wait(fault_seconds)
                    break
                except subprocess.TimeoutExpired:
                    faults += 1
                    for proxy in proxies:
                        proxy.cut_all(reset=faults % 2 == 0)
    return code


if __name__ == "__main__":
    sys.exit(main(int(sys.argv[1]), float(sys.argv[2]) if len(sys.argv) > 2 else 30))
