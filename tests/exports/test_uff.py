import math
import struct

import pytest
import uff_reader


def single(number):
    """As a float of 32 bits."""
    return struct.unpack("<f", struct.pack("<f", number))[0]


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


def shown_of(zmxf, document, number, function):
    """The X values, the values and the slice of a function, as `zmxf show` has them."""
    shown = zmxf.show(document, number)
    column = function.part - 1
    if "slices" in shown:
        name, _, index = function.texts[0].partition(", slice ")
        level = name.partition(", ")[2]
        if index:
            shown = zmxf.show(document, number, "--slice", index)
            column = ["", "Minimum", "Maximum"].index(level)
        else:  # a level along all slices, some of which are looked at
            some = range(0, len(function.y), 50)
            slices = [zmxf.show(document, number, "--slice", each) for each in some]
            function.x, function.y = [[values[each] for each in some] for values in (function.x, function.y)]
            return ([each["slice"]["references"]["Speed"]["inUnit"] for each in slices],
                    [each["levels"][level]["si"] for each in slices], None)
    values = shown["columns"][column]["si"]
    if "real" in shown:
        values = [None if None in parts else complex(*parts) for parts in zip(shown["real"], shown["imaginary"])]
    speed = 60 if function.axes[0][0] == 19 else 1
    pairs = [(x * speed, y) for x, y in zip(shown["x"]["si"], values) if x is not None and y is not None]
    return [x for x, _ in pairs], [y for _, y in pairs], shown.get("slice")


@pytest.mark.parametrize("document, count", [("demo", 28), ("whole_references", 3), ("kinds", 15)])
def test_functions_equal_what_is_shown(zmxf, documents, exported, document, count):
    results, _ = exported(document)
    assert len(results) == count
    for number, functions in results.items():
        # The slices of a waterfall are many: the ends and some between.
        for function in functions[:: max(1, len(functions) // 3)] + functions[-1:]:
            x, y, shown_slice = shown_of(zmxf, documents[document], number, function)
            factor = 60 if function.axes[1][0] == 19 else 1
            expected = [single(single(value) * factor) if factor != 1 else value for value in y]
            values = function.y
            if isinstance(values[0], complex) and not isinstance(expected[0], complex):
                values = [single(abs(value)) for value in values]  # of an order track the magnitude is shown
            elif function.ordinate_type in (2, 5):
                assert all(single(a.real) == single(b.real) and single(a.imag) == single(b.imag)
                           for a, b in zip(values, expected, strict=True))
            assert values == pytest.approx(expected, rel=2e-7, abs=0)
            assert function.x == pytest.approx(x, rel=1e-6, abs=1e-6)
            if shown_slice and function.axes[3][0] == 19:
                assert function.z == pytest.approx(shown_slice["references"]["Speed"]["inUnit"], rel=1e-6)


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
    assert first.is_even and [single(x) for x in first.x] == pytest.approx(shown, rel=1.2e-7)


def test_what_the_format_cannot_say_is_refused(zmxf, documents, tmp_path):
    for option in [["--db"], ["--units", "shown"]]:
        zmxf.run("export", documents["demo"], "--to", "uff", "-o", tmp_path / "a.uff", *option, status=2)
