"""The tool on real databases: what the live tests have in common."""

import csv
import os
import pathlib
import subprocess
import sys


def expect(what, want, got):
    """Ends the test when something is not as it is wanted."""
    if want != got:
        sys.exit(f"{what}: want {want!r:.1000}, got {got!r:.1000}")


class LiveTool:
    """The tool in a folder, with a service for each data source; the first is "live", too."""

    def __init__(self, folder, *sources):
        self.folder = pathlib.Path(folder)
        self.environment = dict(os.environ)
        self.write("zeldb.toml", "".join(
            f'[{service}]\nDSN = "{source}"\nUser = "app"\npassword_env = "ZEL_TEST_PASSWORD"\n'
            for service, source in [("live", sources[0]), *zip(sources, sources)]))

    def write(self, name, text):
        (self.folder / name).write_bytes(text.encode())

    def command(self, *arguments):
        return [os.environ["ZELDB"], *arguments]

    def __call__(self, *arguments, code=0):
        """What became of a run that must end with this exit code."""
        done = subprocess.run(self.command(*arguments), cwd=self.folder, text=True,
                              capture_output=True, check=False, env=self.environment)
        if done.returncode != code:
            sys.exit(f"{arguments}: exit code {done.returncode}, {done.stderr}")
        return done

    def create(self, table, columns, service="live"):
        self("query", service, f"drop table if exists {table}")
        self("query", service, f"create table {table} ({columns})")

    def rejects(self):
        """The rows of the file of bad rows."""
        with open(self.folder / "r.csv", newline="", encoding="utf-8") as file:
            return list(csv.DictReader(file))
