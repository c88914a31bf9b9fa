"""How cost grows with size, over the stub driver: a unit's cost, drawn over the size."""

import statistics

ROUNDS = 5


LONG_TEXTS = "bytes of text"


def best(contender, line):
    """The least of a few times: what the work costs when nothing disturbs it."""
    return min(contender.ask(line) for _ in range(ROUNDS))


def sizes(session, least, most):
    step = 10
    found = []
    while least <= most:
        found.append(least)
        least *= step
    return found[:-1] if session.quick and len(found) > 3 else found


def measure(session, allocators):
    """[(title, unit, {line: [(size, nanoseconds a unit)]})]"""
    row = "ibdstaf"
    curves = []

    def curve(title, unit, lines):
        curves.append((title, unit, lines))

    def reading(names, points, line_of, units_of, environment=None):
        lines = {}
        for name in names:
            contender = session.contender(name, environment=environment)
            contender.ask(line_of(points[0]))
            lines[name] = [(at, 1e9 * best(contender, line_of(at)) / units_of(at))
                           for at in points]
            contender.close()
        return lines

    both = ("first", "second")
    curve("rows", "value", reading(both, sizes(session, 1000, 1000000),
                                   lambda n: f"read {n} {row} fetch {n} {row}", lambda n: 7 * n))
    curve("columns", "value",
          reading(both, [1, 2, 5, 10, 20, 50, 100],
                  lambda n: f"read 5000 {'i' * n} fetch 5000 {'i' * n}", lambda n: 5000 * n))
    repeats = {n: max(1, 10**6 // n) for n in sizes(session, 10, 10**9)}
    for kind, title in (("x", LONG_TEXTS), ("X", f"{LONG_TEXTS} of untold length")):
        names = ("plain-long", *(both if kind == "x" else ("first", "second-safe")))
        for suffix, environment in allocators:
            curve(title + suffix, "byte",
                  reading(names, list(repeats),
                          lambda n, k=kind: f"read {repeats[n]} s fetch {repeats[n]} {k}{n}",
                          lambda n: n * repeats[n], environment))
    lines = []
    for batch in (1, 10, 100, 1000, 10000, 65535):
        rows = max(2000 if batch < 10 else 20000, batch)
        contender = session.contender("first-batch", environment={"BENCH_BATCH_ROWS": str(batch)})
        contender.ask(f"write {batch} insert {row}")
        time = best(contender, f"write {rows} insert {row}")
        contender.close()
        lines.append((batch, 1e9 * time / (7 * rows)))
    curve("rows of a batch", "value", {"first-batch": lines})
    curve("open statements", "statement",
          reading(("plain-open", "open"), [1, 10, 100, 1000, 10000],
                  lambda n: f"open {n} fetch 1 {row}",
                  lambda n: n))
    lines = {}
    for name in both:
        contender = session.contender(name)
        lines[name] = []
        for n in sizes(session, 1000, 1000000):
            contender.ask(f"read {n} {row} fetch {n} {row}")
            lines[name].append((n, contender.ask("memory")))
        contender.close()
    curve("rows, memory", "process (KiB)", lines)
    return curves


def long_text(curves, result):
    """Figure 6: the cost of a byte must not grow with the length by more than the floor's does. By
    itself it grows for all, where texts leave the processor's cache and the system has to give
    the memory; by how much stands in the floor's column."""
    for title, _, lines in curves:
        if not title.startswith(LONG_TEXTS):
            continue
        growths = {name: growth_of(points) for name, points in lines.items()}
        floor = growths.pop("plain-long")
        for name, grown in growths.items():
            result.add(6, f"a byte's cost from 1e6 on, {title}, {name}", grown, 1.5 * max(floor, 1),
                       "", floor=floor)


def growth_of(points):
    """How much dearer than at a million a unit is at the largest size."""
    costs = [cost for size, cost in points if size >= 10**6]
    return costs[-1] / costs[0]


def bends(points):
    """How much dearer a unit is at the largest size than at the median one."""
    costs = [cost for _, cost in points]
    return costs[-1] / statistics.median(costs)
