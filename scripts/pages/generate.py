#!/usr/bin/env python3
"""Writes the data dictionary and the pages' pictures into a folder laid out as docs/ is.

usage: generate.py SCHEMA FOLDER (SCHEMA: what the program print_schema prints)
"""

import sys
from pathlib import Path

import dictionary
import pictures
from schema import Meanings, read_tables

ROOT = Path(__file__).resolve().parents[2]


def main(schema, folder):
    tables = read_tables(schema)
    meanings = Meanings(ROOT / "docs/meanings.tsv", tables)
    files = {"dictionary.md": dictionary.page(tables, meanings), "pictures/tables.svg": dictionary.picture(tables, meanings)}
    files |= {f"pictures/{name}.svg": draw() for name, draw in pictures.all_pictures(ROOT).items()}
    for name, text in files.items():
        path = Path(folder, name)
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")


if __name__ == "__main__":
    main(sys.argv[1], sys.argv[2])
