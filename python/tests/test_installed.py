"""The package as a build by CMake installs it."""
import os
import pathlib
import site
import subprocess
import sys

import zelmresult
from conftest import ENVIRONMENT


def test_is_found_where_it_is_installed(tmp_path):
    subprocess.run(["cmake", "--install", os.environ["ZELMRESULT_BUILD"], "--component", "python"], check=True,
                   capture_output=True, env={**ENVIRONMENT, "DESTDIR": str(tmp_path)})
    package, = tmp_path.rglob("zelmresult/__init__.py")
    folder = package.parents[1]
    assert str(pathlib.Path("/") / folder.relative_to(tmp_path)) in site.getsitepackages()
    program = "import zelmresult; print(zelmresult.__file__, zelmresult.__version__)"
    done = subprocess.run([sys.executable, "-c", program],
                          env={**os.environ, "PYTHONPATH": str(folder)}, capture_output=True, text=True, check=True)
    assert done.stdout.split() == [str(package), zelmresult.__version__]
    assert (package.parent / "py.typed").exists() and (package.parent / "_core.pyi").exists()
