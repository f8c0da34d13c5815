"""Access to a device's record stores in Python: PEP 249 on libqrytext.so.1, and the workstation's controls.

>>> import qrylib
>>> with qrylib.device(fixture="examples/office.json") as device:
...     db = device.connect("department_db")
...     rows = db.execute("SELECT ID, NAME FROM DEPT_TBL WHERE TOTAL_M > ? ORDER BY ID", (14000,)).fetchall()
>>> len(rows) > 0
True

The libraries are loaded when something needs them, not before.
"""

from __future__ import annotations

from typing import TYPE_CHECKING, Any, Literal, Union, overload

from qrylib._store import QRYLIB_IMAGE, Image
from qrylib._types import (
    BINARY,
    DATETIME,
    NUMBER,
    ROWID,
    STRING,
    Binary,
    Date,
    DateFromTicks,
    Time,
    TimeFromTicks,
    Timestamp,
    TimestampFromTicks,
)
from qrylib.catalog import Column, Table, schema
from qrylib.connection import Connection, Cursor, connect
from qrylib.device import Change, Device, Diff, Snapshot, child_device, open_device
from qrylib.errors import (
    Changed,
    DatabaseError,
    DataError,
    Error,
    IntegrityError,
    InterfaceError,
    InternalError,
    NotSupportedError,
    OperationalError,
    ProgrammingError,
    TraceLine,
    Warning,
)
from qrylib.explanation import Explanation, explain, trace

if TYPE_CHECKING:
    from qrylib.child import ChildDevice

#: PEP 249's globals.
apilevel = "2.0"
#: Threads may share the module and connections, not cursors.
threadsafety = 2
paramstyle = "qmark"


@overload
def device(*, fixture: Any = None, image: Image = None, child: Literal[False] = False) -> Device: ...
@overload
def device(*, fixture: Any = None, image: Image = None, child: Literal[True]) -> "ChildDevice": ...
def device(*, fixture: Any = None, image: Image = None, child: bool = False) -> Union[Device, "ChildDevice"]:
    """A simulated device: all zeros, or with the records of a fixture, or on a device image.

    It holds the store of this process, of which there is one. With child=True it lives in a process of its own, so that
    there may be several.

    >>> with qrylib.device(fixture="examples/office.json") as one, qrylib.device(child=True) as other:
    ...     _ = other.load(one.snapshot())
    ...     print(one.diff(other))
    no differences
    """
    if child:
        return child_device(fixture=fixture, image=image)
    return open_device(fixture=fixture, image=image)


def version() -> str:
    """The library's version."""
    from qrylib import _native

    return str(_native.answer("qrytext_version")["version"])


__all__ = [
    "BINARY",
    "Binary",
    "Change",
    "Changed",
    "Column",
    "Connection",
    "Cursor",
    "DATETIME",
    "DataError",
    "DatabaseError",
    "Date",
    "DateFromTicks",
    "Device",
    "Diff",
    "Error",
    "Explanation",
    "Image",
    "IntegrityError",
    "InterfaceError",
    "InternalError",
    "NUMBER",
    "NotSupportedError",
    "OperationalError",
    "ProgrammingError",
    "QRYLIB_IMAGE",
    "ROWID",
    "STRING",
    "Snapshot",
    "Table",
    "Time",
    "TimeFromTicks",
    "Timestamp",
    "TimestampFromTicks",
    "TraceLine",
    "Warning",
    "apilevel",
    "connect",
    "device",
    "explain",
    "paramstyle",
    "schema",
    "threadsafety",
    "trace",
    "version",
]
