"""Snapshots as a Dask dataframe, and beside it what became of each file."""

from __future__ import annotations

import re
from dataclasses import dataclass
from typing import TYPE_CHECKING, Any, Callable, Iterable, Optional, Sequence, Union

import pandas

from qrylib.catalog import Table, table_of
from qrylib.connection import connect
from qrylib.errors import InternalError, ProgrammingError
from qrylib.fleet.paths import PATTERN, Batch, batches_of, names_of, origin_of
from qrylib.fleet.reader import Job, Limits
from qrylib.fleet.supervisor import Bad, Rows, read_snapshot, refuse_threads

if TYPE_CHECKING:
    import os

Files = Union[str, "os.PathLike[str]", Iterable[Union[str, "os.PathLike[str]"]]]
Types = dict[str, str]
#: Makes the rows of a frame from what a snapshot's statements answered.
Shape = Callable[[list[list[Any]]], list[tuple[Any, ...]]]

ORIGIN: Types = {"device": "object", "time": "datetime64[ns]"}
FILES: Types = {"file": "object", **ORIGIN, "rows": "int64", "reason": "object"}

BAD: Types = {name: FILES[name] for name in ("file", "device", "time", "reason")}


def frame_of(rows: Sequence[tuple[Any, ...]], types: Types) -> pandas.DataFrame:
    """A frame with these types, without rows too."""
    columns = list(zip(*rows)) if rows else [()] * len(types)
    return pandas.DataFrame({name: pandas.Series(list(c), dtype=types[name]) for name, c in zip(types, columns)})


def first_rows(answers: Rows) -> list[tuple[Any, ...]]:
    """The shape of a single statement's answer."""
    return answers[0]


@dataclass(frozen=True)
class Task:
    """What a worker does with each batch."""

    job: Job
    pattern: str
    types: Types
    shape: Shape

    def __call__(self, batch: Batch) -> tuple[pandas.DataFrame, pandas.DataFrame]:
        """The rows of a batch, and what became of each file."""
        refuse_threads()
        rows: list[tuple[Any, ...]] = []
        files: list[tuple[Any, ...]] = []
        for name in batch.names():
            origin = origin_of(name, self.pattern)
            told = read_snapshot(name, self.job) if origin else Bad("the path does not fit the pattern")
            source = (origin.device, origin.time) if origin else ("", None)
            if isinstance(told, Bad):
                files.append((name, *source, 0, told.reason))
                continue
            shaped = self.shape(told)
            rows.extend((*source, *row) for row in shaped)
            files.append((name, *source, len(shaped), ""))
        return frame_of(rows, {**ORIGIN, **self.types}), frame_of(files, FILES)


@dataclass(frozen=True)
class Answer:
    """What a fleet said. `given` is always `read` and the bad ones together."""

    frame: pandas.DataFrame
    files: pandas.DataFrame
    given: int

    @property
    def bad(self) -> pandas.DataFrame:
        """The files that could not be read, with the reason."""
        return bad_of(self.files)

    @property
    def read(self) -> int:
        """How many files were read."""
        return len(self.files) - len(self.bad)

    def __str__(self) -> str:
        return f"{self.given} files given = {self.read} read + {len(self.bad)} bad; {len(self.frame)} rows"


def bad_of(files: pandas.DataFrame) -> pandas.DataFrame:
    """The files with a reason."""
    return files[files["reason"] != ""][list(BAD)]


class Reading:
    """Snapshots that will be read: Dask dataframes, and what is known of them beforehand."""

    def __init__(self, task: Task, batches: list[Batch], source: tuple[str, str], given: int) -> None:
        self.task = task
        self.batches = batches
        self.source = source
        self.given = given
        self._key = "snapshots-" + Batch.of([b.token(*self._identity()) for b in batches]).token()

    def _identity(self) -> list[str]:
        return [*self.source, self.task.pattern, repr(self.task.job)]

    def part_names(self) -> list[str]:
        """A name for each partition: the same for the same snapshots and the same question."""
        return [batch.token(*self._identity()) for batch in self.batches]

    def _collection(self, part: str, types: Types) -> Any:
        from dask.dataframe.core import new_dd_object
        from dask.highlevelgraph import HighLevelGraph

        read = {(self._key, i): (self.task, batch) for i, batch in enumerate(self.batches)}
        name = f"{self._key}-{part}"
        parts = {(name, i): (_part, (self._key, i), part) for i in range(len(self.batches))}
        graph = HighLevelGraph({self._key: read, name: parts}, {self._key: set(), name: {self._key}})
        return new_dd_object(graph, name, frame_of([], types), (None,) * (len(self.batches) + 1))

    @property
    def frame(self) -> Any:
        """The rows of all snapshots as a Dask dataframe: device, time, then the table's columns."""
        frame = self._collection("rows", {**ORIGIN, **self.task.types})
        object.__setattr__(frame, "qrylib_reading", self)  # so that write() knows the snapshots; Dask's own looks for columns
        return frame

    @property
    def files(self) -> Any:
        """Every file as a Dask dataframe: file, device, time, rows, and the reason of a bad one."""
        return self._collection("files", FILES)

    @property
    def bad(self) -> Any:
        """The bad files as a Dask dataframe."""
        return self._collection("bad", BAD)

    def compute(self, **options: Any) -> Answer:
        """Reads all of them once. Runs on the current distributed.Client, or else on local processes."""
        frame, files = compute_all([self.frame, self.files], **options)
        answer = Answer(frame.reset_index(drop=True), files.reset_index(drop=True), self.given)
        if len(answer.files) != self.given:
            raise InternalError(f"{self.given} files were given and {len(answer.files)} came back")
        return answer


def _part(answer: tuple[pandas.DataFrame, pandas.DataFrame], part: str) -> pandas.DataFrame:
    rows, files = answer
    return {"rows": rows, "files": files, "bad": bad_of(files)}[part]


def compute_all(collections: list[Any], **options: Any) -> tuple[Any, ...]:
    """Dask's compute(), on processes unless a client or the caller says otherwise."""
    import dask

    if "scheduler" not in options and not _has_client() and not dask.config.get("scheduler", None):
        options["scheduler"] = "processes"
    return tuple(dask.compute(*collections, **options))


def _has_client() -> bool:
    try:
        from distributed import default_client
    except ImportError:
        return False
    try:
        default_client()
    except ValueError:
        return False
    return True


def reading_of(
    files: Files,
    statements: Sequence[tuple[str, str]],
    types: Types,
    shape: Shape,
    source: tuple[str, str],
    pattern: str = PATTERN,
    limits: Limits = Limits(),
    batch: Optional[int] = None,
) -> Reading:
    """A reading of any statements. They are checked here, once, and not by each snapshot."""
    if "device" not in re.compile(pattern).groupindex:
        raise ProgrammingError("the pattern has no group (?P<device>...)")
    for database, statement in statements:
        with connect(database, readonly=True) as connection:
            connection.check(statement)
    names = names_of(files)
    return Reading(Task(Job(tuple(statements), limits), pattern, types, shape), batches_of(names, batch), source, len(names))


def _chosen(table: Table, columns: Optional[Sequence[str]]) -> Types:
    names = [column.name for column in table.columns] if columns is None else columns
    return {name: table.column(name).dtype for name in names}


def read(
    files: Files,
    database: str,
    table: str,
    *,
    columns: Optional[Sequence[str]] = None,
    where: Optional[str] = None,
    pattern: str = PATTERN,
    limits: Limits = Limits(),
    batch: Optional[int] = None,
) -> Reading:
    """A table of many snapshots.

    files: names, or a folder. columns: all of the table's unless given. where: a condition of the dialect, which the
    library tests on each snapshot. pattern: a regular expression with the groups device and time, which is ISO 8601.
    limits: what one snapshot may take. batch: how many snapshots a task reads; the default suits their number.
    """
    types = _chosen(table_of(database, table), columns)
    condition = f" WHERE {where}" if where else ""
    statement = f"SELECT {', '.join(types)} FROM {table}{condition}"
    return reading_of(files, [(database, statement)], types, first_rows, (database, table), pattern, limits, batch)
