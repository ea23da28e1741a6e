"""One row per result of many documents, by their headers."""
from __future__ import annotations

import concurrent.futures
import multiprocessing
import os
import sqlite3
import threading
from typing import Any, Callable, Dict, Iterable, Iterator, List, NamedTuple, Optional, Sequence, Tuple, Union

from zelmresult._document import open as open_document
from zelmresult._errors import DocumentError
from zelmresult._result import Header

Path = Union[str, "os.PathLike[Any]"]

COLUMNS = ("file",) + Header._fields
SUFFIX = ".zmxf"
_PER_TASK = 64  # files, so that handing them out costs little
_NUMBERS = {"number", "system", "process_type", "channel_number", "reference_number", "seconds", "weighting",
            "time_weighting", "window", "waterfall_dimension", "data_offset", "data_size"}


class FileRows(NamedTuple):
    """What a file holds: the fields of its headers, and why some or all of them are missing."""

    file: str
    size: int
    modified: int
    rows: List[Tuple[Any, ...]]
    error: Optional[str]


class Summary(NamedTuple):
    """What a catalogue in SQLite has done: files that were read, those that were in it already and haven't changed,
    those that are gone, and all damaged ones with their reason."""

    read: int
    unchanged: int
    removed: int
    results: int
    damaged: Dict[str, str]


def find(paths: Union[Path, Iterable[Path]]) -> Iterator[str]:
    """The files that are named, and below folders those that end in .zmxf, in the order of their names."""
    for path in [paths] if isinstance(paths, (str, os.PathLike)) else paths:
        name = os.fspath(path)
        if not os.path.isdir(name):
            yield name
            continue
        for folder, folders, files in os.walk(name):
            folders.sort()
            yield from (os.path.join(folder, file) for file in sorted(files) if file.lower().endswith(SUFFIX))


def _stamp(file: str) -> Tuple[int, int]:
    try:
        status = os.stat(file)
    except OSError:
        return -1, -1
    return status.st_size, status.st_mtime_ns


def read_files(files: Sequence[str]) -> List[FileRows]:
    """The headers of files. A file that can't be read gives its reason."""
    found = []
    for file in files:
        size, modified = _stamp(file)
        rows: List[Tuple[Any, ...]] = []
        error = None
        try:
            with open_document(file, partial=True) as doc:
                rows = [tuple(result.header) for result in doc]
                damage = doc.damage
                error = None if damage is None else getattr(damage, "message", str(damage))
        except DocumentError as failure:
            error = failure.message
        found.append(FileRows(file, size, modified, rows, error))
    return found


def _tasks(files: Iterable[str]) -> Iterator[List[str]]:
    task: List[str] = []
    for file in files:
        task.append(file)
        if len(task) == _PER_TASK:
            yield task
            task = []
    if task:
        yield task


def _in_processes(tasks: Iterator[List[str]], processes: int) -> Iterator[List[FileRows]]:
    # A copy of a process with threads may hold locks that nobody opens; without any it starts faster.
    method = "fork" if threading.active_count() == 1 and hasattr(os, "fork") else "spawn"
    context = multiprocessing.get_context(method)
    with concurrent.futures.ProcessPoolExecutor(processes, mp_context=context) as pool:
        yield from _in_order(tasks, lambda task: pool.submit(read_files, task), 4 * processes)


def _on_cluster(tasks: Iterator[List[str]], address: str) -> Iterator[List[FileRows]]:
    import distributed

    with distributed.Client(address, set_as_default=False) as client:
        workers = max(1, sum(client.ncores().values()))
        yield from _in_order(tasks, lambda task: client.submit(read_files, task, pure=False), 4 * workers)


def _in_order(tasks: Iterator[List[str]], submit: Callable[[List[str]], Any], most: int) -> Iterator[List[FileRows]]:
    """What tasks answer, no more than that many of them under way, so that memory doesn't grow with the archive."""
    waiting: List[Any] = []
    for task in tasks:
        waiting.append(submit(task))
        if len(waiting) >= most:
            yield waiting.pop(0).result()
    for future in waiting:
        yield future.result()


def _read(files: Iterable[str], processes: Optional[int], scheduler: Optional[str]) -> Iterator[List[FileRows]]:
    tasks = _tasks(files)
    if scheduler is not None:
        return _on_cluster(tasks, scheduler)
    if processes == 1:
        return (read_files(task) for task in tasks)
    return _in_processes(tasks, processes or os.cpu_count() or 1)


def catalogue(paths: Union[Path, Iterable[Path]], *, sqlite: Optional[Path] = None, processes: Optional[int] = None,
              scheduler: Optional[str] = None) -> Any:
    """One row per result of many documents. Only headers are read.

    paths      files, and folders that are searched for files that end in .zmxf
    sqlite     a database that gets the rows, for archives that are larger than the memory. It has the tables files and
               results. A file that is in it and hasn't changed since isn't read again, so a run that was broken off
               goes on; files that are gone from folders that are there are taken out.
    processes  how many read at a time, without it one per core
    scheduler  "tcp://host:8786": the workers of a Dask cluster read instead. They see the files under the same names.

    Returns a pandas.DataFrame, whose attrs["damaged"] has the reasons of damaged files by their names; with sqlite a
    Summary.
    """
    if sqlite is None:
        import pandas

        rows: List[Tuple[Any, ...]] = []
        damaged = {}
        for files in _read(dict.fromkeys(find(paths)), processes, scheduler):
            for file in files:
                rows.extend((file.file, *row) for row in file.rows)
                if file.error is not None:
                    damaged[file.file] = file.error
        table = pandas.DataFrame.from_records(rows, columns=COLUMNS)
        table.attrs["damaged"] = damaged
        return table
    with _Database(sqlite) as database:
        return database.update([os.path.abspath(os.fspath(path)) for path in (
            [paths] if isinstance(paths, (str, os.PathLike)) else paths)], processes, scheduler)


class _Database:
    def __init__(self, path: Path) -> None:
        self._connection = sqlite3.connect(os.fspath(path), isolation_level=None)
        fields = ", ".join(f"{name} {'INTEGER' if name in _NUMBERS else 'TEXT'}" for name in Header._fields)
        self._connection.executescript(
            "PRAGMA foreign_keys = ON;"
            "CREATE TABLE IF NOT EXISTS files (file TEXT PRIMARY KEY, size INTEGER, modified INTEGER,"
            " results INTEGER, error TEXT);"
            "CREATE TABLE IF NOT EXISTS results (file TEXT REFERENCES files ON DELETE CASCADE,"
            f" {fields}, PRIMARY KEY (file, number)) WITHOUT ROWID;")

    def __enter__(self) -> "_Database":
        return self

    def __exit__(self, *_: Any) -> None:
        self._connection.close()

    def update(self, paths: List[str], processes: Optional[int], scheduler: Optional[str]) -> Summary:
        counts = {"unchanged": 0}
        self._connection.execute("CREATE TEMP TABLE seen (file TEXT PRIMARY KEY)")

        def changed() -> Iterator[str]:
            for file in find(paths):
                name = _text(file)
                self._connection.execute("INSERT OR IGNORE INTO seen VALUES (?)", (name,))
                known = self._connection.execute("SELECT size, modified FROM files WHERE file = ?", (name,)).fetchone()
                if known == _stamp(file):
                    counts["unchanged"] += 1
                else:
                    yield file

        read = 0
        for files in _read(changed(), processes, scheduler):
            self._store(files)
            read += len(files)
        removed = self._remove_gone(paths)
        results, = self._connection.execute("SELECT count(*) FROM results").fetchone()
        damaged = dict(self._connection.execute("SELECT file, error FROM files WHERE error IS NOT NULL ORDER BY file"))
        return Summary(read, counts["unchanged"], removed, results, damaged)

    def _store(self, files: List[FileRows]) -> None:
        """All of them or none, at the price of one write to the disk."""
        places = ", ".join("?" * len(COLUMNS))
        self._connection.execute("BEGIN")
        with self._connection:
            for file in files:
                name = _text(file.file)
                self._connection.execute("DELETE FROM files WHERE file = ?", (name,))
                self._connection.execute("INSERT INTO files VALUES (?, ?, ?, ?, ?)",
                                         (name, file.size, file.modified, len(file.rows), file.error))
                self._connection.executemany(f"INSERT INTO results VALUES ({places})",
                                             ((name, *row) for row in file.rows))

    def _remove_gone(self, paths: List[str]) -> int:
        """Takes out the files that were below these folders. A folder that is gone itself may only be unmounted."""
        paths = [path for path in paths if os.path.lexists(path)]
        gone = [name for name, in self._connection.execute("SELECT file FROM files EXCEPT SELECT file FROM seen")
                if any(name == _text(path) or name.startswith(_text(path).rstrip("/") + "/") for path in paths)]
        self._connection.execute("BEGIN")
        with self._connection:
            self._connection.executemany("DELETE FROM files WHERE file = ?", ((name,) for name in gone))
        return len(gone)


def _text(file: str) -> str:
    """A file name as SQLite holds it: bytes that are no UTF-8 as \\udcXX."""
    return file.encode("utf-8", "backslashreplace").decode()
