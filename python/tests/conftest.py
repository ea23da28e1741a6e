import json
import os
import pathlib
import subprocess

import pytest
import zelmresult

ZMXF = os.environ["ZELMRESULT_ZMXF"]
SEEDS = pathlib.Path(os.environ["ZELMRESULT_SEEDS"])
# A sanitizer is preloaded for the interpreter; the program brings its own.
ENVIRONMENT = {name: value for name, value in os.environ.items() if name != "LD_PRELOAD"}
ROOT = pathlib.Path(__file__).parents[2]


def zmxf(*arguments, ok=(0,)):
    """What the program answers as JSON."""
    done = subprocess.run([ZMXF, *map(str, arguments), "--json"], capture_output=True, text=True, env=ENVIRONMENT)
    assert done.returncode in ok, done.stderr
    return json.loads(done.stdout)


@pytest.fixture(scope="session")
def demo(tmp_path_factory):
    """A document with a run-up of three channels."""
    folder = tmp_path_factory.mktemp("demo")
    subprocess.run([ZMXF, "demo", folder], check=True, capture_output=True, env=ENVIRONMENT)
    return folder / "demo.zmxf"


@pytest.fixture
def doc(demo):
    with zelmresult.open(demo) as opened:
        yield opened
