"""The exceptions of PEP 249, with what the library said: code, hint, place and trace."""

from __future__ import annotations

from dataclasses import dataclass
from typing import Any, Optional


@dataclass(frozen=True)
class TraceLine:
    """A line of the library's trace and what it means."""

    function: str
    line: int
    code: Optional[int]
    cause: str = ""
    known: bool = True

    def __str__(self) -> str:
        code = "" if self.code is None else f" (0x{self.code:08X})"
        cause = f"  -- {self.cause}" if self.cause else ""
        return f"{self.function}():[Return]:({self.line}){code}{cause}"


@dataclass(frozen=True)
class Changed:
    """How many records a statement added, replaced, changed and deleted."""

    added: int = 0
    replaced: int = 0
    changed: int = 0
    deleted: int = 0

    def total(self) -> int:
        """The records that were written, whatever was done to them."""
        return self.added + self.replaced + self.changed + self.deleted


class Warning(Exception):  # noqa: A001  (the name is PEP 249's)
    """What is worth knowing of a statement that ran all the same; stands in Cursor.messages."""


class Error(Exception):
    """Anything that went wrong.

    >>> from qrylib import ProgrammingError
    >>> try:
    ...     qrylib.connect("adbk_db").execute("SELECT PSN_NAM FROM PSN_TBL")
    ... except ProgrammingError as error:
    ...     print(error.name, error.place, error.statement[slice(*error.place)])
    QRY_LIB_INVALID_ARGUMENT (7, 14) PSN_NAM
    """

    def __init__(
        self,
        message: str = "",
        *,
        code: int = 0,
        name: str = "",
        hint: str = "",
        place: Optional[tuple[int, int]] = None,
        statement: str = "",
        traces: tuple[TraceLine, ...] = (),
        changed: Changed = Changed(),
    ) -> None:
        super().__init__(message)
        self.message = message
        #: The library's return code; 0 where the library had no part in it.
        self.code = code
        #: The code's name, "QRY_LIB_NOT_ACCEPTED" for example.
        self.name = name
        #: What to write instead, where that is known.
        self.hint = hint
        #: Where in the statement: its first character, and the one behind its last.
        self.place = place
        #: The statement, as it was given.
        self.statement = statement
        #: The library's trace of the statement.
        self.traces = traces
        #: What the statement had changed before it failed. There is no undo.
        self.changed = changed

    def __str__(self) -> str:
        code = f"{self.name} (0x{self.code:04X}): " if self.name else ""
        hint = f"; {self.hint}" if self.hint else ""
        return f"{code}{self.message}{hint}"

    def show(self) -> str:
        """Several lines: the complaint, the statement with its place marked, and the trace."""
        lines = [str(self)]
        if self.statement:
            lines.append("  " + self.statement)
            if self.place is not None:
                begin, end = self.place
                lines.append("  " + " " * begin + "^" * max(1, end - begin))
        return "\n".join(lines + [f"  {trace}" for trace in self.traces])

    def __reduce__(self) -> Any:
        return _rebuild, (type(self), self.args, self.__dict__.copy())


def _rebuild(kind: type[Error], arguments: tuple[Any, ...], members: dict[str, Any]) -> Error:
    error = kind(*arguments)
    error.__dict__.update(members)
    return error


class InterfaceError(Error):
    """This package was used wrongly, or the libraries are not there."""


class DatabaseError(Error):
    """The database complained."""


class DataError(DatabaseError):
    """A value that does not fit."""


class OperationalError(DatabaseError):
    """The device: no memory, no free record, a platform call that failed."""


class IntegrityError(DatabaseError):
    """A key that is missing, or that marks a free record."""


class InternalError(DatabaseError):
    """The library could not make its own answer."""


class ProgrammingError(DatabaseError):
    """A statement that is refused, names that do not exist, a store that is in use."""


class NotSupportedError(DatabaseError):
    """There is no such thing here."""


_BY_CODE: dict[int, type[DatabaseError]] = {
    0x0001: OperationalError,  # no memory
    0x0102: ProgrammingError,  # bad parameter
    0x2001: InternalError,  # the rowset was not created
    0x2002: InternalError,  # the rowset was not filled
    0x5241: ProgrammingError,  # an operator that the column does not have
    0xDB00: ProgrammingError,  # not accepted
    0xDB02: ProgrammingError,  # no such item
    0xDB05: ProgrammingError,  # unknown names, and what _BY_POINT tells apart
}

# Trace points that tell more than their code.
_BY_POINT: dict[tuple[str, int], type[DatabaseError]] = {
    ("create_primary_filter_key", 982): IntegrityError,  # a key column is missing
    ("create_primary_filter_key", 1001): IntegrityError,  # the default record's key
}
_POINTS_OF_WRITES = (1134, 1142, 1167, 1175, 1183)


def _is_long_value(trace: TraceLine) -> bool:
    """A value that is longer than its column is traced by a source line."""
    return trace.function == "set_tb_table" and trace.line not in _POINTS_OF_WRITES


def kind_of(code: int, traces: tuple[TraceLine, ...]) -> type[DatabaseError]:
    """The exception for a code that the library returned."""
    for trace in traces if code == 0xDB05 else ():
        kind = _BY_POINT.get((trace.function, trace.line))
        if kind is not None:
            return kind
        if _is_long_value(trace):
            return DataError
    return _BY_CODE.get(code, OperationalError)
