"""The tool in a real terminal: the bar of a load, in wide and narrow windows, and Ctrl-C.

Needs tmux. Environment as for tool_test.py.
"""

import os
import shlex
import subprocess
import time
import unittest

from tool_test import HEAD, ZELDB, ToolCase


class Terminal(ToolCase):
    def setUp(self):
        super().setUp()
        self.socket = str(self.folder / "tmux")
        self.addCleanup(subprocess.run, ["tmux", "-S", self.socket, "kill-server"], check=False,
                        capture_output=True)
        os.mkfifo(self.folder / "pipe")

    def tmux(self, *arguments):
        return subprocess.run(["tmux", "-S", self.socket, "-f", "/dev/null", *arguments], text=True,
                              check=True, capture_output=True).stdout

    def screen(self):
        return self.tmux("capture-pane", "-p", "-t", "z").rstrip("\n").split("\n")

    def wait_for(self, condition):
        until = time.monotonic() + 30
        while not condition(self.screen()):
            self.assertLess(time.monotonic(), until, self.screen())
            time.sleep(0.05)
        return self.screen()

    def start(self, columns, file):
        """A load in a window; a shell waits behind it, so that the window stays."""
        script = (f"trap : INT; {shlex.quote(ZELDB)} load s t {file} --batch 20; "
                  "echo code $?; sleep 60")
        variables = [f"{name}={value}" for name, value in self.environment().items()
                     if name in ("ODBCSYSINI", "ODBCINI", "LD_PRELOAD", "ASAN_OPTIONS")]
        self.tmux("new-session", "-d", "-s", "z", "-x", str(columns), "-y", "12", "-c",
                  str(self.folder), "env", *variables, "sh", "-c", script)

    def feed(self, pipe, first, count):
        pipe.write("".join(f"{n},,,,,\n" for n in range(first, first + count)))
        pipe.flush()

    def test_bar_resizing_and_interruption(self):
        rows = "".join(f"{n},,,,,\n" for n in range(60000))
        self.write("f.csv", HEAD + rows)
        self.start(70, "f.csv")
        bar = self.wait_for(lambda lines: " left" in lines[0])
        self.assertRegex(bar[0], r"\A +\d+ % \[#*\.*\]  \d+ rows  \d+ rows/s  \d+:\d\d left\Z")
        self.tmux("resize-window", "-t", "z", "-x", "20", "-y", "12")
        narrow = self.wait_for(lambda lines: lines[-1].endswith("%  ") or " rows" in lines[-1]
                               and len(lines[-1]) < 20)
        self.assertLess(len(narrow), 6, narrow)
        time.sleep(0.5)  # some more drawings
        self.assertEqual(len(self.screen()), len(narrow))
        self.tmux("send-keys", "-t", "z", "C-c")
        lines = self.wait_for(lambda lines: any("code " in line for line in lines))
        text = "".join(lines)
        self.assertRegex(text, r"zeldb: interrupted; ?(\d+) rows are committedcode 130")
        self.assertNotIn("%", lines[-1])
        self.assertEqual(self.sql("select count(*) % 20 from t"), [(0,)])

    def test_without_a_known_end_and_at_the_end(self):
        self.start(20, "pipe")
        with open(self.folder / "pipe", "w", encoding="utf-8") as pipe:
            pipe.write(HEAD)
            self.feed(pipe, 0, 200)
            lines = self.wait_for(lambda lines: " rows" in lines[0])
            self.assertEqual(len(lines), 1, lines)
            self.assertLess(len(lines[0]), 20)
        text = "".join(self.wait_for(lambda lines: lines[-1] == "code 0"))
        self.assertRegex(text, r"\A200 rows loaded into t in \d+\.\d s, \d+ rows/scode 0\Z")


if __name__ == "__main__":
    unittest.main()
