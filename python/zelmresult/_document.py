"""Documents that are read."""
from __future__ import annotations

import html
import json
import operator
import os
import tempfile
import uuid
from typing import Any, Dict, Iterable, Iterator, List, NamedTuple, Optional, Sequence, Union, overload

from zelmresult import _core
from zelmresult._errors import DocumentError
from zelmresult._quantity import Quantity
from zelmresult._result import Header, Result, level_rows
from zelmresult._table import Table

Choice = Union[None, str, int, Iterable[Union[str, int]]]


class Damage(NamedTuple):
    """Something that is wrong, and where in the file."""

    offset: int
    text: str


class Verification(NamedTuple):
    """Whether a document is whole: "whole", "damaged" or "no result document", and what is wrong with it. It is true
    when nothing is."""

    verdict: str
    results: int
    readable: int
    loads: bool
    damages: List[Damage]
    notes: List[Damage]

    def __bool__(self) -> bool:
        return self.verdict == "whole"


def path_bytes(path: Union[str, bytes, "os.PathLike[Any]"]) -> bytes:
    """A path as the system has it, which ends at the first NUL."""
    encoded = os.fsencode(path)
    if b"\0" in encoded:
        raise ValueError("a path holds no NUL; open takes the bytes of a document")
    return encoded


def verify(path: Union[str, bytes, "os.PathLike[Any]"]) -> Verification:
    """Reads all of a file and says what is wrong with it, also when it can't be opened as a document."""
    encoded = path_bytes(path)
    name = os.fsdecode(encoded)
    os.stat(name)  # raises FileNotFoundError
    try:
        found = _core.verify(encoded)
    except ValueError as error:
        raise DocumentError(name, str(error).removeprefix(f"cannot read {name}: "), "not_opened") from None
    for name in ("damages", "notes"):
        found[name] = [Damage(*damage) for damage in found[name]]
    return Verification(**found)


class Results(Sequence):
    """Some results of a document."""

    def __init__(self, document: "Document", numbers: Sequence[int]) -> None:
        self._owner = document
        self._chosen = numbers

    @property
    def _document(self) -> "Document":
        return self._owner

    @property
    def _numbers(self) -> Sequence[int]:
        return self._chosen

    def __len__(self) -> int:
        return len(self._numbers)

    @overload
    def __getitem__(self, index: int) -> Result: ...
    @overload
    def __getitem__(self, index: slice) -> "Results": ...

    def __getitem__(self, index):
        if isinstance(index, slice):
            return Results(self._document, self._numbers[index])
        try:
            number = self._numbers[index]
        except IndexError:
            raise IndexError(f"{self._document.name}: there are {len(self)} results, and none at {index}") from None
        return self._document._result(number)

    def __iter__(self) -> Iterator[Result]:
        return (self._document._result(number) for number in self._numbers)

    def table(self) -> Table:
        """A row per result, of their headers."""
        rows = []
        for result in self:
            header = result.header
            rows.append({"number": header.number, "kind": header.kind, "process": header.process,
                         "channel": header.channel, "reference": header.reference,
                         "date": header.date.strftime("%Y-%m-%d %H:%M:%S") if header.date else "",
                         "caption": header.caption})
        return Table(f"{self._document.name}: {len(self)} result{'' if len(self) == 1 else 's'}", rows)

    def to_pandas(self):
        """A pandas.DataFrame of all header fields, by number."""
        import pandas

        return pandas.DataFrame([result.header for result in self], columns=Header._fields).set_index("number")

    def __repr__(self) -> str:
        return repr(self.table())

    def _repr_html_(self) -> str:
        return self.table()._repr_html_()


class Document(Results):
    """A result document, open for reading: a sequence of its results.

    Opening reads only the head, listing only headers; a result is read when its values are asked for. Threads may share
    a document, and wait for each other. A closed one raises ValueError for whatever wasn't read before.
    """

    def __init__(self, reader: Any, name: str, path: Optional[str], data: Optional[bytes], partial: bool) -> None:
        self._reader = reader
        self._path = path
        self._data = data
        self._partial = partial
        self._count: Optional[int] = None
        self._identity = uuid.uuid4()  # the one of its results, which copies in other processes keep
        self.name = name

    def close(self) -> None:
        self._reader.close()

    @property
    def closed(self) -> bool:
        return self._reader.is_closed()

    def __enter__(self) -> "Document":
        return self

    def __exit__(self, *_: Any) -> None:
        self.close()

    # ---- Results ----
    @property
    def _document(self) -> "Document":
        return self  # without a cycle, so that the file is closed with the last of those that use it

    @property
    def _numbers(self) -> Sequence[int]:
        return range(self._listed())

    def _listed(self) -> int:
        if self._count is not None and not self._reader.is_closed():
            return self._count
        count: int = self._reader.count()
        damage = self._reader.damage()
        if damage is not None and not self._partial:
            raise damage
        self._count = count
        return count

    def _result(self, number: int) -> Result:
        return Result(Header(**self._reader.header(number)), reader=self._reader, strict=not self._partial,
                      source=self.name, place=(self._identity, number))

    @property
    def damage(self) -> Optional[OSError]:
        """Why results, or the end of the file, are missing; None when nothing is."""
        return self._reader.cut_off() or self._reader.damage()

    @property
    def version(self) -> Optional[int]:
        """Of the format; None when it can't be read."""
        return self._reader.version()

    def select(self, channel: Choice = None, kind: Choice = None, *, reference: Choice = None, name: Choice = None,
               system: Choice = None, number: Union[None, int, Iterable[int]] = None) -> Results:
        """The results that fit all choices; of a choice with several values, any of them counts.

        channel, reference  a name, a pattern such as "DE*", or a number
        kind                "autospectrum", "waterfall" (zelmresult.KINDS), or the number of a process type
        name                of the process, or a pattern
        """
        numbers = [(value, value) for value in map(_unsigned, _several(number))]
        wanted = {"results": numbers, "channels": _texts(channel, "#"), "references": _texts(reference, "#"),
                  "kinds": _texts(kind), "names": _texts(name),
                  "systems": [int(value) for value in _texts(system)]}
        len(self)  # raises for a damaged listing
        return Results(self, self._reader.select(wanted))

    def levels(self) -> Table:
        """All single levels of the document: a row each."""
        rows: List[Dict[str, Any]] = []
        for result in self.select(kind=["level", "order"]):
            if result.form in ("level", "broad_band", "global_level", "order_levels"):
                rows += level_rows(result)
        return Table(f"{self.name}: {len(rows)} level{'' if len(rows) == 1 else 's'}", rows)

    # ---- The rest ----
    @property
    def quantities(self) -> List[Quantity]:
        found = (Quantity._of(core) for core in self._reader.quantities())
        return [quantity for quantity in found if quantity is not None]

    @property
    def settings(self) -> List[Dict[str, Any]]:
        """What the results were made with, system by system: modules, submodules, settings."""
        return json.loads(self._reader.settings())

    @property
    def recording(self) -> List[Dict[str, Any]]:
        """What the results were made from, system by system: disks, tracks, transducers."""
        return json.loads(self._reader.recordings())

    def verify(self) -> Verification:
        """Reads all of the file and says what is wrong with it."""
        if self.closed:
            raise ValueError(f"{self.name} is closed")
        if self._path is not None:
            return verify(self._path)
        with tempfile.NamedTemporaryFile(suffix=".zmxf") as file:
            file.write(self._data or b"")
            file.flush()
            return verify(file.name)

    def __repr__(self) -> str:
        return f"<{self.name}, closed>" if self.closed else super().__repr__()

    def _repr_html_(self) -> str:
        return f"<p>{html.escape(self.name)}, closed</p>" if self.closed else super()._repr_html_()


def _texts(choice: Choice, number_mark: str = "") -> List[str]:
    return [value if isinstance(value, str) else f"{number_mark}{operator.index(value)}" for value in _several(choice)]


def _several(choice: Any) -> List[Any]:
    if choice is None:
        return []
    if isinstance(choice, bytes):
        raise TypeError(f"a choice is a text, a number or several, and not {choice!r}")
    return [choice] if isinstance(choice, str) or hasattr(choice, "__index__") else list(choice)


def _unsigned(number: Any) -> int:
    number = operator.index(number)
    if not 0 <= number < 2**64:
        raise ValueError(f"results are numbered from 0: there is none at {number}")
    return number


def open(source: Any, *, partial: bool = False) -> Document:
    """Opens a result document: a path, bytes, or a file object, which is read to its end.

    Raises DocumentError for what is no document, and for one that is cut off or damaged where headers are; with partial
    it gives what can be read of such a one, and the document's damage says why the rest is missing.
    """
    if isinstance(source, (str, os.PathLike)):
        path = os.fspath(source)
        name = os.fsdecode(path)
        document = Document(_core.Reader(path_bytes(path)), name, os.path.abspath(name), None, partial)
    else:
        read = getattr(source, "read", None)
        name = str(getattr(source, "name", "<bytes>"))
        found = source if read is None else read()
        if isinstance(found, (str, int, list, tuple, type(None))):
            raise TypeError("a path, bytes or a file object that reads bytes is wanted, and not "
                            f"{type(found if read is None else source).__name__}")
        data = bytes(found)
        document = Document(_core.Reader(data, os.fsencode(name)), name, None, data, partial)
    damage = document._reader.cut_off()
    if damage is not None and not partial:
        document.close()
        raise damage
    return document
