"""The schema as the library is compiled with it, and what is known of its meaning."""

import csv
from collections import namedtuple
from itertools import groupby

Column = namedtuple("Column", "name key type size element member offset")
Table = namedtuple("Table", "database name category capacity columns")

TYPES = ["int", "uchar", "ushort", "uint", "ulong", "string", "name"]
NOT_KNOWN = "not known"


def read_lines(path):
    with open(path, encoding="utf-8", newline="") as lines:
        return list(csv.DictReader(lines, delimiter="\t", quoting=csv.QUOTE_NONE))


def read_tables(path):
    """The tables in the order in which they are stored, from what print_schema prints."""
    tables = []
    for (database, name), rows in groupby(read_lines(path), lambda row: (row["database"], row["table"])):
        rows = list(rows)
        columns = [Column(row["column"], row["key"] == "1", TYPES[int(row["type"])], int(row["size"]), row["element"],
                          row["member"] == "1", int(row["offset"])) for row in rows]
        tables.append(Table(database, name, rows[0]["category"], int(rows[0]["capacity"]), columns))
    return tables


class Meanings:
    """What docs/meanings.tsv tells. A "*" stands for every database or table; a line without a column is about the table,
    one without a table about the database. A line that is about nothing is an error."""

    def __init__(self, path, tables):
        self.lines = {(row["database"], row["table"], row["column"]): row["meaning"] for row in read_lines(path)}
        unused = set(self.lines)
        for table in tables:
            for column in ["", *[column.name for column in table.columns]]:
                unused -= set(self.ways(table.database, table.name, column))
            unused.discard((table.database, "", ""))
        if unused:
            raise ValueError(f"{path}: the schema has no {sorted(unused)}")

    @staticmethod
    def ways(database, table, column):
        return [(database, table, column), (database, "*", column), ("*", table, column)]

    def of(self, database, table="", column=""):
        for way in self.ways(database, table, column):
            if way in self.lines:
                return self.lines[way]
        return NOT_KNOWN


def column_names(table):
    return tuple(column.name for column in table.columns)


def shared_columns(tables):
    """For one database's tables: the columns by which rows of several tables belong together, with the tables that
    have them. Ids say so by their names; a key that is just called ID is each table's own, and an id that only logs of
    one shape have counts within each."""
    names = sorted({c.name for table in tables for c in table.columns if c.name.endswith("_ID")})
    having = {name: [t for t in tables if any(c.name == name for c in t.columns)] for name in names}
    shared = {name: found for name, found in having.items() if len({column_names(table) for table in found}) > 1}
    return dict(sorted(shared.items(), key=lambda item: -len(item[1])))
