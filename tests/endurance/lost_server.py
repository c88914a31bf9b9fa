"""Takes servers away from programs that write, and looks afterwards at what is there.

    lost_server.py kills|seconds COUNT SEED [--cluster]

For PostgreSQL and MariaDB each, COUNT times or for so long, at random moments: the server is killed
and started again. Between the kills it is stopped for a while, connections are cut in mid-message,
reset, or carry nothing for a while. Both generations write meanwhile (the program in LOST_SERVER).
With --cluster, nodes of a Galera cluster are killed instead, which the programs reach without a
proxy.

Every batch that a program took as committed must be there; nothing else may be there but what it
holds to be in doubt; batches are whole, and nothing is there twice. Prints a line; ends with 1 when
anything was found.
"""

import os
import pathlib
import random
import re
import subprocess
import sys
import tempfile
import threading
import time

from proxy import Proxy

SCRIPTS = pathlib.Path(__file__).parents[2] / "scripts"
PARTS = 20
COLUMNS = "batch integer not null, part integer not null, note varchar(60)"
# Since MariaDB numbers the rows of a table without a key by itself, anew after a crash.
KEY = "primary key (batch, part)"
TWICE = "23"  # class of the SQLSTATEs of a key that is there already
SUMS = "select batch, count(*), count(distinct part), min(part), max(part) from {} group by batch"
PATIENCE = 60  # seconds until writing must go on after whatever happened


def script(name, *arguments):
    return subprocess.run([SCRIPTS / name, *arguments], check=False, text=True,
                          stdout=subprocess.PIPE, stderr=subprocess.PIPE)


def environment(name):
    """What a script's `env` prints, as a dictionary."""
    text = script(name, "env").stdout
    return dict(re.findall(r"^export (\w+)='(.*)'$", text, re.MULTILINE))


def postgresql(sql, port):
    return ["psql", "-q", "-A", "-t", "-F", "\t", "-v", "ON_ERROR_STOP=1", "-h", "127.0.0.1",
            "-p", port, "-U", "app", "-d", "appdb", "-c", sql]


def mariadb(sql, port):
    return ["mariadb", "--no-defaults", "-h", "127.0.0.1", "-P", port, "-u", "app", "-N", "-B",
            "appdb", "-e", sql]


CLIENTS = {"PostgreSQL": postgresql, "MariaDB": mariadb}


def ask(client, sql, port):
    """Rows of a query by the database's own client, tried until the server takes it."""
    for _ in range(PATIENCE * 5):
        done = subprocess.run(client(sql, port), text=True, check=False, capture_output=True,
                              env=dict(os.environ, PGPASSWORD="apppw", MYSQL_PWD="apppw"))
        if done.returncode == 0:
            return [line.split("\t") for line in done.stdout.splitlines()]
        time.sleep(0.2)
    raise RuntimeError(f"{sql}: {done.stderr}")


class Record:
    """What a program says it has written."""

    def __init__(self, path):
        self.batches = {"acknowledged": set(), "doubtful": set(), "failed": set()}
        self.states = {}
        self.flags = []
        for line in path.read_text(encoding="utf-8", errors="replace").splitlines():
            word, _, rest = line.partition(" ")
            if word in self.batches:
                self.batches[word].add(int(rest))
            elif word == "state":
                state, count = rest.split()
                self.states[state] = int(count)
            else:
                self.flags.append(line)

    def findings(self, sums):
        found = [f"wrong connection-error flag: {flag}" for flag in self.flags]
        there = {int(row[0]): tuple(map(int, row[1:])) for row in sums}
        whole = (PARTS, PARTS, 0, PARTS - 1)
        known = self.batches["acknowledged"] | self.batches["doubtful"]
        found += [f"{count} rows came twice" for state, count in self.states.items()
                  if state.startswith(TWICE)]
        found += [f"batch {batch} is lost" for batch in self.batches["acknowledged"] - set(there)]
        found += [f"batch {batch} came from nowhere" for batch in set(there) - known]
        found += [f"batch {batch} is torn or twice: {sum}" for batch, sum in there.items()
                  if sum != whole]
        return found


class Writers:
    """The programs, one a generation, that write through a data source of their own."""

    def __init__(self, name, dsn, env, folder):
        self.programs = []
        for generation in (1, 2):
            record = folder / f"{name}{generation}"
            record.touch()
            self.programs.append((record, subprocess.Popen(
                [os.environ["LOST_SERVER"], str(generation), dsn, f"lost{generation}",
                 str(record)], stdin=subprocess.PIPE, env=dict(os.environ, **env))))

    def written(self):
        return [record.read_bytes().count(b"acknowledged") for record, _ in self.programs]

    def wait_for_progress(self):
        """Waits until every program has written more; false when one does not."""
        before = self.written()
        until = time.monotonic() + PATIENCE
        while any(now <= then for now, then in zip(self.written(), before)):
            if time.monotonic() > until:
                return False
            time.sleep(0.02)
        return True

    def finish(self):
        """Ends the programs; their exit codes."""
        for _, program in self.programs:
            program.stdin.close()
        codes = []
        for _, program in self.programs:
            try:
                codes.append(program.wait(PATIENCE))
            except subprocess.TimeoutExpired:
                program.kill()
                codes.append("hangs")
        return codes


class Trial:
    """One database, taken away so many times, or again and again until a time."""

    def __init__(self, name, kills, until, seed, folder):
        self.name, self.folder = name, folder
        self.kills_at_most, self.until = kills, until
        self.random = random.Random(f"{seed} {name}")
        self.events = {}
        self.findings = []
        self.kills = 0

    def goes_on(self):
        return self.kills < self.kills_at_most and time.monotonic() < self.until

    def happen(self, event):
        self.events[event] = self.events.get(event, 0) + 1
        getattr(self, event)()

    def check(self, writers, client, port):
        found = self.findings
        found += [f"the writer ended with {code}" for code in writers.finish() if code != 0]
        # What a cut connection has sent last may still be on its way into the database.
        time.sleep(1)
        for generation, (path, _) in enumerate(writers.programs, 1):
            record = Record(path)
            sums = ask(client, SUMS.format(f"lost{generation}"), port)
            found += [f"generation {generation}: {text}" for text in record.findings(sums)]
            counts = " ".join(f"{len(batches)} {word}," for word, batches in record.batches.items())
            states = " ".join(f"{state}:{n}" for state, n in sorted(record.states.items()))
            print(f"  {self.name}, generation {generation}: {counts} SQLSTATEs {states}")
        print(f"  {self.name}: " + ", ".join(f"{n} {e}" for e, n in sorted(self.events.items())))

    def prepare(self, client, port):
        for generation in (1, 2):
            for sql in (f"drop table if exists lost{generation}",
                        f"create table lost{generation} ({COLUMNS}, {KEY})"):
                ask(client, sql, port)

    def run(self):
        try:
            self.attempt()
        except Exception as error:  # pylint: disable=broad-except
            self.findings.append(f"{type(error).__name__}: {error}")


class ServerTrial(Trial):
    """A single server behind the proxy."""

    OTHERS = ("stop", "stall", "cut", "cut", "reset")

    def attempt(self):
        env = environment("databases")
        port = env[f"ZEL_TEST_PORT_{self.name.upper()}"]
        client = CLIENTS[self.name]
        self.prepare(client, port)
        self.proxy = Proxy(int(port))
        writers = Writers(self.name, self.name, self.configure(env, port), self.folder)
        while self.goes_on():
            for event in (self.random.choice(self.OTHERS), "kill"):
                if not writers.wait_for_progress():
                    self.findings.append(f"no writing goes on after {self.events}")
                time.sleep(self.random.random() * 0.3)
                self.happen(event)
        writers.wait_for_progress()
        self.check(writers, client, port)

    def configure(self, env, port):
        """The environment with a data source that goes through the proxy."""
        folder = self.folder / f"{self.name}.odbc"
        folder.mkdir()
        (folder / "odbcinst.ini").touch()
        ini = pathlib.Path(env["ODBCINI"]).read_text(encoding="utf-8")
        (folder / "odbc.ini").write_text(re.sub(rf"(?mi)^(port)={port}$", rf"\1={self.proxy.port}",
                                                ini), encoding="utf-8")
        return dict(env, ODBCSYSINI=str(folder), ODBCINI=str(folder / "odbc.ini"))

    def kill(self):
        self.kills += 1
        script("databases", "signal", self.name, "KILL")
        time.sleep(self.random.random() * 0.2)
        for _ in range(PATIENCE):
            done = script("databases", "start", self.name)
            if done.returncode == 0:
                return
            time.sleep(1)
        raise RuntimeError(f"{self.name} does not start again: {done.stderr}")

    def stop(self):
        script("databases", "signal", self.name, "STOP")
        time.sleep(self.random.random())
        script("databases", "signal", self.name, "CONT")

    def stall(self):
        self.proxy.stall(self.random.random())

    def cut(self):
        self.proxy.cut_one(self.random)

    def reset(self):
        self.proxy.cut_all(self.random.random() < 0.5)


class ClusterTrial(Trial):
    """Three nodes; the programs go on with another one by themselves."""

    def attempt(self):
        env = environment("cluster")
        ports = re.search(r"SERVER=127.0.0.1:(\d+),127.0.0.1:(\d+),127.0.0.1:(\d+)",
                          pathlib.Path(env["ODBCINI"]).read_text(encoding="utf-8")).groups()
        self.prepare(mariadb, ports[0])
        writers = Writers(self.name, "Cluster", env, self.folder)
        while self.goes_on():
            if not writers.wait_for_progress():
                self.findings.append(f"no writing goes on after {self.events}")
            time.sleep(self.random.random())
            self.happen("kill")
        writers.wait_for_progress()
        self.check(writers, mariadb, ports[0])

    def kill(self):
        self.kills += 1
        # The first node that runs is the one in use, as the data source lists them.
        node = self.random.choice(("1", "1", "2", "3"))
        for step in (("kill", node), ("start", node)):
            done = script("cluster", *step)
            if done.returncode != 0:
                raise RuntimeError(f"{' '.join(step)}: {done.stderr}")


def main():
    cluster = "--cluster" in sys.argv
    unit, count, seed = sys.argv[1], int(sys.argv[2]), int(sys.argv[3])
    limits = ((sys.maxsize, time.monotonic() + count) if unit == "seconds" else
              (count, time.monotonic() + 86400))
    servers = "cluster" if cluster else "databases"
    if script(servers, "up").returncode != 0:
        sys.exit(f"scripts/{servers} up has failed")
    try:
        with tempfile.TemporaryDirectory() as folder:
            folder = pathlib.Path(folder)
            trials = ([ClusterTrial("Galera", *limits, seed, folder)] if cluster else
                      [ServerTrial(name, *limits, seed, folder) for name in CLIENTS])
            threads = [threading.Thread(target=trial.run) for trial in trials]
            for thread in threads:
                thread.start()
            for thread in threads:
                thread.join()
    finally:
        script(servers, "down")
    found = [f"{trial.name}: {text}" for trial in trials for text in trial.findings]
    for text in found[:20]:
        print(f"  {text}")
    print(f"{'lost cluster nodes' if cluster else 'lost servers':24} "
          f"{sum(trial.kills for trial in trials):12} tried {len(found):8} findings", flush=True)
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
