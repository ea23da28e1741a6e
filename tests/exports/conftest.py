"""The program under test, and documents for it."""
import json
import os
import pathlib
import subprocess

import pytest

DATA = pathlib.Path(__file__).resolve().parent.parent / "data"


class Program:
    """zmxf, whose path is in the environment variable ZMXF."""

    def __init__(self, path):
        self.path = path

    def run(self, *arguments, status=0, **options):
        """What a run of the program printed, as bytes."""
        done = subprocess.run([self.path, *map(str, arguments)], capture_output=True, **options)
        assert done.returncode == status, done.stderr.decode()
        return done

    def __call__(self, *arguments, **options):
        return self.run(*arguments, **options).stdout.decode()

    def show(self, document, number, *options):
        """A result as `zmxf show --json` has it."""
        return json.loads(self("show", document, number, "--json", *options))

    def list(self, document):
        return json.loads(self("ls", document, "--json"))["files"][0]["results"]


@pytest.fixture(scope="session")
def zmxf():
    return Program(os.environ["ZMXF"])


@pytest.fixture(scope="session")
def demo(zmxf, tmp_path_factory):
    """A document of most kinds, as the program measures them."""
    folder = tmp_path_factory.mktemp("demo")
    zmxf("demo", folder)
    return folder / "demo.zmxf"


@pytest.fixture(scope="session")
def documents(demo):
    return {"demo": demo, **{path.stem: path for path in DATA.glob("whole*.zmxf")}}
