"""Assertions about devices, for any test runner; the plugin of pytest has fixtures besides."""

from __future__ import annotations

from typing import Any, Iterable, Mapping, Optional

from qrylib.device import Change, Diff, Diffable


def assert_same(a: Diffable, b: Diffable, *, ignore: Iterable[str] = ()) -> None:
    """Fails with a table of what differs. `ignore` names tables, or columns as TABLE.COLUMN.

    >>> with qrylib.device() as device:
    ...     before = device.snapshot()
    ...     _ = device.connect("adbk_db").execute("UPDATE PSN_TBL SET PSN_NAME = 'x'")
    ...     assert_same(before, device, ignore=["PSN_TBL.PSN_NAME"])
    """
    ignored = frozenset(ignore)
    changes = a.diff(b).changes
    left = Diff(tuple(one for one in changes if not {one.table, f"{one.table}.{one.column}"} & ignored))
    if left:
        raise AssertionError(f"the records differ:\n{left}")


def assert_changed(before: Diffable, after: Diffable, *expected: Mapping[str, Any]) -> Diff:
    """Fails unless exactly these changes were made: each names members of a Change, and the value `to` for `b`."""
    found = before.diff(after)
    left = list(found.changes)
    missing = [one for one in expected if not _take(left, one)]
    if missing or left:
        lines = [f"this change was not made: {dict(one)}" for one in missing]
        lines += [f"this was not expected: {'  '.join(one.cells())}" for one in left]
        raise AssertionError("\n".join([*lines, "all changes:", str(found)]))
    return found


def _take(changes: list[Change], expected: Mapping[str, Any]) -> bool:
    wanted = {"b" if name == "to" else name: value for name, value in expected.items()}
    match: Optional[Change] = next(
        (one for one in changes if all(getattr(one, name) == value for name, value in wanted.items())), None
    )
    if match is not None:
        changes.remove(match)
    return match is not None
