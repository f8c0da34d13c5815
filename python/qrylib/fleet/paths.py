"""What a snapshot's path says, and paths gathered into batches that keep a graph small."""

from __future__ import annotations

import hashlib
import os
import re
import zlib
from dataclasses import dataclass
from datetime import datetime, timezone
from typing import Iterable, Optional, Sequence, Union

#: Devices and their times by a path's last two parts: NIGHT/DEVICE.json, with .gz or without.
PATTERN = r"(?:(?:^|/)(?P<time>\d{4}-\d\d-\d\d[^/]*)/|^|/)(?P<device>[^/]+?)\.json(?:\.gz)?$"

# What begins with "_" or "." is a manifest or unfinished.
_SNAPSHOT = re.compile(r"/(?![_.])[^/]*\.json(?:\.gz)?$")

#: Each batch becomes up to four tasks, and 100,000 names stay below 1,000 tasks.
MOST_BATCHES = 240
#: Snapshots of a batch where there are few.
SMALL_BATCH = 50


def names_of(files: Union[str, "os.PathLike[str]", Iterable[Union[str, "os.PathLike[str]"]]]) -> list[str]:
    """The snapshots' names, sorted, each once. A folder stands for the snapshots in it and below, another name for itself."""
    if isinstance(files, (str, os.PathLike)):
        root = os.fspath(files)
        if not os.path.isdir(root):
            return [root]
        found = [os.path.join(folder, name) for folder, _, names in os.walk(root) for name in names]
        return sorted(name for name in found if _SNAPSHOT.search(name))
    return sorted({os.fspath(name) for name in files})


@dataclass(frozen=True)
class Origin:
    """Whose snapshot it is, and of when."""

    device: str
    time: Optional[datetime]


def origin_of(path: str, pattern: str) -> Optional[Origin]:
    """The device and the time that a path names; None where the pattern does not fit."""
    found = re.search(pattern, path)
    if found is None:
        return None
    groups = found.groupdict()
    text = groups.get("time")
    if not text:
        return Origin(groups["device"], None)
    try:
        time = datetime.fromisoformat(text)
    except ValueError:
        return None
    return Origin(groups["device"], time.astimezone(timezone.utc).replace(tzinfo=None) if time.tzinfo else time)


@dataclass(frozen=True)
class Batch:
    """Some names, packed: they are most of a graph."""

    packed: bytes

    @classmethod
    def of(cls, names: Sequence[str]) -> "Batch":
        """The batch of these names."""
        return cls(zlib.compress("\0".join(names).encode("utf-8", "surrogateescape")))

    def names(self) -> list[str]:
        """Its names."""
        text = zlib.decompress(self.packed).decode("utf-8", "surrogateescape")
        return text.split("\0") if text else []

    def token(self, *what: str) -> str:
        """A name for what is made of these snapshots; the same every time."""
        known = "\0".join([*what, *self.names()]).encode("utf-8", "surrogateescape")
        return hashlib.sha256(known).hexdigest()[:16]


def batches_of(names: Sequence[str], size: Optional[int]) -> list[Batch]:
    """The names in batches of a size, or of one that suits their number. There is always one batch."""
    least = -(-len(names) // MOST_BATCHES)
    step = max(size or SMALL_BATCH, least, 1)
    return [Batch.of(names[i : i + step]) for i in range(0, len(names), step)] or [Batch.of([])]
