"""Counts the instructions that one call of each statement takes, and writes them to a table or compares them with it.

On the workstation callgrind counts, on the device the plugin of qemu's user mode beside this file. What is counted runs
inside the mappings of the libraries that are named here: the difference of 2 N and N calls.
"""
import argparse
import collections
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile

CALLS = 20
TOLERANCE = 0.02
DEVICE_ROOT = "/usr/powerpc-linux-gnu"
LIBRARY = ("libqrylib.so",)
STANDARD_LIBRARIES = ("libc.so", "libstdc++.so")
HEADINGS = ("statement", "workstation", "device", "device's standard libraries")
TITLE = ("# Instructions of one call, inside the library, and on the device inside the standard libraries of C and C++. "
         "scripts/instructions.sh writes this file.\n")
HERE = pathlib.Path(__file__).parent


def output(command):
    """What a program prints, in an environment that is always the same: it lies on the program's stack."""
    return subprocess.run(command, env={"PATH": os.defpath}, check=True, stdout=subprocess.PIPE, text=True).stdout


def by_callgrind(lines):
    """Instructions by file: those that stand behind a call are the called function's, and counted there."""
    counts, place, is_call = collections.Counter(), None, False
    for line in lines:
        if line.startswith("ob="):
            place = pathlib.Path(line[3:].strip()).name
        elif line.startswith("calls="):
            is_call = True
        elif line[0].isdigit():
            counts[place] += 0 if is_call else int(line.split()[1])
            is_call = False
    return counts


def by_page(lines):
    """The same from what is mapped, "begin-end ... file", and the plugin's pages, "address count"."""
    counts, mappings = collections.Counter(), []
    for line in lines:
        fields = line.split()
        begin, _, end = fields[0].partition("-")
        if end:
            mappings.append((int(begin, 16), int(end, 16), pathlib.Path(fields[-1]).name))
        else:
            counts.update({name: int(fields[1]) for first, last, name in mappings if first <= int(begin, 16) < last})
    return counts


class Workstation:
    def __init__(self, driver, scratch):
        self.driver, self.result = driver, scratch / "callgrind.out"

    def ask(self):
        return output([self.driver]).splitlines()

    def counts(self, statement, calls):
        output(["valgrind", "-q", "--tool=callgrind", "--compress-strings=no", "--compress-pos=no",
                f"--callgrind-out-file={self.result}", self.driver, statement, str(calls)])
        with open(self.result) as lines:
            return by_callgrind(lines)


class Device:
    def __init__(self, driver, folders, scratch):
        plugin = scratch / "count.so"
        output(["cc", "-O2", "-shared", "-fPIC", "-o", plugin, HERE / "count_plugin.c"])
        self.command = ["qemu-ppc", "-plugin", plugin, "-L", DEVICE_ROOT, "-E", "LD_LIBRARY_PATH=" + ":".join(folders),
                        driver]

    def ask(self):
        names = output(self.command).splitlines()
        return [line for line in names if not line[0].isdigit()]

    def counts(self, statement, calls):
        return by_page(output([*self.command, statement, str(calls)]).splitlines())


def of_one_call(machine, statement):
    """Instructions inside the library and inside the standard libraries."""
    once, twice = machine.counts(statement, CALLS), machine.counts(statement, 2 * CALLS)
    return [sum(twice[name] - once[name] for name in twice if name.startswith(libraries)) // CALLS
            for libraries in (LIBRARY, STANDARD_LIBRARIES)]


def measure(machine):
    """What the program was built with, and the counts by statement."""
    built, *statements = machine.ask()
    return built, {statement: of_one_call(machine, statement) for statement in statements}


def read(path):
    built, rows = {}, {}
    for line in path.read_text().splitlines():
        fields = line.split("\t")
        if line.startswith("# built"):
            built[fields[1]] = fields[2]
        elif not line.startswith("#") and fields[0] != HEADINGS[0]:
            rows[fields[0]] = dict(zip(HEADINGS[1:], map(int, fields[1:])))
    return built, rows


def write(path, workstation, device):
    lines = [f"# built\tworkstation\t{workstation[0]}", f"# built\tdevice\t{device[0]}", "\t".join(HEADINGS)]
    for statement, (library, _) in workstation[1].items():
        lines.append("\t".join(map(str, (statement, library, *device[1][statement]))))
    path.write_text(TITLE + "\n".join(lines) + "\n")


def differences(path, machine, measured):
    """Sentences about counts beyond the tolerance. None is expected of other compilers and C libraries."""
    built, rows = read(path)
    if measured[0] != built[machine]:
        print(f"{path} was counted with {built[machine]}; this is {measured[0]}, and nothing is compared")
        return []
    if set(rows) != set(measured[1]):
        return [f"other statements: {sorted(set(rows) ^ set(measured[1]))}"]
    wrong = []
    for statement, (library, _) in measured[1].items():
        expected = rows[statement][machine]
        print(f"{statement}: {library} instructions, {expected} expected")
        if abs(library - expected) > TOLERANCE * expected:
            wrong.append(f"{statement} on the {machine}: {library} instructions, not {expected}")
    return wrong


def missing_parts(options):
    """The first of what counting needs that is not there."""
    needed = ["valgrind", options.workstation] if options.workstation else []
    needed += ["qemu-ppc", options.device[0]] if options.device else []
    return next((name for name in needed if shutil.which(name) is None), None)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("table", type=pathlib.Path)
    parser.add_argument("--check", action="store_true", help="compare, and change nothing")
    parser.add_argument("--workstation", metavar="PROGRAM")
    parser.add_argument("--device", nargs="+", metavar=("PROGRAM", "LIBRARY_FOLDER"))
    options = parser.parse_args()
    missing = missing_parts(options)
    if missing:
        print(f"skipped: there is no {missing}")
        return 77
    measured = {}
    with tempfile.TemporaryDirectory() as folder:
        if options.workstation:
            measured["workstation"] = measure(Workstation(options.workstation, pathlib.Path(folder)))
        if options.device:
            measured["device"] = measure(Device(options.device[0], options.device[1:], pathlib.Path(folder)))
    if not options.check:
        write(options.table, measured["workstation"], measured["device"])
        return 0
    wrong = [line for machine, counts in measured.items() for line in differences(options.table, machine, counts)]
    if wrong:
        print("\n".join(wrong + ["scripts/instructions.sh writes the table anew"]), file=sys.stderr)
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
