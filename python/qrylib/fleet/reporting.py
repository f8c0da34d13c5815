"""The standing questions about a fleet, answered as text and as one page of HTML."""

from __future__ import annotations

import html
import io
from collections import Counter
from dataclasses import dataclass
from typing import Any

import pandas

from qrylib.catalog import Table, schema
from qrylib.fleet.paths import PATTERN
from qrylib.fleet.reader import Limits
from qrylib.fleet.reading import Answer, Files, Reading, Types, reading_of

_DEPARTMENTS = ("department_db", "SELECT ID, NAME, TOTAL_M FROM DEPT_TBL")
_FINDING: Types = {"question": "object", "place": "object", "value": "int64"}
_PAGES, _FULL, _DOUBLE, _OVER = "pages", "full", "double", "over"
#: Pages of a department, unless the caller says otherwise. The device's tables hold no such number.
LIMIT = 10_000


def _keyed_tables() -> list[Table]:
    """Tables that hold records, and whose search tells those in use: not the counters of edits."""
    tables = [table for tables in schema().values() for table in tables.values()]
    return [table for table in tables if table.capacity > 0 and table.key and table.name != "EDIT_CNT_TBL"]


@dataclass(frozen=True)
class _Survey:
    """Makes findings of what a snapshot's statements answered: the departments first, then the keys of each table."""

    tables: tuple[tuple[str, int], ...]
    limit: int

    def __call__(self, answers: list[list[Any]]) -> list[tuple[Any, ...]]:
        departments, *keys = answers
        found: list[tuple[Any, ...]] = [(_PAGES, "", sum(pages for _, _, pages in departments))]
        found += [(_OVER, f"{number} {name}", pages) for number, name, pages in departments if pages > self.limit]
        for (name, capacity), rows in zip(self.tables, keys):
            if len(rows) >= capacity > 1:
                found.append((_FULL, name, len(rows)))
            counted = Counter(map(tuple, rows))
            found += [(_DOUBLE, f"{name} {', '.join(map(str, key))}", n) for key, n in counted.items() if n > 1]
        return found


def survey(files: Files, *, limit: int = LIMIT, pattern: str = PATTERN, limits: Limits = Limits()) -> Reading:
    """What is to be found in each snapshot: pages, full tables, keys that two records have, departments over their limit."""
    tables = _keyed_tables()
    keys = [(t.database, f"SELECT {', '.join(c.name for c in t.key)} FROM {t.name}") for t in tables]
    shape = _Survey(tuple((t.name, t.capacity) for t in tables), limit)
    return reading_of(files, [_DEPARTMENTS, *keys], _FINDING, shape, ("", "survey"), pattern, limits)


@dataclass(frozen=True)
class Report:
    """The answers."""

    answer: Answer
    limit: int
    top: int

    def of(self, question: str) -> pandas.DataFrame:
        """The findings of one question, the greatest first."""
        found = self.answer.frame[self.answer.frame["question"] == question]
        return found.sort_values(["value", "device", "place"], ascending=[False, True, True])

    @property
    def pages(self) -> pandas.DataFrame:
        """Each device's pages, at its latest time."""
        found = self.of(_PAGES).sort_values("time", kind="stable", na_position="first")
        latest = found.groupby("device", as_index=False).last()
        return latest.sort_values(["value", "device"], ascending=[False, True])

    def sections(self) -> list[tuple[str, list[tuple[str, ...]]]]:
        """Headings, and lines of cells below each."""
        full = self.of(_FULL).groupby("place")["device"].nunique().sort_values(ascending=False)
        double, over, bad = self.of(_DOUBLE), self.of(_OVER), self.answer.bad
        top = self.top

        def lines(frame: pandas.DataFrame, *names: str) -> list[tuple[str, ...]]:
            return [tuple(map(str, row)) for row in frame[list(names)].head(top).itertuples(index=False)]

        return [
            (f"Most pages ({len(self.pages)} devices)", lines(self.pages, "device", "value")),
            (f"Full tables ({int(full.sum())})", [(str(table), f"{number} devices") for table, number in full.items()]),
            (f"Keys that several records have ({len(double)})", lines(double, "device", "place", "value")),
            (f"Departments over {self.limit} pages ({len(over)})", lines(over, "device", "place", "value")),
            (f"Bad snapshots ({len(bad)})", lines(bad, "file", "reason")),
        ]

    def text(self) -> str:
        """For a terminal."""
        lines = [str(self.answer).rpartition(";")[0]]
        for heading, rows in self.sections():
            widths = [max(map(len, column)) for column in zip(*rows)]
            lines += ["", heading]
            lines += ["  " + "  ".join(cell.ljust(width) for cell, width in zip(row, widths)).rstrip() for row in rows]
        return "\n".join(lines).encode("utf-8", "surrogateescape").decode("utf-8", "replace") + "\n"

    def html(self) -> str:
        """One page that needs nothing beside it."""
        parts = [f"<p>{_escaped(str(self.answer).rpartition(';')[0])}</p>", *self._plots()]
        for heading, rows in self.sections():
            cells = "".join("<tr>" + "".join(f"<td>{_escaped(cell)}</td>" for cell in row) + "</tr>" for row in rows)
            parts.append(f"<h2>{_escaped(heading)}</h2><table>{cells}</table>")
        return _PAGE.replace("BODY", "\n".join(parts))

    def _plots(self) -> list[str]:
        from matplotlib.figure import Figure

        figure = Figure(figsize=(9, 3.2), layout="constrained")
        spread, most = figure.subplots(1, 2)
        spread.hist(self.pages["value"], bins=40)
        spread.set(xlabel="pages", ylabel="devices", title="Pages of a device")
        first = self.pages.head(self.top)
        most.barh(first["device"].map(_escaped), first["value"])
        most.invert_yaxis()
        most.set(xlabel="pages", title="Most pages")
        drawn = io.StringIO()
        figure.savefig(drawn, format="svg")
        return ["<svg" + drawn.getvalue().partition("<svg")[2]]


def _escaped(text: str) -> str:
    return html.escape(text.encode("utf-8", "surrogateescape").decode("utf-8", "replace"))


_PAGE = """<!DOCTYPE html>
<html lang="en"><head><meta charset="utf-8"><title>Fleet</title>
<style>body { font-family: sans-serif; max-width: 60em; margin: 2em auto }
td { padding: 0.1em 1em 0.1em 0; border-bottom: 1px solid #ddd }</style></head>
<body><h1>Fleet</h1>
BODY
</body></html>
"""


def report(files: Files, *, limit: int = LIMIT, top: int = 10, pattern: str = PATTERN, limits: Limits = Limits()) -> Report:
    """Answers the standing questions."""
    return Report(survey(files, limit=limit, pattern=pattern, limits=limits).compute(), limit, top)
