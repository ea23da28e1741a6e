import json
import math
import re
import subprocess

import numpy
import pytest
import scipy.io


def load(path):
    return scipy.io.loadmat(path, struct_as_record=False, chars_as_strings=True)


def text(field):
    return field[0] if field.size else ""


def plain(text):
    """With one sign for whatever not all programs read."""
    return re.sub("[\ufffd\U00010000-\U0010ffff]+", "?", text)


def rows_of(result):
    """The data along a dimension as `zmxf show` has its columns."""
    rows = []
    for name in result.data[0, 0]._fieldnames:
        values = getattr(result.data[0, 0], name)
        dimensions = text(getattr(result.dimensions[0, 0], name)).split()
        if len(dimensions) == 2:
            rows += list(values)
        elif len(dimensions) == 1:
            rows.append(values[:, 0])
    return rows


def finite(values):
    """What isn't a finite number is null in the JSON of the program."""
    return numpy.where(numpy.isfinite(values), values, math.nan)


def singles(values):
    return numpy.array([math.nan if value is None else value for value in values], dtype=numpy.float32)


def expect_equal(zmxf, document, number, result):
    shown = zmxf.show(document, number)
    data = result.data[0, 0]
    if "value" in shown:
        assert data.value.shape == (1, 1) and data.value.dtype == numpy.float32
        numpy.testing.assert_array_equal(finite([data.value[0, 0], data.maximum[0, 0]]),
                                         singles([shown["value"]["si"], shown["maximum"]["si"]]))
        return
    for level in shown.get("levels", {}).values() if "columns" not in shown else []:
        held = [getattr(data, name).ravel() for name in data._fieldnames]
        assert singles([level["value"]["si"]])[0] in numpy.concatenate(held)
    if "slices" in shown:
        blocks = [each["block"] for each in shown["slices"]]
        assert list(result.coordinates[0, 0].block.ravel()) == blocks
        for index in range(0, len(blocks), 40):
            assert data.value.shape[0] == len(blocks)
            column = zmxf.show(document, number, "--slice", index)["columns"][0]["si"]
            numpy.testing.assert_array_equal(finite(data.value[index]), singles(column))
    if "columns" not in shown:
        return
    rows = rows_of(result)
    if "real" in shown:
        assert rows[0].dtype == numpy.complex64
        numpy.testing.assert_array_equal(finite(rows[0].real), singles(shown["real"]))
        numpy.testing.assert_array_equal(finite(rows[0].imag), singles(shown["imaginary"]))
        return
    assert len(rows) == len(shown["columns"])
    for row, column in zip(rows, shown["columns"]):
        assert row.dtype in (numpy.float32, numpy.complex64)
        if row.dtype == numpy.complex64:  # of which the magnitude is shown
            row = numpy.abs(row)
        numpy.testing.assert_allclose(finite(row), singles(column["si"]), rtol=1.2e-7 if row.dtype == complex else 0)


@pytest.fixture(scope="module")
def exported(zmxf, documents, tmp_path_factory):
    """The MAT-file of each document."""
    folder = tmp_path_factory.mktemp("mat")
    for name, path in documents.items():
        zmxf("export", path, "--to", "mat", "-o", folder / f"{name}.mat")
    return {name: folder / f"{name}.mat" for name in documents}


def test_values_equal_what_is_shown(zmxf, documents, exported):
    for name, document in documents.items():
        loaded = load(exported[name])
        listed = zmxf.list(document)
        index = loaded["index"][0]
        assert [int(each.number[0, 0]) for each in index] == [result["number"] for result in listed]
        for each, result in zip(index, listed):
            assert plain(text(each.channel)) == plain(result["response"])
            stored = loaded[text(each.variable)][0, 0]
            assert text(stored.attributes[0, 0].process) == text(each.process)
            expect_equal(zmxf, document, result["number"], stored)


def octave(program):
    """What the program prints, which is JSON."""
    done = subprocess.run(["octave-cli", "--quiet", "--no-init-file", "--eval", program], capture_output=True)
    return json.loads(done.stdout)


def test_octave_reads_the_same(exported):
    path = exported["demo"]
    waterfall, transfer = (load(path)[name][0, 0] for name in ("r0034", "r0026"))
    read = octave(f"""
        m = load('{path}'); w = m.r0034; h = m.r0026.data.value;
        printf('%s', jsonencode(struct('count', numel(m.index), 'variable', m.index(35).variable, 'size', size(w.data.value),
            'classes', {{{{class(w.data.value), class(h), class(w.coordinates.block)}}}}, 'row', double(w.data.value(3, 1:20)),
            'real', double(real(h(1:9))), 'imag', double(imag(h(1:9))), 'unit', w.units.value, 'speed', w.attributes.chosen_reference,
            'weightings', {{m.r0044.coordinates.weighting}})))""")
    assert (read["count"], read["variable"], read["size"]) == (55, "r0034", [159, 4001])
    assert read["classes"] == ["single", "single", "int32"]
    assert read["row"] == pytest.approx(waterfall.data[0, 0].value[2, :20], rel=1e-4)
    assert read["real"] == pytest.approx(transfer.data[0, 0].value[:9, 0].real, rel=1e-4, abs=1e-6)
    assert read["imag"] == pytest.approx(transfer.data[0, 0].value[:9, 0].imag, rel=1e-4, abs=1e-6)
    assert (read["unit"], read["speed"], read["weightings"]) == ("m/s²", "Speed", ["A", "C", "Z"])


def test_decibels_are_real(zmxf, demo, tmp_path):
    target = tmp_path / "a.mat"
    zmxf("export", demo, "--to", "mat", "--db", "--result", "26", "-o", target)
    transfer = load(target)["r0026"][0, 0]
    assert transfer.data[0, 0]._fieldnames == ["value_magnitude", "value_phase"]
    assert text(transfer.units[0, 0].value_magnitude) == "dB re 1 (m/s2)/(m/s2)"
    shown = singles(zmxf.show(demo, 26, "--db")["columns"][0]["dB"])
    numpy.testing.assert_allclose(transfer.data[0, 0].value_magnitude[:, 0], shown, rtol=2e-6)
