"""The examples in the package's docstrings."""

import doctest
import importlib

import pytest

import qrylib
from conftest import ROOT
from qrylib import testing

PAGES = ["docs/python.md"]
MODULES = ["", "._types", ".catalog", ".connection", ".device", ".errors", ".explanation", ".testing"]


@pytest.mark.parametrize("module", MODULES)
def test_examples(module, monkeypatch):
    monkeypatch.chdir(ROOT)
    names = {"qrylib": qrylib, "assert_same": testing.assert_same}
    result = doctest.testmod(importlib.import_module("qrylib" + module), extraglobs=names)
    assert result.attempted > 0 and result.failed == 0


@pytest.mark.parametrize("page", PAGES)
def test_pages(page, monkeypatch):
    monkeypatch.chdir(ROOT)
    result = doctest.testfile(str(ROOT / page), module_relative=False)
    assert result.attempted > 5 and result.failed == 0
