"""What all tests of the package use."""

import pathlib

import pytest

import qrylib

ROOT = pathlib.Path(__file__).resolve().parents[2]
OFFICE = ROOT / "examples" / "office.json"


@pytest.fixture
def office():
    """The sample device."""
    with qrylib.device(fixture=OFFICE) as device:
        yield device


@pytest.fixture
def people(office):
    """The sample device's address book."""
    return office.connect("adbk_db")


@pytest.fixture
def departments(office):
    """The sample device's departments."""
    return office.connect("department_db")
