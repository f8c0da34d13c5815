"""python3 -m qrylib.fleet: simulate a fleet, answer the standing questions, write a table's parts."""

from __future__ import annotations

import argparse
import sys
from contextlib import contextmanager
from pathlib import Path
from typing import Iterator, Optional

from qrylib import fleet
from qrylib.errors import Error
from qrylib.fleet.reporting import LIMIT


def _arguments(given: Optional[list[str]]) -> argparse.Namespace:
    parser = argparse.ArgumentParser(prog="python3 -m qrylib.fleet", description=__doc__)
    commands = parser.add_subparsers(dest="command", required=True)
    simulate = commands.add_parser("simulate", help="write the snapshots of a night")
    simulate.add_argument("number", type=int, help="how many devices")
    simulate.add_argument("out", help="the folder; the night becomes one below it")
    simulate.add_argument("--seed", type=int, default=1)
    simulate.add_argument("--night", default="", help="a date, today unless given")
    simulate.add_argument("--bad", type=float, default=0.0, help="the part of the snapshots that is broken, 0 to 1")

    report = commands.add_parser("report", help="answer the standing questions")
    report.add_argument("folder", help="the snapshots' folder")
    report.add_argument("--html", help="writes a page with plots too")
    report.add_argument("--limit", type=int, default=LIMIT, help="pages of a department")
    report.add_argument("--top", type=int, default=10, help="lines of each answer")

    write = commands.add_parser("write", help="write a table of the snapshots that the manifest lacks")
    write.add_argument("folder", help="the snapshots' folder")
    write.add_argument("database")
    write.add_argument("table")
    write.add_argument("out", help="the parts' folder")
    write.add_argument("--format", choices=("csv", "jsonl"), default="jsonl")
    write.add_argument("--columns", type=lambda text: text.split(","), help="NAME,NAME; all of them unless given")
    write.add_argument("--where", help="a condition of the dialect")
    for command in (report, write):
        where = command.add_mutually_exclusive_group()
        where.add_argument("--workers", type=int, help="local processes; one for each processor unless given")
        where.add_argument("--scheduler", help="the address of a scheduler of Dask's")
    return parser.parse_args(given)


@contextmanager
def _client(options: argparse.Namespace) -> Iterator[None]:
    """The scheduler of that address, or workers of this machine: processes of one thread each."""
    from distributed import Client, LocalCluster

    if options.scheduler:
        with Client(options.scheduler):
            yield
        return
    with LocalCluster(
        n_workers=options.workers, threads_per_worker=1, processes=True, dashboard_address=None, host="127.0.0.1"
    ) as cluster, Client(cluster):
        yield


def _simulate(options: argparse.Namespace) -> int:
    names = fleet.simulate(options.number, options.out, seed=options.seed, night=options.night, bad=options.bad)
    print(f"{len(names)} snapshots in {Path(names[0]).parent if names else options.out}")
    return 0


def _report(options: argparse.Namespace) -> int:
    with _client(options):
        told = fleet.report(options.folder, limit=options.limit, top=options.top)
    print(told.text(), end="")
    if options.html:
        Path(options.html).write_text(told.html(), encoding="utf-8")
    return 0


def _write(options: argparse.Namespace) -> int:
    names = fleet.missing(options.folder, options.out)
    if not names:
        print("nothing is missing")
        return 0
    reading = fleet.read(names, options.database, options.table, columns=options.columns, where=options.where)
    with _client(options):
        known = fleet.write(reading, options.out, format=options.format)
    print(f"{reading.given} snapshots; together {known.given} given = {known.read} read + {len(known.bad)} bad, {known.rows} rows")
    return 0


def main(given: Optional[list[str]] = None) -> int:
    """Runs a command; answers its exit status."""
    options = _arguments(given)
    try:
        return {"simulate": _simulate, "report": _report, "write": _write}[options.command](options)
    except (Error, OSError) as error:
        print(f"error: {error}", file=sys.stderr)
        return 1


if __name__ == "__main__":
    sys.exit(main())
