"""libqrytext.so.1 and the workstation's controls by ctypes: loaded on first use, one call at a time.

The lock is held around every call. The companion runs one statement at a time in any case; and a fork waits for the lock,
so that a child never finds one that a thread which it does not have was holding.
"""

from __future__ import annotations

import ctypes
import json
import os
import threading
from typing import Any, Optional, Union

from qrylib.errors import DataError, InterfaceError, OperationalError, ProgrammingError

READONLY, STRICT, TRACES, COUNTS = 1, 2, 4, 8

# The platform calls that can be made to fail, in the order of qryhost.h.
CALLS = (
    "alloc", "create_mutex", "request_mutex", "lock_task", "get_table", "set_table", "init_table", "get_status",
    "create_list", "list_set_pos", "list_get_val", "sort", "create_handle", "register_service", "file_exist",
    "file_mkdir", "file_remove", "file_open", "file_read", "file_write", "file_close",
)  # fmt: skip

_SMALLEST, _LARGEST = -(2**31), 2**32 - 1

lock = threading.RLock()
os.register_at_fork(before=lock.acquire, after_in_parent=lock.release, after_in_child=lock.release)

_text = ctypes.c_char_p
_word = ctypes.c_uint32
_session = ctypes.c_void_p

_COMPANION: dict[str, tuple[Any, list[Any]]] = {
    "qrytext_open": (_session, [_text, _word]),
    "qrytext_close": (None, [_session]),
    "qrytext_run": (_text, [_session, _text, _text]),
    "qrytext_check": (_text, [_session, _text]),
    "qrytext_explain": (_text, [_session, _text]),
    "qrytext_schema": (_text, []),
    "qrytext_trace": (_text, [_text]),
    "qrytext_load": (_text, [_text, _word]),
    "qrytext_save": (_text, [_word]),
    "qrytext_diff": (_text, [_text, _text]),
    "qrytext_version": (_text, []),
}
_CONTROLS: dict[str, tuple[Any, list[Any]]] = {
    "qryhost_open": (ctypes.c_int, [_text]),
    "qryhost_reset": (ctypes.c_int, []),
    "qryhost_error": (_text, []),
    "qryhost_fail": (None, [ctypes.c_int, _word, _word, _word]),
    "qryhost_pool_blocks": (_word, []),
}


class _Library:
    """The functions of both shared libraries by their names."""

    def __init__(self) -> None:
        self._functions: dict[str, Any] = {}
        self._take("libqryplatform.so.1", _CONTROLS)
        self._take("libqrytext.so.1", _COMPANION)
        # A store of the process's own, whatever QRYLIB_IMAGE says: an image is used where it is asked for.
        self._functions["qryhost_open"](None)

    def _take(self, name: str, prototypes: dict[str, tuple[Any, list[Any]]]) -> None:
        try:
            shared = ctypes.CDLL(name)
        except OSError as error:
            raise InterfaceError(f"{name} cannot be loaded: {error}") from None
        for function, (result, arguments) in prototypes.items():
            found = getattr(shared, function)
            found.restype = result
            found.argtypes = arguments
            self._functions[function] = found

    def __getitem__(self, name: str) -> Any:
        return self._functions[name]


_library: Optional[_Library] = None


def call(function: str, *arguments: Any) -> Any:
    """Calls a function of the libraries. A text that is answered is copied before the lock is given back."""
    global _library
    with lock:
        if _library is None:
            _library = _Library()
        return _library[function](*arguments)


def is_loaded() -> bool:
    """Whether anything has needed the libraries yet."""
    return _library is not None


def control(function: str, *arguments: Any) -> None:
    """Calls a control of the workstation; what it complains of is raised."""
    with lock:
        if call(function, *arguments) != 0:
            raise OperationalError(last_complaint())


def last_complaint() -> str:
    """The workstation's sentence about this thread's last control that failed."""
    return to_str(call("qryhost_error"))


def _plain(member: dict[str, Any]) -> Any:
    """A text that is not UTF-8 is {"hex"} in answers, and a str with surrogate escapes here."""
    if len(member) == 1 and isinstance(member.get("hex"), str):
        return to_str(bytes.fromhex(member["hex"]))
    return member


def answer(function: str, *arguments: Any) -> Any:
    """Calls a function that answers in JSON."""
    return read_json(call(function, *arguments))


def read_json(text: Union[str, bytes]) -> Any:
    """An answer's JSON as values."""
    return json.loads(text, object_hook=_plain)


def to_str(text: bytes) -> str:
    """Bytes of the device as str; those that are not UTF-8 become surrogate escapes."""
    return text.decode("utf-8", "surrogateescape")


def to_bytes(text: str, what: str) -> bytes:
    """The bytes of a str from to_str(), or of any other, for a C string."""
    if not isinstance(text, str):
        raise ProgrammingError(f"{what} is {_kind(text)}, not a str")
    try:
        encoded = text.encode("utf-8", "surrogateescape")
    except UnicodeEncodeError:
        raise DataError(f"{what} holds a surrogate that stands for no byte") from None
    if b"\0" in encoded:
        raise ProgrammingError(f"{what} holds a zero byte")
    return encoded


def _kind(value: object) -> str:
    return "None" if value is None else f"a value of type {type(value).__name__}"


def text_parameter(value: bytes) -> Any:
    """A text as the companion and fixtures take it."""
    try:
        return value.decode("utf-8")
    except UnicodeDecodeError:
        return {"hex": value.hex()}


def parameter(value: object, number: int) -> Any:
    """A statement's parameter as the companion takes it."""
    what = f"parameter {number}"
    if isinstance(value, str):
        return text_parameter(to_bytes(value, what))
    if isinstance(value, (bytes, bytearray, memoryview)):
        return text_parameter(to_bytes(to_str(bytes(value)), what))
    try:
        whole = value.__index__()  # type: ignore[attr-defined]
    except AttributeError:
        raise DataError(f"{what} is {_kind(value)}; the device holds whole numbers and texts") from None
    if not _SMALLEST <= whole <= _LARGEST:
        raise DataError(f"{what} is {whole}; the device's numbers have 32 bits")
    return whole
