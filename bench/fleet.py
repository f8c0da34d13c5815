"""Measures how many snapshots a second a fleet's workers read, and writes the section of docs/benchmarks.md about it.

usage: fleet.py PAGE FOLDER [SNAPSHOTS]"""

import os
import pathlib
import re
import sys
import time

import distributed

from qrylib import fleet

HEADING = "## Fleets\n"
FLEET = 100_000
ROUNDS = 3


def measure(workers, names, out):
    """The best of some rounds, in snapshots a second: rows of one table read, the same written, the survey."""
    questions = {
        "one table read": lambda: fleet.read(names, "department_db", "DEPT_TBL", columns=["ID", "NAME", "TOTAL_M"]).compute(),
        "one condition pushed down": lambda: fleet.read(names, "department_db", "DEPT_TBL", where="TOTAL_M > 9000").compute(),
        "all columns written": lambda: fleet.write(fleet.read(names, "department_db", "DEPT_TBL"), out),
        "the standing questions": lambda: fleet.survey(names).compute(),
    }
    best = dict.fromkeys(questions, 0.0)
    with distributed.LocalCluster(
        n_workers=workers, threads_per_worker=1, processes=True, dashboard_address=None, host="127.0.0.1"
    ) as cluster, distributed.Client(cluster):
        fleet.read(names[: workers * 10], "department_db", "DEPT_TBL", batch=1).compute()  # starts the readers
        for _ in range(ROUNDS):
            for question, ask in questions.items():
                begin = time.perf_counter()
                answer = ask()
                seconds = time.perf_counter() - begin
                if answer.given != len(names) or answer.read != len(names):
                    raise SystemExit(f"{question}: {answer}")
                best[question] = max(best[question], len(names) / seconds)
    return best


def section(number, packed, rates):
    rows = "\n".join(
        f"| {question} | {rates[1][question]:.0f} | {rates[2][question]:.0f} | {FLEET / rates[1][question] / 60:.1f}"
        f" | {FLEET / rates[2][question] / 60:.1f} |"
        for question in rates[1]
    )
    return f"""{HEADING}
`scripts/bench_fleet.sh` writes this section: {number} simulated snapshots on local workers of one thread each, the best of
{ROUNDS} rounds, in snapshots a second, and what {FLEET:,} devices cost by that, in minutes. Workers, their readers, the
scheduler and the asking process share the machine's {os.cpu_count()} processors, on which {os.getloadavg()[1]:.0f} processes ran at a time.

| question | 1 worker | 2 workers | {FLEET:,} devices, 1 worker | 2 workers |
|---|---:|---:|---:|---:|
{rows}

A snapshot of these has {packed / number:.0f} bytes, packed. Workers share nothing but the machine; a second one adds what
processor is left.
"""


def main():
    page, folder = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
    number = int(sys.argv[3]) if len(sys.argv) > 3 else 2000
    names = fleet.simulate(number, folder / "fleet", night="2026-11-21")
    rates = {workers: measure(workers, names, folder / f"out-{workers}") for workers in (1, 2)}
    packed = sum(pathlib.Path(name).stat().st_size for name in names)
    before = re.split(rf"^{HEADING}", page.read_text(), flags=re.MULTILINE)[0].rstrip("\n")
    page.write_text(f"{before}\n\n{section(number, packed, rates)}")


if __name__ == "__main__":
    main()
