"""What the documentation shows is run as it stands."""
import doctest
import importlib
import pathlib
import pkgutil
import re
import shutil

import pytest
import zelmresult
from conftest import ROOT

GUIDE = (ROOT / "docs/guides/python.md").read_text()
README = (ROOT / "README.md").read_text()
MODULES = [module.name for module in pkgutil.iter_modules(zelmresult.__path__, "zelmresult.")
           if module.name not in ("zelmresult._core", "zelmresult.__main__")]


def blocks(page):
    return re.findall(r"^```python\n(.*?)^```", page, re.MULTILINE | re.DOTALL)


@pytest.mark.parametrize("name", ["zelmresult", *MODULES])
def test_examples_in_docstrings(name):
    failed, _ = doctest.testmod(importlib.import_module(name))
    assert failed == 0


@pytest.mark.parametrize("page", ["guide", "readme"])
def test_a_page_runs_as_it_stands(page, demo, tmp_path, monkeypatch, capsys):
    found = blocks({"guide": GUIDE, "readme": README}[page])
    assert len(found) >= {"guide": 11, "readme": 1}[page]
    shutil.copy(demo, tmp_path / "pump.zmxf")
    monkeypatch.chdir(tmp_path)
    names = {"__name__": "guide"}
    for number, block in enumerate(found):
        exec(compile(block, f"block {number} of the {page}", "exec"), names)
    printed = capsys.readouterr().out
    assert "pump.zmxf: 55 results" in printed
    if page == "guide":
        assert "0.00 dB at most" in printed and "order 2: 5.8" in printed and "Speed 2996 rpm" in printed
        assert {path.name for path in pathlib.Path(".").iterdir()} >= {
            "spectrum.svg", "orders.png", "bands.csv", "run_up.nc", "made.zmxf", "archive.sqlite"}


def test_texts_that_the_guide_shows(demo):
    shown = re.search(r'as zmxf prints it: "(.*)"', GUIDE)[1]
    with zelmresult.open(demo) as doc:
        spectrum = doc.select(channel="Channel 1", kind="autospectrum")[0]
        assert spectrum.text(spectrum.values.max()) == shown
