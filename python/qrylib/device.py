"""The workstation's controls as objects: devices, their snapshots, and what differs between two of them."""

from __future__ import annotations

import json
import os
from dataclasses import dataclass, field
from pathlib import Path
from typing import TYPE_CHECKING, Any, Optional, Union

from qrylib import _native, _store
from qrylib.connection import Connection, connect
from qrylib.errors import InterfaceError, OperationalError, ProgrammingError, TraceLine

if TYPE_CHECKING:
    from qrylib.child import ChildDevice


@dataclass(frozen=True)
class Change:
    """One difference: a column of a record, or a whole record where `column` is None and one side is None."""

    database: str
    table: str
    key: Union[str, dict[str, Any]]
    column: Optional[str]
    a: Any
    b: Any

    def cells(self) -> tuple[str, str, str, str]:
        """Table, record, column and what became of it, as text."""
        name = f"{self.database}.{self.table}" if self.table else "settings"
        key = self.key if isinstance(self.key, str) else ", ".join(f"{k}={v!r}" for k, v in self.key.items())
        if self.column is None:
            return name, key, "(record)", "gone" if self.b is None else "new"
        return name, key, self.column, f"{self.a!r} -> {self.b!r}"


@dataclass(frozen=True)
class Diff:
    """What differs between two snapshots. True where something does; its text is a table."""

    changes: tuple[Change, ...] = ()

    def __bool__(self) -> bool:
        return bool(self.changes)

    def __len__(self) -> int:
        return len(self.changes)

    def __str__(self) -> str:
        if not self.changes:
            return "no differences"
        rows = [("table", "record", "column", "change")] + [change.cells() for change in self.changes]
        widths = [max(len(row[i]) for row in rows) for i in range(3)]
        lines = ["  ".join([*(cell.ljust(width) for cell, width in zip(row, widths)), row[3]]) for row in rows]
        lines.insert(1, "  ".join("-" * width for width in [*widths, len("change")]))
        return "\n".join(lines)


@dataclass(frozen=True, eq=False)
class Snapshot:
    """A device's records, default records and settings. Equal where no record differs."""

    text: str = field(repr=False)

    @classmethod
    def read(cls, path: _store.PathOrText) -> "Snapshot":
        """A fixture's file as a snapshot."""
        return cls(_native.to_str(Path(path).read_bytes()))

    def save(self, path: _store.PathOrText) -> None:
        """Writes a fixture's file: a temporary one, renamed."""
        whole = Path(path)
        partial = whole.with_name(f".{whole.name}.{os.getpid()}")
        partial.write_bytes(_native.to_bytes(self.text, "the snapshot"))
        partial.replace(whole)

    def records(self, database: str, table: str) -> list[dict[str, Any]]:
        """A table's records as they are written in the fixture: what is left out has the default record's value."""
        found = _native.read_json(self.text)["databases"].get(database, {}).get(table, {})
        return list(found.get("records", ()))

    def diff(self, other: "Diffable") -> Diff:
        """What is otherwise in another snapshot, or on a device."""
        texts = [_native.to_bytes(one.text, "the snapshot") for one in (self, _snapshot_of(other))]
        told = _native.answer("qrytext_diff", *texts)
        if "text" in told:
            raise ProgrammingError(told["text"])
        return Diff(
            tuple(
                Change(table["database"], table["table"], **change) for table in told["tables"] for change in table["changes"]
            )
        )

    def __eq__(self, other: object) -> bool:
        if not isinstance(other, Snapshot):
            return NotImplemented
        return self.text == other.text or not self.diff(other)

    __hash__ = None  # type: ignore[assignment]


Diffable = Union["Device", "ChildDevice", Snapshot]


def _snapshot_of(what: Diffable) -> Snapshot:
    return what if isinstance(what, Snapshot) else what.snapshot()


class Device:
    """The simulated device of this process, made by device()."""

    def __init__(self, hold: _store.Hold) -> None:
        self._hold = hold
        self._is_closed = False

    def close(self) -> None:
        """Closes the connections to it, and gives the store back: its records are gone, unless it has an image."""
        if not self._is_closed:
            self._is_closed = True
            _store.close_users()
            self._hold.release()

    def _check_open(self) -> None:
        if self._is_closed:
            raise InterfaceError("the device is closed")

    def connect(self, database: str, *, readonly: bool = False, strict: bool = True) -> Connection:
        """A connection to one of its databases."""
        self._check_open()
        return connect(database, readonly=readonly, strict=strict)

    def load(self, fixture: Any) -> None:
        """Replaces the records by those of a fixture: a file, a snapshot, or an object in a fixture's form."""
        self._check_open()
        _store.load(fixture)

    def reset(self) -> None:
        """Puts every record, default record and setting back to zeros."""
        self._check_open()
        _native.control("qryhost_reset")

    def fail(self, call: str, *, skip: int = 0, times: int = 1, code: int = 1) -> None:
        """Makes platform calls of one kind fail in statements from now on, after `skip` that are let through.

        >>> with qrylib.device() as device, device.connect("adbk_db") as db:
        ...     device.fail("alloc", skip=2)
        ...     try:
        ...         db.execute("SELECT PSN_ID FROM PSN_TBL")
        ...     except qrylib.Error as error:
        ...         print(error.name)
        QRY_LIB_NOT_ACCEPTED
        """
        self._check_open()
        _store.order(call, skip, times, code)

    def clear_failures(self) -> None:
        """Ends every failure that fail() ordered, and sets the counts to 0."""
        self._check_open()
        with _native.lock:
            _store.orders.clear()
            _store.counts.clear()

    def counts(self) -> dict[str, int]:
        """The platform calls that statements have made, by their kind, since the device was opened or cleared."""
        self._check_open()
        return dict(_store.counts)

    def blocks(self) -> int:
        """The blocks of the memory partition that are in use."""
        self._check_open()
        return int(_native.call("qryhost_pool_blocks"))

    def traces(self) -> list[TraceLine]:
        """The library's trace since this was last asked, the last 10,000 lines of it."""
        self._check_open()
        with _native.lock:
            lines = list(_store.traces)
            _store.traces.clear()
            return lines

    def snapshot(self) -> Snapshot:
        """Its records, default records and settings at this moment."""
        self._check_open()
        text = _native.to_str(_native.call("qrytext_save", 0))
        if text.startswith('{"ok":false'):
            raise OperationalError(json.loads(text)["text"])
        return Snapshot(text)

    def diff(self, other: Diffable) -> Diff:
        """What is otherwise in another device or snapshot.

        >>> with qrylib.device() as device:
        ...     before = device.snapshot()
        ...     _ = device.connect("adbk_db").execute("INSERT INTO PSN_TBL (PSN_ID) VALUES (7)")
        ...     print(before.diff(device.snapshot()))
        table            record    column    change
        ---------------  --------  --------  ------
        adbk_db.PSN_TBL  PSN_ID=7  (record)  new
        """
        return self.snapshot().diff(other)

    def __enter__(self) -> "Device":
        self._check_open()
        return self

    def __exit__(self, *_: object) -> None:
        self.close()


def open_device(*, fixture: Any = None, image: _store.Image = None) -> Device:
    """The device of this process; refused where its store is in use."""
    return Device(_store.take("device()", image, fixture, alone=True))


def child_device(*, fixture: Any = None, image: _store.Image = None) -> "ChildDevice":
    """A device in a process of its own."""
    from qrylib.child import ChildDevice

    return ChildDevice(fixture=fixture, image=image)
