"""What a result holds: arrays with their labels. All of it is independent of the document that it came from."""
from __future__ import annotations

from typing import Any, Dict, List, NamedTuple, Optional, Tuple

import numpy

from zelmresult import _core
from zelmresult._quantity import Quantity


class Array:
    """One array with its labels. Values are in SI units and can't be written."""

    __slots__ = ("name", "title", "dims", "quantity", "weighting", "precision", "is_reference", "values")

    def __init__(self, name: str, title: str, dims: Tuple[str, ...], quantity: Optional[Quantity], weighting: int,
                 precision: Tuple[float, float], is_reference: bool, values: Any) -> None:
        self.name = name
        self.title = title
        self.dims = dims
        self.quantity = quantity
        self.weighting = weighting
        self.precision = precision
        self.is_reference = is_reference
        self.values = numpy.asarray(values)
        self.values.flags.writeable = False

    def __reduce__(self):
        return Array, (self.name, self.title, self.dims, self.quantity, self.weighting, self.precision,
                       self.is_reference, self.values)

    @property
    def shape(self) -> Tuple[int, ...]:
        return self.values.shape

    @property
    def dtype(self) -> numpy.dtype:
        return self.values.dtype

    @property
    def unit(self) -> str:
        """The SI unit of the values; empty for plain numbers and texts."""
        return self.quantity.unit if self.quantity is not None else ""

    @property
    def shown_unit(self) -> str:
        return self.quantity.shown_unit if self.quantity is not None else ""

    def to(self, unit: Optional[str] = None) -> numpy.ndarray:
        """The values in another unit; without one, in the unit that people see."""
        if self.quantity is None:
            if unit:
                raise ValueError(f"{self.title} has no unit")
            return self.values
        return self.quantity.to(self.values, unit)

    def db(self) -> numpy.ndarray:
        """The values as levels."""
        if self.quantity is None:
            raise ValueError(f"{self.title} has no decibels")
        return self.quantity.db(self.values)

    def text(self, value: float, db: bool = False) -> str:
        """A value as the library prints it."""
        core = self.quantity._core if self.quantity is not None else None
        return _core.value_text(core, value, db, self.precision, self.weighting)

    def __array__(self, dtype: Any = None) -> numpy.ndarray:
        return self.values if dtype is None else self.values.astype(dtype)

    def __len__(self) -> int:
        return len(self.values)

    def __getitem__(self, index: Any) -> Any:
        return self.values[index]

    def __repr__(self) -> str:
        sizes = ", ".join(f"{name}: {size}" for name, size in zip(self.dims, self.shape))
        unit = f" [{self.unit}]" if self.unit else ""
        return f"<Array {self.name} ({sizes}) {self.dtype}{unit}>\n{self.values}"


class Level(NamedTuple):
    """One of several levels of a result, in SI units, and as the library prints it."""

    name: str
    quantity: Optional[Quantity]
    value: float
    minimum: float
    maximum: float
    text: str


class Content:
    """All arrays of a result. axes has, by the name of a dimension, the coordinate that it is shown along; levels are
    those of a result of several, one by one."""

    __slots__ = ("form", "quantity", "chosen_reference", "lost_references", "axes", "coords", "data", "levels")

    def __init__(self, form: str, quantity: Optional[Quantity], chosen_reference: str, lost_references: Optional[str],
                 axes: Dict[str, str], coords: Dict[str, Array], data: Dict[str, Array],
                 levels: List[Level]) -> None:
        self.form = form
        self.quantity = quantity
        self.chosen_reference = chosen_reference
        self.lost_references = lost_references
        self.axes = axes
        self.coords = coords
        self.data = data
        self.levels = levels

    @classmethod
    def of(cls, fields: Dict[str, Any]) -> "Content":
        """From what the reader gives."""
        quantities: Dict[Any, Optional[Quantity]] = {}

        def quantity(core: Any) -> Optional[Quantity]:
            return quantities.setdefault(core, Quantity._of(core))

        def arrays(all_fields: List[Dict[str, Any]]) -> Dict[str, Array]:
            for one in all_fields:
                one["quantity"] = quantity(one["quantity"])
            return {one["name"]: Array(**one) for one in all_fields}

        levels = [Level(name, quantity(core), *values) for name, core, *values in fields["levels"]]
        return cls(fields["form"], quantity(fields["quantity"]), fields["chosen_reference"], fields["lost_references"],
                   fields["axes"], arrays(fields["coords"]), arrays(fields["data"]), levels)

    def __reduce__(self):
        return Content, tuple(getattr(self, name) for name in self.__slots__)

    @property
    def primary(self) -> Array:
        """What the result is about: its value, or the first of its data. A result without any is an empty array."""
        first = next(iter(self.data.values()), _NOTHING)
        return self.data.get("value", first)

    def axis(self, dimension: str) -> Optional[Array]:
        """The coordinate that a dimension is shown along; None where points are only counted."""
        return self.coords.get(self.axes.get(dimension, ""))


_NOTHING = Array("value", "Value", ("point",), None, 0, (0.0, 0.0), False, numpy.empty(0, numpy.float32))
