"""The version is the project's: there is one number of it."""

import pathlib
import re

from setuptools import setup

cmake = pathlib.Path(__file__).resolve().parent.parent / "CMakeLists.txt"
found = re.search(r"project\(qrylib VERSION ([0-9.]+)", cmake.read_text())
if found is None:
    raise SystemExit(f"{cmake} names no version")
setup(version=found.group(1))
