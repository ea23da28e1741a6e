"""What pictures show: their values, titles and units."""
import subprocess
import sys
import xml.etree.ElementTree

import numpy
import pytest
import zelmresult
from conftest import SEEDS
from matplotlib import pyplot
from zelmresult import plots


@pytest.fixture(autouse=True)
def close_figures():
    yield
    pyplot.close("all")


def test_a_spectrum_is_a_line_of_levels(doc):
    result = doc.select(kind="autospectrum")[0]
    axes = result.plot()
    x, y = axes.lines[0].get_data()
    numpy.testing.assert_array_equal(x, result.coords["frequency"].values)
    numpy.testing.assert_array_equal(y, result.db())
    assert axes.get_xlabel() == "Frequency [Hz]" and axes.get_ylabel() == "Acceleration level [dB re 1 µm/s2]"
    assert axes.get_title() == "Channel 1, Autospectrum"
    again = result.plot(axes, unit="g", label="second", color="red")
    assert again is axes and len(axes.lines) == 2 and axes.get_ylabel() == "Acceleration [g]"
    numpy.testing.assert_allclose(axes.lines[1].get_ydata(), result.to("g"))
    assert (axes.lines[1].get_label(), axes.lines[1].get_color()) == ("second", "red")


def test_complex_values_are_magnitude_over_phase(doc):
    result = doc.select(kind="frf")[0]
    upper, lower = result.plot(db=False)
    numpy.testing.assert_allclose(upper.lines[0].get_ydata(), abs(result.values.astype(complex)))
    numpy.testing.assert_allclose(lower.lines[0].get_ydata(), numpy.angle(result.values, deg=True))
    assert lower.get_ylabel() == "Phase [°]"


def test_a_waterfall_is_a_colour_map(doc):
    result = doc.select(kind="waterfall")[0]
    axes = result.plot()
    mesh = axes.collections[0]
    numpy.testing.assert_array_equal(numpy.asarray(mesh.get_array()).reshape(result.shape), result.db())
    assert axes.get_ylabel() == "Speed [rpm]" and axes.get_ylim()[1] > 5900
    assert mesh.norm.vmax == result.db().max() and mesh.norm.vmin >= mesh.norm.vmax - plots.DYNAMIC_RANGE
    assert mesh.colorbar.ax.get_ylabel() == "Acceleration level [dB re 1 µm/s2]"
    assert "Speed 2996" in result.at("3000rpm").plot().get_title()


def test_a_complex_waterfall_is_a_colour_map_of_magnitudes():
    made = zelmresult.new()
    values = numpy.array([[3 + 4j, 1], [2, 5 - 12j]])
    made.add_waterfall(values, zelmresult.Quantity("Force", "N"), step=1,
                       references={"Time": ([0, 1], zelmresult.Quantity("Time", "s"))})
    fall = zelmresult.open(made.to_bytes())[-1]
    axes, = plots.plot_all([fall], db=False)
    numpy.testing.assert_array_equal(numpy.asarray(axes.collections[0].get_array()).flatten(), [5, 1, 2, 13])
    assert numpy.size(fall.slice(1).plot()) == 2


def test_bands_orders_and_levels(doc):
    bands = doc.select(kind="octave")[0]
    bars = bands.plot().patches
    numpy.testing.assert_allclose([bar.get_y() + bar.get_height() for bar in bars], bands.db())
    track = doc.select(kind="order")[0]
    axes = track.plot()
    assert [line.get_label() for line in axes.lines] == ["Order 1", "Order 2", "Order 4"]
    numpy.testing.assert_allclose(axes.lines[1].get_ydata(), track.to()[1])
    levels = doc.select(name="Broad band*")[0].plot()
    assert "0.808287 m/s2(A)" in [text.get_text() for text in levels.texts]
    assert levels.get_yticklabels()[1].get_text() == "Leq A"
    with pytest.raises(ValueError, match="no decibels"):
        doc.select(kind="coherence")[0].plot(db=True)


def test_names_are_no_formulas():
    made = zelmresult.new()
    made.add_spectrum([1, 2], zelmresult.Quantity("$x^$", "V"), step=1, channel="$x^$ \\frac")
    axes = zelmresult.open(made.to_bytes())[0].plot()
    axes.legend()
    axes.figure.canvas.draw()


def test_every_form_can_be_drawn():
    drawn = set()
    for path in sorted((SEEDS / "document").iterdir()):
        try:
            results = list(zelmresult.open(path))
        except zelmresult.DocumentError:
            continue
        for result in results:
            try:
                key = result.form, result.dims, result.dtype, result.header.waterfall_dimension, result.values.size
            except zelmresult.DocumentError:
                continue
            if key not in drawn and result.values.size < 10_000:
                drawn.add(key)
                axes = result.plot()
                numpy.atleast_1d(axes)[0].figure.canvas.draw()
                pyplot.close("all")
    assert {form for form, *_ in drawn} >= {"level", "broad_band", "global_level", "order_levels", "vector", "bands",
                                            "order_track", "overview", "pair", "waterfall"}


@pytest.mark.parametrize("name", ["x.svg", "x.png", "x.pdf"])
def test_the_command_makes_the_same_picture_each_time(demo, tmp_path, name):
    pictures = []
    for _ in range(2):
        subprocess.run([sys.executable, "-m", "zelmresult", "plot", demo, "--kind", "autospectrum", "--kind", "order",
                        "-o", tmp_path / name], check=True)
        pictures.append((tmp_path / name).read_bytes())
    assert pictures[0] == pictures[1] and len(pictures[0]) > 10_000
    if name.endswith(".svg"):
        xml.etree.ElementTree.fromstring(pictures[0])


@pytest.mark.parametrize("arguments, says", [
    (["none.zmxf", "-o", "x.svg"], "No such file"), (["DEMO", "--channel", "nobody", "-o", "x.svg"], "no such result"),
    (["DEMO", "--result", "21", "-o", "x.wobble"], "wobble"),
    (["DEMO", "--result", "21", "--at", "50Hz", "-o", "x.svg"], "waterfalls"),
    (["DEMO", "--result", "-1", "-o", "x.svg"], "numbered from 0"), (["DEMO", "--kind", "wobble", "-o", "x.svg"], "wobble")])
def test_the_command_says_what_is_wrong(demo, tmp_path, arguments, says):
    arguments = [str(demo) if argument == "DEMO" else argument for argument in arguments]
    done = subprocess.run([sys.executable, "-m", "zelmresult", "plot", *arguments], capture_output=True, text=True,
                          cwd=tmp_path)
    assert done.returncode == 1 and says in done.stderr and done.stderr.count("\n") == 1
