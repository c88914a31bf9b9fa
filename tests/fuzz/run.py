"""Runs every fuzz target of a build from its corpus: run.py BUILD_FOLDER EXECUTIONS SEED

EXECUTIONS is the share of each target. Prints a line with their sum; an input that stops a target
is kept in BUILD_FOLDER/found and is a finding.
"""

import concurrent.futures
import os
import pathlib
import re
import subprocess
import sys

CORPUS = pathlib.Path(__file__).parent / "corpus"


def fuzz(program, executions, seed, found):
    name = program.name.removeprefix("fuzz_")
    grown = found / name
    grown.mkdir(exist_ok=True)
    done = subprocess.run(
        [program, f"-runs={executions}", f"-seed={seed}", "-print_final_stats=1", "-max_len=512",
         "-verbosity=0", "-rss_limit_mb=2048", f"-artifact_prefix={found}/{name}-", grown,
         CORPUS / name], check=False, text=True, errors="replace", stdout=subprocess.PIPE,
        stderr=subprocess.STDOUT, env=dict(os.environ, TZ="UTC"))
    run = re.search(r"number_of_executed_units: (\d+)", done.stdout)
    if done.returncode != 0 or not run:
        print(f"  {name}: {done.stdout[-3000:]}")
        return int(run[1]) if run else 0, 1
    print(f"  {name}: {run[1]} executions")
    return int(run[1]), 0


def main(build, executions, seed):
    found = build / "found"
    found.mkdir(exist_ok=True)
    programs = sorted((build / "fuzz").glob("fuzz_*"))
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        results = list(pool.map(lambda program: fuzz(program, executions, seed, found), programs))
    run, findings = (sum(column) for column in zip(*results))
    print(f"{'fuzzing':24} {run:12} tried {findings:8} findings")
    return 1 if findings or not programs else 0


if __name__ == "__main__":
    sys.exit(main(pathlib.Path(sys.argv[1]), int(sys.argv[2]), int(sys.argv[3])))
