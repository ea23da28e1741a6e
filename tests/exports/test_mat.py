import json
import re
import subprocess

import numpy
import pytest
import scipy.io
from conftest import shown_figures

FORMAT = "mat"


def load(path):
    """The variables, with the fields of structs as attributes; arrays keep their two dimensions."""
    return scipy.io.loadmat(path, struct_as_record=False)


def text(field):
    return field[0] if field.size else ""


def plain(text):
    """With one sign for whatever not all programs read."""
    return re.sub("[\ufffd\U00010000-\U0010ffff]+", "?", text)


def lists_of(fields):
    """All columns and rows of a struct, with None for what JSON has no number for; of complex ones both halves."""
    for name in fields._fieldnames:
        values = getattr(fields, name)
        if values.dtype.kind == "O":
            continue
        halves = [values.real, values.imag, numpy.abs(values)] if values.dtype.kind == "c" else [values]
        for half in halves:
            half = numpy.where(numpy.isfinite(half), half, numpy.nan)
            yield from (half.T if half.shape[1] == 1 else half)


def test_has_the_figures_that_are_shown(zmxf, documents, exported):
    for name, document in documents.items():
        loaded = load(exported[name])
        listed = zmxf.list(document)
        assert len(loaded["index"][0]) == len(listed)
        for each, result in zip(loaded["index"][0], listed):
            assert (each.number[0, 0], plain(text(each.channel))) == (result["number"], plain(result["response"]))
            stored = loaded[text(each.variable)][0, 0]
            assert text(each.kind) == text(stored.attributes[0, 0].kind) == result["kind"]
            held = [*lists_of(stored.coordinates[0, 0]), *lists_of(stored.data[0, 0])]
            lists, single = shown_figures(zmxf, document, result["number"])
            assert all(numpy.float32(figure) in numpy.concatenate(held) for figure in single if figure is not None)
            for figures in lists:
                expected = numpy.array(figures, dtype=numpy.float32)
                if figures != list(range(len(figures))):  # which count points, of which there is no array
                    assert any(len(row) == len(expected) and numpy.allclose(row, expected, 2e-7, 0, equal_nan=True)
                               for row in held), (name, result["number"])


def test_octave_reads_the_same(exported):
    path = exported["demo"]
    waterfall, transfer = (load(path)[name][0, 0] for name in ("r0034", "r0026"))
    done = subprocess.run(["octave-cli", "--quiet", "--no-init-file", "--eval", f"""
        m = load('{path}'); w = m.r0034; h = m.r0026.data.value;
        printf('%s', jsonencode(struct('variable', m.index(35).variable, 'size', size(w.data.value),
            'classes', {{{{class(w.data.value), class(h), class(w.coordinates.block)}}}},
            'row', double(w.data.value(3, 1:20)), 'real', double(real(h(1:9))), 'imag', double(imag(h(1:9))),
            'unit', w.units.value, 'reference', w.attributes.chosen_reference,
            'weightings', {{m.r0044.coordinates.weighting}})))"""], capture_output=True, check=False)
    read = json.loads(done.stdout)
    assert (read["variable"], read["size"]) == ("r0034", [159, 4001])
    assert read["classes"] == ["single", "single", "int32"]
    assert read["row"] == pytest.approx(waterfall.data[0, 0].value[2, :20], rel=1e-4)
    assert read["real"] == pytest.approx(transfer.data[0, 0].value[:9, 0].real, rel=1e-4, abs=1e-6)
    assert read["imag"] == pytest.approx(transfer.data[0, 0].value[:9, 0].imag, rel=1e-4, abs=1e-6)
    assert (read["unit"], read["reference"], read["weightings"]) == ("m/s²", "Speed", ["A", "C", "Z"])


def test_decibels_are_real(zmxf, demo, tmp_path):
    target = tmp_path / "a.mat"
    zmxf("export", demo, "--to", "mat", "--db", "--result", "26", "-o", target)
    transfer = load(target)["r0026"][0, 0]
    assert transfer.data[0, 0]._fieldnames == ["value_magnitude", "value_phase"]
    assert text(transfer.units[0, 0].value_magnitude) == "dB re 1 (m/s2)/(m/s2)"
    shown = numpy.array(zmxf.show(demo, 26, "--db")["columns"][0]["dB"], dtype=numpy.float32)
    numpy.testing.assert_allclose(transfer.data[0, 0].value_magnitude[:, 0], shown, rtol=2e-6)
