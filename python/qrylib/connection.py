"""Connections and cursors of PEP 249 on the companion."""

from __future__ import annotations

import json
import weakref
from typing import TYPE_CHECKING, Any, Iterable, Iterator, Mapping, NoReturn, Optional, Sequence, Union

from qrylib import _native, _store, errors
from qrylib._types import NUMBER, STRING, TypeObject
from qrylib.catalog import Column, schema
from qrylib.errors import Changed, Error, InterfaceError, NotSupportedError, ProgrammingError
from qrylib.explanation import Explanation, explain

if TYPE_CHECKING:
    import pandas

Row = tuple[Union[int, str], ...]
Parameters = Sequence[Any]
#: name, type code, display size, internal size, precision, scale, null ok
Description = tuple[str, TypeObject, None, Optional[int], None, None, bool]

_NO_SUCH_ITEM = 0xDB02
# Outside quotes the library knows the blank alone; statements of several lines are given to it as the shell does.
_AS_BLANKS = str.maketrans("\r\n\t", "   ")


def connect(
    database: str,
    *,
    image: _store.Image = None,
    fixture: Any = None,
    readonly: bool = False,
    strict: bool = True,
) -> "Connection":
    """Connects to a database of the process's store.

    A process has one store. A connection joins the one that is in use; the first one begins it: in private memory, all
    zeros, or in the device image `image`, with the records of `fixture` (a file, a snapshot, or an object in a fixture's
    form) where it is given. What would replace a store that is in use raises ProgrammingError and names its holder.

    readonly: only SELECT is run. strict: a statement of which something would be ignored, narrowed or read otherwise than
    it looks is not run, and raises.

    >>> with qrylib.connect("adbk_db") as db:
    ...     _ = db.execute("INSERT INTO PSN_TBL (PSN_ID, PSN_NAME) VALUES (?, ?)", (1, "Sato Kenji"))
    ...     print(db.execute("SELECT PSN_ID, PSN_NAME FROM PSN_TBL").fetchall())
    [(1, 'Sato Kenji')]
    """
    name = _native.to_bytes(database, "the database's name")
    hold = _store.take(f"connect({database!r})", image, fixture, alone=False)
    return Connection(hold, name, readonly, strict)


def _open_session(database: bytes, flags: int) -> int:
    session: Optional[int] = _native.call("qrytext_open", database, flags)
    if not session:
        known = ", ".join(schema())
        raise ProgrammingError(f"there is no database {_native.to_str(database)!r}; there are {known}")
    return session


def _close_session(session: int) -> None:
    _native.call("qrytext_close", session)


class Connection:
    """A connection to one database, made by connect(). Threads may share it."""

    Warning = errors.Warning
    Error = errors.Error
    InterfaceError = errors.InterfaceError
    DatabaseError = errors.DatabaseError
    DataError = errors.DataError
    OperationalError = errors.OperationalError
    IntegrityError = errors.IntegrityError
    InternalError = errors.InternalError
    ProgrammingError = errors.ProgrammingError
    NotSupportedError = errors.NotSupportedError

    def __init__(self, hold: _store.Hold, database: bytes, readonly: bool, strict: bool) -> None:
        self._hold = hold
        self._flags = (_native.READONLY if readonly else 0) | _native.TRACES | _native.COUNTS
        try:
            self._plain = _open_session(database, self._flags)
            self._strict = _open_session(database, self._flags | _native.STRICT)
        except Error:
            hold.release()
            raise
        self._closers = [weakref.finalize(self, _close_session, one) for one in (self._plain, self._strict)]
        hold.user = weakref.ref(self)
        self.database = _native.to_str(database)
        self.strict = strict
        self.messages: list[tuple[type[BaseException], BaseException]] = []

    def close(self) -> None:
        """Closes the connection, and the store when nobody else uses it."""
        for closer in self._closers:
            closer()
        self._hold.release()

    @property
    def closed(self) -> bool:
        """Whether it is closed."""
        return not self._closers[0].alive

    def _check_open(self) -> None:
        if self.closed:
            raise InterfaceError("the connection is closed")

    def commit(self) -> None:
        """Does nothing: every statement is done when it returns."""
        self._check_open()

    def rollback(self) -> NoReturn:
        """Raises NotSupportedError: there is no undo."""
        self._check_open()
        raise NotSupportedError("there are no transactions, and no undo; Device.snapshot() and load() restore records")

    def cursor(self) -> "Cursor":
        """A new cursor."""
        self._check_open()
        return Cursor(self)

    def execute(self, operation: str, parameters: Parameters = ()) -> "Cursor":
        """A new cursor that has run a statement."""
        return self.cursor().execute(operation, parameters)

    def executemany(self, operation: str, seq_of_parameters: Iterable[Parameters]) -> "Cursor":
        """A new cursor that has run a statement for each row of parameters."""
        return self.cursor().executemany(operation, seq_of_parameters)

    def check(self, statement: str) -> None:
        """Raises what execute() would raise before it runs the statement, and does not run it."""
        with _native.lock:
            self._check_open()
            text = _native.to_bytes(_as_one_line(statement), "the statement")
            told = _native.answer("qrytext_check", self._strict if self.strict else self._plain, text)
        if not told["ok"]:
            raise _error_of({**told, "traces": ()}, statement, Changed())

    def explain(self, statement: str) -> Explanation:
        """How a statement is understood, without running it."""
        self._check_open()
        return explain(statement, self.database)

    def __enter__(self) -> "Connection":
        self._check_open()
        return self

    def __exit__(self, *_: object) -> None:
        self.close()

    def __repr__(self) -> str:
        return f"<qrylib.Connection to {self.database}{' (closed)' if self.closed else ''}>"

    def _run(self, statement: bytes, parameters: bytes) -> dict[str, Any]:
        with _native.lock:
            self._check_open()
            # A strict session looks at the statement first, and would take a failure that is ordered for the statement.
            looks_first = self.strict and not _store.orders
            return _store.run(self._strict if looks_first else self._plain, statement, parameters)


def _characters(statement: bytes, place: int) -> int:
    return len(_native.to_str(statement[:place]))


def _error_of(told: dict[str, Any], operation: str, changed: Changed) -> Error:
    """The exception for an answer that is not ok."""
    statement = _native.to_bytes(operation, "the statement")
    refusal = told["refusal"] or {"text": told["text"], "hint": "", "from": None}
    place = None
    if refusal["from"] is not None:
        place = (_characters(statement, refusal["from"]), _characters(statement, refusal["to"]))
    is_value = place is not None and not told["traces"] and operation[slice(*place)] == "?"
    kind: type[errors.DatabaseError] = errors.DataError
    if not is_value:
        kind = errors.kind_of(told["code"], told["traces"])
    return kind(
        refusal["text"],
        code=told["code"],
        name=told["name"] if told["code"] else "",
        hint=refusal["hint"],
        place=place,
        statement=operation,
        traces=told["traces"],
        changed=changed,
    )


def _as_one_line(operation: str) -> str:
    pieces = operation.split("'")
    pieces[::2] = [piece.translate(_AS_BLANKS) for piece in pieces[::2]]
    return "'".join(pieces)


def _encode(parameters: Any) -> bytes:
    if isinstance(parameters, (str, bytes, Mapping)) or not hasattr(parameters, "__iter__"):
        raise ProgrammingError("parameters are a sequence of values, one for each ?")
    values = [_native.parameter(value, number) for number, value in enumerate(parameters, 1)]
    return json.dumps(values).encode()


class Cursor:
    """Runs statements and hands out their rows. All rows of a SELECT are there when execute() returns."""

    def __init__(self, connection: Connection) -> None:
        self.connection = connection
        #: How many rows fetchmany() fetches.
        self.arraysize = 1
        self.messages: list[tuple[type[BaseException], BaseException]] = []
        self._is_closed = False
        self._forget()

    def _forget(self) -> None:
        #: Seven members for each column of a SELECT's answer; None for other statements.
        self.description: Optional[tuple[Description, ...]] = None
        #: The rows of a SELECT, the records that any other statement wrote; -1 before the first one.
        self.rowcount = -1
        #: The row that is fetched next; None without rows.
        self.rownumber: Optional[int] = None
        #: The library's return code.
        self.code = 0
        #: The records that the statement wrote, by what was done to them.
        self.changed = Changed()
        self._rows: Optional[list[Row]] = None
        self._types: list[str] = []
        self._inserted: Optional[tuple[str, tuple[Any, ...]]] = None
        self.messages.clear()

    def close(self) -> None:
        """Closes the cursor; its rows are gone."""
        self._forget()
        self._is_closed = True

    def _check_open(self) -> None:
        if self._is_closed:
            raise InterfaceError("the cursor is closed")
        self.connection._check_open()

    def execute(self, operation: str, parameters: Parameters = ()) -> "Cursor":
        """Runs a statement with one value for each ? outside quotes.

        A value is a whole number, a str or bytes. INSERT and UPDATE take any. In a condition a text with a keyword or a
        comma in it cannot be said in the dialect, and is refused.
        """
        self._check_open()
        self._forget()
        told = self._run(operation, _encode(parameters))
        if "rows" in told:
            self._rows = [tuple(row) for row in told["rows"]]
            self.rowcount = len(self._rows)
            self.rownumber = 0
            self._describe(told["columns"])
        elif told["kind"] == "insert":
            self._inserted = (operation, tuple(parameters))
        return self

    def executemany(self, operation: str, seq_of_parameters: Iterable[Parameters]) -> "Cursor":
        """Runs a statement that writes once for each row of parameters. rowcount is the sum, of what was done until then
        where one fails."""
        self._check_open()
        self._forget()
        if operation.lstrip()[:6].upper() == "SELECT":
            raise ProgrammingError("executemany() takes statements that write; a SELECT is execute()'s")
        done = 0
        self.rowcount = 0
        for parameters in seq_of_parameters:
            try:
                self._run(operation, _encode(parameters))
            finally:
                done += max(0, self.changed.total())
                self.rowcount = done
                self.changed = Changed()
        return self

    def _run(self, operation: str, values: bytes) -> dict[str, Any]:
        told = self.connection._run(_native.to_bytes(_as_one_line(operation), "the statement"), values)
        _store.last_run.update(statement=operation, traces=told["traces"])
        self.changed = Changed(**told["changed"])
        self.rowcount = self.changed.total()
        self.code = told["code"]
        self._tell_notes(told)
        if told["ok"] or self._matched_nothing(told):
            return told
        raise _error_of(told, operation, self.changed)

    @staticmethod
    def _matched_nothing(told: dict[str, Any]) -> bool:
        """An UPDATE that matches no record: rowcount 0 here, and a code of the library's own."""
        return bool(told["kind"] == "update" and told["code"] == _NO_SUCH_ITEM)

    def _tell_notes(self, told: dict[str, Any]) -> None:
        for note in told["notes"] if told["ok"] else ():
            text = f"{note['text']}; {note['hint']}" if note["hint"] else note["text"]
            self.messages.append((errors.Warning, errors.Warning(text)))
        # With failures ordered the statement ran before it was looked at.
        if told["ok"] and told["notes"] and self.connection.strict:
            told["ok"] = False
            told["refusal"] = told["notes"][0]

    def _describe(self, columns: list[dict[str, str]]) -> None:
        tables = schema().get(self.connection.database, {})
        described = []
        for column in columns:
            table = tables.get(column["table"])
            known: dict[str, Column] = {one.name: one for one in table.columns} if table else {}
            found = known.get(column["name"].rpartition(".")[2])
            is_text = column["type"] == "text"
            size = found.size - 1 if found and is_text else found.size if found else None
            described.append((column["name"], STRING if is_text else NUMBER, None, size, None, None, False))
            self._types.append("object" if is_text else found.dtype if found else "int64")
        self.description = tuple(described)

    @property
    def lastrowid(self) -> Optional[int]:
        """The key that the last execute() of an INSERT gave, in a table whose key is one number; else None."""
        if self._inserted is None:
            return None
        return _key_given(self.connection.database, *self._inserted)

    def _fetchable(self) -> tuple[list[Row], int]:
        self._check_open()
        if self._rows is None or self.rownumber is None:
            raise ProgrammingError("there are no rows to fetch: no SELECT was run")
        return self._rows, self.rownumber

    def fetchone(self) -> Optional[Row]:
        """The next row, or None behind the last."""
        rows, at = self._fetchable()
        if at >= len(rows):
            return None
        self.rownumber = at + 1
        return rows[at]

    def fetchmany(self, size: Optional[int] = None) -> list[Row]:
        """The next rows, `arraysize` of them unless `size` says otherwise; none behind the last."""
        rows, at = self._fetchable()
        end = min(len(rows), at + max(0, self.arraysize if size is None else size))
        self.rownumber = end
        return rows[at:end]

    def fetchall(self) -> list[Row]:
        """The rows that are left."""
        rows, at = self._fetchable()
        self.rownumber = len(rows)
        return rows[at:]

    def scroll(self, value: int, mode: str = "relative") -> None:
        """Moves to another row; IndexError beyond the rows."""
        rows, at = self._fetchable()
        if mode not in ("relative", "absolute"):
            raise ProgrammingError('mode is "relative" or "absolute"')
        to = at + value if mode == "relative" else value
        if not 0 <= to < len(rows):
            raise IndexError(f"there are {len(rows)} rows, and none at {to}")
        self.rownumber = to

    def __iter__(self) -> Iterator[Row]:
        return self

    def __next__(self) -> Row:
        row = self.fetchone()
        if row is None:
            raise StopIteration
        return row

    next = __next__

    def to_pandas(self) -> "pandas.DataFrame":
        """The rows that are left as a pandas frame, with the schema's types."""
        try:
            import pandas
        except ImportError:
            raise NotSupportedError("pandas is not installed") from None
        rows = self.fetchall()
        names = [column[0] for column in self.description or ()]
        columns = list(zip(*rows)) if rows else [()] * len(names)
        series = [pandas.Series(list(values), dtype=kind) for values, kind in zip(columns, self._types)]
        frame = pandas.concat(series, axis=1) if series else pandas.DataFrame()
        frame.columns = pandas.Index(names)
        return frame

    def callproc(self, procname: str, parameters: Parameters = ()) -> NoReturn:
        """Raises NotSupportedError: there are no procedures."""
        self._check_open()
        raise NotSupportedError("there are no stored procedures")

    def nextset(self) -> NoReturn:
        """Raises NotSupportedError: a statement has one answer."""
        self._check_open()
        raise NotSupportedError("a statement has one answer")

    def setinputsizes(self, sizes: Sequence[Any]) -> None:
        """Does nothing."""
        self._check_open()

    def setoutputsize(self, size: int, column: Optional[int] = None) -> None:
        """Does nothing."""
        self._check_open()

    def __enter__(self) -> "Cursor":
        self._check_open()
        return self

    def __exit__(self, *_: object) -> None:
        self.close()


def _key_given(database: str, operation: str, parameters: tuple[Any, ...]) -> Optional[int]:
    """The key's value in an INSERT. With another text for every "?", what changes in the explanation are the parameters."""
    readings = [explain(_filled(operation, value), database) for value in ("1", "2")]
    if not readings[0].tables:
        return None
    table = schema()[database].get(readings[0].tables[0])
    if table is None or len(table.key) != 1 or table.key[0].is_text:
        return None
    given = iter(parameters)
    key = None
    for one, other in zip(readings[0].columns, readings[1].columns):
        value = next(given) if one["value"] != other["value"] else one["value"]
        if one["name"] == table.key[0].name:
            key = value
    return None if key is None else int(key)


def _filled(operation: str, value: str) -> str:
    pieces = operation.split("'")
    pieces[::2] = [piece.replace("?", value) for piece in pieces[::2]]
    return _as_one_line("'".join(pieces))
