"""The data dictionary: the page of every table and column, and the picture of the tables and what joins with what."""

from itertools import groupby

from drawing import Picture
from schema import shared_columns

RAIL_COLOURS = ["a", "b", "c", "d"]
RAIL_STEP = 76
TABLES_LEFT = 256
ROW_STEP = 27

INTRODUCTION = """# Data dictionary

Every table and column of the four databases, generated from the schema that the library is compiled with
(`src/exec/schema/`) by `scripts/update_pages.sh`; a program asks the same with the functions of
[catalog.h](../include/qrylib/catalog.h), a person in the shell with `.schema`. What a column means is said as far as its
name and the schema's own texts tell, and "not known" where they do not: `docs/meanings.tsv` holds these sentences.

- **Records** is how many records the device has room for. Many tables have room for none: a query finds them empty, and
  an INSERT finds no free record.
- **Type** is that of the column in a rowset (int, uchar, ushort, uint, ulong), or *string* or *name*: both are read as
  strings, and a name is sorted by the platform's order of names.
- **Size** is in bytes, the terminator of a string included.
- **Key** columns tell records in use from free ones ([caveats](caveats.md#tables)).

## What joins with what

A query joins tables of one database where it compares a column of each, whichever they are. The ids below carry the same
name in several tables, which is all that the schema tells of what belongs together.

![{description}](pictures/tables.svg)

| database | column | tables |
|---|---|---|
"""


def plural(count, noun):
    return f"{count or 'no'} {noun}{'' if count == 1 else 's'}"


def by_database(tables):
    return [(name, list(found)) for name, found in groupby(tables, lambda table: table.database)]


def overlaps(column, columns):
    """The members of the same composite element that share bytes with this one."""
    end = column.offset + column.size
    return [other.name for other in columns
            if other.member and column.member and other is not column and other.element == column.element
            and other.offset < end and column.offset < other.offset + other.size]


def place_of(column, columns):
    if not column.member:
        return ""
    shared = overlaps(column, columns)
    return f"; at byte {column.offset} of a shared element" + (
        ", over " + ", ".join(f"`{name}`" for name in shared) if shared else "")


def shape(table, meanings):
    return [(c.name, c.key, c.type, c.size, c.offset, meanings.of(table.database, table.name, c.name))
            for c in table.columns]


def same_columns(tables, meanings):
    """Tables that differ in nothing but their names and places stand under one heading."""
    groups = []
    for table in tables:
        for group in groups:
            if shape(group[0], meanings) == shape(table, meanings):
                group.append(table)
                break
        else:
            groups.append([table])
    return groups


def table_lines(group, meanings):
    first = group[0]
    lines = ["### " + ", ".join(table.name for table in group), ""]
    lines += ["| table | what it holds | records | category |", "|---|---|--:|---|"]
    lines += [f"| `{t.name}` | {meanings.of(t.database, t.name)} | {t.capacity} | {t.category} |" for t in group]
    lines += ["", "| column | key | type | size | meaning |", "|---|---|---|--:|---|"]
    for c in first.columns:
        meaning = meanings.of(first.database, first.name, c.name) + place_of(c, first.columns)
        lines.append(f"| `{c.name}` | {'key' if c.key else ''} | {c.type} | {c.size} | {meaning} |")
    return lines + [""]


def join_lines(tables):
    lines = []
    for database, found in by_database(tables):
        for name, having in shared_columns(found).items():
            lines.append(f"| {database} | `{name}` | " + ", ".join(f"`{table.name}`" for table in having) + " |")
    return lines


def description(tables):
    sentences = []
    for database, found in by_database(tables):
        joins = [f"{name} joins {', '.join(table.name for table in having)}"
                 for name, having in shared_columns(found).items()]
        sentences.append(f"{database}: " + ("; ".join(joins) or "no id is shared"))
    return "The tables of the four databases and the ids that join them. " + ". ".join(sentences) + "."


def page(tables, meanings):
    lines = [INTRODUCTION.replace("{description}", description(tables)).rstrip("\n"), *join_lines(tables), ""]
    for database, found in by_database(tables):
        columns = sum(len(table.columns) for table in found)
        lines += [f"## {database}", "", f"{meanings.of(database).capitalize()}: {plural(len(found), 'table')}, "
                  f"{plural(columns, 'column')}.", ""]
        for group in same_columns(found, meanings):
            lines += table_lines(group, meanings)
    return "\n".join(lines)


def draw_database(picture, top, database, tables, meaning):
    """One database: a row for each table, and a rail for each shared id with a stop at every table that has it."""
    rails = {name: (52 + RAIL_STEP * i, RAIL_COLOURS[i]) for i, name in enumerate(shared_columns(tables))}
    picture.text(20, top, database, size=15, bold=True)
    picture.text(TABLES_LEFT, top, meaning, colour="soft")
    top += 26
    for name, (x, colour) in rails.items():
        picture.text(x, top, name, size=12, mono=True, bold=True, anchor="middle", colour=f"{colour}-line-text")
    if not rails:
        picture.text(20, top + 16, "no id is shared", size=12, colour="soft")
        top -= 12
    top += 12
    rows = {table.name: top + 12 + ROW_STEP * i for i, table in enumerate(tables)}
    for name, (x, colour) in rails.items():
        stops = [rows[table.name] for table in shared_columns(tables)[name]]
        picture.line([(x, min(stops)), (x, max(stops))], colour=f"{colour}-line", width=3)
    for table in tables:
        draw_table(picture, table, rows[table.name], rails)
    return top + ROW_STEP * len(tables) + 10


def draw_table(picture, table, y, rails):
    left = TABLES_LEFT
    width = picture.width - left - 16
    picture.rect(left, y - 11, width, 22, radius=4)
    picture.text(left + 9, y + 4, table.name, size=12, mono=True, bold=True, room=172)
    picture.text(left + width - 9, y + 4, f"{plural(len(table.columns), 'column')}, room for {table.capacity or 'none'}",
                 size=12, colour="soft", anchor="end", room=width - 186)
    for column in table.columns:
        if column.name in rails:
            x, colour = rails[column.name]
            picture.line([(x, y), (left, y)], colour=f"{colour}-line", width=1.4)
    for column in table.columns:
        if column.name in rails:
            x, colour = rails[column.name]
            picture.circle(x, y, 5.5, colour, filled=column.key)


def picture(tables, meanings):
    drawing = Picture("The tables and what joins with what", description(tables), width=640)
    drawing.circle(30, 28, 5.5, "plain")
    drawing.text(44, 32, "an id in the table's key", size=12, colour="soft")
    drawing.circle(220, 28, 5.5, "plain", filled=False)
    drawing.text(234, 32, "an id outside its key", size=12, colour="soft")
    top = 70
    for database, found in by_database(tables):
        top = draw_database(drawing, top, database, found, meanings.of(database)) + 26
    return drawing.svg()
