"""Pictures of results, drawn by matplotlib, which is imported here and nowhere else."""
from __future__ import annotations

from typing import Any, List, Optional, Sequence

import numpy
from matplotlib import colors, pyplot, ticker

from zelmresult._content import Array
from zelmresult._result import Result, levels_of

# Okabe and Ito: told apart by all kinds of sight.
COLORS = ("#0072B2", "#D55E00", "#009E73", "#CC79A7", "#E69F00", "#56B4E9", "#000000", "#F0E442")
COLOR_MAP = "cividis"
DYNAMIC_RANGE = 80.0  # dB that a colour map spans below its highest level


def plot(result: Result, ax: Any = None, *, db: Optional[bool] = None, unit: Optional[str] = None,
         label: Optional[str] = None, **options: Any) -> Any:
    """Draws a result and returns its axes, which people can change: lines for spectra, orders and series, bars for
    bands and levels, a colour map for waterfalls, of magnitudes where they are complex, and two axes, magnitude over
    phase, for other complex values.

    ax       where to draw: axes of matplotlib, two of them for complex values; new ones without
    db       levels instead of values; without it, where the result is a spectrum of a quantity with levels
    unit     the unit of the values; the one that people see without
    options  for the function of matplotlib that draws: color, linewidth, cmap, ...
    """
    scale = _Scale(result, db, unit)
    if not result.dims:
        return _levels(result, ax, scale, options)
    label = _plain(result.title) if label is None else label
    if _has_phase(result):
        return _complex(result, ax, scale, label, options)
    axes = _new_axes() if ax is None else ax
    form = _form(result)
    if form == "waterfall":
        _color_map(result, axes, scale, options)
    elif form == "bands":
        _bars(result, axes, scale, label, options)
    elif form in ("overview", "pair"):
        _envelope(result, axes, scale, label, options)
    else:
        _lines(result, axes, scale, label, options)
    if ax is None:
        axes.set_title(_plain(result.title))
    return axes


def plot_all(results: Sequence[Result], *, db: Optional[bool] = None, unit: Optional[str] = None) -> List[Any]:
    """Draws results into one figure: those of one form and quantity together, others below each other."""
    panels: List[List[Result]] = []
    for result in results:
        fitting = next((panel for panel in panels if _fits(panel[0], result)), None)
        if fitting is None:
            panels.append([result])
        else:
            fitting.append(result)
    heights = [2 if _has_phase(panel[0]) else 1 for panel in panels]
    figure, axes = pyplot.subplots(sum(heights), 1, figsize=(8.0, 1.0 + 3.2 * sum(heights)), squeeze=False,
                                   constrained_layout=True)
    left = list(axes[:, 0])
    for panel, height in zip(panels, heights):
        own, left = left[:height], left[height:]
        where = own if height > 1 else own[0]
        for i, result in enumerate(panel):
            options = {"color": COLORS[i % len(COLORS)]} if len(panel) > 1 else {}
            plot(result, where, db=db, unit=unit, **options)
        own[0].set_title(_plain(panel[0].title if len(panel) == 1 else panel[0].process))
        if len(panel) > 1 and own[0].get_legend_handles_labels()[0]:
            own[0].legend()
    return list(axes[:, 0])


def _has_phase(result: Result) -> bool:
    return numpy.iscomplexobj(result.values) and len(result.dims) == 1


def _form(result: Result) -> str:
    """A slice of a waterfall is drawn as what it holds."""
    if result.form != "waterfall" or len(result.dims) > 1:
        return result.form
    return "bands" if result.dims == ("band",) else "vector"


def _fits(first: Result, other: Result) -> bool:
    return (_form(first) == _form(other) in ("vector", "overview", "pair") and first.quantity == other.quantity and first.dtype == other.dtype
            and first.dims == other.dims and first.kind == other.kind)


class _Scale:
    """What is drawn of values: levels, or values in a unit."""

    def __init__(self, result: Result, db: Optional[bool], unit: Optional[str]) -> None:
        self.quantity = result.quantity
        has_db = self.quantity is not None and self.quantity.has_db
        is_spectrum = result.dims[-1:] in (("frequency",), ("band",))
        self.db = has_db and is_spectrum and unit is None if db is None else db
        self.unit = unit
        if self.db and not has_db:
            raise ValueError(f"{result!r} has no decibels")

    def __call__(self, array: Array) -> numpy.ndarray:
        """Of complex values the magnitudes."""
        if self.db:
            return array.db()
        values = array.to(self.unit if array.quantity == self.quantity else None)
        return abs(values) if numpy.iscomplexobj(values) else values

    def title(self, result: Result) -> str:
        array = result._content.primary
        if self.db and self.quantity is not None:
            return _in_lines(f"{self.quantity.name} level", f"dB re {self.quantity.db_reference}")
        return _title(array, self.unit)


def _title(array: Array, unit: Optional[str] = None) -> str:
    name = array.quantity.name if array.quantity is not None else array.title
    return _in_lines(name, array.shown_unit if unit is None else unit)


def _plain(text: str) -> str:
    """A text of a document, in which matplotlib finds no formula."""
    return text.replace("$", r"\$")


def _in_lines(name: str, unit: str) -> str:
    """What is long has the unit on a line of its own."""
    name, unit = _plain(name), _plain(unit)
    if not unit:
        return name
    return f"{name}{' ' if len(name) + len(unit) < 36 else chr(10)}[{unit}]"


def _new_axes(rows: int = 1) -> Any:
    _, axes = pyplot.subplots(rows, 1, sharex=True, figsize=(8.0, 4.5 if rows == 1 else 6.0), constrained_layout=True)
    for one in numpy.atleast_1d(axes):
        one.set_prop_cycle(color=COLORS)
    return axes


def _points(result: Result, dimension: str, size: int) -> Any:
    """Where points of a dimension are, and what that is called."""
    axis = result.axis(dimension)
    if axis is None:
        return numpy.arange(size), "Point"
    return axis.to(), _title(axis)


def _dress(axes: Any, x_title: str, y_title: str) -> None:
    axes.set_xlabel(x_title)
    axes.set_ylabel(y_title)
    if x_title.endswith(("[Hz]", "[s]")):  # which take a prefix, where rpm don't
        axes.xaxis.set_major_formatter(ticker.EngFormatter(sep=""))
    axes.grid(True, alpha=0.3)
    axes.margins(x=0)


def _engineering(axes: Any, scale: _Scale) -> None:
    if not scale.db:
        axes.yaxis.set_major_formatter(ticker.EngFormatter(sep=""))


def _lines(result: Result, axes: Any, scale: _Scale, label: str, options: Any) -> None:
    x, x_title = _points(result, result.dims[-1], result.shape[-1])
    values = scale(result._content.primary)
    options = {"linewidth": 1.0, "color": COLORS[0], **options}
    if result.form == "order_track":
        options.pop("color", None)
        names = result.coords.get("order_name")
        for i, row in enumerate(values):
            axes.plot(x, row, label=f"Order {_plain(names[i]) if names is not None else i + 1}", color=COLORS[i % len(COLORS)],
                      **options)
        axes.legend()
    else:
        axes.plot(x, values, label=label, **options)
    _dress(axes, x_title, scale.title(result))
    _engineering(axes, scale)


def _complex(result: Result, ax: Any, scale: _Scale, label: str, options: Any) -> Any:
    axes = _new_axes(2) if ax is None else ax
    if numpy.size(axes) != 2:
        raise ValueError(f"{result!r} is complex and wants two axes, for magnitude and phase")
    upper, lower = axes
    x, x_title = _points(result, result.dims[0], result.shape[0])
    array = result._content.primary
    options = {"linewidth": 1.0, "color": COLORS[0], **options}
    upper.plot(x, scale(array), label=label, **options)
    lower.plot(x, numpy.angle(array.values, deg=True), label=label, **options)
    _dress(upper, "", scale.title(result))
    _engineering(upper, scale)
    _dress(lower, x_title, "Phase [°]")
    lower.set_ylim(-190, 190)
    lower.yaxis.set_major_locator(ticker.MultipleLocator(90))
    if ax is None:
        upper.set_title(_plain(result.title))
    return axes


def _bars(result: Result, axes: Any, scale: _Scale, label: str, options: Any) -> None:
    middles = result.coords["band"]
    values = numpy.asarray(scale(result._content.primary))
    places = numpy.arange(len(values))
    # Levels have no natural zero: bars stand on the floor of the picture.
    floor = numpy.floor(numpy.nanmin(values, initial=numpy.inf) / 10 - 1) * 10 if scale.db else 0.0
    floor = floor if numpy.isfinite(floor) else 0.0
    options = {"color": COLORS[0], "alpha": 0.8, **options}
    axes.bar(places, values - floor, bottom=floor, width=0.9, label=label, **options)
    _dress(axes, _title(middles), scale.title(result))
    _band_ticks(axes, middles)
    _engineering(axes, scale)


def _band_ticks(axes: Any, middles: Array) -> None:
    step = max(1, len(middles) // 12)
    text = ticker.EngFormatter(sep="")
    axes.set_xticks(range(0, len(middles), step), [text.format_eng(float(middle)) for middle in middles[::step]])


def _envelope(result: Result, axes: Any, scale: _Scale, label: str, options: Any) -> None:
    x, x_title = _points(result, result.dims[-1], result.shape[-1])
    names = ("lower", "upper") if result.form == "overview" else ("minimum", "maximum")
    low, high = (scale(result.data[name]) for name in names)
    options = {"linewidth": 0.5, "alpha": 0.7, "color": COLORS[0], **options}
    axes.fill_between(x, low, high, label=label, **options)
    _dress(axes, x_title, scale.title(result))
    _engineering(axes, scale)


def _color_map(result: Result, axes: Any, scale: _Scale, options: Any) -> None:
    x, x_title = _points(result, result.dims[1], result.shape[1])
    y, y_title = _points(result, result.dims[0], result.shape[0])
    values = scale(result._content.primary)
    if result.dims[1] == "band":
        x = numpy.arange(len(x))
    finite = values[numpy.isfinite(values)]
    top = float(finite.max()) if finite.size else 1.0
    bottom = max(float(finite.min()), top - DYNAMIC_RANGE) if finite.size and scale.db else None
    options = {"cmap": COLOR_MAP, "shading": "nearest", "rasterized": True, **options}
    if "norm" not in options:
        options["norm"] = colors.Normalize(options.pop("vmin", bottom), options.pop("vmax", top))
    mesh = axes.pcolormesh(x, y, values, **options)
    bar = axes.figure.colorbar(mesh, ax=axes)
    bar.set_label(scale.title(result))
    _dress(axes, x_title, y_title)
    axes.grid(False)
    if result.dims[1] == "band":
        _band_ticks(axes, result.coords["band"])


def _levels(result: Result, ax: Any, scale: _Scale, options: Any) -> Any:
    shown = [level for level in levels_of(result) if level.quantity == result.quantity]
    axes = _new_axes() if ax is None else ax
    values: Any = [level.value for level in shown]
    if scale.quantity is not None:
        values = scale.quantity.db(values) if scale.db else scale.quantity.to(values, scale.unit)
    places = numpy.arange(len(shown))
    bars = axes.barh(places, numpy.nan_to_num(values), **{"color": COLORS[0], **options})
    texts = [level.quantity.text(level.value, db=True) if scale.db and level.quantity is not None else level.text
             for level in shown]
    axes.bar_label(bars, [_plain(text) for text in texts], padding=3)
    axes.set_yticks(places, [_plain(level.name) for level in shown])
    axes.invert_yaxis()
    axes.margins(x=0.25)
    axes.set_xlabel(scale.title(result))
    if ax is None:
        axes.set_title(_plain(result.title))
    return axes
