"""A caller's own tests, on a device without a device: what its departments do and how it takes failures.

python3 -m pytest examples/device_tests
"""

import pytest

import qrylib
from qrylib.testing import assert_changed, assert_same


def rename(db, number, name):
    """The caller under test: gives a department a name, and says whether there is one of that number."""
    return db.execute("UPDATE DEPT_TBL SET NAME = ? WHERE ID = ?", (name, number)).rowcount == 1


@pytest.mark.qry_records("department_db", "DEPT_TBL", [{"ID": 1, "NAME": "Sales"}, {"ID": 2, "NAME": "Stores"}])
def test_a_department_is_renamed(qry_device, qry_db):
    before = qry_device.snapshot()
    assert rename(qry_db, 1, "O'Hara & Sons")
    assert_changed(before, qry_device, {"key": {"ID": 1}, "column": "NAME", "a": "Sales", "to": "O'Hara & Sons"})


@pytest.mark.qry_records("department_db", "DEPT_TBL", [{"ID": 1, "NAME": "Sales"}])
def test_a_department_that_is_not_there_changes_nothing(qry_device, qry_db):
    before = qry_device.snapshot()
    assert not rename(qry_db, 9, "Nobody")
    assert_same(before, qry_device)


@pytest.mark.qry_records("department_db", "DEPT_TBL", [{"ID": 1, "NAME": "Sales"}])
@pytest.mark.parametrize("skip", [0, 3, 6])
def test_without_memory_nothing_is_renamed(qry_device, qry_db, skip):
    before = qry_device.snapshot()
    qry_device.fail("alloc", skip=skip)
    with pytest.raises(qrylib.Error) as caught:
        rename(qry_db, 1, "Stores")
    assert caught.value.traces
    assert_same(before, qry_device)


def test_no_two_departments_have_one_name(office):
    names = office.connect("department_db").execute("SELECT NAME FROM DEPT_TBL").to_pandas()["NAME"]
    assert names.is_unique
