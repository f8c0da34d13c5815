"""Values on their way to the device and back, and what a condition cannot say."""

import multiprocessing
import pickle
import random
from concurrent.futures import ProcessPoolExecutor

import pytest

import qrylib

INSERT = "INSERT INTO PSN_TBL (PSN_ID, PSN_NAME) VALUES (?, ?)"
FIND = "SELECT PSN_ID FROM PSN_TBL WHERE PSN_NAME = ?"


@pytest.fixture
def empty():
    with qrylib.device() as device:
        yield device.connect("adbk_db", strict=False)


@pytest.mark.parametrize(
    "text",
    ["", "Sato", "鈴木", "O'Hara", "''", "?", "a ? b", "x, y", "a AND b FROM c", "tab\tline\n", "\udc83A", b"\x83\x41", b"plain"],
)
def test_texts_come_back_as_they_went(empty, text):
    empty.execute(INSERT, (1, text))
    expected = text if isinstance(text, str) else text.decode("utf-8", "surrogateescape")
    [(found,)] = empty.execute("SELECT PSN_NAME FROM PSN_TBL").fetchall()
    assert found == expected
    assert found.encode("utf-8", "surrogateescape") == expected.encode("utf-8", "surrogateescape")


@pytest.mark.parametrize("number", [1, 65535, True])
def test_numbers_come_back_as_they_went(empty, number):
    empty.execute(INSERT, (number, "x"))
    assert empty.execute("SELECT PSN_ID FROM PSN_TBL WHERE PSN_ID = ?", (number,)).fetchall() == [(int(number),)]


def test_numbers_of_32_bits(departments):
    departments.execute("UPDATE DEPT_TBL SET TOTAL_M = ? WHERE ID = 1", (4294967295,))
    assert departments.execute("SELECT ID, TOTAL_M FROM DEPT_TBL WHERE TOTAL_M = ?", (4294967295,)).fetchall() == [
        (1, 4294967295)
    ]


@pytest.mark.parametrize(
    "value, complaint",
    [
        (None, "parameter 2 is None"),
        (1.5, "type float"),
        (object(), "type object"),
        (2**32, "32 bits"),
        (-(2**31) - 1, "32 bits"),
        ("\ud800", "surrogate"),
    ],
)
def test_what_the_device_cannot_hold(empty, value, complaint):
    with pytest.raises(qrylib.DataError, match=complaint):
        empty.execute(INSERT, (1, value))
    assert empty.execute("SELECT COUNT(*) FROM PSN_TBL").fetchone() == (0,)


@pytest.mark.parametrize("where", ["statement", "parameter"])
def test_zero_bytes_are_refused(empty, where):
    statement, parameters = ("SELECT PSN_ID FROM PSN_TBL\0 WHERE", ()) if where == "statement" else (INSERT, (1, "a\0b"))
    with pytest.raises(qrylib.ProgrammingError, match="zero byte"):
        empty.execute(statement, parameters)


@pytest.mark.parametrize("statement", [FIND, "DELETE FROM PSN_TBL WHERE PSN_NAME = ?"])
@pytest.mark.parametrize("text", ["x' AND PSN_ID = '1", "a OR b", "a,b", "x' OR PSN_NAME != '", "a FROM b", "AND"])
def test_a_condition_refuses_what_it_cannot_say(people, statement, text):
    before = people.execute("SELECT COUNT(*) FROM PSN_TBL").fetchone()
    with pytest.raises(qrylib.DataError) as caught:
        people.execute(statement, (text,))
    assert caught.value.statement[slice(*caught.value.place)] == "?"
    assert people.execute("SELECT COUNT(*) FROM PSN_TBL").fetchone() == before


def test_random_texts_are_found_or_refused(empty):
    """Whatever a text holds, a condition finds the records that have it, or is refused: it never finds others."""
    seed = 20261122
    generator = random.Random(seed)
    pieces = ["a", "'", " AND ", " OR ", "%", ",", "(", ")", "=", "!=", "PSN_ID", " ", "1", "?", " LIKE ", " IN", "鈴", "--", ";"]
    found, refused = 0, 0
    for _ in range(300):
        texts = ["".join(generator.choices(pieces, k=generator.randint(1, 6))) for _ in range(3)]
        empty.execute("DROP TABLE PSN_TBL")
        empty.executemany(INSERT, enumerate(texts, 1))
        try:
            rows = empty.execute(FIND, (texts[0],)).fetchall()
        except qrylib.Error:
            refused += 1
            continue
        found += 1
        assert {row[0] for row in rows} == {i for i, text in enumerate(texts, 1) if text == texts[0]}, (seed, texts)
    assert found > 30 and refused > 30


def test_statements_of_several_lines(people):
    rows = people.execute(
        """
        SELECT PSN_ID
            FROM PSN_TBL
            WHERE PSN_ID < 3
            ORDER BY PSN_ID
        """
    ).fetchall()
    assert rows == [(1,), (2,)]


def test_errors_tell_the_place_in_characters(people):
    with pytest.raises(qrylib.ProgrammingError) as caught:
        people.execute("SELECT PSN_ID FROM PSN_TBL WHERE PSN_NAME = '鈴木 花子' or so")
    error = caught.value
    assert error.statement[slice(*error.place)] == " or so"
    assert error.show().splitlines()[1:3] == ["  " + error.statement, "  " + " " * error.place[0] + "^" * 6]


TRACED = "SELECT PSN_ID FROM PSN_TBL WHERE PSN_NAME < 'a'"


def test_errors_have_code_name_hint_and_traces(people):
    with pytest.raises(qrylib.ProgrammingError) as caught:
        people.execute(TRACED)
    error = caught.value
    assert (error.code, error.name) == (0x5241, "QRY_LIB_TABLE_ARGUMENT")
    assert error.traces[0].function == "qry_lib_tb_create_search_table_id" and error.traces[0].line == 415
    assert error.traces[0].cause
    with pytest.raises(qrylib.ProgrammingError) as caught:
        people.execute("SELECT PSN_ID FROM PSN_TBL WHERE PSN_ID = 1 or so")
    assert caught.value.hint or "keywords are upper case" in str(caught.value)


@pytest.mark.parametrize(
    "statement, parameters, kind",
    [
        ("INSERT INTO PSN_TBL (PSN_ID) VALUES (0)", (), qrylib.IntegrityError),
        ("INSERT INTO PSN_TBL (PSN_NAME) VALUES ('x')", (), qrylib.IntegrityError),
        ("INSERT INTO PSN_TBL (PSN_ID, PSN_NAME) VALUES (1, ?)", ("x" * 193,), qrylib.DataError),
        ("INSERT INTO PSN_TBL (PSN_ID) VALUES (77)", (), qrylib.OperationalError),
        ("SELECT NO_COLUMN FROM PSN_TBL", (), qrylib.ProgrammingError),
        ("SELEKT", (), qrylib.ProgrammingError),
    ],
)
def test_each_refusal_has_its_exception(people, statement, parameters, kind):
    with pytest.raises(qrylib.Error) as caught:
        people.execute(statement, parameters)
    assert type(caught.value) is kind


def test_strict_runs_nothing_with_a_note(people):
    with pytest.raises(qrylib.ProgrammingError):
        people.execute("DELETE FROM PSN_TBL WHERE PSN_ID > 1 LIMIT 1")
    assert people.execute("SELECT COUNT(*) FROM PSN_TBL").fetchone() == (10,)


def test_readonly_writes_nothing(office):
    readonly = office.connect("adbk_db", readonly=True)
    with pytest.raises(qrylib.ProgrammingError, match="only SELECT"):
        readonly.execute("DROP TABLE PSN_TBL")
    assert readonly.execute("SELECT COUNT(*) FROM PSN_TBL").fetchone() == (10,)


def test_rows_errors_and_differences_are_pickled_whole(office, people):
    rows = people.execute("SELECT PSN_ID, PSN_NAME FROM PSN_TBL").fetchall()
    before = office.snapshot()
    people.execute("UPDATE PSN_TBL SET PSN_NAME = 'x' WHERE PSN_ID = 1")
    difference = before.diff(office.snapshot())
    with pytest.raises(qrylib.Error) as caught:
        people.execute(TRACED)
    error = caught.value
    for protocol in range(pickle.HIGHEST_PROTOCOL + 1):

        def again(value):
            return pickle.loads(pickle.dumps(value, protocol))

        assert again(rows) == rows
        assert again(difference) == difference and again(difference).changes[0].b == "x"
        copy = again(error)
        assert type(copy) is type(error) and copy.__dict__ == error.__dict__ and str(copy) == str(error)
        assert copy.show() == error.show()
        assert again(before).text == before.text
        assert again(qrylib.STRING) is qrylib.STRING
        assert again(qrylib.explain("SELECT PSN_ID FROM PSN_TBL")).tables == ("PSN_TBL",)


def _refuse(_):
    with qrylib.connect("adbk_db") as connection:
        connection.execute(TRACED)


def test_errors_come_whole_out_of_a_pool():
    with ProcessPoolExecutor(1, mp_context=multiprocessing.get_context("spawn")) as pool:
        error = pool.submit(_refuse, 0).exception(timeout=60)
    assert type(error) is qrylib.ProgrammingError and error.statement == TRACED
    assert error.code == 0x5241 and error.traces[0].line == 415 and error.place is not None


def test_to_pandas_has_the_types_of_the_schema(people, departments):
    pytest.importorskip("pandas")
    frame = people.execute("SELECT PSN_ID, PSN_NAME FROM PSN_TBL WHERE PSN_ID < 3 ORDER BY PSN_ID").to_pandas()
    assert list(frame.columns) == ["PSN_ID", "PSN_NAME"]
    assert [str(one) for one in frame.dtypes] == ["uint16", "object"]
    assert frame["PSN_ID"].tolist() == [1, 2]
    empty = departments.execute("SELECT ID, TOTAL_L, TOTAL_M, NAME FROM DEPT_TBL WHERE ID = 999").to_pandas()
    assert [str(one) for one in empty.dtypes] == ["uint16", "uint8", "uint32", "object"] and len(empty) == 0
    assert departments.execute("SELECT COUNT(*) FROM DEPT_TBL").to_pandas()["COUNT(*)"].tolist() == [101]


def test_a_join(departments):
    cursor = departments.execute(
        "SELECT DEPT_TBL.NAME, EDIT_CNT_TBL.CNT FROM DEPT_TBL, EDIT_CNT_TBL WHERE DEPT_TBL.ID = EDIT_CNT_TBL.ID"
    )
    assert cursor.rowcount == len(cursor.fetchall()) > 0
    assert [(name, size) for name, _, _, size, *_ in cursor.description] == [("NAME", 192), ("CNT", 4)]
