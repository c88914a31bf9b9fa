"""Runs every fuzz target of a build from its corpus: run.py SECONDS SEED BUILD_FOLDER

SECONDS are shared among the targets, which run one after the other. What is found new is kept
beside the build folder, and the next run's corpus, too, of whichever build. Prints a line with the
sum of executions; an input that stops a target is kept in BUILD_FOLDER/found and is a finding.
"""

import os
import pathlib
import re
import subprocess
import sys

CORPUS = pathlib.Path(__file__).parent / "corpus"
# Those that read files, slowly, have half of the others' time.
SHARES = {"csv": 1, "ledger": 1, "services": 1}
SHARE = 2
MAX_BYTES = 128


def fuzz(program, seconds, seed, build):
    """Executions and findings of one target."""
    name = program.name.removeprefix("fuzz_")
    found = build / "found"
    found.mkdir(exist_ok=True)
    grown = build.parent / "fuzz-corpus" / name
    grown.mkdir(parents=True, exist_ok=True)
    done = subprocess.run(
        [program, f"-max_total_time={seconds}", f"-seed={seed}", "-print_final_stats=1",
         f"-max_len={MAX_BYTES}", "-verbosity=0", "-rss_limit_mb=2048", "-timeout=30",
         f"-artifact_prefix={found}/{name}-", grown, CORPUS / name],
        check=False, text=True, errors="replace", stdout=subprocess.PIPE,
        stderr=subprocess.STDOUT, env=dict(os.environ, TZ="UTC"))
    run = re.search(r"number_of_executed_units: (\d+)", done.stdout)
    executions = int(run[1]) if run else 0
    if done.returncode != 0 or not run:
        print(f"  {name}: {done.stdout[-3000:]}")
        return executions, 1
    print(f"  {name}: {executions} executions in {seconds} s", flush=True)
    return executions, 0


def main(seconds, seed, build):
    programs = sorted((build / "fuzz").glob("fuzz_*"))
    shares = [SHARES.get(program.name.removeprefix("fuzz_"), SHARE) for program in programs]
    results = [fuzz(program, max(1, seconds * share // sum(shares)), seed, build)
               for program, share in zip(programs, shares)]
    run, findings = (sum(column) for column in zip(*results)) if results else (0, 1)
    print(f"{'fuzzing':24} {run:12} tried {findings:8} findings")
    return 1 if findings else 0


if __name__ == "__main__":
    sys.exit(main(int(sys.argv[1]), int(sys.argv[2]), pathlib.Path(sys.argv[3]).resolve()))
