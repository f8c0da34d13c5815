#!/usr/bin/env python3
"""Lays out what doxygen reads in a folder of its own: headers as users include them and sorted by topic, the Markdown pages
with links that hold in HTML, the trace points as a page, the examples and the start page with its lists.

usage: stage.py FOLDER
"""

import re
import shutil
import sys
from pathlib import Path

from markdown_page import MarkdownPage, code_links
from schema import read_lines

ROOT = Path(__file__).resolve().parents[2]
REFERENCE = ROOT / "docs/reference"

# Where each header is included from, and its topic.
HEADERS = {
    "include/qrylib/catalog.h": ("include/qrylib", "catalog"),
    "include/qrylib/db_handle.h": ("include/qrylib", "handles"),
    "include/qrylib/device_data.h": ("include/qrylib", "device_data"),
    "include/qrylib/element_table.h": ("include/qrylib", "element_tables"),
    "include/qrylib/error.hpp": ("include/qrylib", "callers_cpp"),
    "include/qrylib/export.h": ("include/qrylib", "codes"),
    "include/qrylib/qrylib.h": ("include/qrylib", "callers_c"),
    "include/qrylib/qrylib.hpp": ("include/qrylib", "callers_cpp"),
    "include/qrylib/query.h": ("include/qrylib", "queries"),
    "include/qrylib/rowset.h": ("include/qrylib", "rowsets"),
    "include/qrylib/rowset.hpp": ("include/qrylib", "callers_cpp"),
    "include/qrylib/statement.h": ("include/qrylib", "statements"),
    "include/qrylib/types.h": ("include/qrylib", "codes"),
    "include/qrylib/vector.h": ("include/qrylib", "vectors"),
    "include/qrylib/version.h": ("include/qrylib", "versions"),
    "tools/text/qrytext.h": ("include/qrytext", "companion_functions"),
    "tools/text/qrytext.hpp": ("include/qrytext", "companion_functions"),
    "platform/db_handle.h": ("platform", "porters"),
    "platform/element_table.h": ("platform", "porters"),
    "platform/file_access.h": ("platform", "porters"),
    "platform/os.h": ("platform", "porters"),
    "platform/sort.h": ("platform", "porters"),
    "platform/trace.h": ("platform", "porters"),
    "platform/host/qryhost.h": ("platform/host", "workstation"),
}

# Files beside the pages that links lead to as they are.
COPIED = ["docs/schemas/*.json", "examples/*.sql", "examples/*.json"]


def codes():
    """The codes by number, with their names and meanings, from types.h."""
    text = (ROOT / "include/qrylib/types.h").read_text(encoding="utf-8")
    found = re.findall(r"#define (QRY_LIB_\w+) (0x[0-9A-F]{4})u +/\*\*< (.*?) \*/", text)
    return {value: (name, meaning) for name, value, meaning in found}


def pages():
    """The Markdown pages, by their places in the project."""
    paths = sorted(ROOT.glob("docs/*.md")) + [ROOT / name for name in ("README.md", "CONTRIBUTING.md", "CHANGELOG.md")]
    return {path: ("readme" if path.stem == "README" else path.stem.lower()) for path in paths}


def check_headers():
    """A header that no topic has would be missing without a word."""
    there = {str(path.relative_to(ROOT)) for folder in ("include/qrylib", "platform") for path in (ROOT / folder).glob("*.h*")}
    if there - set(HEADERS):
        raise ValueError(f"no topic has {sorted(there - set(HEADERS))}")


def stage_headers(folder, known):
    for name, (place, topic) in HEADERS.items():
        text = as_included((ROOT / name).read_text(encoding="utf-8"), name)
        comment_end = text.index("*/") + 2
        text = re.sub(r"/\*\*.*?\*/", lambda comment: header_links(comment[0], known), text[:comment_end], flags=re.S) \
            + f"\n/** @addtogroup {topic}\n * @{{ */" \
            + re.sub(r"/\*\*.*?\*/", lambda comment: header_links(comment[0], known), text[comment_end:], flags=re.S) \
            + "/** @} */\n"
        path = folder / place / Path(name).name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")


def as_included(text, name):
    """Callers include one header for all; the pages of classes and records name that one."""
    if not name.startswith("include/"):
        return text
    whole = "qrylib" + Path(name).suffix
    return re.sub(r"\*/(\n(?:class|struct|typedef (?:struct|union)) )", rf"@headerfile {whole} <qrylib/{whole}> */\1", text)


def header_links(comment, known):
    """Codes in a comment become links, and so do the pages that it names."""
    comment = code_links(comment, known, r'@ref {name} "{code}"')
    comment = re.sub(r"docs/schemas/(\w+\.json)", r'<a href="\1">\1</a>', comment)
    return re.sub(r"docs/(\w+)\.md", lambda page: f'@ref {page[1]} "{page[1]}"', comment)


def stage_examples(folder):
    rows = read_lines(REFERENCE / "examples.tsv")
    examples = folder / "examples"
    examples.mkdir()
    own = [Path(row["example"]) for row in rows if row["example"].startswith("examples/")]
    if {path.name for path in own} != {path.name for path in ROOT.glob("examples/*.c*")}:
        raise ValueError(f"docs/reference/examples.tsv and examples/ differ: {own}")
    lines = []
    for row in rows:
        shutil.copy(ROOT / row["example"], examples)
        lines.append(f"/**\n@example {Path(row['example']).name}\n@details {row['shows']}\n*/\n")
    (folder / "examples.dox").write_text("".join(lines), encoding="utf-8")
    shown = {Path(row["example"]): row["shows"] for row in rows}
    return "\n".join(f"- [{path.name}](@ref {path.name}): {shown[path]}" for path in own)


def stage_trace_points(folder, known):
    """The table of trace points as a page."""
    rows = read_lines(ROOT / "docs/trace-points.tsv")
    names = list(rows[0])
    lines = ["# Trace points {#trace_points}", "",
             "What a line of the trace such as `divide_operate():[Return]:(1315) (0x0000DB00)` means: the function, and the "
             "number in its first brackets. The shell's `.trace on` and qrytext_trace() say the same of a line.", "",
             "| " + " | ".join(names) + " |", "|" + "---|" * len(names)]
    for row in rows:
        cells = [code_links(row[name] or " ", known, "[{code}](@ref {name})").replace("|", "\\|") for name in names]
        cells[0] = f"`{row[names[0]]}`"
        lines.append("| " + " | ".join(cells) + " |")
    (folder / "trace_points.md").write_text("\n".join(lines) + "\n", encoding="utf-8")


def stage_start(folder, version, known, examples, titles):
    text = (REFERENCE / "start.dox").read_text(encoding="utf-8")
    table = ["| code | name | meaning |", "|---|---|---|"]
    table += [f"| [{code}](@ref {name}) | @ref {name} | {meaning} |" for code, (name, meaning) in known.items()]
    parts = {"VERSION": version, "CODES": "\n".join(table), "EXAMPLES": examples,
             "PAGES": "\n".join(f"- @ref {name}" for name in sorted(titles))}
    for name, part in parts.items():
        text = text.replace(f"@{name}@", part)
    (folder / "start.dox").write_text(text, encoding="utf-8")


def main(folder):
    folder = Path(folder)
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    check_headers()
    known = codes()
    version = re.search(r"project\(qrylib VERSION ([0-9.]+)", (ROOT / "CMakeLists.txt").read_text(encoding="utf-8"))[1]
    names = pages()
    copied = [path for pattern in COPIED for path in sorted(ROOT.glob(pattern))]
    stage_headers(folder, known)
    examples = stage_examples(folder)
    stage_trace_points(folder, known)
    for path, name in names.items():
        page = MarkdownPage(ROOT, path, name, names, HEADERS, copied, known)
        (folder / f"{name}.md").write_text(page.text(), encoding="utf-8")
    stage_start(folder, version, known, examples, names.values())
    shutil.copytree(ROOT / "docs/pictures", folder / "pictures")
    for path in [*ROOT.glob("docs/*.svg"), *ROOT.glob("docs/*.png")]:
        shutil.copy(path, folder / "pictures")
    for path in [*copied, *(REFERENCE / name for name in ("Doxyfile", "layout.xml", "style.css", "topics.dox"))]:
        shutil.copy(path, folder)
    (folder / "version").write_text(version, encoding="utf-8")
    (folder / "extra_files").write_text(" ".join(path.name for path in copied), encoding="utf-8")


if __name__ == "__main__":
    main(sys.argv[1])
