"""A load into a Galera cluster, the node in use being killed on the way.

Whatever the tool has reported as committed is there; batches are there whole or not at all; no row
is there twice. With retries and a key the load goes on over another node and loses nothing.

Environment: that of `scripts/cluster run`, and the program in ZELDB.
"""

import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import time
import unittest

CLUSTER = pathlib.Path(__file__).parents[2] / "scripts" / "cluster"
NODES = "123"
BATCH = 500
ROWS = 600 * BATCH
# Keys of its own, so that the table itself would take a row twice.
TABLE = ("create table loading (arrival bigint auto_increment primary key, id integer not null, "
         "name varchar(20) not null, key (id))")


def cluster(*arguments):
    subprocess.run([CLUSTER, *arguments], check=True)


class Kill(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        (self.folder / "zeldb.toml").write_text("".join(
            f'[{name}]\nDSN = "{name}"\nUser = "app"\npassword_env = "ZEL_TEST_PASSWORD"\n'
            for name in ["Cluster"] + [f"Node{node}" for node in NODES]))
        with open(self.folder / "rows.csv", "w", encoding="utf-8") as file:
            file.write("id,name\n")
            file.writelines(f"{n},row {n}\n" for n in range(1, ROWS + 1))
        self.query("Cluster", "drop table if exists loading")
        self.query("Cluster", TABLE)
        self.addCleanup(self.query, "Cluster", "drop table loading")

    def tool(self, *arguments):
        return [os.environ["ZELDB"], *arguments]

    def query(self, service, sql):
        """The rows of a query on a node, as texts; none when it cannot be asked."""
        done = subprocess.run(self.tool("query", service, sql, "--format", "csv"), text=True,
                              cwd=self.folder, capture_output=True, check=False)
        return [row.split(",") for row in done.stdout.splitlines()[1:]]

    def node_in_use(self):
        """The node that the load is connected to: there is one connection but the asking one."""
        for node in NODES:
            if self.query(f"Node{node}", "select count(*) from information_schema.processlist "
                          "where user = 'app'") == [["2"]]:
                return node
        return self.fail("no node is in use")

    def load_and_kill(self, *options):
        """Starts a load, kills its node when a fifth is there, and waits for the load's end."""
        load = subprocess.Popen(
            self.tool("load", "Cluster", "loading", "rows.csv", "--batch", str(BATCH), *options),
            cwd=self.folder, text=True, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        while int(self.query("Cluster", "select count(*) from loading")[0][0]) < ROWS / 5:
            self.assertIsNone(load.poll(), "the load has ended too early")
            time.sleep(0.05)
        node = self.node_in_use()
        self.assertIsNone(load.poll(), "the load has ended before its node")
        cluster("kill", node)
        out, err = load.communicate(timeout=120)
        return node, load.returncode, out + err

    def survivors(self, node):
        """What the other nodes hold: rows, different ids, least and greatest id. All the same."""
        sql = "select count(*), count(distinct id), min(id), max(id) from loading"
        held = [self.query(f"Node{other}", sql) for other in NODES if other != node]
        self.assertEqual(held[0], held[1])
        return [int(value) for value in held[0][0]]

    def test_what_is_reported_is_there_in_whole_batches(self):
        for _ in range(2):
            self.query("Cluster", "delete from loading")
            node, code, said = self.load_and_kill()
            rows, different, least, greatest = self.survivors(node)
            reported = int(re.search(r"(\d+) rows are committed", said)[1])
            with self.subTest(node=node, code=code, reported=reported, rows=rows):
                self.assertIn(code, (3, 7), said)
                self.assertEqual((rows, least, greatest), (different, 1, different))
                self.assertEqual(rows % BATCH, 0)
                # Only a commit without an answer may have happened unseen.
                self.assertIn(rows - reported, (0, BATCH) if code == 7 else (0,), said)
            print(f"node {node} killed: exit code {code}, {reported} reported, {rows} there")
            cluster("start", node)

    def test_goes_on_over_another_node(self):
        for _ in range(2):
            self.query("Cluster", "delete from loading")
            node, code, said = self.load_and_kill("--retries", "20", "--key", "id")
            with self.subTest(node=node):
                self.assertEqual((code, self.survivors(node)), (0, [ROWS, ROWS, 1, ROWS]), said)
            print(f"node {node} killed: all rows are there once")
            cluster("start", node)

    def test_the_doctor_notices_reads_that_do_not_wait(self):
        for left_out, unwell in (("INITSTMT", [("statement", "warning")]), ("nothing", [])):
            lines = pathlib.Path(os.environ["ODBCINI"]).read_text().splitlines(keepends=True)
            ini = self.folder / "odbc.ini"
            ini.write_text("".join(line for line in lines if not line.startswith(left_out)))
            done = subprocess.run(self.tool("doctor", "Node2", "--format", "json"), text=True,
                                  cwd=self.folder, capture_output=True, check=False,
                                  env=dict(os.environ, ODBCINI=str(ini)))
            found = [(row["step"], row["status"])
                     for row in map(json.loads, done.stdout.splitlines()) if row["status"] != "ok"]
            self.assertEqual(found, unwell, done.stdout)


if __name__ == "__main__":
    sys.exit(unittest.main())
