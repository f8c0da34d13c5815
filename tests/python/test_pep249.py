"""PEP 249, name by name: each of its requirements is a row of the table, and docs/python.md lists the same names."""

import inspect
import re

import pytest

import qrylib
from conftest import OFFICE, ROOT

REQUIREMENTS = {}


def requirement(*names):
    """Enters a test into the table under the PEP's names."""

    def enter(test):
        REQUIREMENTS.update({name: test for name in names})
        return test

    return enter


class Given:
    """A device with two people, a connection and a cursor, closed behind the test."""

    def __init__(self):
        self.device = qrylib.device()
        self.connection = self.device.connect("adbk_db")
        self.cursor = self.connection.cursor()
        self.cursor.executemany("INSERT INTO PSN_TBL (PSN_ID, PSN_NAME) VALUES (?, ?)", [(1, "Sato"), (2, "Anna")])

    def selected(self):
        self.cursor.execute("SELECT PSN_ID, PSN_NAME FROM PSN_TBL ORDER BY PSN_ID")
        return self.cursor


@pytest.fixture
def given():
    made = Given()
    yield made
    made.device.close()


def refused(kind, call, *arguments, **named):
    with pytest.raises(kind) as caught:
        call(*arguments, **named)
    assert type(caught.value) is kind
    return caught.value


@requirement("connect()")
def connect_opens_a_connection(given):
    assert isinstance(qrylib.connect("adbk_db"), qrylib.Connection)
    assert "there is no database 'nowhere'" in str(refused(qrylib.ProgrammingError, qrylib.connect, "nowhere"))
    parameters = inspect.signature(qrylib.connect).parameters
    assert list(parameters) == ["database", "image", "fixture", "readonly", "strict"]


@requirement("apilevel")
def apilevel_is_2_0(given):
    assert qrylib.apilevel == "2.0"


@requirement("threadsafety")
def threads_share_connections(given):
    import threading

    assert qrylib.threadsafety == 2
    found = []

    def ask():
        for _ in range(50):
            found.append(given.connection.execute("SELECT COUNT(*) FROM PSN_TBL").fetchone())

    threads = [threading.Thread(target=ask) for _ in range(4)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert found == [(2,)] * 200


@requirement("paramstyle")
def parameters_are_question_marks(given):
    assert qrylib.paramstyle == "qmark"
    given.cursor.execute("SELECT PSN_ID FROM PSN_TBL WHERE PSN_NAME = ?", ("Anna",))
    assert given.cursor.fetchall() == [(2,)]


PARENTS = {
    "Warning": Exception,
    "Error": Exception,
    "InterfaceError": qrylib.Error,
    "DatabaseError": qrylib.Error,
    "DataError": qrylib.DatabaseError,
    "OperationalError": qrylib.DatabaseError,
    "IntegrityError": qrylib.DatabaseError,
    "InternalError": qrylib.DatabaseError,
    "ProgrammingError": qrylib.DatabaseError,
    "NotSupportedError": qrylib.DatabaseError,
}


@requirement(*PARENTS)
def exceptions_form_the_tree(given):
    for name, parent in PARENTS.items():
        assert getattr(qrylib, name).__bases__ == (parent,), name


@requirement("Connection.Error, Connection.ProgrammingError and the others")
def connections_have_the_exceptions(given):
    for name in PARENTS:
        assert getattr(given.connection, name) is getattr(qrylib, name)


@requirement("Connection.close()")
def close_makes_a_connection_unusable(given):
    given.connection.close()
    refused(qrylib.InterfaceError, given.connection.cursor)
    refused(qrylib.InterfaceError, given.connection.commit)
    refused(qrylib.InterfaceError, given.cursor.execute, "SELECT PSN_ID FROM PSN_TBL")
    given.connection.close()


@requirement("Connection.commit()")
def commit_does_nothing(given):
    assert given.connection.commit() is None
    assert given.selected().rowcount == 2


@requirement("Connection.rollback()")
def rollback_is_not_supported(given):
    refused(qrylib.NotSupportedError, given.connection.rollback)


@requirement("Connection.cursor()")
def cursor_makes_cursors(given):
    one, other = given.connection.cursor(), given.connection.cursor()
    one.execute("SELECT PSN_ID FROM PSN_TBL WHERE PSN_ID = 1")
    other.execute("SELECT PSN_ID FROM PSN_TBL WHERE PSN_ID = 2")
    assert (one.fetchall(), other.fetchall()) == ([(1,)], [(2,)])


@requirement("Connection.messages", "Cursor.messages")
def notes_are_messages(given):
    plain = given.device.connect("adbk_db", strict=False)
    cursor = plain.execute("SELECT PSN_ID FROM PSN_TBL WHERE PSN_ID = 1 or so")
    [(kind, note)] = cursor.messages
    assert kind is qrylib.Warning and "was read as part of the value" in str(note)
    cursor.execute("SELECT PSN_ID FROM PSN_TBL")
    assert cursor.messages == [] and plain.messages == []


@requirement("Cursor.description")
def description_has_seven_members_for_each_column(given):
    assert given.cursor.description is None
    given.selected()
    assert given.cursor.description == (
        ("PSN_ID", qrylib.NUMBER, None, 2, None, None, False),
        ("PSN_NAME", qrylib.STRING, None, 192, None, None, False),
    )
    given.cursor.execute("SELECT PSN_ID FROM PSN_TBL WHERE PSN_ID = 99")
    assert [column[0] for column in given.cursor.description] == ["PSN_ID"]
    given.cursor.execute("DELETE FROM PSN_TBL WHERE PSN_ID = 99")
    assert given.cursor.description is None


@requirement("Cursor.rowcount")
def rowcount_is_the_true_number(given):
    assert given.connection.cursor().rowcount == -1
    assert given.cursor.rowcount == 2
    assert given.selected().rowcount == 2
    counts = {
        "SELECT COUNT(*) FROM PSN_TBL": 1,
        "UPDATE PSN_TBL SET PSN_NAME = 'x'": 2,
        "UPDATE PSN_TBL SET PSN_NAME = 'y' WHERE PSN_ID = 99": 0,
        "INSERT INTO PSN_TBL (PSN_ID) VALUES (3)": 1,
        "INSERT INTO PSN_TBL (PSN_ID, PSN_NAME) VALUES (3, 'again')": 1,
        "DELETE FROM PSN_TBL WHERE PSN_ID > 1": 2,
        "DROP TABLE PSN_TBL": 1,
    }
    assert {text: given.cursor.execute(text).rowcount for text in counts} == counts
    assert given.cursor.execute("UPDATE PSN_TBL SET PSN_NAME = 'y'").code == 0xDB02


@requirement("Cursor.callproc()")
def there_are_no_procedures(given):
    refused(qrylib.NotSupportedError, given.cursor.callproc, "name")


@requirement("Cursor.close()")
def close_makes_a_cursor_unusable(given):
    cursor = given.selected()
    cursor.close()
    for call in (cursor.fetchone, cursor.fetchmany, cursor.fetchall):
        refused(qrylib.InterfaceError, call)
    refused(qrylib.InterfaceError, cursor.execute, "SELECT PSN_ID FROM PSN_TBL")


@requirement("Cursor.execute()")
def execute_runs_a_statement(given):
    given.cursor.execute("UPDATE PSN_TBL SET PSN_NAME = ? WHERE PSN_ID = ?", ["Kenji", 1])
    assert given.selected().fetchall() == [(1, "Kenji"), (2, "Anna")]
    refused(qrylib.ProgrammingError, given.cursor.execute, "SELECT PSN_ID FROM PSN_TBL WHERE PSN_ID = ?")
    refused(qrylib.ProgrammingError, given.cursor.execute, "SELECT PSN_ID FROM PSN_TBL", (1,))
    refused(qrylib.ProgrammingError, given.cursor.execute, "SELECT PSN_ID FROM PSN_TBL WHERE PSN_ID = ?", {"a": 1})
    refused(qrylib.ProgrammingError, given.cursor.execute, "SELECT PSN_ID FROM PSN_TBL WHERE PSN_ID = ?", "1")


@requirement("Cursor.executemany()")
def executemany_runs_once_for_each_row(given):
    given.cursor.executemany("DELETE FROM PSN_TBL WHERE PSN_ID = ?", ([number] for number in (1, 2, 99)))
    assert given.cursor.rowcount == 2
    refused(qrylib.ProgrammingError, given.cursor.executemany, "SELECT PSN_ID FROM PSN_TBL WHERE PSN_ID = ?", [(1,)])
    refused(
        qrylib.DataError, given.cursor.executemany, "INSERT INTO PSN_TBL (PSN_ID) VALUES (?)", [(5,), (6,), (2**33,), (7,)]
    )
    assert given.cursor.rowcount == 2
    assert given.selected().fetchall() == [(5, ""), (6, "")]


@requirement("Cursor.fetchone()")
def fetchone_ends_with_none(given):
    cursor = given.selected()
    assert [cursor.fetchone() for _ in range(3)] == [(1, "Sato"), (2, "Anna"), None]
    refused(qrylib.ProgrammingError, given.connection.cursor().fetchone)
    cursor.execute("DROP TABLE PSN_TBL")
    refused(qrylib.ProgrammingError, cursor.fetchone)


@requirement("Cursor.fetchmany()")
def fetchmany_takes_a_size(given):
    cursor = given.selected()
    assert [len(cursor.fetchmany(size)) for size in (0, 1, 5, 5)] == [0, 1, 1, 0]
    refused(qrylib.ProgrammingError, given.connection.cursor().fetchmany)


@requirement("Cursor.fetchall()")
def fetchall_takes_what_is_left(given):
    cursor = given.selected()
    cursor.fetchone()
    assert cursor.fetchall() == [(2, "Anna")]
    assert cursor.fetchall() == []
    refused(qrylib.ProgrammingError, given.connection.cursor().fetchall)


@requirement("Cursor.nextset()")
def a_statement_has_one_answer(given):
    refused(qrylib.NotSupportedError, given.selected().nextset)


@requirement("Cursor.arraysize")
def arraysize_is_how_many_fetchmany_takes(given):
    cursor = given.selected()
    assert cursor.arraysize == 1 and len(cursor.fetchmany()) == 1
    cursor = given.selected()
    cursor.arraysize = 2
    assert len(cursor.fetchmany()) == 2


@requirement("Cursor.setinputsizes()", "Cursor.setoutputsize()")
def sizes_are_free_to_do_nothing(given):
    assert given.cursor.setinputsizes([None, 10]) is None
    assert given.cursor.setoutputsize(100, 1) is None


@requirement("Date()", "Time()", "Timestamp()", "DateFromTicks()", "TimeFromTicks()", "TimestampFromTicks()")
def there_are_no_date_types(given):
    for call, arguments in (
        (qrylib.Date, (2026, 1, 2)),
        (qrylib.Time, (1, 2, 3)),
        (qrylib.Timestamp, (2026, 1, 2, 3, 4, 5)),
        (qrylib.DateFromTicks, (0,)),
        (qrylib.TimeFromTicks, (0,)),
        (qrylib.TimestampFromTicks, (0,)),
    ):
        refused(qrylib.NotSupportedError, call, *arguments)


@requirement("Binary()")
def binary_makes_bytes_for_a_text(given):
    given.cursor.execute("UPDATE PSN_TBL SET PSN_NAME = ? WHERE PSN_ID = 1", (qrylib.Binary(b"\x83\x41"),))
    assert given.selected().fetchone() == (1, "\udc83A")


@requirement("STRING", "BINARY", "NUMBER", "DATETIME", "ROWID")
def type_objects_compare_with_type_codes(given):
    codes = [column[1] for column in given.selected().description]
    assert codes == [qrylib.NUMBER, qrylib.STRING]
    for other in (qrylib.BINARY, qrylib.DATETIME, qrylib.ROWID):
        assert other not in codes


@requirement("NULL as None")
def none_is_refused(given):
    error = refused(
        qrylib.DataError, given.cursor.execute, "INSERT INTO PSN_TBL (PSN_ID, PSN_NAME) VALUES (?, ?)", (3, None)
    )
    assert "parameter 2 is None" in str(error)
    assert given.selected().rowcount == 2


@requirement("Cursor.rownumber")
def rownumber_is_the_next_row(given):
    assert given.cursor.rownumber is None
    cursor = given.selected()
    assert cursor.rownumber == 0
    cursor.fetchone()
    assert cursor.rownumber == 1


@requirement("Cursor.connection")
def a_cursor_knows_its_connection(given):
    assert given.cursor.connection is given.connection


@requirement("Cursor.scroll()")
def scroll_moves(given):
    cursor = given.selected()
    cursor.scroll(1)
    assert cursor.fetchone() == (2, "Anna")
    cursor.scroll(0, mode="absolute")
    assert cursor.fetchone() == (1, "Sato")
    with pytest.raises(IndexError):
        cursor.scroll(9)


@requirement("Cursor.next()", "Cursor.__iter__()")
def cursors_iterate(given):
    assert list(given.selected()) == [(1, "Sato"), (2, "Anna")]
    assert given.selected().next() == (1, "Sato")


@requirement("Cursor.lastrowid")
def lastrowid_is_the_key_of_an_insert(given):
    def rowid(text, parameters=()):
        return given.cursor.execute(text, parameters).lastrowid

    assert given.cursor.lastrowid is None
    assert rowid("INSERT INTO PSN_TBL (PSN_ID) VALUES (7)") == 7
    assert rowid("INSERT INTO PSN_TBL (PSN_NAME, PSN_ID) VALUES (?, ?)", ("O'Hara?", 8)) == 8
    assert rowid("INSERT INTO PSN_TBL (PSN_NAME, PSN_ID) VALUES ('?', ?)", (9,)) == 9
    assert rowid("UPDATE PSN_TBL SET PSN_NAME = 'x' WHERE PSN_ID = 7") is None
    assert rowid("SELECT PSN_ID FROM PSN_TBL") is None


@requirement("Connection.__enter__(), Connection.__exit__()")
def contexts_close(given):
    with given.device.connect("adbk_db") as connection, connection.cursor() as cursor:
        cursor.execute("SELECT PSN_ID FROM PSN_TBL")
    assert connection.closed
    refused(qrylib.InterfaceError, cursor.fetchall)


@pytest.mark.parametrize("name", sorted(REQUIREMENTS))
def test_pep249(name, given):
    REQUIREMENTS[name](given)


def test_the_page_has_the_same_names():
    page = (ROOT / "docs" / "python.md").read_text()
    table = page.split("<!-- pep 249 -->")[1].split("\n\n")[0]
    rows = [re.findall(r"`([^`]+)`", line.split("|")[1]) for line in table.splitlines() if line.startswith("| `")]
    assert sorted(name for row in rows for name in row) == sorted(REQUIREMENTS)


def test_the_sample_device_is_there():
    assert OFFICE.exists()
