"""Physical quantities: which unit values are in, and how they are shown."""
from __future__ import annotations

from typing import Any, Dict, Mapping, Optional, Tuple, Union

import numpy

from zelmresult import _core

BASE_UNITS = ("rad", "sr", "m", "kg", "s", "A", "K", "mol", "cd")

_PREFIXES = {"": 1.0, "n": 1e-9, "µ": 1e-6, "u": 1e-6, "m": 1e-3, "k": 1e3, "M": 1e6}
# The dimension of a unit, and the SI value of one of it. All but the last ones take a prefix.
_PREFIXED: Dict[str, Dict[str, float]] = {
    "m": {"m": 1}, "m/s": {"m": 1, "s": -1}, "m/s2": {"m": 1, "s": -2}, "N": {"m": 1, "kg": 1, "s": -2},
    "Pa": {"m": -1, "kg": 1, "s": -2}, "V": {"m": 2, "kg": 1, "s": -3, "A": -1}, "Hz": {"s": -1}, "s": {"s": 1},
    "A": {"A": 1}, "W": {"m": 2, "kg": 1, "s": -3}, "J": {"m": 2, "kg": 1, "s": -2}}
UNITS: Dict[str, Tuple[Dict[str, float], float]] = {
    prefix + unit: (dimension, factor)
    for unit, dimension in _PREFIXED.items() for prefix, factor in _PREFIXES.items()}
UNITS.update({"kg": ({"kg": 1}, 1.0), "K": ({"K": 1}, 1.0), "rad": ({"rad": 1}, 1.0),
              "g": ({"m": 1, "s": -2}, 9.80665), "rpm": ({"s": -1}, 1.0 / 60.0), "1/min": ({"s": -1}, 1.0 / 60.0),
              "min": ({"s": 1}, 60.0), "h": ({"s": 1}, 3600.0), "": ({}, 1.0), "%": ({}, 0.01)})
# What levels in air and of vibration refer to, in SI units.
_DB_REFERENCES = {"Pa": 20e-6, "m/s2": 1e-6, "g": 1e-6, "m/s": 1e-9, "m": 1e-12, "N": 1e-6}


def _db_reference(unit: str) -> float:
    if unit in _DB_REFERENCES:
        return _DB_REFERENCES[unit]
    return _DB_REFERENCES.get(unit[1:], 0.0) if unit[:1] in _PREFIXES else 0.0


class Quantity:
    """A physical quantity. Values of it are in SI units; unit is the one that they are in, shown_unit the one that
    people see.

    >>> speed = Quantity("Speed", "rpm")
    >>> speed.unit, speed.shown_unit, speed.dimension
    ('Hz', 'rpm', {'s': -1.0})
    >>> float(speed.to(50.0, "rpm"))
    3000.0
    >>> Quantity("Acceleration", "m/s2").text(0.0312)
    '31.2 mm/s2'
    """

    __slots__ = ("_core",)

    def __init__(self, key: str, unit: str = "", *, name: Optional[str] = None,
                 dimension: Optional[Mapping[str, float]] = None, per_si: Optional[float] = None, offset: float = 0.0,
                 db_reference: Optional[float] = None, db_factor: float = 20.0, uff_type: int = 0) -> None:
        """A quantity to write. Of units that the package knows (zelmresult.UNITS), the dimension and the slope are
        known; of others both are wanted.

        key           the name that is the same in every language; two quantities of a document that have the same key,
                      name and dimension are one
        dimension     exponents by base unit, such as {"m": 1, "s": -2}
        per_si        a shown value is the SI value times per_si plus offset
        db_reference  the SI value of 0 dB; 0 for a quantity without levels
        """
        for text in (key, unit, key if name is None else name):
            if not isinstance(text, str):
                raise TypeError(f"a key, a unit and a name are texts, and not {text!r}")
        if not 0 <= uff_type < 2**16:
            raise ValueError(f"uff_type is a number from 0 to 65535, and not {uff_type}")
        if unit not in UNITS and (dimension is None or per_si is None):
            raise ValueError(f"the unit {unit} isn't known: give its dimension and per_si")
        dimension = UNITS[unit][0] if dimension is None else dimension
        unknown = set(dimension) - set(BASE_UNITS)
        if unknown:
            raise ValueError(f"base units are {', '.join(BASE_UNITS)}, and not {', '.join(sorted(unknown))}")
        slope = 1.0 / UNITS[unit][1] if per_si is None else per_si
        reference = _db_reference(unit) if db_reference is None else db_reference
        self._core = _core.make_quantity({
            "key": key, "name": key if name is None else name, "unit": unit, "slope": slope, "offset": offset,
            "db_reference": reference * slope + offset if reference else 1.0,
            "db_factor": db_factor if reference else 0.0, "uff_type": uff_type,
            "exponents": [float(dimension.get(base, 0.0)) for base in BASE_UNITS]})

    @classmethod
    def _of(cls, core: Any) -> Optional["Quantity"]:
        if core is None:
            return None
        made = cls.__new__(cls)
        made._core = core
        return made

    @property
    def key(self) -> str:
        return self._core.key

    @property
    def name(self) -> str:
        return self._core.name

    @property
    def unit(self) -> str:
        """The SI unit, such as "m/s²": the one that values are in."""
        return self._core.si_unit

    @property
    def shown_unit(self) -> str:
        return self._core.shown_unit

    @property
    def dimension(self) -> Dict[str, float]:
        return self._core.dimension

    @property
    def has_db(self) -> bool:
        """Whether levels in decibels say something."""
        return self._core.has_db

    @property
    def db_reference(self) -> str:
        """What decibels refer to, such as "20 µPa". Empty without decibels."""
        return self._core.db_reference_text

    def _fields(self) -> Dict[str, Any]:
        core = self._core
        return {"key": core.key, "name": core.name, "unit": core.shown_unit, "slope": core.slope,
                "offset": core.offset, "db_reference": core.db_reference, "db_factor": core.db_factor,
                "uff_type": core.uff_type,
                "exponents": [core.dimension.get(base, 0.0) for base in BASE_UNITS]}

    def to(self, values: Any, unit: Optional[str] = None) -> numpy.ndarray:
        """SI values in another unit of the same dimension; without one, in the shown unit."""
        values = numpy.asarray(values)
        if unit is None or unit == self.shown_unit:
            if numpy.iscomplexobj(values):
                return values.astype(numpy.complex128) * self._core.slope
            return self._core.in_unit(values)
        if unit == self.unit:
            return values.astype(numpy.complex128 if numpy.iscomplexobj(values) else numpy.float64)
        known = UNITS.get(unit)
        if known is None or known[0] != self.dimension:
            fitting = [name for name, (dimension, _) in UNITS.items() if dimension == self.dimension]
            raise ValueError(f"{self.name} isn't given in {unit}; it is in {self.shown_unit or 'no unit'}"
                             + (f", and there are {', '.join(fitting)}" if fitting else ""))
        return values.astype(numpy.complex128 if numpy.iscomplexobj(values) else numpy.float64) / known[1]

    def db(self, values: Any) -> numpy.ndarray:
        """Levels of SI values; of complex ones, those of the magnitudes. A NaN where there is none, such as of 0."""
        if not self.has_db:
            raise ValueError(f"{self.name} has no decibels")
        return self._core.in_db(magnitude(values))

    def text(self, value: float, db: bool = False, *, precision: Tuple[float, float] = (0.0, 1e-5)) -> str:
        """An SI value as the library prints it. precision is absolute and relative: which digits are worth printing."""
        return _core.value_text(self._core, value, db, precision, 0)

    def __eq__(self, other: object) -> Union[bool, Any]:
        return self._core == other._core if isinstance(other, Quantity) else NotImplemented

    def __hash__(self) -> int:
        return hash(self._core)

    def __reduce__(self):
        return Quantity._of, (self._core,)

    def __repr__(self) -> str:
        levels = f", dB re {self.db_reference}" if self.has_db else ""
        return f"<Quantity {self.name} [{self.shown_unit or '1'}]{levels}>"


def magnitude(values: Any) -> numpy.ndarray:
    """Of complex values their magnitudes, in single precision as they are stored."""
    values = numpy.asarray(values)
    if not numpy.iscomplexobj(values):
        return values
    return numpy.hypot(values.real.astype(numpy.float32), values.imag.astype(numpy.float32))
