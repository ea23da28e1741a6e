"""Builds the module of the Python package with CMake; all else is in pyproject.toml."""
import os
import pathlib
import re
import subprocess
import sys

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext

ROOT = pathlib.Path(__file__).parent.resolve()


def version():
    header = (ROOT / "zelmresult/version.h").read_text()
    return ".".join(re.search(rf"Version{name} = (\d+)", header)[1] for name in ("Major", "Minor", "Patch"))


class CMakeBuild(build_ext):
    def build_extension(self, extension):
        target = pathlib.Path(self.get_ext_fullpath(extension.name)).resolve()
        build = pathlib.Path(self.build_temp).resolve()
        build.mkdir(parents=True, exist_ok=True)
        subprocess.run(
            ["cmake", "-S", ROOT, "-B", build, "-DCMAKE_BUILD_TYPE=Release", "-DZELMRESULT_BUILD_PYTHON=ON",
             "-DZELMRESULT_BUILD_TESTS=OFF", "-DZELMRESULT_BUILD_TOOLS=OFF", "-DZELMRESULT_BUILD_EXAMPLES=OFF",
             "-DZELMRESULT_INSTALL=OFF", f"-DPython_EXECUTABLE={sys.executable}"], check=True)
        subprocess.run(["cmake", "--build", build, "--config", "Release", "--parallel", str(os.cpu_count()),
                        "--target", "zelmresult_python"], check=True)
        made, = (build / "python/zelmresult").glob("_core*" + target.suffix)
        target.parent.mkdir(parents=True, exist_ok=True)
        self.copy_file(str(made), str(target))


setup(version=version(), ext_modules=[Extension("zelmresult._core", sources=[])], cmdclass={"build_ext": CMakeBuild})
