"""The table of the figures: printed, and written with its pictures."""

import pathlib
import platform
import re
import subprocess

import growth

HEAD = """# Performance

What the plug-in costs, as ratios to the same ODBC calls made by a plain C program (the floor), in
one run of `scripts/bench`. Lower is better. Times on shared machines are noisy: the spread stands
beside each median, and instruction counts (`bench/instructions.txt`) are what is held from change
to change.

"""

HOW = """
## How it is measured

- The row: int32, int64, double, varchar(20), timestamp(6), decimal(18,4), bool.
- Figures 1, 2 and 6 run over a driver that answers constants (`bench/stub_driver`), loaded by the
  real driver manager: what remains is the layer's own cost. The peers' numbers beside them are
  published ones of the same row.
- Figures 3 to 5 run over SQLite, PostgreSQL and MariaDB on loopback, as `scripts/databases` sets
  them up: PostgreSQL with `BoolsAsChar=0` and server-side prepare, without fsync; MariaDB with
  `innodb-flush-log-at-trx-commit=0`; driver manager threading level as installed.
- Contenders are processes over connections of their own on one processor, servers run on another.
  They take turns in many short rounds, and make way for new processes a few times; a figure is the
  median of the ratios within a round, the quartiles in brackets.
- The allocator is the server's (tcmalloc), for all contenders alike, but where the C library's is
  named.
- The growth of a byte's cost (figure 6) is judged beside the floor's own, which stands in the
  floor's column: from a million bytes on, what grows is what the system asks for memory.
- Instructions are counted by callgrind as the difference of two row counts, so that what is paid
  once does not count: `scripts/bench --instructions`.
- `zeldb bench SERVICE` measures a database of one's own in the same way, in a scratch table that it
  creates and drops.
- Figures 7 to 11 compare functions of the value library with the usual way to do the same, medians
  of 401 rounds.
"""


def rounded(number):
    return f"{number:.{1 if number >= 10 else 3}f}"


class Report:
    def __init__(self, root):
        self.root = root
        self.rows = []

    def add(self, figure, what, ours, target, peer, floor=None):
        median, lower, upper = ours if isinstance(ours, tuple) else (ours, None, None)
        self.rows.append((figure, what, median, lower, upper, target, peer, floor))

    def lines(self):
        for figure, what, median, lower, upper, target, peer, floor in sorted(
                self.rows, key=lambda row: row[0]):
            spread = "" if lower is None else f" ({lower:.3f}-{upper:.3f})"
            yield (str(figure), what, rounded(median) + spread, peer,
                   "1" if floor is None else rounded(floor), rounded(target),
                   "met" if median <= target else "not met")

    def print(self):
        for line in (("", "figure", "ours", "peer", "floor", "target", ""), *self.lines()):
            print(f"{line[0]:3} {line[1]:66} {line[2]:22} {line[4]:>6} {line[5]:>7} {line[6]:8}"
                  f" {line[3]}")

    def write(self, curves):
        folder = self.root / "docs/performance"
        folder.mkdir(exist_ok=True)
        text = HEAD + "| # | figure | ours | peer | floor | target | |\n|--|--|--|--|--|--|--|\n"
        for line in self.lines():
            text += "| " + " | ".join(line) + " |\n"
        text += HOW + "\n## Growth\n\n"
        text += "The cost of a unit over the size; a fault would bend upward.\n\n"
        for title, unit, lines in curves:
            name = re.sub("[ ,']+", "-", title)
            draw(folder / f"{name}.svg", title, unit, lines)
            bend = ", ".join(f"{line} {growth.bends(points):.2f}" for line, points in lines.items())
            text += f"![{title}](performance/{name}.svg)\n\n"
            text += f"Largest size against the median: {bend}.\n\n"
        draw_figures(folder / "figures.svg", list(self.lines()), self.rows)
        notes = self.root / "docs/performance/notes.md"
        if notes.exists():
            text += notes.read_text()
        compiler = subprocess.run(["g++", "-dumpfullversion"], capture_output=True, text=True)
        text += f"\nMeasured on {platform.machine()}, g++ {compiler.stdout.strip()}.\n"
        picture = "![ours against the target](performance/figures.svg)"
        text = text.replace("## How it", f"{picture}\n\n## How it", 1)
        (self.root / "docs/performance.md").write_text(text)


def gnuplot(script):
    subprocess.run(["gnuplot"], input=script, text=True, check=True)


def draw(path, title, unit, lines):
    what = "size of a" if "KiB" in unit else "nanoseconds a"
    script = (f"set terminal svg size 640,360\nset output '{path}'\nset logscale xy\n"
              f"set xlabel \"{title}\"\nset ylabel '{what} {unit}'\nset grid\nset key bottom left\n"
              "set yrange [*:*]\n")
    for at, points in enumerate(lines.values()):
        rows = "\n".join(f"{size} {cost}" for size, cost in points)
        script += f"$data{at} << EOD\n{rows}\nEOD\n"
    plots = ", ".join(f"$data{at} with linespoints title '{name}'"
                      for at, name in enumerate(lines))
    gnuplot(script + f"plot {plots}\n")


def draw_figures(path, lines, rows):
    """Each figure's value as a part of its target: 1 is met exactly."""
    rows = sorted(rows, key=lambda row: row[0])
    data = "\n".join(f'"{line[0]} {line[1]}" {row[2] / row[5]:.4f}'
                     for line, row in zip(lines, rows))
    height = 80 + 18 * len(rows)
    gnuplot(f"set terminal svg size 900,{height}\nset output '{path}'\n"
            f"set yrange [{len(rows)}:-1]\n"
            "set xlabel 'ours as a part of the target'\nset lmargin 62\nunset key\nset grid x\n"
            "set arrow from 1,graph 0 to 1,graph 1 nohead lw 2\n"
            f"$data << EOD\n{data}\nEOD\n"
            "plot $data using ($2/2):0:($2/2):(0.35):yticlabels(1) with boxxyerror fs solid 0.6\n")
