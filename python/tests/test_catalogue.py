"""Catalogues of many documents: on one machine, on a cluster, broken off and taken up again."""
import os
import shutil
import sqlite3
import subprocess
import sys

import pytest
import zelmresult
from zelmresult import _catalogue

LEVEL = zelmresult.Quantity("Level", "Pa")


@pytest.fixture
def archive(demo, tmp_path):
    """40 small documents in folders, a large one, and three damaged files."""
    root = tmp_path / "archive"
    for number in range(40):
        folder = root / f"machine {number % 3}"
        folder.mkdir(parents=True, exist_ok=True)
        doc = zelmresult.new()
        for channel in range(3):
            doc.add_scalar(number, LEVEL, channel=f"{number}/{channel}")
        doc.save(folder / f"{number:02}.zmxf")
    shutil.copy(demo, root / "demo.ZMXF")
    data = demo.read_bytes()
    (root / "cut.zmxf").write_bytes(data[:5_000_000])
    (root / "empty.zmxf").write_bytes(b"")
    (root / "other.zmxf").write_text("not a document")
    (root / "notes.txt").write_text("is not looked at")
    return root


def check_rows(rows):
    assert len(rows) >= 40 * 3 + 55
    with_documents = rows[~rows["file"].str.endswith("cut.zmxf")]
    assert len(with_documents) == 40 * 3 + 55
    assert set(rows["channel"]) >= {"7/0", "39/2", "Channel 3"}


@pytest.mark.parametrize("processes", [1, 2])
def test_a_table(archive, processes):
    rows = zelmresult.catalogue(archive, processes=processes)
    check_rows(rows)
    assert {os.path.basename(file) for file in rows.attrs["damaged"]} == {"cut.zmxf", "empty.zmxf", "other.zmxf"}
    assert all(rows.attrs["damaged"].values())
    one = rows[rows["channel"] == "7/1"].iloc[0]
    with zelmresult.open(one["file"]) as doc:
        assert doc[one["number"]].values == 7
    assert len(zelmresult.catalogue([archive / "demo.ZMXF", archive / "demo.ZMXF"])) == 55
    missing = zelmresult.catalogue([archive / "none.zmxf"])
    assert len(missing) == 0 and "No such file" in str(missing.attrs["damaged"])


def test_a_database_is_taken_up_again(archive, tmp_path, monkeypatch):
    database = tmp_path / "archive.sqlite"
    read = _catalogue.read_files
    calls = []

    def breaks_off(files):
        calls.append(files)
        if len(calls) == 2:
            raise KeyboardInterrupt
        return read(files)

    monkeypatch.setattr(_catalogue, "read_files", breaks_off)
    monkeypatch.setattr(_catalogue, "_PER_TASK", 10)
    with pytest.raises(KeyboardInterrupt):
        zelmresult.catalogue(archive, sqlite=database, processes=1)
    monkeypatch.setattr(_catalogue, "read_files", read)
    again = zelmresult.catalogue(archive, sqlite=database)
    assert (again.read, again.unchanged, again.removed) == (34, 10, 0)
    doc = zelmresult.new()
    doc.add_scalar(1, LEVEL, channel="changed")
    doc.save(archive / "machine 1/01.zmxf")
    (archive / "machine 0/00.zmxf").unlink()
    changed = zelmresult.catalogue([str(archive)], sqlite=database)
    assert (changed.read, changed.unchanged, changed.removed) == (1, 42, 1)
    assert changed.results == again.results - 3 - 2 and len(changed.damaged) == 3
    with sqlite3.connect(database) as connection:
        found = connection.execute("SELECT file, number FROM results WHERE channel = 'changed'").fetchall()
        assert found == [(str(archive / "machine 1/01.zmxf"), 0)]
        assert connection.execute("SELECT count(*) FROM results WHERE channel LIKE '0/%'").fetchone() == (0,)
        assert connection.execute("SELECT count(*) FROM results WHERE channel = '1/0'").fetchone() == (0,)


def test_a_folder_that_is_not_mounted_keeps_its_rows(archive, tmp_path):
    database = tmp_path / "archive.sqlite"
    results = zelmresult.catalogue(archive, sqlite=database).results
    archive.rename(tmp_path / "away")
    away = zelmresult.catalogue(archive, sqlite=database)
    assert away.removed == 0 and away.results == results and str(archive) in away.damaged
    (tmp_path / "away").rename(archive)
    back = zelmresult.catalogue(archive, sqlite=database)
    assert back.read == 0 and str(archive) not in back.damaged


def test_the_command(archive, tmp_path):
    done = subprocess.run([sys.executable, "-m", "zelmresult", "catalogue", archive, "-o", tmp_path / "x.sqlite"],
                          capture_output=True, text=True, check=True)
    assert "44 files read, 0 unchanged, 0 gone, 3 damaged" in done.stdout
    done = subprocess.run([sys.executable, "-m", "zelmresult", "catalogue", archive, "-o", archive / "notes.txt"],
                          capture_output=True, text=True)
    assert done.returncode == 1 and "notes.txt: file is not a database" in done.stderr


def test_a_cluster(archive, tmp_path):
    import distributed

    with distributed.LocalCluster(n_workers=2, threads_per_worker=2, processes=True, dashboard_address=None,
                                  local_directory=str(tmp_path)) as cluster:
        rows = zelmresult.catalogue(archive, scheduler=cluster.scheduler_address)
        summary = zelmresult.catalogue(archive, sqlite=tmp_path / "c.sqlite", scheduler=cluster.scheduler_address)
    check_rows(rows)
    local = zelmresult.catalogue(archive, processes=1)
    assert rows.equals(local) and rows.attrs == local.attrs
    assert summary.read == 44 and summary.results == len(rows)
