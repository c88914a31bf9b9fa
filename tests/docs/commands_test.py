"""Every command that the documents show is run, with the services file that the README shows.

Blocks marked "sh" are run from top to bottom of a document, in one folder, each command having to
succeed. The environment names the source folder (ZEL_SOURCE) and the tool (ZELDB).
"""

import glob
import os
import pathlib
import re
import sqlite3
import subprocess
import sys
import tempfile
import unittest

SOURCE = pathlib.Path(os.environ["ZEL_SOURCE"])
ZELDB = pathlib.Path(os.environ["ZELDB"])
DOCUMENTS = ["README.md", "ARCHITECTURE.md", "CONTRIBUTING.md",
             *sorted(f"docs/{path.name}" for path in (SOURCE / "docs").glob("*.md"))]
# Commands that cannot run inside this test, and what runs them instead.
RUN_ELSEWHERE = {
    "scripts/demo": "the test Demo",
    "scripts/test": "this is a part of it",
    "scripts/setup": "scripts/test begins with it",
    "scripts/package": "the test Packages",
    "apt-get install ./build/packages": "the test Packages",
    "scripts/databases": "scripts/test starts and stops them",
    "scripts/lint": "the test Lint, and before a change is landed",
    "scripts/verify": "nobody: minutes; the tests Verify, Fuzz, Endurance are its checks",
    "scripts/coverage": "nobody: minutes",
    "scripts/mutants": "nobody: minutes",
}


def blocks(document, kind):
    text = (SOURCE / document).read_text()
    return re.findall(rf"^```{kind}\n(.*?)^```$", text, re.DOTALL | re.MULTILINE)


def runs_elsewhere(line):
    return any(line.split("#")[0].strip().startswith(command) for command in RUN_ELSEWHERE)


class Documents(unittest.TestCase):
    def sandbox(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        root = pathlib.Path(folder.name)
        driver = glob.glob("/usr/lib/*/odbc/libsqlite3odbc.so")[0]
        (root / "odbcinst.ini").write_text("")
        (root / "odbc.ini").write_text("".join(
            f"[{name}]\nDriver={driver}\nDatabase={root}/{name}.db\n"
            for name in ("orders", "archive")))
        (root / "zeldb.toml").write_text(
            blocks("README.md", "toml")[0] + '[archive]\nDSN = "archive"\nUser = "app"\n')
        (root / "zeldb.toml").chmod(0o600)
        for name in ("orders", "archive"):
            with sqlite3.connect(root / f"{name}.db") as database:
                database.execute("create table items (id integer primary key, name varchar(20), "
                                 "price decimal(10,2), sold timestamp)")
        (root / "items.csv").write_text("id,name,price,sold\n"
                                        "1,pen,1.50,2024-02-29T12:30:00.000000Z\n"
                                        "2,ink,120.00,\n")
        return root

    def environment(self, root):
        return dict(os.environ, PATH=f"{ZELDB.parent}:{os.environ['PATH']}",
                    ODBCSYSINI=str(root), ODBCINI=str(root / "odbc.ini"),
                    ORDERS_PASSWORD="secret", LD_PRELOAD="libodbcinst.so.2",
                    ASAN_OPTIONS="verify_asan_link_order=0:detect_leaks=0")

    def test_shell_blocks_run(self):
        count = 0
        for document in DOCUMENTS:
            root = self.sandbox()
            for block in blocks(document, "sh"):
                lines = [line for line in block.splitlines() if not runs_elsewhere(line)]
                count += len(block.splitlines())
                with self.subTest(document=document, block=block):
                    done = subprocess.run(["bash", "-euo", "pipefail", "-c", "\n".join(lines)],
                                          cwd=root, env=self.environment(root), text=True,
                                          capture_output=True, check=False, timeout=300,
                                          stdin=subprocess.DEVNULL)
                    self.assertEqual(done.returncode, 0, done.stdout + done.stderr)
        self.assertGreaterEqual(count, 9)

    def test_the_picture_shows_what_the_tool_does(self):
        done = subprocess.run([SOURCE / "scripts/picture", "--check", ZELDB], text=True,
                              capture_output=True, check=False, timeout=60,
                              env=dict(os.environ, ASAN_OPTIONS="detect_leaks=0"))
        self.assertEqual(done.returncode, 0, done.stderr)

    def test_scripts_and_verbs_that_are_named_exist(self):
        verbs = subprocess.run([ZELDB, "complete", "--", "zeldb", ""], text=True,
                               capture_output=True, check=True).stdout
        known = {line.split("\t")[0] for line in verbs.splitlines()}
        for document in DOCUMENTS:
            text = (SOURCE / document).read_text()
            for script in set(re.findall(r"(?<![\w/])scripts/[a-z_\-.]*[a-z]", text)):
                with self.subTest(document=document, script=script):
                    self.assertTrue(os.access(SOURCE / script, os.X_OK | os.R_OK))
            for verb in set(re.findall(r"`zeldb ([a-z]+)", text)):
                with self.subTest(document=document, verb=verb):
                    self.assertIn(verb, known)


if __name__ == "__main__":
    unittest.main(argv=sys.argv)
