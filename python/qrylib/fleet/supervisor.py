"""Keeps one reader process for this process: starts it, waits no longer than the limit, replaces one that died."""

from __future__ import annotations

import os
import select
import subprocess
import sys
import threading
from dataclasses import dataclass
from typing import Any, Optional, Union

from qrylib.child import read_message, start_python, write_message
from qrylib.errors import InterfaceError, ProgrammingError
from qrylib.fleet.reader import PROGRAM, Job


@dataclass(frozen=True)
class Bad:
    """Why a snapshot gave no rows."""

    reason: str


Rows = list[list[Any]]
_one_snapshot = threading.Lock()
_kept: Optional["ReaderProcess"] = None


class ReaderProcess:
    """A reader and what it was asked last."""

    def __init__(self, program: str = PROGRAM) -> None:
        self._program = program
        self._process: Optional["subprocess.Popen[bytes]"] = None
        self._job: Optional[Job] = None
        self.owner = os.getpid()

    def read(self, path: str, job: Job) -> Union[Rows, Bad]:
        """The rows of a snapshot. One that kills its readers is given up; others are read by the next reader."""
        status = 0
        for _ in range(job.limits.tries):
            try:
                return self._ask(self._prepared(job), path, job)
            except (EOFError, BrokenPipeError):
                status = self._end()
            except BaseException:  # an answer that nobody took would be the next snapshot's
                self.close()
                raise
        return Bad(f"ended its reader with status {status} in {job.limits.tries} tries")

    def _prepared(self, job: Job) -> "subprocess.Popen[bytes]":
        process = self._process or self._started()
        if self._job != job:
            assert process.stdin is not None
            write_message(process.stdin, job)
            self._job = job
        return process

    def _started(self) -> "subprocess.Popen[bytes]":
        """A reader that is ready: its start is not the snapshot's time, nor its failure the snapshot's fault."""
        self._process = process = start_python(self._program)
        self._job = None
        assert process.stdout is not None
        try:
            read_message(process.stdout)
            return process
        except EOFError:
            raise InterfaceError(f"the process that reads snapshots does not start: status {self._end()}") from None

    def _ask(self, process: "subprocess.Popen[bytes]", path: str, job: Job) -> Union[Rows, Bad]:
        assert process.stdin is not None and process.stdout is not None
        write_message(process.stdin, path)
        # A reader that has an answer sends all of it at once.
        if not select.select([process.stdout], [], [], job.limits.seconds)[0]:
            self._end()
            return Bad(f"took longer than {job.limits.seconds:g} seconds")
        is_read, told = read_message(process.stdout)
        return told if is_read else Bad(told)

    def _end(self) -> int:
        process, self._process = self._process, None
        assert process is not None and process.stdin is not None and process.stdout is not None
        process.kill()
        process.stdout.close()
        try:
            process.stdin.close()
        except BrokenPipeError:
            pass
        return process.wait()

    def close(self) -> None:
        """Ends the reader."""
        if self._process is not None and self.owner == os.getpid():
            self._end()


def read_snapshot(path: str, job: Job) -> Union[Rows, Bad]:
    """Reads one snapshot with this process's reader, one at a time."""
    global _kept
    with _one_snapshot:
        if _kept is None or _kept.owner != os.getpid():
            _kept = ReaderProcess()
        return _kept.read(path, job)


def refuse_threads() -> None:
    """A worker process handles one snapshot at a time: a scheduler that has threads for workers is refused."""
    distributed = sys.modules.get("distributed")
    if distributed is not None:
        try:
            is_in_this_process = distributed.get_worker().address.startswith("inproc://")
        except ValueError:
            pass
        else:
            if is_in_this_process:
                _refuse()
            return
    if threading.current_thread() is not threading.main_thread():
        _refuse()


def _refuse() -> None:
    raise ProgrammingError(
        "a scheduler of threads cannot read snapshots: a store belongs to a process, which handles one at a time",
        hint='use processes: compute(scheduler="processes"), or a distributed.Client whose workers are processes',
    )
