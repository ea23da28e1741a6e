"""Documents that are written."""
from __future__ import annotations

import datetime
import math
import operator
import os
from typing import Any, Dict, List, Mapping, Optional, Tuple, Union

import numpy

from zelmresult import _core
from zelmresult._document import open as open_document, path_bytes
from zelmresult._quantity import Quantity

_FRACTIONS = {1: 0, 3: 1, 12: 2, 24: 3}  # of an octave, as they are stored
_TEXTS = ("process", "channel", "reference", "caption", "comment", "analyzer", "identification")
_NUMBERS = ("channel_number", "reference_number", "weighting", "time_weighting", "window", "system")
_LIMITS = {"channel_number": (-2**31, 2**31 - 1), "reference_number": (-2**31, 2**31 - 1),
           "window": (-2**31, 2**31 - 1), "system": (0, _core.most_systems - 1)}

Reference = Tuple[Any, Quantity]


def new(source: Union[None, str, bytes, "os.PathLike[Any]"] = None) -> "NewDocument":
    """A document to fill and save: an empty one, or with all that a file holds.

    >>> import zelmresult
    >>> doc = zelmresult.new()
    >>> acceleration = zelmresult.Quantity("Acceleration", "m/s2")
    >>> doc.add_scalar(0.0123, acceleration, channel="Bearing")
    >>> with zelmresult.open(doc.to_bytes()) as read:
    ...     read[0].text(read[0].values)
    '12.3 mm/s2'
    """
    if source is None:
        return NewDocument(_core.Writer())
    path = path_bytes(source)
    open_document(os.fsdecode(path)).close()  # says what is wrong in the same words
    return NewDocument(_core.Writer(path))


class NewDocument:
    """A document in memory that results are added to.

    All values are in SI units, whatever unit a quantity is shown in. Header fields of a result are given by name:
    channel, channel_number, reference, reference_number, process, date (a datetime), caption, comment, analyzer,
    identification, weighting, time_weighting, window, system. kind is what the result is: a name of
    zelmresult.PROCESS_TYPES, such as "RMS", or a number. Systems are numbered from 0 to 16; those below the highest one
    are in the file too, even without results.
    """

    def __init__(self, writer: Any) -> None:
        self._writer = writer
        self._quantities: Dict[Quantity, int] = {}
        self._taken: Dict[Tuple[str, str], Quantity] = {}

    def __len__(self) -> int:
        return self._writer.count()

    def add_scalar(self, value: float, quantity: Quantity, *, minimum: Optional[float] = None,
                   maximum: Optional[float] = None, kind: Union[str, int] = "RMS", **header: Any) -> None:
        """A level, with the least and the most that it was."""
        value = _single(value)
        self._writer.add_level(_header(kind, header), self._number(quantity), value,
                               value if minimum is None else _single(minimum),
                               value if maximum is None else _single(maximum))

    def add_spectrum(self, values: Any, quantity: Quantity, *, step: float, start: float = 0.0,
                     axis: Optional[Quantity] = None, kind: Union[None, str, int] = None, **header: Any) -> None:
        """Values at even steps, real or complex: a spectrum, unless axis is another quantity than a frequency."""
        values = _array(values, 1)
        is_complex = numpy.iscomplexobj(values)
        self._writer.add_vector(_header(_kind_of_lines(kind, is_complex), header), self._number(quantity),
                                self._axis(axis, start, start + step * (len(values) - 1)), values.real,
                                values.imag if is_complex else None)

    def add_bands(self, values: Any, quantity: Quantity, *, first: float, fraction: int = 3, overall: float = 0.0,
                  overall_weighted: float = 0.0, overall_weighting: int = 0,
                  kind: Union[str, int] = "Averaged octave bands", **header: Any) -> None:
        """Bands of octaves. first is the middle of the lowest one, fraction 1, 3, 12 or 24; overall the level of all."""
        values = _real(values, 1)
        if fraction not in _FRACTIONS:
            raise ValueError("bands are those of 1/1, 1/3, 1/12 or 1/24 octaves")
        if not first > 0:
            raise ValueError("the middle of the first band is a frequency above 0")
        last = first * 10.0 ** min(0.3 * (len(values) - 1) / fraction, 100.0)
        self._writer.add_bands(_header(kind, header), self._number(quantity), self._axis(None, first, last),
                               _FRACTIONS[fraction], values, (overall, overall_weighted, overall_weighting))

    def add_waterfall(self, values: Any, quantity: Quantity, *, step: float, start: float = 0.0,
                      references: Mapping[str, Reference], along: Optional[str] = None, blocks: Any = None,
                      kind: Union[None, str, int] = None, **header: Any) -> None:
        """Slices by lines, real or complex, with the values and the quantity of each reference; along is the one that
        slices are shown along, the first unless it is given. blocks are the rising numbers of the slices, 0, 1, 2...
        without them. Each reference becomes a result too."""
        values = _array(values, 2)
        is_complex = numpy.iscomplexobj(values)
        slices = len(values)
        numbers = list(range(slices)) if blocks is None else [int(block) for block in blocks]
        if len(numbers) != slices or any(b <= a for a, b in zip(numbers, numbers[1:])) or numbers[0] < 0 \
                or numbers[-1] >= 2**31:
            raise ValueError("blocks are rising numbers below 2**31, one per slice")
        chosen = _chosen(references, along, slices)
        common = {**header, "process": "Reference"}
        series = [({**_header("Values of a reference", {**common, "channel": name}), "waterfall_dimension": 1,
                    "chosen_reference": chosen}, name, self._number(of), _real(data, 1))
                  for name, (data, of) in references.items()]
        own = {**_header(_kind_of_lines(kind, is_complex), header), "waterfall_dimension": 2,
               "chosen_reference": chosen}
        waterfall = (own, self._number(quantity), self._axis(None, start, start + step * (values.shape[1] - 1)),
                     values.real, values.imag if is_complex else None)
        self._writer.add_run_up(numbers, chosen, series, [waterfall])

    def add_order_track(self, values: Any, quantity: Quantity, *, orders: Any, references: Mapping[str, Reference],
                        along: Optional[str] = None, kind: Union[str, int] = "Order tracks", **header: Any) -> None:
        """Orders by points, with the values and the quantity of each reference along the points. The numbers of the
        orders are kept in the name of the process."""
        values = _real(values, 2)
        if "process" in header:
            raise TypeError("the name of the process of an order track holds its orders: it can't be given")
        orders = list(orders)
        if len(orders) != len(values):
            raise ValueError("there is a row of values per order")
        chosen = _chosen(references, along, values.shape[1])
        series = [(name, self._number(of), _real(data, 1)) for name, (data, of) in references.items()]
        numbers = [f"{order:g}" for order in orders]
        if len(set(numbers)) < len(numbers):
            raise ValueError("each order is there once, and differs from others in its first six digits")
        names = ", ".join(numbers)
        own = {**_header(kind, {**header, "process": f"Orders {names}"}), "chosen_reference": chosen}
        self._writer.add_order_track(own, self._number(quantity), chosen, series, values)

    def check(self) -> List[str]:
        """A sentence for everything that would not come back from a file; none when it is sound."""
        return self._writer.check()

    def save(self, path: Union[str, bytes, "os.PathLike[Any]"], *, accept_losses: bool = False) -> None:
        """Saves it. What was there stays until the new file is whole. Raises SaveError, with the reasons, for what
        would not come back, unless losses are accepted."""
        self._writer.save(path_bytes(path), accept_losses)

    def to_bytes(self) -> bytes:
        """What save would write. Raises SaveError for what would not come back."""
        return self._writer.to_bytes()

    def _axis(self, quantity: Optional[Quantity], first: float, last: float) -> Tuple[int, float, float]:
        first, last = _single(first), _single(last)
        if math.isnan(first + last):
            raise ValueError("an axis begins and ends at numbers")
        return self._number(FREQUENCY if quantity is None else quantity), first, last

    def _number(self, quantity: Quantity) -> int:
        """A file merges quantities that differ in nothing but their units, so another unit needs another key."""
        if not isinstance(quantity, Quantity):
            raise TypeError(f"a zelmresult.Quantity is wanted, and not {quantity!r}")
        if quantity not in self._quantities:
            taken = self._taken.setdefault((quantity.key, quantity.name), quantity)
            if taken != quantity:
                raise ValueError(f"the document has a quantity {quantity.key} in {taken.shown_unit or 'no unit'} "
                                 f"already: give the one in {quantity.shown_unit or 'no unit'} a key of its own")
            self._quantities[quantity] = self._writer.add_quantity(quantity._fields())
        return self._quantities[quantity]

    def __repr__(self) -> str:
        return f"<NewDocument of {len(self)} results>"


def _kind_of_lines(kind: Union[None, str, int], is_complex: bool) -> Union[str, int]:
    if kind is None:
        return "Transfer function" if is_complex else "Autospectrum"
    return kind


def _header(kind: Union[str, int], fields: Mapping[str, Any]) -> Dict[str, Any]:
    from zelmresult import PROCESS_TYPES

    if isinstance(kind, str) and kind not in PROCESS_TYPES:
        raise ValueError(f"{kind} isn't a name of zelmresult.PROCESS_TYPES")
    number = PROCESS_TYPES[kind] if isinstance(kind, str) else operator.index(kind)
    if not 0 <= number < 2**32:
        raise ValueError(f"{number} isn't the number of a process type")
    unknown = set(fields) - {*_TEXTS, *_NUMBERS, "date"}
    if unknown:
        raise TypeError(f"a header has no field {', '.join(sorted(unknown))}")
    for name in _TEXTS:
        if not isinstance(fields.get(name, ""), str):
            raise TypeError(f"{name} is a text, and not {fields[name]!r}")
        fields.get(name, "").encode()  # raises UnicodeEncodeError for what no file holds
    for name in _NUMBERS:
        least, most = _LIMITS.get(name, (0, 2**32 - 1))
        if not least <= operator.index(fields.get(name, 0)) <= most:
            raise ValueError(f"{name} is a number from {least} to {most}, and not {fields[name]}")
    header: Dict[str, Any] = {"process_type": number, "precision": 1e-5}
    header["process"] = next((name for name, type_ in PROCESS_TYPES.items() if type_ == number), "")
    header.update({name: value for name, value in fields.items() if name != "date"})
    date = fields.get("date")
    if date is not None:
        if not isinstance(date, datetime.datetime):
            raise TypeError("date is a datetime.datetime")
        header["seconds"] = int(date.timestamp())
    return header


def _array(values: Any, dimensions: int) -> numpy.ndarray:
    if isinstance(values, numpy.ma.MaskedArray):
        values = numpy.ma.filled(values.astype(numpy.result_type(values, numpy.float32)), numpy.nan)
    array = numpy.asarray(values)
    if array.dtype.kind == "O":
        array = array.astype(numpy.float64)
    if array.dtype.kind not in "biufc":
        raise TypeError(f"numbers are wanted, and not {array.dtype}")
    if array.ndim != dimensions or array.size == 0:
        raise ValueError(f"an array of {dimensions} dimension{'s' * (dimensions > 1)} with values is wanted")
    single = numpy.complex64 if array.dtype.kind == "c" else numpy.float32
    with numpy.errstate(over="ignore"):
        stored = array.astype(single, copy=False)
    if array.dtype != single and numpy.any(numpy.isinf(stored) & numpy.isfinite(array)):
        raise ValueError("a value is larger than single precision holds")
    return stored


def _single(value: Any) -> float:
    value = float(value)
    if math.isfinite(value) and abs(value) > numpy.finfo(numpy.float32).max:
        raise ValueError("a value is larger than single precision holds")
    return value


def _real(values: Any, dimensions: int) -> numpy.ndarray:
    array = _array(values, dimensions)
    if numpy.iscomplexobj(array):
        raise TypeError("only spectra and waterfalls can be complex: give magnitudes, or other real numbers")
    return array


def _chosen(references: Mapping[str, Reference], along: Optional[str], size: int) -> str:
    if not references:
        raise ValueError("there is no reference: give one per slice or point, such as a time or a speed")
    for name, (data, _) in references.items():
        if numpy.shape(data) != (size,):
            raise ValueError(f"the reference {name} has not one value for each of the {size} slices or points")
        if not numpy.all(numpy.isfinite(_real(data, 1))):
            raise ValueError(f"the reference {name} has a value that is no finite number: leave such points out")
    chosen = next(iter(references)) if along is None else along
    if chosen not in references:
        raise ValueError(f"{chosen} is none of the references {', '.join(references)}")
    return chosen


FREQUENCY = Quantity("Frequency", "Hz", db_reference=0.0, uff_type=18)
