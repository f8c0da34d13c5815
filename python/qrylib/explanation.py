"""Statements and trace lines explained."""

from __future__ import annotations

import re
from dataclasses import dataclass, field
from typing import Any, Optional

from qrylib import _native
from qrylib.catalog import schema
from qrylib.errors import ProgrammingError, TraceLine


@dataclass(frozen=True)
class Explanation:
    """How a statement is understood, and what its search tests."""

    statement: str
    database: str
    ok: bool
    kind: str
    tables: tuple[str, ...] = ()
    columns: tuple[dict[str, Any], ...] = ()
    conditions: tuple[dict[str, Any], ...] = ()
    order: Optional[dict[str, str]] = None
    keys: tuple[dict[str, str], ...] = ()
    links: tuple[str, ...] = ()
    notes: tuple[dict[str, Any], ...] = ()
    refusal: Optional[dict[str, Any]] = field(default=None)

    def _lines(self) -> list[str]:
        lines = [f"{self.kind} {', '.join(self.tables)}".rstrip()]
        for column in self.columns:
            value = f" = {column['value']!r}" if "value" in column else ""
            lines.append(f"  column {column['name']}{value}")
        for number, one in enumerate(self.conditions):
            join = f"{one['join'].lower()} " if number else ""
            lines.append(f"  {join}where {one['column']} {one['operation']} {one['value']!r}")
        lines += [f"  linked by {link}" for link in self.links]
        lines += [f"  key {key['key']}" for key in self.keys]
        if self.order:
            lines.append(f"  sorted by {self.order['column']} {self.order['direction']}".rstrip())
        return lines

    def __str__(self) -> str:
        lines = self._lines() if self.ok else []
        for word, place in [("refused", self.refusal)] + [("note", note) for note in self.notes]:
            if place:
                hint = f"; {place['hint']}" if place["hint"] else ""
                lines.append(f"{word}: {place['text']}{hint}")
        return "\n".join(lines)


def _database_of(statement: str) -> str:
    """The first database that has the statement's first table."""
    named = re.search(r"\b(?:FROM|INTO|UPDATE|TABLE)\s+(\w+)", statement)
    for database, tables in schema().items():
        if named and named.group(1) in tables:
            return database
    return next(iter(schema()))


def explain(statement: str, database: Optional[str] = None) -> Explanation:
    """Explains a statement without running it; for the first database that has its table, unless one is named.

    >>> print(qrylib.explain("SELECT NAME FROM DEPT_TBL WHERE TOTAL_M > 9000 ORDER BY NAME"))
    select DEPT_TBL
      column NAME
      where TOTAL_M > '9000'
      key AND ID != 0
      key AND TOTAL_M > 9000
      sorted by NAME ASC
    >>> qrylib.explain("SELECT PSN_ID FROM PSN_TBL LIMIT 3").ok
    False
    """
    text = _native.to_bytes(statement, "the statement")
    chosen = _database_of(statement) if database is None else database
    with _native.lock:
        session = _native.call("qrytext_open", _native.to_bytes(chosen, "the database's name"), 0)
        if not session:
            raise ProgrammingError(f"there is no database {chosen!r}; there are {', '.join(schema())}")
        try:
            told = _native.answer("qrytext_explain", session, text)
        finally:
            _native.call("qrytext_close", session)
    for name in ("tables", "columns", "conditions", "keys", "links", "notes"):
        told[name] = tuple(told[name])
    return Explanation(statement=statement, database=chosen, **told)


def trace(line: str) -> TraceLine:
    """What a line of the library's trace means.

    >>> qrylib.trace("analyze_sql():[Return]:(447) (0x0000DB00)").cause
    'ORDER BY in a statement that returns no rows; code 0 is traced, 0xDB00 is returned'
    """
    return TraceLine(**_native.answer("qrytext_trace", _native.to_bytes(line, "the line")))
