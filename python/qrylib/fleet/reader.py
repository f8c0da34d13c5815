"""The process that reads snapshots: one at a time into its own store, within limits on bytes and nesting."""

from __future__ import annotations

import gzip
import os
import re
import stat
import sys
import zlib
from dataclasses import dataclass
from itertools import accumulate
from typing import Any

from qrylib import _native
from qrylib.child import read_message, write_message
from qrylib.connection import Connection
from qrylib.device import Device, Snapshot, open_device
from qrylib.errors import Error

READY = "ready"
PROGRAM = "from qrylib.fleet.reader import serve; serve()"


@dataclass(frozen=True)
class Limits:
    """What one snapshot may take before it is bad."""

    #: Bytes of its text, unpacked.
    bytes: int = 16 * 2**20
    #: Objects and lists inside each other.
    nesting: int = 32
    #: Seconds from the request to the answer.
    seconds: float = 20.0
    #: Readers that it may kill before it is given up.
    tries: int = 2


@dataclass(frozen=True)
class Job:
    """What is asked of each snapshot: statements, each of a database."""

    statements: tuple[tuple[str, str], ...]
    limits: Limits


class BadSnapshot(Exception):
    """Why a snapshot cannot be read."""


_STRINGS = re.compile(rb'"(?:[^"\\]|\\.)*+"', re.DOTALL)
_OPENING, _CLOSING = b"[{", b"]}"
_NO_BRACKETS = bytes(set(range(256)) - set(_OPENING + _CLOSING))
_STEPS = {**dict.fromkeys(_OPENING, 1), **dict.fromkeys(_CLOSING, -1)}


def depth_of(text: bytes) -> int:
    """How deep the objects and lists of a JSON text stand inside each other."""
    brackets = _STRINGS.sub(b"", text).translate(None, _NO_BRACKETS)
    return max(accumulate(map(_STEPS.__getitem__, brackets), initial=0))


def _read_at_most(path: str, limit: int) -> bytes:
    # Opened without waiting: a pipe would wait for its writer.
    descriptor = os.open(path, os.O_RDONLY | os.O_NONBLOCK | os.O_CLOEXEC)
    with open(descriptor, "rb") as file:
        if not stat.S_ISREG(os.fstat(descriptor).st_mode):
            raise BadSnapshot("is no regular file")
        if not path.endswith(".gz"):
            return file.read(limit + 1)
        with gzip.GzipFile(fileobj=file) as unpacked:
            return unpacked.read(limit + 1)


def text_of(path: str, limits: Limits) -> bytes:
    """A snapshot's text, or BadSnapshot."""
    try:
        text = _read_at_most(path, limits.bytes)
    except (EOFError, zlib.error, gzip.BadGzipFile) as error:
        raise BadSnapshot(f"is no whole gzip file: {error}") from None
    except OSError as error:
        raise BadSnapshot(f"cannot be read: {error.strerror}") from None
    except ValueError as error:  # a zero byte in the name
        raise BadSnapshot(f"cannot be read: {error}") from None
    if len(text) > limits.bytes:
        raise BadSnapshot(f"has more than {limits.bytes} bytes unpacked")
    if depth_of(text) > limits.nesting:
        raise BadSnapshot(f"nests deeper than {limits.nesting}")
    return text


class Reader:
    """A store of its own and a connection to each database that is asked for."""

    def __init__(self) -> None:
        self._device: Device = open_device()
        self._connections: dict[str, Connection] = {}
        self._job = Job((), Limits())

    def take(self, job: Job) -> None:
        """What is asked of the snapshots that follow."""
        self._job = job
        for database, _ in job.statements:
            if database not in self._connections:
                self._connections[database] = self._device.connect(database, readonly=True, strict=False)

    def read(self, path: str) -> list[list[Any]]:
        """The rows of each statement."""
        text = text_of(path, self._job.limits)
        try:
            self._device.load(Snapshot(_native.to_str(text)))
            return [self._connections[name].execute(statement).fetchall() for name, statement in self._job.statements]
        except Error as error:
            raise BadSnapshot(str(error).removeprefix("the fixture ")) from None
        except MemoryError:
            raise BadSnapshot("takes more memory than there is") from None


def serve() -> None:
    """Answers requests until the other side closes the pipe."""
    requests, answers = sys.stdin.buffer, os.fdopen(os.dup(1), "wb")
    os.dup2(2, 1)  # what a library prints is no message
    reader = Reader()
    write_message(answers, READY)
    while True:
        try:
            request = read_message(requests)
        except EOFError:
            return
        if isinstance(request, Job):
            reader.take(request)
            continue
        try:
            write_message(answers, (True, reader.read(request)))
        except BadSnapshot as error:
            write_message(answers, (False, str(error)))
