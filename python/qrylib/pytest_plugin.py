"""The plugin of pytest: devices as fixtures, and failures that show the statement, its place and the trace.

Each test has a device of its own in the memory of its process, so tests run beside each other under pytest-xdist.
Nothing is loaded before a test asks for a fixture.
"""

from __future__ import annotations

from typing import TYPE_CHECKING, Any, Generator, Iterator, Optional

import pytest

if TYPE_CHECKING:
    from qrylib import Connection, Device

_DEFAULT_DATABASE = "adbk_db"


def pytest_configure(config: pytest.Config) -> None:
    """Names the markers."""
    config.addinivalue_line(
        "markers",
        "qry_records(fixture) or qry_records(database, table, records, default=None): what is on the device when the test"
        " begins: a fixture's file or snapshot, and then a table's records, each a dict. May be given several times.",
    )
    config.addinivalue_line("markers", "qry_database(name, readonly=False, strict=True): what qry_db connects to.")


def _fixture_of(markers: list[pytest.Mark]) -> dict[str, Any]:
    """One fixture of all markers: the nearest to the test comes first in the list, and last on the device."""
    import json

    from qrylib import _store

    whole: dict[str, Any] = {"format": 1, "settings": {}, "databases": {}}
    for marker in reversed(markers):
        if len(marker.args) == 1:
            whole = json.loads(_store.fixture_text(marker.args[0]))
            continue
        if len(marker.args) != 3:
            raise pytest.UsageError("qry_records takes a fixture, or a database, a table and its records")
        database, table, records = marker.args
        _check_columns(database, table, records)
        content = {"records": list(records), "default": marker.kwargs.get("default") or {}}
        whole.setdefault("databases", {}).setdefault(database, {})[table] = content
    return whole


def _check_columns(database: str, table: str, records: Any) -> None:
    from qrylib.catalog import table_of

    known = table_of(database, table)
    for record in records:
        for name in record:
            if name != "record":
                known.column(name)


@pytest.fixture
def qry_device(request: pytest.FixtureRequest) -> Iterator["Device"]:
    """A device of the test's own, with the records of its markers; connections to it are closed behind the test."""
    import qrylib

    markers = list(request.node.iter_markers("qry_records"))
    with qrylib.device(fixture=_fixture_of(markers) if markers else None) as device:
        yield device


def _database_of(node: Any) -> tuple[str, dict[str, Any]]:
    marker: Optional[pytest.Mark] = node.get_closest_marker("qry_database")
    if marker is not None:
        return marker.args[0], dict(marker.kwargs)
    for records in node.iter_markers("qry_records"):
        if len(records.args) == 3:
            return records.args[0], {}
    return _DEFAULT_DATABASE, {}


@pytest.fixture
def qry_db(request: pytest.FixtureRequest, qry_device: "Device") -> Iterator["Connection"]:
    """A connection to the test's device: to the database of qry_database, or of the nearest qry_records, or adbk_db."""
    name, options = _database_of(request.node)
    with qry_device.connect(name, **options) as connection:
        yield connection


def pytest_assertrepr_compare(op: str, left: object, right: object) -> Optional[list[str]]:
    """Two snapshots that should be equal are shown as a table of differences."""
    import sys

    devices = sys.modules.get("qrylib.device")
    if devices is None or op != "==" or not all(isinstance(one, devices.Snapshot) for one in (left, right)):
        return None
    difference: Any = left
    return ["two snapshots that differ", *str(difference.diff(right)).splitlines()]


def _story_of(error: Optional[BaseException]) -> str:
    """The statement of the error or of what it came from; without one the last statement of the test."""
    from qrylib import Error, _store

    while error is not None:
        if isinstance(error, Error):
            return error.show()
        error = error.__cause__ or error.__context__
    ran = _store.last_run
    if not ran:
        return ""
    return "\n".join(["the last statement:", f"  {ran['statement']}", *(f"  {trace}" for trace in ran["traces"])])


@pytest.hookimpl(hookwrapper=True)
def pytest_runtest_makereport(item: pytest.Item, call: "pytest.CallInfo[None]") -> Generator[None, Any, None]:
    """Adds what the library said to the report of a test that failed."""
    outcome = yield
    report = outcome.get_result()
    uses_device = "qry_device" in getattr(item, "fixturenames", ())
    if report.failed and call.excinfo is not None and (uses_device or _is_own(call.excinfo.value)):
        story = _story_of(call.excinfo.value)
        if story:
            report.sections.append(("qrylib", story))


def _is_own(error: BaseException) -> bool:
    return type(error).__module__ == "qrylib.errors"
