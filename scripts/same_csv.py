"""Compares two CSV files cell by cell: same_csv.py FILE FILE ("-" is standard input)."""

import csv
import itertools
import sys


def open_csv(name):
    return sys.stdin if name == "-" else open(name, newline="", encoding="utf-8")


def main(first, second):
    rows = cells = 0
    for pair in itertools.zip_longest(csv.reader(open_csv(first)), csv.reader(open_csv(second))):
        rows += 1
        if pair[0] != pair[1]:
            sys.exit(f"row {rows} differs: {pair[0]} and {pair[1]}")
        cells += len(pair[0])
    print(f"All {rows} rows, {cells} values, head included, came back as they went in.")


main(*sys.argv[1:])
