"""The workstation's controls: failures, counts, traces, snapshots, differences, children, explanations."""

import os
import re
import signal

import pytest

import qrylib
from conftest import OFFICE, ROOT
from qrylib import _native
from qrylib.testing import assert_changed, assert_same

SELECT = "SELECT PSN_ID FROM PSN_TBL WHERE PSN_ID > 3"


def test_calls_are_those_of_the_header():
    header = (ROOT / "platform" / "host" / "qryhost.h").read_text()
    names = re.findall(r"^    QRYHOST_([A-Z_]+),", header, re.MULTILINE)
    assert tuple(name.lower() for name in names) == _native.CALLS


@pytest.mark.parametrize("strict", [True, False])
def test_a_failure_meets_the_statement_and_no_other_call(office, strict):
    db = office.connect("adbk_db", strict=strict)
    db.execute(SELECT)
    calls = office.counts()["alloc"]
    for skip in range(calls):
        office.clear_failures()
        office.fail("alloc", skip=skip)
        with pytest.raises(qrylib.Error) as caught:
            db.execute(SELECT)
        assert caught.value.code in (1, 0xDB00, 0x2001, 0x5243) and caught.value.traces
        assert db.execute(SELECT).rowcount == 7
    office.fail("alloc", skip=calls)
    assert db.execute(SELECT).rowcount == 7
    with pytest.raises(qrylib.Error):
        db.execute(SELECT)


def test_failures_last_as_long_as_ordered(office, people):
    rename = "UPDATE PSN_TBL SET PSN_NAME = 'x' WHERE PSN_ID = 4"  # writes one value
    office.fail("set_table", skip=1, times=2, code=9)
    assert people.execute(rename).rowcount == 1
    for _ in range(2):
        with pytest.raises(qrylib.OperationalError) as caught:
            people.execute(rename)
        assert caught.value.code == 9
    assert people.execute(rename).rowcount == 1
    office.fail("alloc", times=100)
    office.clear_failures()
    assert people.execute(SELECT).rowcount == 7


def test_a_failure_half_way_tells_what_was_changed(office, people):
    office.fail("set_table", skip=3, code=0x5242)
    cursor = people.cursor()
    with pytest.raises(qrylib.OperationalError) as caught:
        cursor.execute("UPDATE PSN_TBL SET PSN_NAME = 'x'")
    assert caught.value.changed == qrylib.Changed(changed=3) and cursor.rowcount == 3


def test_a_failure_is_asked_for_by_name(office):
    with pytest.raises(qrylib.ProgrammingError, match="'malloc'; there are alloc, "):
        office.fail("malloc")
    with pytest.raises(qrylib.ProgrammingError, match="skip is -1"):
        office.fail("alloc", skip=-1)


def test_counts_and_traces_belong_to_statements(office, people):
    assert office.counts() == {} and office.traces() == []
    blocks = office.blocks()
    people.execute(SELECT)
    counts = office.counts()
    assert counts["alloc"] > 0 and counts["create_list"] == 2
    people.execute(SELECT)
    assert office.counts() == {call: 2 * number for call, number in counts.items()}
    with pytest.raises(qrylib.Error) as caught:
        people.execute("DELETE FROM NO_TBL")
    assert office.traces() == list(caught.value.traces) and office.traces() == []
    assert office.blocks() == blocks


def test_snapshots_compare_by_their_records(office, people, tmp_path):
    before = office.snapshot()
    assert before == office.snapshot() and not before.diff(office)
    people.execute("UPDATE PSN_TBL SET PSN_NAME = 'x' WHERE PSN_ID = 2")
    difference = before.diff(office.snapshot())
    assert difference.changes == (
        qrylib.Change("adbk_db", "PSN_TBL", {"PSN_ID": 2}, "PSN_NAME", "鈴木 花子", "x"),
    )
    assert before != office.snapshot()
    before.save(tmp_path / "before.json")
    assert qrylib.Snapshot.read(tmp_path / "before.json") == before
    office.load(before)
    assert office.snapshot() == before
    office.reset()
    assert office.snapshot().records("adbk_db", "PSN_TBL") == []
    with pytest.raises(qrylib.ProgrammingError, match="no fixture"):
        before.diff(qrylib.Snapshot("[]"))


def test_texts_that_are_not_utf8_survive_a_snapshot(office, people):
    people.execute("UPDATE PSN_TBL SET PSN_NAME = ? WHERE PSN_ID = 1", (b"\x83\x41",))
    saved = office.snapshot()
    assert saved.records("adbk_db", "PSN_TBL")[0]["PSN_NAME"] == "\udc83A"
    office.reset()
    office.load(saved)
    assert people.execute("SELECT PSN_NAME FROM PSN_TBL WHERE PSN_ID = 1").fetchone() == ("\udc83A",)


def test_records_of_a_snapshot_make_a_fixture(office, people):
    people.execute("UPDATE PSN_TBL SET PSN_NAME = ? WHERE PSN_ID = 1", (b"\x83\x41",))
    records = office.snapshot().records("adbk_db", "PSN_TBL")
    office.load({"format": 1, "databases": {"adbk_db": {"PSN_TBL": {"records": records}}}})
    assert office.snapshot().records("adbk_db", "PSN_TBL") == records
    assert people.execute("SELECT PSN_NAME FROM PSN_TBL WHERE PSN_ID = 1").fetchone() == ("\udc83A",)


def test_assertions_show_a_table(office, people):
    before = office.snapshot()
    people.execute("DELETE FROM PSN_TBL WHERE PSN_ID = 3")
    people.execute("UPDATE PSN_TBL SET PSN_NAME = 'x' WHERE PSN_ID = 2")
    with pytest.raises(AssertionError) as caught:
        assert_same(before, office)
    lines = str(caught.value).splitlines()
    assert lines[0] == "the records differ:" and lines[1].split() == ["table", "record", "column", "change"]
    assert lines[3].split() == ["adbk_db.PSN_TBL", "PSN_ID=2", "PSN_NAME", "'鈴木", "花子'", "->", "'x'"]
    assert lines[4].split() == ["adbk_db.PSN_TBL", "PSN_ID=3", "(record)", "gone"]
    assert_same(before, office, ignore=["PSN_TBL"])
    name = {"table": "PSN_TBL", "key": {"PSN_ID": 2}, "column": "PSN_NAME", "to": "x"}
    gone = {"table": "PSN_TBL", "key": {"PSN_ID": 3}, "column": None}
    assert_changed(before, office, name, gone)
    with pytest.raises(AssertionError, match="this was not expected: .*PSN_ID=3"):
        assert_changed(before, office, name)
    with pytest.raises(AssertionError, match="this change was not made"):
        assert_changed(before, office, name, gone, {"table": "DEPT_TBL"})


def test_several_devices_live_in_child_processes(office):
    with qrylib.device(child=True, fixture=OFFICE) as one, qrylib.device(child=True) as other:
        assert len({os.getpid(), one.pid, other.pid}) == 3
        assert not one.diff(office)
        other.load(office.snapshot())
        result = other.execute("adbk_db", "SELECT PSN_ID, PSN_NAME FROM PSN_TBL WHERE PSN_ID = ?", (1,))
        assert (result.columns, result.rows) == (["PSN_ID", "PSN_NAME"], [(1, "Sato Kenji")])
        assert other.execute("adbk_db", "DELETE FROM PSN_TBL WHERE PSN_ID < 3").rowcount == 2
        assert [change.key for change in one.diff(other).changes] == [{"PSN_ID": 1}, {"PSN_ID": 2}]
        other.fail("alloc")
        with pytest.raises(qrylib.Error) as caught:
            other.execute("adbk_db", SELECT)
        assert caught.value.traces and other.traces() == list(caught.value.traces)
        assert other.counts()["alloc"] > 0
        other.clear_failures()
        other.reset()
        assert other.execute("adbk_db", "SELECT COUNT(*) FROM PSN_TBL").rows == [(0,)]


def test_a_child_that_dies_is_an_exception():
    with qrylib.device(child=True) as device:
        os.kill(device.pid, signal.SIGKILL)
        with pytest.raises(qrylib.OperationalError, match="ended with status -9"):
            device.counts()
    with pytest.raises(qrylib.InterfaceError, match="closed"):
        device.counts()


def test_a_child_closes_beside_a_forked_process():
    device = qrylib.device(child=True)
    pid = os.fork()
    if pid == 0:
        signal.pause()
        os._exit(0)
    device.close()
    os.kill(pid, signal.SIGKILL)
    os.waitpid(pid, 0)


def test_explanations():
    told = qrylib.explain("SELECT NAME FROM DEPT_TBL WHERE TOTAL_M > 9000 AND ID < 5 ORDER BY NAME DESC")
    assert told.database == "department_db" and told.kind == "select" and told.tables == ("DEPT_TBL",)
    assert [one["column"] for one in told.conditions] == ["TOTAL_M", "ID"]
    assert told.order == {"column": "NAME", "direction": "DESC"}
    refused = qrylib.explain("SELECT PSN_ID FROM PSN_TBL WHERE PSN_NAME = 'x", "adbk_db")
    assert not refused.ok and "refused: the quote is not closed" in str(refused)
    with pytest.raises(qrylib.ProgrammingError, match="no database 'x'"):
        qrylib.explain("SELECT A FROM B", "x")


def test_traces_are_explained():
    line = qrylib.trace("analyze_sql():[Return]:(447) (0x0000DB00)")
    assert (line.known, line.function, line.line, line.code) == (True, "analyze_sql", 447, 0xDB00)
    assert str(line).startswith("analyze_sql():[Return]:(447) (0x0000DB00)  -- ORDER BY")
    assert not qrylib.trace("nothing of the kind").known


def test_the_schema_and_the_version():
    table = qrylib.schema()["department_db"]["DEPT_TBL"]
    assert table.capacity == 101 and [column.name for column in table.key] == ["ID"]
    assert re.fullmatch(r"\d+\.\d+\.\d+", qrylib.version())
