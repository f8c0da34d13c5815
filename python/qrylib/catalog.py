"""The built-in schema: databases, tables and columns."""

from __future__ import annotations

from dataclasses import dataclass
from functools import lru_cache
from typing import Any

from qrylib import _native
from qrylib.errors import ProgrammingError

_NUMPY = {"uchar": "uint8", "ushort": "uint16", "uint": "uint32", "ulong": "uint32", "int": "int32"}


@dataclass(frozen=True)
class Column:
    """A column of a table."""

    name: str
    type: str
    size: int
    key: bool

    @property
    def is_text(self) -> bool:
        """Whether it holds texts; all others hold whole numbers."""
        return self.type == "str"

    @property
    def dtype(self) -> str:
        """The type of numpy that holds its values."""
        return "object" if self.is_text else _NUMPY.get(self.type, "int64")


@dataclass(frozen=True)
class Table:
    """A table and the most records that it holds."""

    database: str
    name: str
    capacity: int
    columns: tuple[Column, ...]

    def column(self, name: str) -> Column:
        """The column of a name."""
        for column in self.columns:
            if column.name == name:
                return column
        raise ProgrammingError(f"{self.name} has no column {name}")

    @property
    def key(self) -> tuple[Column, ...]:
        """The columns of the primary key."""
        return tuple(column for column in self.columns if column.key)


def _read_table(database: str, table: dict[str, Any]) -> Table:
    columns = tuple(Column(c["name"], c["type"], c["size"], c["key"]) for c in table["columns"])
    return Table(database, table["name"], table["capacity"], columns)


@lru_cache(maxsize=None)
def schema() -> dict[str, dict[str, Table]]:
    """Every database's tables by their names.

    >>> list(qrylib.schema())
    ['adbk_db', 'department_db', 'usrac_db', 'log_db']
    >>> table = qrylib.schema()["adbk_db"]["PSN_TBL"]
    >>> table.capacity, [column.name for column in table.key]
    (10, ['PSN_ID'])
    """
    found = _native.answer("qrytext_schema")["databases"]
    return {one["name"]: {t["name"]: _read_table(one["name"], t) for t in one["tables"]} for one in found}


def table_of(database: str, name: str) -> Table:
    """A table of the schema."""
    tables = schema().get(database)
    if tables is None:
        raise ProgrammingError(f"there is no database {database!r}; there are {', '.join(schema())}")
    if name not in tables:
        raise ProgrammingError(f"{database} has no table {name!r}; it has {', '.join(tables)}")
    return tables[name]
