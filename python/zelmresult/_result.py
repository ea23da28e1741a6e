"""A result of a document."""
from __future__ import annotations

import datetime
import re
from typing import Any, Dict, List, Mapping, NamedTuple, Optional, Tuple

import numpy

from zelmresult._content import Array, Content, Level
from zelmresult._quantity import Quantity


class Header(NamedTuple):
    """What a result is and where it comes from. weighting, time_weighting and window are constants of the program that
    made the document; data_offset and data_size are the place of its data chunk in the file, -1 and 0 without one."""

    number: int
    system: int
    kind: str
    process_type: int
    process: str
    channel: str
    channel_number: int
    reference: str
    reference_number: int
    seconds: int
    caption: str
    comment: str
    analyzer: str
    identification: str
    weighting: int
    time_weighting: int
    window: int
    waterfall_dimension: int
    data_offset: int
    data_size: int

    @property
    def date(self) -> Optional[datetime.datetime]:
        """When it was measured; None when that isn't known."""
        if self.seconds == 0:
            return None
        try:
            return datetime.datetime.fromtimestamp(self.seconds, datetime.timezone.utc)
        except (ValueError, OverflowError, OSError):
            return None


class Result:
    """A result: its header at once, its arrays when they are asked for. Once read, they outlive the document.

    Results are equal, and hash alike, when they are the same result, or the same slice of it, of one opened document;
    so are their copies by pickle. Nothing is read for it, and figures don't count: results of two documents always
    differ, also of one file that was opened twice, or was changed in between. Compare what they hold by their header
    and values.
    """

    def __init__(self, header: Header, *, place: Tuple[Any, ...], reader: Any = None, strict: bool = True,
                 source: str = "", content: Optional[Content] = None) -> None:
        self.header = header
        self._place = place  # which opened document, which result, and of a slice which one
        self._reader = reader
        self._strict = strict
        self._source = source
        self._read = content

    # ---- What it is ----
    @property
    def number(self) -> int:
        """In the listing of its document, counted from 0."""
        return self.header.number

    @property
    def kind(self) -> str:
        """What people call it: "autospectrum", "waterfall"."""
        return self.header.kind

    @property
    def process(self) -> str:
        return self.header.process

    @property
    def channel(self) -> str:
        return self.header.channel

    @property
    def reference(self) -> str:
        """The reference channel, of results that have one, such as a transfer function."""
        return self.header.reference

    @property
    def date(self) -> Optional[datetime.datetime]:
        return self.header.date

    @property
    def comment(self) -> str:
        return self.header.comment

    @property
    def title(self) -> str:
        """A short name for a heading: "Bearing, Autospectrum"; of a slice also where it is: "Speed 2996.11 rpm"."""
        reference = f" / {self.reference}" if self.reference else ""
        where = ""
        if self._is_slice:
            along = self._content.coords[self._content.chosen_reference or "slice"]
            where = f"{along.title} {along.text(float(along.values))}"
        return ", ".join(part for part in (self.channel + reference, self.process or self.kind, where) if part)

    # ---- Its arrays ----
    @property
    def _is_slice(self) -> bool:
        """Only a slice that was read alone knows its index."""
        return self._read is not None and "slice" in self._read.coords

    @property
    def _content(self) -> Content:
        if self._read is None:
            content = Content.of(self._reader.read(self.number))
            if self._strict and content.lost_references is not None:
                from zelmresult._errors import DocumentError

                raise DocumentError(self._source, content.lost_references)
            self._read = content
        return self._read

    @property
    def form(self) -> str:
        """Which arrays there are: "level", "broad_band", "global_level", "order_levels", "vector", "bands",
        "order_track", "overview", "pair" or "waterfall"."""
        return self._content.form

    @property
    def values(self) -> numpy.ndarray:
        """float32 or complex64, in SI units, read-only. A NaN is a missing value."""
        return self._content.primary.values

    @property
    def dims(self) -> Tuple[str, ...]:
        return self._content.primary.dims

    @property
    def shape(self) -> Tuple[int, ...]:
        return self._content.primary.shape

    @property
    def dtype(self) -> numpy.dtype:
        return self._content.primary.dtype

    @property
    def quantity(self) -> Optional[Quantity]:
        return self._content.quantity

    @property
    def unit(self) -> str:
        """The SI unit of the values."""
        return self._content.primary.unit

    @property
    def shown_unit(self) -> str:
        """The unit that people see; r.to() converts to it."""
        return self._content.primary.shown_unit

    @property
    def coords(self) -> Mapping[str, Array]:
        return self._content.coords

    @property
    def data(self) -> Mapping[str, Array]:
        """All arrays, of which values is the first: also minimum and maximum, levels of all bands."""
        return self._content.data

    def axis(self, dimension: Optional[str] = None) -> Optional[Array]:
        """The coordinate that a dimension, the last one without a name, is shown along."""
        return self._content.axis(self.dims[-1] if dimension is None else dimension)

    def to(self, unit: Optional[str] = None) -> numpy.ndarray:
        """The values in another unit; without one, in the unit that people see."""
        return self._content.primary.to(unit)

    def db(self) -> numpy.ndarray:
        """The values as levels; quantity.db_reference is what they refer to."""
        return self._content.primary.db()

    def text(self, value: float, db: bool = False) -> str:
        """A value in SI units as the library prints it, with the unit that people see."""
        return self._content.primary.text(value, db)

    # ---- Parts of it ----
    def slice(self, index: Optional[int] = None, *, block: Optional[int] = None) -> "Result":
        """One slice of a waterfall, by its index or the number of its block, without reading the others."""
        if (index is None) == (block is None):
            raise ValueError("a slice is chosen by its index or by the number of its block")
        if index is not None and index < 0:
            raise ValueError("slices are counted from 0")
        return self._slice(index, block, "")

    def at(self, where: str) -> Any:
        """Of a waterfall the slice nearest to "3000rpm" or "2.5 s"; of others the values nearest to "50Hz" on their
        axis, in SI units."""
        if not isinstance(where, str):
            raise TypeError(f"a text is wanted, such as \"3000rpm\", and not {where!r}")
        if not where.strip():
            raise ValueError("a value with a unit is wanted, such as 3000rpm")
        if self.header.waterfall_dimension == 2 and not self._is_slice:
            return self._slice(None, None, where)
        axis = self.axis() if self.dims else None
        if axis is None:
            raise ValueError(f"{self!r} has no axis for {where}")
        match = re.fullmatch(r"\s*([-+]?(?:\d+\.?\d*|\.\d+)(?:[eE][-+]?\d+)?)\s*(.*?)\s*", where)
        if match is None:
            raise ValueError(f"{where} is no value with a unit, such as 50Hz")
        places = axis.to(match[2] or None)
        return self.values[..., int(numpy.nanargmin(numpy.abs(places - float(match[1]))))]

    def _slice(self, index: Optional[int], block: Optional[int], where: str) -> "Result":
        if self._reader is None:
            raise ValueError("a slice, or a result that was pickled, has no document to read slices from: "
                             "index its values")
        try:
            found, fields = self._reader.read_slice(self.number, index, block, where)
        except ValueError as error:
            raise ValueError(f"{self._source}, result {self.number}: {str(error).removeprefix('--at ')}") from None
        return Result(self.header, source=self._source, content=Content.of(fields), place=(*self._place, found))

    # ---- For other packages ----
    def to_xarray(self, *, shown: bool = False):
        """An xarray.Dataset with all data and coordinates, in SI units or in those that people see."""
        from zelmresult import _tables

        return _tables.to_xarray(self, shown)

    def to_pandas(self, *, shown: bool = False):
        """A pandas.DataFrame: a row per point, or per slice or order with a column per point."""
        from zelmresult import _tables

        return _tables.to_pandas(self, shown)

    def plot(self, ax: Any = None, **options: Any):
        """Draws it with matplotlib, and returns the axes; see zelmresult.plots.plot."""
        from zelmresult import plots

        return plots.plot(self, ax=ax, **options)

    def __reduce__(self):
        return _restored, (tuple(self.header), self._source, self._content, self._place)

    def __eq__(self, other: object) -> bool:
        return self._place == other._place if isinstance(other, Result) else NotImplemented

    def __hash__(self) -> int:
        return hash(self._place)

    def __repr__(self) -> str:
        return f"<Result {self.number}: {self.kind}, {self.title}>"


def _restored(header: Tuple[Any, ...], source: str, content: Content, place: Tuple[Any, ...]) -> Result:
    return Result(Header(*header), source=source, content=content, place=place)


def levels_of(result: Result) -> List[Level]:
    """The levels of a result, one or several; none of other results."""
    content = result._content
    if content.form != "level":
        return content.levels
    value, minimum, maximum = (float(content.data[name].values) for name in ("value", "minimum", "maximum"))
    return [Level(result.process or result.kind, content.quantity, value, minimum, maximum, result.text(value))]


def level_rows(result: Result) -> List[Dict[str, Any]]:
    """A row of a table per level."""
    rows = []
    for level in levels_of(result):
        decibels = None
        if level.quantity is not None and level.quantity.has_db:
            decibels = float(level.quantity.db(level.value))
        rows.append({"number": result.number, "channel": result.channel, "level": level.name, "value": level.value,
                     "unit": level.quantity.unit if level.quantity is not None else "",
                     "dB": decibels, "text": level.text,
                     "minimum": level.minimum, "maximum": level.maximum})
    return rows
