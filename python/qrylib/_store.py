"""The one store of the process: who uses it, what was ordered to fail in it, and what its statements cost."""

from __future__ import annotations

import json
import os
import sys
import weakref
from collections import deque
from pathlib import Path
from typing import Any, Callable, Deque, Mapping, Optional, Union

from qrylib import _native
from qrylib.errors import OperationalError, ProgrammingError, TraceLine

PathOrText = Union[str, "os.PathLike[str]"]


class _EnvironmentImage:
    def __repr__(self) -> str:
        return "qrylib.QRYLIB_IMAGE"


#: Given as an image: the one that the environment names in QRYLIB_IMAGE.
QRYLIB_IMAGE = _EnvironmentImage()
Image = Union[None, PathOrText, _EnvironmentImage]

#: Lines of trace that are kept until somebody asks for them.
KEPT_TRACES = 10_000
_PACKAGE = os.path.dirname(os.path.abspath(__file__))


def _place_of_caller() -> str:
    frame = sys._getframe(1)
    while frame.f_back is not None and os.path.abspath(frame.f_code.co_filename).startswith(_PACKAGE):
        frame = frame.f_back
    return f"{frame.f_code.co_filename}:{frame.f_lineno}"


class Hold:
    """One user of the store: a device or a connection."""

    def __init__(self, what: str) -> None:
        self.what = f"{what}, opened at {_place_of_caller()}"
        self.user: Callable[[], Any] = lambda: None

    def release(self) -> None:
        """Ends the use. When nobody uses the store its records are dropped, or its image is left."""
        with _native.lock:
            if self in _holds:
                _holds.discard(self)
                if not _holds:
                    forget_orders()
                    _open(None)


_holds: "weakref.WeakSet[Hold]" = weakref.WeakSet()
_image: Optional[str] = None

orders: dict[str, list[int]] = {}  # of each kind of call: calls to let through, calls to fail, the code
counts: dict[str, int] = {}
traces: Deque[TraceLine] = deque(maxlen=KEPT_TRACES)
last_run: dict[str, Any] = {}


def close_users() -> None:
    """Closes every connection to the store."""
    for hold in list(_holds):
        user = hold.user()
        if user is not None:
            user.close()


def forget_orders() -> None:
    """Ends every order to fail, and what was counted and traced."""
    orders.clear()
    counts.clear()
    traces.clear()
    last_run.clear()


def _path_of(image: Image) -> Optional[str]:
    if not isinstance(image, _EnvironmentImage):
        return None if image is None else os.path.realpath(image)
    named = os.environ.get("QRYLIB_IMAGE", "")
    if not named:
        raise ProgrammingError("the environment names no image in QRYLIB_IMAGE")
    return os.path.realpath(named)


def _open(path: Optional[str]) -> None:
    global _image
    _native.control("qryhost_open", None if path is None else os.fsencode(path))
    _image = path


def fixture_text(fixture: Union[PathOrText, Mapping[str, Any], Any]) -> bytes:
    """A fixture's text: of a file, of a snapshot, or of an object that JSON can write."""
    if isinstance(fixture, (str, os.PathLike)):
        return Path(fixture).read_bytes()
    if isinstance(fixture, Mapping):
        return json.dumps(_as_written(fixture)).encode()
    return _native.to_bytes(fixture.text, "the fixture")


def _as_written(value: Any) -> Any:
    """Texts as a fixture has them: those that are not UTF-8 by their bytes."""
    if isinstance(value, Mapping):
        return {name: _as_written(member) for name, member in value.items()}
    if isinstance(value, (list, tuple)):
        return [_as_written(member) for member in value]
    return _native.text_parameter(value.encode("utf-8", "surrogateescape")) if isinstance(value, str) else value


def load(fixture: Any) -> None:
    """Replaces the records by a fixture's; one that is refused changes nothing."""
    text = fixture_text(fixture)
    if b"\0" in text:
        raise OperationalError("the fixture holds a zero byte")
    loaded = _native.answer("qrytext_load", text, 0)
    if not loaded["ok"]:
        place = f"{loaded['place']}: " if loaded["place"] else ""
        raise OperationalError(f"the fixture is refused: {place}{loaded['text']}")


def take(what: str, image: Image, fixture: Any, alone: bool) -> Hold:
    """A use of the store. Refused where it would replace one that is in use."""
    path = _path_of(image)
    with _native.lock:
        holders = list(_holds)
        if holders and (alone or fixture is not None or (image is not None and path != _image)):
            raise ProgrammingError(
                f"the store of this process is in use by {holders[0].what}; a process has one store",
                hint="close it first, or open a device in a child process: qrylib.device(child=True)",
            )
        hold = Hold(what)
        if not holders:
            _start(path, fixture)
        _holds.add(hold)
        return hold


def _start(path: Optional[str], fixture: Any) -> None:
    forget_orders()
    _open(path)
    try:
        if fixture is not None:
            load(fixture)
    except BaseException:
        _open(None)
        raise


def order(call: str, skip: int, times: int, code: int) -> None:
    """Makes calls of one kind fail, in statements that run from now on."""
    if call not in _native.CALLS:
        raise ProgrammingError(f"there is no platform call {call!r}; there are {', '.join(_native.CALLS)}")
    for name, number in (("skip", skip), ("times", times), ("code", code)):
        if not 0 <= number < 2**32:
            raise ProgrammingError(f"{name} is {number}; it has 32 bits and no sign")
    with _native.lock:
        orders[call] = [skip, times, code]


def run(session: int, statement: bytes, parameters: bytes) -> dict[str, Any]:
    """Runs a statement; keeps its cost and its trace. Orders hold for it and for nothing around it."""
    with _native.lock:
        for call, (skip, times, code) in orders.items():
            _native.call("qryhost_fail", _native.CALLS.index(call), skip, times, code)
        try:
            told: dict[str, Any] = _native.answer("qrytext_run", session, statement, parameters)
        finally:
            for call in orders:
                _native.call("qryhost_fail", _native.CALLS.index(call), 0, 0, 0)
        if told["code"] in (0x5242, 0x5245, 0x5246):
            told["text"] = _native.last_complaint() or told["text"]
        told["traces"] = tuple(TraceLine(**line) for line in told.get("traces", ()))
        _remember(told)
        return told


def _remember(told: dict[str, Any]) -> None:
    made = told.get("counts", {}).get("calls", {})
    for call, number in made.items():
        counts[call] = counts.get(call, 0) + number
    for call, left in orders.items():
        number = made.get(call, 0)
        failed = min(left[1], max(0, number - left[0]))
        left[0] -= min(left[0], number)
        left[1] -= failed
    traces.extend(told["traces"])
