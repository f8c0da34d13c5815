"""The type objects and constructors of PEP 249. The device has numbers and texts, and nothing else."""

from __future__ import annotations

from typing import Any, NoReturn

from qrylib.errors import NotSupportedError


class TypeObject:
    """What a column's type code is compared with."""

    def __init__(self, name: str) -> None:
        self.name = name

    def __repr__(self) -> str:
        return f"qrylib.{self.name}"

    def __reduce__(self) -> str:
        return self.name


STRING = TypeObject("STRING")
NUMBER = TypeObject("NUMBER")
BINARY = TypeObject("BINARY")
DATETIME = TypeObject("DATETIME")
ROWID = TypeObject("ROWID")


def Binary(string: Any) -> bytes:
    """A text's exact bytes, for a text column.

    >>> qrylib.Binary(b"Sato")
    b'Sato'
    """
    return bytes(string)


def _no_dates(*_: Any) -> NoReturn:
    raise NotSupportedError("the device has no date types; its times are numbers of seconds")


def Date(year: int, month: int, day: int) -> NoReturn:
    """There are no date types: raises NotSupportedError."""
    _no_dates(year, month, day)


def Time(hour: int, minute: int, second: int) -> NoReturn:
    """There are no date types: raises NotSupportedError."""
    _no_dates(hour, minute, second)


def Timestamp(year: int, month: int, day: int, hour: int, minute: int, second: int) -> NoReturn:
    """There are no date types: raises NotSupportedError."""
    _no_dates(year, month, day, hour, minute, second)


def DateFromTicks(ticks: float) -> NoReturn:
    """There are no date types: raises NotSupportedError."""
    _no_dates(ticks)


def TimeFromTicks(ticks: float) -> NoReturn:
    """There are no date types: raises NotSupportedError."""
    _no_dates(ticks)


def TimestampFromTicks(ticks: float) -> NoReturn:
    """There are no date types: raises NotSupportedError."""
    _no_dates(ticks)
