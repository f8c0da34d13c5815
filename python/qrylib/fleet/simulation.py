"""Realistic fleets: the same ones for the same seed."""

from __future__ import annotations

import gzip
import json
import os
import random
from datetime import date
from pathlib import Path
from typing import Any, Callable, Union

from qrylib.catalog import table_of

_DEPARTMENTS = (
    "Accounting", "Sales", "Purchasing", "Legal", "Logistics", "Warehouse", "Research", "Design", "Support",
    "Investor Relations", "総務部", "経理部", "営業部", "開発部", "品質保証部",
)  # fmt: skip
_PEOPLE = ("Sato Kenji", "鈴木 花子", "Anna Becker", "高橋 健太", "Miguel Santos", "Claire Dubois", "Maeve O'Hara", "渡辺 誠")
_DAYS_IN_USE = (30, 1500)
_FULL, _DOUBLE_KEY, _OLD_TEXT = 0.02, 0.005, 0.01  # of the devices


def _counters(generator: random.Random, pages: int) -> dict[str, int]:
    printed = int(pages * generator.uniform(0.3, 0.8))
    copied = int((pages - printed) * generator.uniform(0.6, 1.0))
    sent = pages - printed - copied
    return {
        "TOTAL_M": pages,
        "TOTAL_PM": printed,
        "TOTAL_CM": copied,
        "TOTAL_FM": sent,
        "SEND_FM": sent // 2,
        "COLOR_PM": int(printed * generator.uniform(0.0, 0.3)),
        "FCOLOR_CM": int(copied * generator.uniform(0.0, 0.2)),
    }


def _departments(generator: random.Random) -> list[dict[str, Any]]:
    capacity = table_of("department_db", "DEPT_TBL").capacity
    number = capacity if generator.random() < _FULL else min(capacity - 1, 1 + int(generator.expovariate(1 / 12)))
    days = generator.randint(*_DAYS_IN_USE)
    records = []
    for i in range(1, number + 1):
        pages = int(days * generator.lognormvariate(1.2, 1.0))
        name = f"{generator.choice(_DEPARTMENTS)} {i}"
        records.append({"ID": i, "NAME": name, "DEPT_CODE": f"D{i:04}", **_counters(generator, pages)})
    if generator.random() < _DOUBLE_KEY and 1 < number < capacity:
        records[-1]["ID"] = records[0]["ID"]
    return records


def _people(generator: random.Random) -> list[dict[str, Any]]:
    capacity = table_of("adbk_db", "PSN_TBL").capacity
    number = generator.randint(0, capacity)
    records: list[dict[str, Any]] = [
        {"PSN_ID": i, "PSN_NAME": generator.choice(_PEOPLE), "INTEG_ID": 100 + i} for i in range(1, number + 1)
    ]
    if records and generator.random() < _OLD_TEXT:
        records[0]["PSN_NAME"] = {"hex": "8365835883678140"}  # a name in Shift JIS, from an older device
    return records


def snapshot_text(seed: int, number: int) -> bytes:
    """The snapshot of one device."""
    generator = random.Random(f"{seed}/{number}")
    databases = {
        "department_db": {"DEPT_TBL": {"records": _departments(generator)}},
        "adbk_db": {"PSN_TBL": {"records": _people(generator)}},
    }
    return json.dumps({"format": 1, "settings": {}, "databases": databases}, ensure_ascii=False).encode()


def _packed(text: bytes) -> bytes:
    return gzip.compress(text, compresslevel=6, mtime=0)


#: What goes wrong with snapshots on their way.
FAULTS: tuple[Callable[[bytes], bytes], ...] = (
    lambda text: _packed(text)[: len(text) // 20],  # the line broke
    lambda text: _packed(text[: len(text) // 2]),  # the device was switched off
    lambda text: _packed(b"[" * 1000 + text),
    lambda text: _packed(text.replace(b'"NAME"', b'"NMAE"', 1)),
    lambda text: b"",
)


def simulate(
    number: int,
    out: Union[str, "os.PathLike[str]"],
    *,
    seed: int = 1,
    night: str = "",
    bad: float = 0.0,
) -> list[str]:
    """Writes the snapshots of a night, OUT/NIGHT/device-000001.json.gz and so on; `bad` of them are broken. Answers the names.

    Each device's departments have printed more or less for as long as it was in use; a few devices have a full table, two
    records of one key, or texts that are not UTF-8.
    """
    folder = Path(out) / (night or date.today().isoformat())
    folder.mkdir(parents=True, exist_ok=True)
    chance = random.Random(f"{seed}/bad")
    names = []
    for i in range(1, number + 1):
        text = snapshot_text(seed, i)
        path = folder / f"device-{i:06}.json.gz"
        is_bad, fault = chance.random() < bad, chance.choice(FAULTS)
        path.write_bytes(fault(text) if is_bad else _packed(text))
        names.append(str(path))
    return names
