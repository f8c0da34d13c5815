"""A device in a process of its own, driven over a pipe, so that one process can have several."""

from __future__ import annotations

import os
import pickle
import subprocess
import sys
import threading
from typing import IO, Any, Optional

from qrylib import _store
from qrylib.device import Device, Diff, Diffable, Snapshot, open_device
from qrylib.errors import Error, InterfaceError, OperationalError, TraceLine

_LENGTH_BYTES = 8
_PROGRAM = "from qrylib.child import serve; serve()"


def write_message(pipe: IO[bytes], message: Any) -> None:
    """One pickled message behind its length."""
    body = pickle.dumps(message, protocol=pickle.HIGHEST_PROTOCOL)
    pipe.write(len(body).to_bytes(_LENGTH_BYTES, "big") + body)
    pipe.flush()


def _read_exactly(pipe: IO[bytes], size: int) -> bytes:
    body = pipe.read(size)
    if len(body) < size:
        raise EOFError
    return body


def read_message(pipe: IO[bytes]) -> Any:
    """The next message; EOFError where the other side is gone."""
    size = int.from_bytes(_read_exactly(pipe, _LENGTH_BYTES), "big")
    return pickle.loads(_read_exactly(pipe, size))


def start_python(program: str) -> "subprocess.Popen[bytes]":
    """A fresh interpreter, which finds this package where this one did."""
    environment = dict(os.environ)
    here = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
    environment["PYTHONPATH"] = os.pathsep.join(filter(None, [here, environment.get("PYTHONPATH", "")]))
    return subprocess.Popen(
        [sys.executable, "-c", program], stdin=subprocess.PIPE, stdout=subprocess.PIPE, env=environment
    )


class ChildResult:
    """What a statement answered in a child's device."""

    def __init__(self, columns: list[str], rows: list[tuple[Any, ...]], rowcount: int) -> None:
        self.columns = columns
        self.rows = rows
        self.rowcount = rowcount


class _Served:
    """The child's side: its device, and a connection for each database."""

    def __init__(self) -> None:
        self.device: Optional[Device] = None

    def open(self, fixture: Any, image: Any) -> None:
        self.device = open_device(fixture=fixture, image=image)

    def execute(self, database: str, statement: str, parameters: tuple[Any, ...], strict: bool) -> ChildResult:
        assert self.device is not None
        with self.device.connect(database, strict=strict) as connection:
            cursor = connection.execute(statement, parameters)
            columns = [column[0] for column in cursor.description or ()]
            return ChildResult(columns, cursor.fetchall() if columns else [], cursor.rowcount)

    def call(self, name: str, arguments: tuple[Any, ...], named: dict[str, Any]) -> Any:
        if name in ("open", "execute"):
            return getattr(self, name)(*arguments, **named)
        return getattr(self.device, name)(*arguments, **named)


def serve() -> None:
    """Answers calls until the other side closes the pipe."""
    served = _Served()
    calls, answers = sys.stdin.buffer, os.fdopen(os.dup(1), "wb")
    os.dup2(2, 1)  # what a library prints is no message
    while True:
        try:
            name, arguments, named = read_message(calls)
        except EOFError:
            return
        if name == "end":
            return
        try:
            write_message(answers, (True, served.call(name, arguments, named)))
        except Exception as error:  # whatever it is belongs to the caller
            write_message(answers, (False, error if isinstance(error, Error) else OperationalError(repr(error))))


class ChildDevice:
    """A device in a child process: what Device does, and execute() in the place of connections."""

    def __init__(self, *, fixture: Any = None, image: _store.Image = None) -> None:
        self._lock = threading.Lock()
        self._process: Optional["subprocess.Popen[bytes]"] = start_python(_PROGRAM)
        self._owner = os.getpid()
        path = None if image is None else _store._path_of(image)
        try:
            text = None if fixture is None else Snapshot(_store.fixture_text(fixture).decode("utf-8", "surrogateescape"))
            self._ask("open", text, path)
        except BaseException:
            self.close()
            raise

    def _ask(self, name: str, *arguments: Any, **named: Any) -> Any:
        with self._lock:
            process = self._process
            if process is None:
                raise InterfaceError("the device is closed")
            if os.getpid() != self._owner:
                raise InterfaceError("the device is a child of another process, from which this one was forked")
            assert process.stdin is not None and process.stdout is not None
            try:
                write_message(process.stdin, (name, arguments, named))
                is_done, told = read_message(process.stdout)
            except (EOFError, BrokenPipeError):
                raise OperationalError(f"the device's process ended with status {process.wait()}") from None
            except BaseException:  # an answer that nobody took would be the next call's
                process.kill()
                raise
        if not is_done:
            raise told
        return told

    @property
    def pid(self) -> int:
        """Its process."""
        if self._process is None:
            raise InterfaceError("the device is closed")
        return self._process.pid

    def execute(self, database: str, statement: str, parameters: Any = (), *, strict: bool = True) -> ChildResult:
        """Runs a statement on it; all rows come at once."""
        result: ChildResult = self._ask("execute", database, statement, tuple(parameters), strict)
        return result

    def load(self, fixture: Any) -> None:
        """As Device.load()."""
        text = _store.fixture_text(fixture).decode("utf-8", "surrogateescape")
        self._ask("load", Snapshot(text))

    def reset(self) -> None:
        """As Device.reset()."""
        self._ask("reset")

    def fail(self, call: str, *, skip: int = 0, times: int = 1, code: int = 1) -> None:
        """As Device.fail()."""
        self._ask("fail", call, skip=skip, times=times, code=code)

    def clear_failures(self) -> None:
        """As Device.clear_failures()."""
        self._ask("clear_failures")

    def counts(self) -> dict[str, int]:
        """As Device.counts()."""
        counts: dict[str, int] = self._ask("counts")
        return counts

    def traces(self) -> list[TraceLine]:
        """As Device.traces()."""
        traces: list[TraceLine] = self._ask("traces")
        return traces

    def snapshot(self) -> Snapshot:
        """As Device.snapshot()."""
        snapshot: Snapshot = self._ask("snapshot")
        return snapshot

    def diff(self, other: Diffable) -> Diff:
        """As Device.diff()."""
        return self.snapshot().diff(other)

    def close(self) -> None:
        """Ends its process."""
        process, self._process = self._process, None
        if process is None or os.getpid() != self._owner:
            return
        assert process.stdin is not None and process.stdout is not None
        try:
            # A process that was forked from this one may keep the pipe open.
            write_message(process.stdin, ("end", (), {}))
            process.stdin.close()
        except BrokenPipeError:
            pass
        process.stdout.close()
        process.wait()

    def __enter__(self) -> "ChildDevice":
        return self

    def __exit__(self, *_: object) -> None:
        self.close()

    def __del__(self) -> None:
        if getattr(self, "_process", None) is not None:
            self.close()
