"""Fleets of devices: their snapshots as Dask dataframes, read by as many processes as there are.

>>> from qrylib import fleet
>>> reading = fleet.read(["fleet/2026-11-21/device-000001.json.gz"], "department_db", "DEPT_TBL", columns=["ID", "TOTAL_M"])
>>> reading.given, dict(reading.frame.dtypes)["TOTAL_M"].name
(1, 'uint32')
"""

from __future__ import annotations

from qrylib.fleet.paths import PATTERN
from qrylib.fleet.reader import Limits
from qrylib.fleet.reading import Answer, Reading, read
from qrylib.fleet.reporting import Report, report, survey
from qrylib.fleet.simulation import simulate
from qrylib.fleet.writing import Manifest, missing, read_manifest, write

__all__ = [
    "Answer",
    "Limits",
    "Manifest",
    "PATTERN",
    "Reading",
    "Report",
    "missing",
    "read",
    "read_manifest",
    "report",
    "simulate",
    "survey",
    "write",
]
