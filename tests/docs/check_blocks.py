"""Every block of code on a page is compiled or run, by this test or by another, or blocks.tsv says why it is not. A block
without a row there is a failure, and so is a row without a block. A row is about a page, or PAGE:LANGUAGE, and the blocks whose
first line its pattern fits; the first row that fits counts.

usage: check_blocks.py ROOT C_COMPILER C++_COMPILER FLAGS HEADERS LIBRARY... (HEADERS: where the companion's are included
from; the libraries that callers link, then the folders of programs that pages call by their names)
"""

import csv
import os
import subprocess
import sys
import tempfile
from fnmatch import fnmatchcase
from itertools import dropwhile, takewhile
from pathlib import Path

WARNINGS = ["-Wall", "-Wextra", "-Wpedantic", "-Werror"]


def blocks_of(path):
    """The fenced blocks of a page, with their languages; of a header, the first lines that its comment sets off."""
    lines = path.read_text(encoding="utf-8").split("\n")
    if path.suffix == ".hpp":
        set_off = dropwhile(lambda line: not line.startswith(" *     "), lines)
        return [("", "\n".join(line[7:] for line in takewhile(lambda line: line.startswith(" *     "), set_off)))]
    blocks = []
    block = None
    language = ""
    for line in lines:
        if line.lstrip().startswith("```"):
            if block is not None:
                blocks.append((language, "\n".join(block)))
            language = line.strip("` ")
            block = [] if block is None else None
        elif block is not None:
            block.append(line)
    return blocks


class Checker:
    def __init__(self, root, c_compiler, cxx_compiler, flags, headers, files):
        self.root = root
        self.compilers = {"c": [c_compiler, "-std=c99", "-x", "c"], "c++": [cxx_compiler, "-std=c++17", "-x", "c++"]}
        self.flags = flags.split()
        self.includes = [f"-I{folder}" for folder in (root / "include", root, headers)]
        self.libraries = [file for file in files if ".so" in file]
        self.folders = [file for file in files if ".so" not in file]
        self.tests = "".join(path.read_text(encoding="utf-8") for path in root.glob("tests/**/CMakeLists.txt"))

    def check(self, block, how, what):
        """What is wrong with a block; nothing where it is as it should be."""
        if how == "not run":
            return None if what else "says not why"
        if how == "test":
            return None if f"NAME {what}" in self.tests or self.is_listed(what) else f"there is no test {what}"
        if how == "python":
            return self.fault(compile, block, "block", "exec")
        if how == "shell":
            return self.run(["bash", "-euo", "pipefail", "-c", block])
        language, kind = how.split()
        return self.lines(language, block, what.split()) if kind == "lines" else self.program(language, block)

    def is_listed(self, name):
        """Tests of a folder's files have a name for each."""
        parts = name.split(".")
        return len(parts) > 1 and any(self.root.glob(f"tests/{parts[0]}/{parts[1]}.*"))

    @staticmethod
    def fault(call, *arguments):
        try:
            call(*arguments)
        except SyntaxError as error:
            return str(error)
        return None

    def run(self, command, text=None):
        path = os.pathsep.join([*self.folders, os.environ["PATH"]])
        with tempfile.TemporaryDirectory() as scratch:
            done = subprocess.run(command, input=text, text=True, capture_output=True, cwd=scratch,
                                  env=os.environ | {"PATH": path}, check=False)
        return None if done.returncode == 0 else done.stdout + done.stderr

    def lines(self, language, block, headers):
        """Lines as the body of a function compile."""
        text = "".join(f"#include <{header}>\n" for header in headers) + f"int main(void) {{\n{block}\nreturn 0;\n}}\n"
        return self.run([*self.compilers[language], *WARNINGS, *self.includes, "-fsyntax-only", "-"], text)

    def program(self, language, block):
        """A program compiles, links and succeeds."""
        with tempfile.TemporaryDirectory() as scratch:
            program = str(Path(scratch, "program"))
            paths = [f"-Wl,-rpath,{Path(library).parent}" for library in self.libraries]
            fault = self.run([*self.compilers[language], *WARNINGS, *self.flags, *self.includes, "-", "-x", "none",
                              *self.libraries, *paths, "-o", program], block)
            return fault or self.run([program])


def main(root, c_compiler, cxx_compiler, flags, headers, *files):
    root = Path(root)
    checker = Checker(root, c_compiler, cxx_compiler, flags, headers, files)
    with open(Path(__file__).with_name("blocks.tsv"), encoding="utf-8", newline="") as lines:
        rows = list(csv.DictReader(lines, delimiter="\t", quoting=csv.QUOTE_NONE))
    pages = [str(path) for path in sorted(path.relative_to(root) for path in root.rglob("*.md"))
             if not {"build", ".git", "node_modules"} & set(path.parts)] + ["include/qrylib/qrylib.hpp"]
    used = set()
    wrong = []
    count = 0
    for page in pages:
        for language, block in blocks_of(root / page):
            count += 1
            first = block.split("\n")[0].strip()
            found = [i for i, row in enumerate(rows) if row["page"] in (page, f"{page}:{language}")
                     and fnmatchcase(first, row["first line"])]
            used.update(found[:1])
            fault = checker.check(block, rows[found[0]]["how"], rows[found[0]]["with"]) if found else \
                "is not in tests/docs/blocks.tsv, which says how each block is tried"
            if fault:
                wrong.append(f"{page}: the block that begins with {first!r}: {fault}")
    wrong += [f"tests/docs/blocks.tsv: {row['page']} has no block that begins with {row['first line']!r}"
              for i, row in enumerate(rows) if i not in used]
    print("\n".join([*wrong, f"{count} blocks"]), file=sys.stderr if wrong else sys.stdout)
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
