import json
import math

import numpy
import pytest
import uff_reader


@pytest.fixture(scope="module", params=["uff", "uff-binary"])
def exported(request, zmxf, documents, tmp_path_factory):
    """What the file of a document holds: its functions by result, and what the program warned of."""
    folder = tmp_path_factory.mktemp(request.param)

    def export(document):
        target = folder / f"{document}.uff"
        _, warnings = zmxf.run("export", documents[document], "--to", request.param, "-o", target)
        units, functions = uff_reader.read(target)
        assert units == (1, 1, [1.0, 1.0, 1.0, 273.15])
        results = {}
        for function in functions:
            results.setdefault(function.number, []).append(function)
        return results, warnings

    return export


def arrays_of(result):
    """The data of a result of the JSON export, whose figures test_json.py compares with what is shown."""
    read = {name: numpy.array(var["data"], dtype=float) for name, var in result["data_vars"].items()}
    for name, values in read.items():
        dims = result["data_vars"][name]["dims"]
        if name.endswith("_real"):
            yield dims, values + 1j * read[name.removesuffix("_real") + "_imag"]
        elif not name.endswith("_imag"):
            yield dims, values


def axis_of(result, dimension, size):
    """The coordinate that a dimension is shown along; points are counted where there is none."""
    coords = result["coords"]
    along = [name for name, coord in coords.items() if coord["dims"] == [dimension]]
    chosen = result["attrs"]["chosen_reference"]
    names = [chosen] if chosen in along else [name for name in along if name in ("frequency", "band", "time", "x", "order")]
    return numpy.array(coords[names[0]]["data"], dtype=float) if names else numpy.arange(size)


def in_file(values, axis):
    """In turns per minute where the axis of a function says so."""
    return values.astype(numpy.float32) * 60 if axis[0] == 19 else values


def functions_of(result):
    for dims, values in arrays_of(result):
        for row in values if len(dims) == 2 else [values] if dims else []:
            x = axis_of(result, dims[-1], len(row))
            is_there = numpy.isfinite(x) & numpy.isfinite(row)
            if is_there.any():
                yield x[is_there], row[is_there]


@pytest.mark.parametrize("document, count", [("demo", 28), ("whole_references", 3), ("kinds", 15)])
def test_functions_have_all_figures(zmxf, documents, exported, document, count):
    results, _ = exported(document)
    assert len(results) == count
    exported_json = json.loads(zmxf("export", documents[document], "--to", "json", "-o", "-"))["results"]
    for number, functions in results.items():
        for function, (x, y) in zip(functions, functions_of(exported_json[number]), strict=True):
            numpy.testing.assert_allclose(function.x, in_file(x, function.axes[0]), rtol=1e-6, atol=1e-6)
            # In bytes the float is the same, in columns all of its digits are.
            is_binary = function.ordinate_type in (2, 5)
            precise = numpy.complex64 if numpy.iscomplexobj(y) else numpy.float32
            expected = numpy.asarray(in_file(y, function.axes[1]), dtype=precise if is_binary else None)
            numpy.testing.assert_allclose(function.y, expected, rtol=0 if is_binary else 2e-7)
    for functions in (results[number] for number in results if exported_json[number]["dims"].get("slice", 0) > 1):
        result = exported_json[functions[0].number]
        z = in_file(axis_of(result, "slice", 0), functions[0].axes[3])
        assert [function.z for function in functions[: len(z)]] == pytest.approx(z, rel=1e-6)


def test_headers_say_what_functions_are(exported):
    results, warnings = exported("demo")
    frequency = (18, 0, 0, 0, "Frequency", "Hz")
    acceleration = (12, 1, 0, 0, "Acceleration", "m/s2")
    nothing = (0, 0, 0, 0, "NONE", "NONE")
    speed = (19, 0, 0, 0, "Speed", "rpm")

    def header(number):
        first = results[number][0]
        return first.function, first.axes

    assert header(21) == (12, [frequency, acceleration, nothing, nothing])
    assert header(26) == (4, [frequency, acceleration, acceleration, nothing])
    assert header(30)[1][1:3] == [(1, 1, 1, 0, "Voltage", "V"), acceleration]
    assert header(25)[0] == 6 and header(25)[1][1][:4] == (1, 0, 0, 0)
    assert header(34) == (12, [frequency, acceleration, nothing, speed])
    assert header(40) == (27, [speed, acceleration, nothing, (20, 0, 0, 0, "Order", "NONE")])
    assert [function.z for function in results[40]] == [1, 2, 4]
    assert header(45) == (1, [(17, 0, 0, 0, "Time", "s"), acceleration, nothing, nothing])
    transfer = results[26][0]
    assert transfer.response == ("Channel 2", 2, 0) and transfer.reference == ("Channel 1", 1, 0)
    assert transfer.texts[0:2] == ["H1 transfer function", "Channel 2 / Channel 1"]
    assert not results[22][0].is_even and results[22][0].x[:4] == [16, 20, 25, 31.5]
    for warning in ["s^-1 A^-1 is left over", '"Slice number" is cut to 10', "levels of all bands together are left out",
                    "27 results left out: Universal Files hold functions, no levels: 0-20, 43-44"]:
        assert warning in warnings
    assert "acceleration" not in warnings.lower()


def test_steps_of_a_third_of_a_hertz(zmxf, tmp_path):
    """They have more digits than a number of the header usually has. One channel is called like the end of a dataset."""
    recording, document, target = (tmp_path / name for name in ("a.csv", "a.zmxf", "a.uff"))
    recording.write_text("".join(f"{math.sin(i * 0.3)},{math.cos(i * 0.1)}\n" for i in range(30000)))
    zmxf("analyze", recording, "--rate", 3000, "--block-size", 9000, "--channel-names", "a,-1", "-o", document)
    zmxf("export", document, "--to", "uff", "--kind", "autospectrum", "-o", target)
    first, second = uff_reader.read(target)[1]
    assert second.response[0] == "-1" and second.texts[1] == '"-1"'
    shown = zmxf.show(document, first.number)["x"]["si"]
    assert first.is_even and first.x == pytest.approx(shown, rel=1.2e-7)


def test_what_the_format_cannot_say_is_refused(zmxf, documents, tmp_path):
    for option in [["--db"], ["--units", "shown"]]:
        zmxf.run("export", documents["demo"], "--to", "uff", "-o", tmp_path / "a.uff", *option, status=2)
