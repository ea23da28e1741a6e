"""Where exports go, and what they say of what they leave out."""
import os
import resource
import shutil

import pytest


@pytest.mark.parametrize("arguments, reason", [
    (["--to", "csv", "-o", "-"], "don't fit into one table"),
    (["--to", "csv", "-o", "x.csv", "--result", "1,2"], "don't fit into one table"),
    (["--to", "csv", "--decimal", ","], "is the delimiter too"),
    (["--to", "csv", "--excel", "--delimiter", ";"], "excludes"),
    (["--to", "csv", "--long", "--join"], "excludes"),
    (["--to", "json", "--long"], "is an option of --to csv"),
    (["--to", "xml"], "not in"),
    (["--to", "json", "-o", "-", "DEMO"], "don't fit on standard output"),
    (["--to", "json", "DEMO"], "would both become demo.json"),
    (["--to", "csv", "--levels", "DEMO"], "-o must name the file"),
])
def test_refuses_before_it_works(zmxf, demo, tmp_path, monkeypatch, arguments, reason):
    monkeypatch.chdir(tmp_path)
    arguments = [demo if argument == "DEMO" else argument for argument in arguments]
    out, errors = zmxf.run("export", demo, *arguments, status=2)
    assert reason in errors and out == b"" and list(tmp_path.iterdir()) == []


@pytest.mark.parametrize("arguments, expected", [
    (["--to", "json"], ["demo.json"]),
    (["--to", "json", "-o", "x.json"], ["x.json"]),
    (["--to", "json", "-o", "new/"], ["new/demo.json"]),
    (["--to", "csv"], ["demo/0021_autospectrum_channel-1.csv"]),
    (["--to", "csv", "-o", "x.csv"], ["x.csv"]),
    (["--to", "csv", "-o", "some/where"], ["some/where/0021_autospectrum_channel-1.csv"]),
    (["--to", "csv", "--join"], ["demo.csv"]),
])
def test_names_its_outputs(zmxf, demo, tmp_path, monkeypatch, arguments, expected):
    def files():
        return {path.relative_to(tmp_path).as_posix(): path.read_bytes()
                for path in tmp_path.rglob("*") if path.is_file()}

    monkeypatch.chdir(tmp_path)
    zmxf("export", demo, "--result", 21, *arguments)
    first = files()
    assert list(first) == expected
    monkeypatch.setenv("LC_ALL", "de_DE.UTF-8")
    monkeypatch.setenv("TZ", "Asia/Kolkata")
    zmxf("export", demo, "--result", 21, *arguments)
    assert files() == first


def test_one_bad_document_leaves_the_others_alone(zmxf, demo, tmp_path):
    cut = tmp_path / "cut.zmxf"
    cut.write_bytes(demo.read_bytes()[:5_000_000])
    missing = tmp_path / "missing.zmxf"
    out, errors = zmxf.run("export", cut, missing, demo, "--to", "json", "-o", tmp_path / "out", status=1)
    assert "cut.zmxf" in errors and "missing.zmxf" in errors
    assert out.decode() == f"Exported 55 results to {tmp_path}/out/demo.json\n"
    assert [path.name for path in (tmp_path / "out").iterdir()] == ["demo.json"]


def test_a_damaged_result_is_named_and_counted(zmxf, demo, tmp_path):
    damaged = tmp_path / "damaged.zmxf"
    content = bytearray(demo.read_bytes())
    dump = zmxf("dump", demo)
    place = next(int(line.split()[0], 16) for line in dump.splitlines() if line.split()[1:2] == ["21"])
    content[place + 8:place + 40] = b"\xff" * 32
    damaged.write_bytes(content)
    out, errors = zmxf.run("export", damaged, "--to", "csv", "-o", tmp_path / "out", status=1)
    assert "54 results" in out.decode() and "1 left out" in out.decode()
    assert errors.count("\n") == 1 and "damaged.zmxf" in errors
    assert len(list((tmp_path / "out").iterdir())) == 54


def test_a_document_is_never_replaced(zmxf, demo, tmp_path):
    document = tmp_path / "x.json"
    shutil.copy(demo, document)
    _, errors = zmxf.run("export", document, "--to", "json", status=1, cwd=tmp_path)
    assert "it is the input" in errors and document.read_bytes() == demo.read_bytes()


@pytest.mark.parametrize("options", [["--to", "json", "-o", "x"], ["--to", "csv", "--long", "-o", "x.csv"],
                                     ["--to", "uff", "-o", "x.uff"]])
def test_a_failed_write_leaves_the_former_file(zmxf, demo, tmp_path, options):
    target = tmp_path / options[-1]
    target.write_text("former")
    limit = resource.RLIMIT_FSIZE, (100_000, 100_000)
    _, errors = zmxf.run("export", demo, *options, status=1, cwd=tmp_path,
                         preexec_fn=lambda: resource.setrlimit(*limit))
    assert "cannot write" in errors and "File too large" in errors
    assert "left out" not in errors  # it ends with the first write that fails
    assert target.read_text() == "former" and list(tmp_path.iterdir()) == [target]


def test_says_what_could_have_been_selected(zmxf, demo, kinds):
    _, errors = zmxf.run("export", demo, kinds, "--to", "csv", "--channel", "nobody", "-o", "-", status=1)
    assert "there are channels Channel 1, Channel 2" in errors


def test_what_is_printed_never_lands_in_a_file(zmxf, kinds, tmp_path):
    zmxf("export", kinds, "--to", "uff", "-o", tmp_path / "whole.uff")
    closed = tmp_path / "closed.uff"
    zmxf.run("export", kinds, "--to", "uff", "-o", closed, status=1, preexec_fn=lambda: os.closerange(0, 3))
    assert closed.read_bytes() == (tmp_path / "whole.uff").read_bytes()


def test_two_outputs_are_two_files(zmxf, demo, kinds, tmp_path):
    for name in ("demo.json", "kinds.json"):
        (tmp_path / name).symlink_to(tmp_path / "one")
    (tmp_path / "one").write_text("former")
    _, errors = zmxf.run("export", demo, kinds, "--to", "json", "-o", tmp_path, status=1)
    assert "is the same file as" in errors and (tmp_path / "one").read_text() == "former"


def test_names_of_dots_name_no_folder_above(zmxf, demo, tmp_path):
    below = tmp_path / "below"
    below.mkdir()
    shutil.copy(demo, below / "...zmxf")
    zmxf.run("export", "...zmxf", "--to", "csv", "--result", 0, status=1, cwd=below)
    assert [path.name for path in tmp_path.iterdir()] == ["below"]
