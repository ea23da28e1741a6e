"""zmxf of the package for Windows beside that of Linux. The environment says where: ZMXF, the program of Linux; PACKAGE,
the zip of scripts/windows."""
import os
import pathlib
import subprocess
import zipfile

import pytest

PROJECT = pathlib.Path(__file__).resolve().parents[2]
WINE = PROJECT / "scripts/wine"


class Twins:
    """Two folders, in which the same commands are run by one program each."""

    def __init__(self, folder, package):
        self.commands = {folder / "linux": [os.environ["ZMXF"]],
                         folder / "windows": [WINE, package / "bin/zmxf.exe"]}
        self.linux, self.windows = self.commands
        self.linux.mkdir()
        self.windows.mkdir()
        self.before = [{}, {}]

    def run(self, *arguments):
        """What a command gave in each of them: its status and what it printed."""
        outcomes = []
        for place, command in self.commands.items():
            done = subprocess.run([*command, *arguments], cwd=place, capture_output=True)
            outcomes.append((done.returncode, done.stdout, done.stderr.decode()))
        return outcomes

    def written(self):
        """What is new in each of them since the last call, by names."""
        now = [{path.relative_to(place).as_posix(): path.read_bytes() for path in place.rglob("*") if path.is_file()}
               for place in self.commands]
        new = [dict(after.items() - before.items()) for after, before in zip(now, self.before)]
        self.before = now
        return new

    def put(self, name, content):
        """A file of one time in both."""
        for place in self.commands:
            (place / name).write_bytes(content)
            os.utime(place / name, (1_700_000_000, 1_700_000_000))


@pytest.fixture(scope="session")
def package(tmp_path_factory):
    folder = tmp_path_factory.mktemp("package")
    with zipfile.ZipFile(os.environ["PACKAGE"]) as archive:
        archive.extractall(folder)
    (root,) = folder.iterdir()
    return root


@pytest.fixture(scope="session")
def twins(tmp_path_factory, package):
    return Twins(tmp_path_factory.mktemp("twins"), package)
