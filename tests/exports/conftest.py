"""The program under test, and documents for it. Their paths are in the environment: ZMXF, EXPORT_SAMPLES."""
import json
import os
import pathlib
import subprocess

import pytest

DATA = pathlib.Path(__file__).resolve().parent.parent / "data"
DOCUMENTS = ["demo", "kinds", "whole", "whole_references", "whole_branches"]


class Program:
    def __init__(self, path):
        self.path = path

    def run(self, *arguments, status=0, **options):
        """A run that ends with that status: its standard output as bytes, its standard error as text."""
        done = subprocess.run([self.path, *map(str, arguments)], capture_output=True, **options)
        errors = done.stderr.decode()
        assert done.returncode == status, errors
        return done.stdout, errors

    def __call__(self, *arguments):
        return self.run(*arguments)[0].decode()

    def show(self, document, number, *options):
        """A result as `zmxf show` has it."""
        return json.loads(self("show", document, number, "--json", *options))

    def list(self, document):
        """The headers of all results."""
        return json.loads(self("ls", document, "--json"))["files"][0]["results"]


@pytest.fixture(scope="session")
def zmxf():
    return Program(os.environ["ZMXF"])


@pytest.fixture(scope="session")
def documents(zmxf, tmp_path_factory):
    """Documents by name: a measured one, one of each class of result, and those of former versions."""
    folder = tmp_path_factory.mktemp("documents")
    zmxf("demo", folder)
    subprocess.run([os.environ["EXPORT_SAMPLES"], folder / "kinds.zmxf"], check=True)
    return {name: path / f"{name}.zmxf" for name in DOCUMENTS
            for path in (folder, DATA) if (path / f"{name}.zmxf").exists()}


@pytest.fixture(scope="session")
def demo(documents):
    return documents["demo"]


@pytest.fixture(scope="session")
def kinds(documents):
    return documents["kinds"]


def shown_figures(zmxf, document, number):
    """What `show` prints of a result: lists of figures in their order, with None for what is no number, and single
    figures. Of a waterfall the values of the first and the last slice."""
    shown = zmxf.show(document, number)
    slices = shown.get("slices", [])
    lists = vector_figures(shown)
    if slices:
        lists.append([slice["block"] for slice in slices])
        lists += [[slice["references"][name]["si"] for slice in slices] for name in slices[0]["references"]]
        for index in {0, len(slices) - 1}:
            lists += vector_figures(zmxf.show(document, number, "--slice", index))[1:]
    levels = [shown, *shown.get("levels", {}).values()]
    single = [level[key]["si"] for level in levels for key in ("value", "maximum", "minimum") if key in level]
    return lists, single + [level["si"] for level in levels if "si" in level]


def vector_figures(shown):
    lists = [column["si"] for column in [shown["x"], *shown["columns"]]] if "x" in shown else []
    return lists + [shown[half] for half in ("real", "imaginary") if half in shown]


@pytest.fixture(scope="module")
def exported(request, zmxf, documents, tmp_path_factory):
    """The export of each document in the FORMAT of the module."""
    folder = tmp_path_factory.mktemp("exported")
    for name, path in documents.items():
        zmxf("export", path, "--to", request.module.FORMAT, "-o", folder / name)
    return {name: folder / name for name in documents}
