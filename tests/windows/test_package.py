"""The package as somebody unpacks it: its program does what that of Linux does, byte for byte, and CMake finds its
library."""
import re
import shlex
import shutil
import subprocess

import pytest
from conftest import PROJECT, WINE

DEMO = "dm/demo.zmxf"
ANALYZE = ["--unit", "m/s2,m/s2,V", "--full-scale", "50,50,10", "--block-size", "8000", "--tacho", "3"]
FILES = {"text.zmxf": b"no document", "empty.zmxf": b"", "bumps.csv": b"Time;A\n" + b"".join(
    b"0,%03d;%d,5\n" % (i, i * i % 7) for i in range(1000))}


@pytest.fixture(scope="module")
def measured(twins):
    """The twins with the same document. The demo dates it by the recording that it writes, so Linux makes its own once
    more, from that of Windows, by the command that the demo names."""
    linux, windows = twins.run("demo", "dm")
    assert windows == linux and windows[0] == 0
    (again,) = re.findall("^The same as: zmxf (.*)$", linux[1].decode(), re.MULTILINE)
    assert (twins.linux / "dm/demo.wav").read_bytes() == (twins.windows / "dm/demo.wav").read_bytes()
    shutil.copy2(twins.windows / "dm/demo.wav", twins.linux / "dm/demo.wav")
    subprocess.run([*twins.commands[twins.linux], *shlex.split(again)], cwd=twins.linux, check=True)
    for name, content in FILES.items():
        twins.put(name, content)
    twins.put("broken.zmxf", (twins.linux / DEMO).read_bytes()[:5_000_000])
    return twins


# In this order: each may read what those before it wrote.
COMMANDS = [
    ["info", DEMO], ["info", DEMO, "--json"],
    ["ls", "-l", "-r", "."], ["ls", "-l", "dm", "--csv"], ["ls", DEMO, "--json", "--channel", "2"],
    ["show", DEMO], ["show", DEMO, "34", "--at", "3000rpm", "--top", "5", "--db"], ["show", DEMO, "40", "--json"],
    ["show", DEMO, "--kind", "autospectrum"],
    ["export", DEMO, "--to", "csv"], ["export", DEMO, "--to", "csv", "--join", "--kind", "autospectrum", "-o", "-"],
    ["export", DEMO, "--to", "json"], ["export", DEMO, "--to", "uff"], ["export", DEMO, "--to", "uff-binary"],
    ["export", DEMO, "--to", "mat"],
    ["export", DEMO, "--to", "csv", "--result", "21", "--units", "shown", "--db", "-o", "new/deep/one.csv"],
    ["settings", DEMO], ["settings", DEMO, "--json"], ["tracks", DEMO], ["tracks", DEMO, "--json"],
    ["verify", DEMO], ["verify", DEMO, "--json"], ["verify", "text.zmxf"], ["verify", "empty.zmxf"],
    ["dump", DEMO], ["dump", DEMO, "--fields"],
    ["analyze", "dm/demo.wav", *ANALYZE, "--window", "flattop", "-o", "flat.zmxf"],
    ["diff", DEMO, "flat.zmxf"], ["diff", DEMO, "flat.zmxf", "--json"],
    ["analyze", "bumps.csv", "--block-size", "128", "-o", "bumps.zmxf"], ["tracks", "bumps.zmxf"],
    ["verify", "broken.zmxf"], ["info", "broken.zmxf"], ["salvage", "broken.zmxf", "mended.zmxf"],
    ["verify", "mended.zmxf"], ["dump", "broken.zmxf"],
    ["report", DEMO, "-o", "demo.html"],
    ["info", "missing.zmxf"], ["info", "dm"], ["show", DEMO, "999"], ["salvage", "broken.zmxf", "no/such/folder.zmxf"],
    ["expotr", DEMO], ["show", DEMO, "--top"],
    ["--help"], *([verb, "--help"] for verb in ("analyze", "show")),
]


@pytest.mark.parametrize("command", COMMANDS, ids=" ".join)
def test_windows_does_what_linux_does(measured, command):
    linux, windows = measured.run(*command)
    assert windows == linux
    here, there = measured.written()
    assert sorted(there) == sorted(here)
    assert [name for name in here if here[name] != there[name]] == []


def test_a_stranger_builds_with_the_package(package, tmp_path):
    target = "x86_64-w64-mingw32"
    subprocess.run(["cmake", "-G", "Ninja", "-S", PROJECT / "tests/packages/find_package", "-B", tmp_path,
                    "-D", "CMAKE_SYSTEM_NAME=Windows", "-D", f"CMAKE_CXX_COMPILER={target}-g++-posix",
                    "-D", "CMAKE_EXE_LINKER_FLAGS=-static", "-D", f"CMAKE_PREFIX_PATH={package}"], check=True)
    subprocess.run(["cmake", "--build", tmp_path], check=True)
    done = subprocess.run([WINE, tmp_path / "consumer.exe"], capture_output=True, text=True, check=True)
    assert "known 1, written 1, measured 1" in done.stdout


def test_licences_of_all_that_is_inside_are_there(package):
    names = {path.stem for path in (package / "licenses").glob("*.txt")}
    assert names >= {"libsndfile", "libsndfile-COPYING", "flac", "libogg", "libvorbis", "opus", "CLI11", "fmtlib",
                     "nlohmann-json", "kissfft", "gcc-runtime", "mingw-w64"}
    assert all((package / "licenses" / f"{name}.txt").stat().st_size > 300 for name in names)
    assert list((package / "licenses/libsndfile-source").glob("*.dsc"))
