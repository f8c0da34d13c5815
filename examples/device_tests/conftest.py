"""What the tests of this folder share. The fixtures qry_device and qry_db come with qrylib's plugin."""

import pathlib

import pytest

OFFICE = pathlib.Path(__file__).resolve().parents[1] / "office.json"


@pytest.fixture
def office(qry_device):
    """The test's device with the sample records."""
    qry_device.load(OFFICE)
    return qry_device
