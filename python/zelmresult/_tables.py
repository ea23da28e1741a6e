"""Results as objects of xarray and pandas, which are imported here and nowhere else."""
from __future__ import annotations

from typing import Any, Dict

import numpy

from zelmresult._content import Array


def _values(array: Array, shown: bool) -> numpy.ndarray:
    return array.to() if shown and array.quantity is not None else array.values


def _unit(array: Array, shown: bool) -> str:
    return array.shown_unit if shown else array.unit


def _attributes(array: Array, shown: bool) -> Dict[str, Any]:
    attributes = {"long_name": array.quantity.name if array.quantity is not None else array.title}
    if array.quantity is not None:
        attributes["units"] = _unit(array, shown) or "1"
        if array.quantity.has_db:
            attributes["decibel_reference"] = array.quantity.db_reference
    return attributes


def to_xarray(result, shown: bool):
    import xarray

    def variables(arrays):
        return {name: (array.dims, _values(array, shown), _attributes(array, shown))
                for name, array in arrays.items()}

    header = result.header
    attributes: Dict[str, Any] = {
        name: getattr(header, name)
        for name in ("number", "system", "kind", "process", "channel", "reference", "caption", "comment", "analyzer")}
    if result.date is not None:
        attributes["date"] = result.date.isoformat()
    return xarray.Dataset(variables(result.data), variables(result.coords), attributes)


def _index(result, dimension: str, size: int, shown: bool):
    import pandas

    axis = result.axis(dimension)
    if axis is None:
        return pandas.RangeIndex(size, name=dimension)
    unit = _unit(axis, shown)
    return pandas.Index(_values(axis, shown), name=f"{axis.title} [{unit}]" if unit else axis.title)


def to_pandas(result, shown: bool):
    import pandas

    if not result.dims:
        return pandas.DataFrame({name: numpy.atleast_1d(_values(array, shown))
                                 for name, array in result.data.items() if not array.dims})
    rows = _index(result, result.dims[0], result.shape[0], shown)
    if len(result.dims) == 1:
        columns = {name: _values(array, shown) for name, array in result.data.items() if array.dims == result.dims}
        frame = pandas.DataFrame(columns, index=rows)
    else:
        frame = pandas.DataFrame(_values(result._content.primary, shown), index=rows,
                                 columns=_index(result, result.dims[1], result.shape[1], shown))
    for name, array in result.data.items():
        if not array.dims:
            frame.attrs[name] = float(_values(array, shown))
    return frame
