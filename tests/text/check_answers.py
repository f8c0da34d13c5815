#!/usr/bin/env python3
"""Validates the companion's answers: check_answers.py SCHEMAS COMMAND... The command prints "SCHEMA<TAB>JSON" lines.
Every schema must be met at least once."""
import json
import pathlib
import subprocess
import sys

try:
    import jsonschema
except ImportError:
    sys.exit(77)


def reject_constant(name):
    raise ValueError("a number that JSON has not: " + name)


schemas = {path.stem: json.loads(path.read_text()) for path in pathlib.Path(sys.argv[1]).glob("*.json")}
for schema in schemas.values():
    jsonschema.Draft202012Validator.check_schema(schema)

lines = subprocess.run(sys.argv[2:], check=True, stdout=subprocess.PIPE).stdout.decode("utf-8").splitlines()
seen = set()
for line in lines:
    name, text = line.split("\t", 1)
    answer = json.loads(text, parse_constant=reject_constant)
    errors = list(jsonschema.Draft202012Validator(schemas[name]).iter_errors(answer))
    if errors:
        sys.exit(f"{name}: {errors[0].message}\nin {text}")
    seen.add(name)
if seen != set(schemas):
    sys.exit(f"no answer for the schema {sorted(set(schemas) - seen)}")
print(f"{len(lines)} answers, {len(schemas)} schemas")
