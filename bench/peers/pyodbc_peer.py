#!/usr/bin/env python3
"""pyodbc_peer.py DSN USER PASSWORD: rows as tuples. Talks as bench_contender does."""

import sys
import time

import pyodbc


def main():
    dsn, user, password = sys.argv[1:4]
    connection = pyodbc.connect(f"DSN={dsn};UID={user};PWD={password}")
    for line in sys.stdin:
        _, rows, _, sql = line.rstrip("\n").split(" ", 3)
        start = time.perf_counter()
        cursor = connection.cursor()
        cursor.execute(sql)
        found = 0
        for _ in cursor:
            found += 1
        cursor.close()
        elapsed = time.perf_counter() - start
        if found != int(rows):
            sys.exit("pyodbc_peer: rows are missing")
        print(elapsed, flush=True)


if __name__ == "__main__":
    main()
