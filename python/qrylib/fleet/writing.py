"""Parts that DuckDB and Spark read, and the manifest that makes writing them again harmless."""

from __future__ import annotations

import fcntl
import json
import os
import tempfile
from contextlib import contextmanager
from dataclasses import dataclass
from pathlib import Path
from typing import Any, Iterator, Union

import pandas

from qrylib.errors import OperationalError, ProgrammingError
from qrylib.fleet.paths import Batch, names_of
from qrylib.fleet.reading import Files, Reading, bad_of, compute_all

#: DuckDB and Spark pass over names that begin so.
MANIFEST = "_manifest.json"
_LOCK = "_lock"
_PARTIAL = ".part-"
FORMATS = ("csv", "jsonl")


@dataclass
class Manifest:
    """What a folder holds, by its parts, and what could not be read."""

    source: dict[str, str]
    parts: dict[str, dict[str, Any]]
    bad: dict[str, str]

    @property
    def read(self) -> int:
        """The snapshots whose rows are there."""
        return sum(len(part["files"]) for part in self.parts.values())

    @property
    def rows(self) -> int:
        """The rows of all parts."""
        return sum(part["rows"] for part in self.parts.values())

    @property
    def given(self) -> int:
        """The snapshots that were given."""
        return self.read + len(self.bad)

    def names(self) -> set[str]:
        """Every snapshot that it knows, the bad ones too."""
        return set(self.bad).union(*(part["files"] for part in self.parts.values()))

    def text(self) -> str:
        """As it is written."""
        totals = {"given": self.given, "read": self.read, "bad": len(self.bad), "rows": self.rows}
        whole = {"manifest": 1, **self.source, **totals, "parts": self.parts, "bad_files": self.bad}
        return json.dumps(whole, indent=1, sort_keys=True) + "\n"


def read_manifest(out: Union[str, "os.PathLike[str]"]) -> Manifest:
    """A folder's manifest; an empty one where there is none."""
    path = Path(out) / MANIFEST
    if not path.exists():
        return Manifest({}, {}, {})
    try:
        whole = json.loads(path.read_text())
        source = {name: whole[name] for name in ("database", "table", "format", "question")}
        return Manifest(source, whole["parts"], whole["bad_files"])
    except (KeyError, ValueError):
        raise OperationalError(f"{path} is no manifest") from None


def missing(files: Files, out: Union[str, "os.PathLike[str]"], *, retry_bad: bool = False) -> list[str]:
    """The snapshots that a folder's manifest lacks: what the next night has to read."""
    known = read_manifest(out)
    names = known.names() - set(known.bad) if retry_bad else known.names()
    return [name for name in names_of(files) if name not in names]


@dataclass(frozen=True)
class _Plan:
    """What will be written: a part for each token, of these snapshots."""

    source: dict[str, str]
    tokens: list[str]
    names: list[list[str]]
    parts: Any


def write(frame: Any, out: Union[str, "os.PathLike[str]"], format: str = "jsonl", **options: Any) -> Manifest:
    """Writes a part for each partition of a reading or a Dask dataframe, then the manifest.

    A part is written beside its place and renamed; its name follows from its snapshots, so that a part that is written
    twice is the same file. What an interrupted write left without a manifest is removed first. Of a frame that was made of
    a reading's, such as sums, the manifest knows the parts and not the snapshots.
    """
    if format not in FORMATS:
        raise ProgrammingError(f"the formats are {' and '.join(FORMATS)}")
    folder = Path(out)
    folder.mkdir(parents=True, exist_ok=True)
    reading = frame if isinstance(frame, Reading) else getattr(frame, "qrylib_reading", None)
    with _alone(folder):
        plan = _plan_of_frame(frame, folder, format) if reading is None else _plan_of(reading, folder, format)
        known = _checked(read_manifest(folder), plan)
        _remove_unknown(folder, known)
        done = compute_all([plan.parts], **options)[0]
        for part in done:
            known.bad = {name: why for name, why in known.bad.items() if name not in part["files"]}
            known.bad.update(part.pop("bad"))
            known.parts[part.pop("name")] = part
        _remove_partial(folder)
        _write_whole(folder, MANIFEST, known.text().encode())
    return known


@contextmanager
def _alone(folder: Path) -> Iterator[None]:
    with open(folder / _LOCK, "w") as lock:
        try:
            fcntl.flock(lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
        except BlockingIOError:
            raise OperationalError(f"another process is writing to {folder}") from None
        yield


def _plan_of(reading: Reading, folder: Path, format: str) -> _Plan:
    from dask.bag import Bag
    from dask.highlevelgraph import HighLevelGraph

    database, table = reading.source
    question = "; ".join(statement for _, statement in reading.task.job.statements)
    source = {"database": database, "table": table, "format": format, "question": question}
    tokens = reading.part_names()
    read = {(reading._key, i): (reading.task, batch) for i, batch in enumerate(reading.batches)}
    name = f"{reading._key}-written"
    where = str(folder.resolve())
    written = {
        (name, i): (_write_read, (reading._key, i), where, f"part-{token}.{format}") for i, token in enumerate(tokens)
    }
    graph = HighLevelGraph({reading._key: read, name: written}, {reading._key: set(), name: {reading._key}})
    return _Plan(source, tokens, [batch.names() for batch in reading.batches], Bag(graph, name, len(tokens)))


def _plan_of_frame(frame: Any, folder: Path, format: str) -> _Plan:
    import dask
    from dask.bag import from_delayed

    if not hasattr(frame, "to_delayed"):
        raise ProgrammingError("write() takes what read() answers, or a Dask dataframe")
    source = {"database": "", "table": "", "format": format, "question": str(frame._name)}
    tokens = [Batch.of([frame._name]).token(str(i)) for i in range(frame.npartitions)]
    write_part = dask.delayed(_write_part)
    where = str(folder.resolve())
    parts = [write_part(part, where, f"part-{token}.{format}") for part, token in zip(frame.to_delayed(), tokens)]
    return _Plan(source, tokens, [], from_delayed(parts))


def _checked(known: Manifest, plan: _Plan) -> Manifest:
    if known.source and known.source != plan.source:
        raise ProgrammingError(f"the folder holds something else: {known.source}")
    again = set(plan.tokens)
    others = Manifest({}, {name: part for name, part in known.parts.items() if _token(name) not in again}, {}).names()
    doubles = sum(name in others for names in plan.names for name in names)
    if doubles:
        raise ProgrammingError(
            f"{doubles} of the snapshots are in the folder already, in other parts", hint="read missing(files, out)"
        )
    return Manifest(plan.source, known.parts, known.bad)


def _token(name: str) -> str:
    return name.removeprefix("part-").partition(".")[0]


def _remove_unknown(folder: Path, known: Manifest) -> None:
    _remove_partial(folder)
    for path in folder.glob("part-*"):
        if path.name not in known.parts:
            path.unlink()


def _remove_partial(folder: Path) -> None:
    for path in folder.glob(_PARTIAL + "*"):
        path.unlink(missing_ok=True)


def _write_read(answer: tuple[pandas.DataFrame, pandas.DataFrame], folder: str, name: str) -> list[dict[str, Any]]:
    frame, files = answer
    bad = bad_of(files)
    [part] = _write_part(frame, folder, name)
    part["files"] = list(files[files["reason"] == ""]["file"])
    part["bad"] = dict(zip(bad["file"], bad["reason"]))
    return [part]


def _write_part(frame: pandas.DataFrame, folder: str, name: str) -> list[dict[str, Any]]:
    frame, replaced = _without_surrogates(frame)
    text = frame.to_csv(index=False) if name.endswith(".csv") else _json_lines(frame)
    body = text.encode()
    _write_whole(Path(folder), name, body)
    told = {"name": name, "rows": len(frame), "bytes": len(body), "replaced_texts": replaced}
    return [{**told, "files": [], "bad": {}}]


def _json_lines(frame: pandas.DataFrame) -> str:
    return str(frame.to_json(orient="records", lines=True, date_format="iso", force_ascii=False)) if len(frame) else ""


def _is_utf8(text: str) -> bool:
    try:
        text.encode()
    except UnicodeEncodeError:
        return False
    return True


def _plain(text: str) -> str:
    return text.encode("utf-8", "surrogateescape").decode("utf-8", "replace")


def _without_surrogates(frame: pandas.DataFrame) -> tuple[pandas.DataFrame, int]:
    """Bytes that are not UTF-8 become U+FFFD, which the readers of the parts can read; how many texts had some."""
    replaced = 0
    for name in frame.columns[frame.dtypes == object]:
        odd = ~frame[name].map(_is_utf8).astype(bool)
        if odd.any():
            replaced += int(odd.sum())
            frame = frame.assign(**{name: frame[name].map(_plain)})
    return frame, replaced


def _write_whole(folder: Path, name: str, body: bytes) -> None:
    descriptor, partial = tempfile.mkstemp(prefix=_PARTIAL, dir=folder)
    with open(descriptor, "wb") as file:
        file.write(body)
        file.flush()
        os.fsync(descriptor)
    os.chmod(partial, 0o644)
    os.replace(partial, folder / name)
