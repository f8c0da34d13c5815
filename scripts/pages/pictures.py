"""The pictures in the pages, each beside the words that explain it."""

import re

from drawing import Picture

TITLE = {"bold": True}
SMALL = {"size": 12, "colour": "soft"}
CODE = {"size": 12, "mono": True}


def journey():
    p = Picture("The journey of one query",
                "A text enters through src/api and is analysed in src/parser. With one table, src/exec runs it straight into "
                "the caller's rowset. With several, src/link splits it, src/exec runs each table's part into a rowset of "
                "its own, and src/link joins these into the caller's rowset.")
    wide, right, half = 520, 290, 250
    p.text(20, 30, "SELECT ... FROM DEPT_TBL, EDIT_CNT_TBL WHERE ...", size=13, mono=True, bold=True)
    p.line([(280, 38), (280, 56)], arrow=True)
    p.box(20, 58, wide, [("1. Entry", TITLE), ("src/api: arguments checked, an empty analyzed query", SMALL)], "a")
    p.line([(280, 105), (280, 124)], arrow=True)
    p.box(20, 126, wide, [("2. Analysis", TITLE), ("src/parser: tables, columns, conditions, sort phrase", SMALL)], "b")
    p.text(56, 204, "3. one table", bold=True)
    p.text(right + 60, 204, "3. several tables", bold=True)
    p.line([(40, 173), (40, 318)], arrow=True)
    p.line([(right + 40, 173), (right + 40, 222)], arrow=True)
    p.box(right, 224, half, [("4. Splitting", TITLE), ("src/link: a query for each table,", SMALL),
                             ("a link for each join condition", SMALL)], "c")
    p.line([(right + 40, 288), (right + 40, 318)], arrow=True)
    p.rect(20, 320, wide, 104, "d")
    p.text(30, 340, "5. Execution", bold=True)
    p.text(30, 357, "src/exec: once for each table, into a rowset", size=12, colour="soft")
    steps = ["names to ids", "filter keys", "search", "sort, read"]
    for i, words in enumerate(steps):
        left = 32 + i * 126
        p.rect(left, 374, 104, 34, "plain", radius=16)
        p.text(left + 52, 395, words, size=12, anchor="middle", room=100)
        if i:
            p.line([(left - 20, 391), (left - 4, 391)], arrow=True)
    p.line([(40, 424), (40, 532)], arrow=True)
    p.text(56, 482, "the rows are the result", size=12, colour="soft")
    p.line([(right + 40, 424), (right + 40, 446)], arrow=True)
    p.box(right, 448, half, [("6. Joining", TITLE), ("src/link: row by row, in table order", SMALL)], "c")
    p.line([(right + 40, 495), (right + 40, 532)], arrow=True)
    p.box(20, 534, wide, [("7. Reading", TITLE), ("src/api: the caller's rowset, cursor before the first row", SMALL)], "a")
    return p.svg()


RECORDS = [(1, "Sato Kenji"), (0, ""), (3, "Anna Becker"), (9, "Saito Haruka"), (0, ""), (5, "Tanaka Yuki")]
IN_USE, BEGINS = (lambda number: number != 0), (lambda name: name.startswith("Sa"))


def search():
    p = Picture("A search with two keys",
                "Six records, two of them free. The first key tests whether PSN_ID differs from the default record's, the "
                "second whether PSN_NAME begins with Sa. A key that fails ends the test of its record, so the second key "
                "is not read for the free ones. Records 0 and 3 are found.")
    place, first, second, found = 28, 104, 288, 486
    p.text(20, 30, "SELECT ... FROM PSN_TBL WHERE PSN_NAME LIKE 'Sa%'", size=13, mono=True, bold=True)
    p.text(place, 70, "record", **SMALL)
    p.text(first, 62, "key 1: in use", bold=True)
    p.text(first, 79, "PSN_ID != 0", **CODE)
    p.text(second, 62, "key 2: the condition", bold=True)
    p.text(second, 79, "LIKE 'Sa%'", **CODE)
    p.text(found, 70, "found", **SMALL)
    for i, (number, name) in enumerate(RECORDS):
        draw_record(p, i, 92 + i * 34, number, name, (place, first, second, found))
    bottom = 92 + len(RECORDS) * 34 + 20
    hits = [str(i) for i, (number, name) in enumerate(RECORDS) if IN_USE(number) and BEGINS(name)]
    p.text(20, bottom, "Each position is visited once, through the keys from left to right.", **SMALL)
    p.text(20, bottom + 18, f"The record numbers {' and '.join(hits)} go on to the statement's work.", **SMALL)
    return p.svg()


def draw_record(p, position, y, number, name, columns):
    place, first, second, found = columns
    middle = y + 18
    p.text(place + 14, middle, str(position), mono=True)
    used, hit = IN_USE(number), IN_USE(number) and BEGINS(name)
    verdict(p, first, y, 150, str(number), used)
    p.line([(first + 152, y + 13), (second - 4, y + 13)], arrow=used, dashed=not used)
    if used:
        verdict(p, second, y, 172, name, hit)
        p.line([(second + 174, y + 13), (found - 4, y + 13)], arrow=hit, dashed=not hit)
    else:
        p.rect(second, y, 172, 26, "plain", dashed=True, fill=False)
        p.text(second + 10, middle, "not read", **SMALL)
    if hit:
        p.circle(found + 16, y + 13, 11, "c", filled=False)
        p.text(found + 16, middle - 1, str(position), size=12, mono=True, anchor="middle")


def verdict(p, x, y, width, value, holds):
    p.rect(x, y, width, 26, "c" if holds else "b")
    p.text(x + 8, y + 18, value, size=12, mono=True)
    p.text(x + width - 8, y + 18, "holds" if holds else "fails", size=12, anchor="end")


def offsets_of(root):
    """Where the fields of the public records stand with pointers of 4 and of 8 bytes, and the records' sizes: what the
    compiler proves in src/api/record_layout.cpp."""
    text = (root / "src/api/record_layout.cpp").read_text(encoding="utf-8")
    proved = re.compile(r"static_assert\((?:offsetof\((\w+), (\w+)\)|sizeof\((\w+)\)) == "
                        r"(?:by_pointer\((\d+), (\d+)\)|(\d+))\);")
    found = {}
    for record, field, sized, narrow, wide, same in proved.findall(text):
        found[record or sized, field] = (narrow or same, wide or same)
    return found


def fields(p, x, y, width, record, lines, offsets, colour):
    """A record as a column of its fields, with where each stands; returns the middles of their lines."""
    sizes = offsets[record, ""]
    p.text(x, y - 8, record, mono=True, bold=True, size=12)
    p.text(x + width, y - 8, "/".join(dict.fromkeys(sizes)) + " bytes", anchor="end", **SMALL)
    middles = {}
    for i, (field, words) in enumerate(lines):
        top = y + i * 27
        p.rect(x, top, width, 27, colour, radius=0)
        p.text(x + 8, top + 18, "/".join(dict.fromkeys(offsets[record, field])), size=11, colour="soft", mono=True)
        p.text(x + 56, top + 18, field, **CODE)
        p.text(x + width - 8, top + 18, words, anchor="end", **SMALL)
        middles[field] = top + 13.5
    return middles


def block(p, x, y, width, lines):
    p.box(x, y, width, [(lines[0], TITLE)] + [(words, SMALL) for words in lines[1:]], "b", pad=7, leading=16)


def statement(root):
    offsets = offsets_of(root)
    p = Picture("A statement record and what it points to",
                "The caller's record qry_lib_db_stmt_ holds the type, pointers to the table's name, to the columns, to the "
                "sort phrase and to the condition, and the database's name. Each pointer leads to a block of the memory "
                "partition. The columns are one block of 3164 bytes each.", width=600)
    middles = fields(p, 20, 44, 290, "qry_lib_db_stmt_", [
        ("exec_type", "4 bytes"), ("table_name", "pointer"), ("record", "count, pointer"), ("orderby_phrase", "pointer"),
        ("where_phrase", "pointer"), ("db_name", "256 characters")], offsets, "a")
    targets = {"table_name": (36, ["the table's name"]), "record": (72, ["the columns", "one block: n x 3164 bytes"]),
               "orderby_phrase": (136, ["the sort phrase"]), "where_phrase": (172, ["the condition"])}
    bends = {"table_name": 340, "record": 352, "orderby_phrase": 352, "where_phrase": 340}
    for field, (top, lines) in targets.items():
        block(p, 388, top, 192, lines)
        target = top + (26 if len(lines) > 1 else 13)
        p.line([(310, middles[field]), (bends[field], middles[field]), (bends[field], target), (386, target)], arrow=True)
    p.text(20, 226, "On the left: the byte at which a field stands, with pointers of 4/8 bytes.", **SMALL)
    draw_column(p, 264, offsets)
    return p.svg()


def draw_column(p, y, offsets):
    """One column as a bar, not to scale."""
    record = "QRY_LIB_COLUMN"
    p.text(20, y, record, mono=True, bold=True, size=12)
    p.text(580, y, f"{offsets[record, ''][0]} bytes, on every machine (not to scale)", anchor="end", **SMALL)
    parts = [("col_name", 84, "32"), ("value", 288, "3000: a number or a string"), ("type", 64, "4"), ("table_name", 124, "128")]
    left = 20
    for field, width, words in parts:
        p.rect(left, y + 12, width, 44, "b", radius=0)
        p.text(left + 8, y + 30, field, room=width - 10, **CODE)
        p.text(left + 8, y + 47, words, room=width - 10, **SMALL)
        p.text(left, y + 70, offsets[record, field][0], size=11, colour="soft", mono=True)
        left += width


def rowset(root):
    offsets = offsets_of(root)
    p = Picture("A rowset and its rows",
                "The caller's record qry_lib_db_rowset_ holds the number of rows, a pointer to them and the cursor. The rows "
                "are one block of counts and pointers. Each row's columns are a block of their own.", width=600)
    middles = fields(p, 20, 44, 250, "qry_lib_db_rowset_", [
        ("record_num", "rows"), ("records", "pointer"), ("current", "cursor")], offsets, "a")
    rows = ["row 0", "row 1", "row 2"]
    x = 312
    p.text(x, 36, "QRY_LIB_RECORD", mono=True, bold=True, size=12)
    for i, words in enumerate(rows):
        top = 44 + i * 42
        p.rect(x, top, 112, 30, "b", radius=0)
        p.text(x + 8, top + 20, words, size=12)
        p.text(x + 104, top + 20, "n, cols", anchor="end", **SMALL)
        p.line([(x + 112, top + 15), (x + 138, top + 15)], arrow=True)
        for k in range(3):
            p.rect(452 + k * 42, top, 42, 30, "b", radius=0)
            p.text(452 + k * 42 + 21, top + 20, str(k), size=12, anchor="middle")
    p.text(452, 36, "n columns", bold=True, size=12)
    p.line([(270, middles["records"]), (290, middles["records"]), (290, 59), (310, 59)], arrow=True)
    p.line([(270, middles["current"]), (290, middles["current"]), (290, 101), (310, 101)], dashed=True, arrow=True)
    p.text(20, 150, "The cursor stands on row 1: reads answer", **SMALL)
    p.text(20, 166, "from its columns. -1: before the first row.", **SMALL)
    p.text(20, 194, "Blue: the caller's record. Brown: blocks of the memory partition, given back by term.", **SMALL)
    return p.svg()


# What is done, the sequence afterwards, the value, what a reader takes then, and what a kill at that moment leaves.
WRITE_STEPS = [
    (["lock taken, and what a", "dead holder left settled"], 8, "old", "old", "old"),
    (["old value kept, and", "the write named"], 8, "old", "old", "old"),
    (["sequence odd:", "the write has begun"], 9, "old", "old, kept", "old, put back"),
    (["the new value,", "in any order"], 9, "half", "old, kept", "old, put back"),
    (["sequence even:", "the write has ended"], 10, "new", "new", "new"),
    (["the write's name cleared,", "lock released"], 10, "new", "new", "new"),
]
STATE_COLOURS = {"old": "a", "half": "d", "new": "c"}


def write():
    p = Picture("The steps of a protected write",
                "A write takes the lock, keeps the old value and names itself, makes the sequence odd, stores the new value, "
                "makes the sequence even and releases the lock. While the sequence is odd, readers take the old value that "
                "was kept, and the next holder puts it back after a kill. Afterwards the new value stands.", width=640)
    columns = [(20, "after the step"), (216, "sequence"), (300, "value"), (380, "a reader takes"), (504, "a kill leaves")]
    for x, words in columns:
        p.text(x, 34, words, bold=True, size=12)
    for i, (step, sequence, value, reader, kill) in enumerate(WRITE_STEPS):
        y = 46 + i * 52
        p.rect(14, y, 612, 44, "plain")
        p.text(26, y + 18, step[0], size=12)
        p.text(26, y + 35, step[1], size=12)
        p.text(246, y + 27, str(sequence), mono=True, anchor="middle", bold=sequence % 2 == 1)
        for x, width, words in ((296, 68, value), (376, 108, reader), (500, 116, kill)):
            p.rect(x, y + 9, width, 26, STATE_COLOURS[words.split(",")[0]], radius=13)
            p.text(x + width / 2, y + 26, words, size=12, anchor="middle", room=width - 8)
    return p.svg()


def all_pictures(root):
    return {"journey": journey, "search": search, "statement": lambda: statement(root), "rowset": lambda: rowset(root),
            "write": write}
