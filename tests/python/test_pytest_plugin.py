"""The plugin as its users meet it: suites of their own, run by a pytest of their own."""

import importlib.metadata
import os
import subprocess
import sys

import pytest

from conftest import OFFICE, ROOT

# Where the package is not installed nobody tells pytest of its plugin.
IS_INSTALLED = any(point.name == "qrylib" for point in importlib.metadata.entry_points(group="pytest11"))
PLUGIN = [] if IS_INSTALLED else ["-p", "qrylib.pytest_plugin"]


def run(folder, *options):
    """The output of pytest in a folder; its last line counts."""
    done = subprocess.run(
        [sys.executable, "-m", "pytest", "-p", "no:cacheprovider", *PLUGIN, *options, str(folder)],
        stdout=subprocess.PIPE,
        stderr=subprocess.STDOUT,
        text=True,
        timeout=120,
        cwd=folder,
        env={**os.environ, "PYTHONDONTWRITEBYTECODE": "1"},
    )
    return done.stdout


@pytest.fixture
def suite(tmp_path):
    """Writes a suite of one file."""

    def write(text):
        (tmp_path / "test_suite.py").write_text("import pytest\nimport qrylib\n" + text)
        return tmp_path

    return write


def test_the_example_passes():
    printed = run(ROOT / "examples" / "device_tests", "-q")
    assert "6 passed" in printed, printed


def test_the_example_passes_under_xdist():
    pytest.importorskip("xdist")
    printed = run(ROOT / "examples" / "device_tests", "-n", "2")
    assert "6 passed" in printed, printed


def test_each_test_has_a_device_of_its_own(suite):
    folder = suite(
        """
@pytest.mark.parametrize("number", range(8))
def test_alone(qry_db, number):
    assert qry_db.execute("SELECT COUNT(*) FROM PSN_TBL").fetchone() == (0,)
    qry_db.execute("INSERT INTO PSN_TBL (PSN_ID) VALUES (?)", (number + 1,))
    assert qry_db.execute("SELECT PSN_ID FROM PSN_TBL").fetchall() == [(number + 1,)]
"""
    )
    assert "8 passed" in run(folder)
    if pytest.importorskip("xdist"):
        assert "8 passed" in run(folder, "-n", "3")


def test_a_failing_test_shows_statement_place_and_trace(suite):
    folder = suite(
        """
@pytest.mark.qry_database("department_db")
def test_wrong_statement(qry_db):
    qry_db.execute("SELECT NAME FROM DEPT_TBL WHERE NAME < 'a'")


def test_wrong_answer(qry_db):
    assert qry_db.execute("SELECT PSN_ID FROM PSN_TBL").fetchall() == [(1,)]


def test_next_one_has_a_device_again(qry_device):
    assert qry_device.counts() == {}
"""
    )
    printed = run(folder)
    assert "2 failed, 1 passed" in printed
    assert (
        "QRY_LIB_TABLE_ARGUMENT (0x5241): " in printed
        and "  SELECT NAME FROM DEPT_TBL WHERE NAME < 'a'\n                                  ^" in printed
    )
    assert "qry_lib_tb_create_search_table_id():[Return]:(415) (0x00005241)  -- " in printed
    assert "the last statement:\n  SELECT PSN_ID FROM PSN_TBL\n" in printed


def test_snapshots_that_differ_are_shown_as_a_table(suite):
    folder = suite(
        """
def test_same(qry_device, qry_db):
    before = qry_device.snapshot()
    qry_db.execute("INSERT INTO PSN_TBL (PSN_ID) VALUES (1)")
    assert before == qry_device.snapshot()
"""
    )
    printed = run(folder)
    assert "two snapshots that differ" in printed and "adbk_db.PSN_TBL  PSN_ID=1  (record)  new" in printed


def test_markers_load_records(suite):
    folder = suite(
        f"""
@pytest.mark.qry_records({str(OFFICE)!r})
@pytest.mark.qry_records("adbk_db", "PSN_TBL", [{{"PSN_ID": 5}}], default={{"INTEG_ID": 9}})
def test_both(qry_device, qry_db):
    assert qry_db.execute("SELECT PSN_ID, INTEG_ID FROM PSN_TBL").fetchall() == [(5, 9)]
    assert qry_device.connect("department_db").execute("SELECT COUNT(*) FROM DEPT_TBL").fetchone() == (101,)


@pytest.mark.qry_records("adbk_db", "PSN_TBL", [{{"PSN_IDD": 5}}])
def test_wrong_name(qry_device):
    pass


@pytest.mark.qry_database("usrac_db", readonly=True)
def test_database(qry_db):
    assert qry_db.database == "usrac_db"
    with pytest.raises(qrylib.ProgrammingError):
        qry_db.execute("DROP TABLE ACCOUNT_TBL")
"""
    )
    printed = run(folder, "--strict-markers")
    assert "2 passed, 1 error" in printed and "PSN_TBL has no column PSN_IDD" in printed, printed


def test_unused_it_loads_no_library(tmp_path):
    (tmp_path / "test_other.py").write_text(
        "import sys\ndef test_other():\n    import qrylib._native\n    assert not qrylib._native.is_loaded()\n"
        "    assert 'pandas' not in sys.modules and 'dask' not in sys.modules\n"
    )
    assert "1 passed" in run(tmp_path)


def test_it_fails_other_suites_in_no_other_way(suite):
    folder = suite("def test_plain():\n    assert 1 == 2\n")
    printed = run(folder)
    assert "1 failed" in printed and "qrylib --" not in printed
