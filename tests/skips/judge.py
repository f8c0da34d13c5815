"""Lists the tests that ctest skipped, and fails when a preset skips one that tests/skips/known.tsv does not name.

usage: judge.py KNOWN PRESET=RESULTS... (what `ctest --output-junit RESULTS` wrote)
"""
import csv
import pathlib
import sys
from xml.etree import ElementTree


def skipped_tests(results):
    """The skipped tests of one run, disabled ones too: what each printed, by name."""
    path = pathlib.Path(results)
    if not path.exists():  # where ctest was asked for something else than to run tests
        return {}
    cases = ElementTree.parse(path).iter("testcase")
    return {case.get("name"): case.findtext("system-out", "") for case in cases
            if case.get("status") in ("notrun", "disabled")}


def known_skips(path):
    """The ability that a test misses in a preset, by both their names."""
    with open(path, newline="", encoding="utf-8") as table:
        return {(row["preset"], row["test"]): row["missing ability"] for row in csv.DictReader(table, delimiter="\t")}


def judge(known, runs):
    """The lines to show of all runs, pairs of preset and results, and the number of skips that are not known."""
    lines = []
    unknown = 0
    for preset, results in runs:
        for test, printed in sorted(skipped_tests(results).items()):
            missing = known.get((preset, test))
            if missing:
                lines.append(f"{preset}: {test}: {missing}")
                continue
            unknown += 1
            lines.append(f"{preset}: {test}: NOT KNOWN, and said:")
            lines += [f"    {line}" for line in printed.splitlines()]
    return lines, unknown


def main(arguments):
    lines, unknown = judge(known_skips(arguments[0]), [argument.split("=", 1) for argument in arguments[1:]])
    print("\n".join(lines or ["no test"]))
    if unknown:
        print(f"{unknown} skipped that {arguments[0]} does not name", file=sys.stderr)
    return 1 if unknown else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
