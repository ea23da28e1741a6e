"""What documents hold, held against what zmxf shows of them."""
import io
import os
import pathlib

import numpy
import pytest
import zelmresult
from conftest import ROOT, SEEDS, zmxf


def numbers(values):
    """JSON has null for what is no finite number."""
    return numpy.array([numpy.nan if value is None else value for value in values], numpy.float32)


def same(values, shown):
    values = numpy.where(numpy.isfinite(values), values, numpy.nan)
    return numpy.array_equal(values, numbers(shown), equal_nan=True)


def rows(result):
    """The arrays that zmxf shows as columns: a column per order."""
    arrays = [array for array in result.data.values() if array.dims]
    if result.form == "order_track":
        return list(arrays[0].values)
    return [abs(array.values) if numpy.iscomplexobj(array.values) else array.values for array in arrays]


def check_levels(result, shown):
    got = {row["level"]: row for row in zelmresult._result.level_rows(result)}
    for name, level in shown.items():
        for part in ("value", "maximum", "minimum"):
            assert same([got[name][part]], [level[part]["si"]]), (name, part)
        assert got[name]["dB"] == pytest.approx(level["value"]["dB"], nan_ok=True) or level["value"]["dB"] is None


def check_result(result, shown):
    header = shown["header"]
    assert (result.process, result.channel, result.reference, result.header.caption) == (
        header["process"], header["response"], header["reference"], header["caption"])
    if shown["quantity"] is not None:
        assert (result.quantity.key, result.quantity.shown_unit, result.quantity.dimension) == (
            shown["quantity"]["key"], shown["quantity"].get("unit", ""), shown["quantity"]["dimension"])
    if "value" in shown:
        for name in ("value", "minimum", "maximum"):
            assert same([result.data[name].values], [shown[name]["si"]])
    if result.form in ("broad_band", "global_level", "order_levels"):
        check_levels(result, shown["levels"])
    if result.form == "bands":
        for array in result.data.values():
            assert array.dims or same([array.values], [shown["levels"][array.title]["si"]])
    if "columns" in shown:
        if result.axis() is not None:
            assert same(result.axis().values, shown["x"]["si"])
        for values, column in zip(rows(result), shown["columns"]):
            numpy.testing.assert_allclose(values, numbers(column["si"]), rtol=2e-7)
        assert len(rows(result)) == len(shown["columns"])
    if "real" in shown:
        assert same(result.values.real, shown["real"]) and same(result.values.imag, shown["imaginary"])
    for i, one in enumerate(shown.get("slices", ())):
        assert result.coords["block"][i] == one["block"]
        for array in result.coords.values():
            if array.is_reference:
                assert same([array[i]], [one["references"][array.title]["si"]])


def documents():
    found = sorted((ROOT / "tests/data").glob("*.zmxf")) + sorted((SEEDS / "document").iterdir())
    return [path for path in found if path.read_bytes()[8:12] == b"ZMXF"]


def shown_results(path, count):
    """What zmxf shows of each result, None for one that can't be shown."""
    def shown(*arguments):
        try:
            return zmxf("show", path, *arguments)
        except AssertionError:
            return None

    together = shown("--result", f"0-{count - 1}") if count > 1 else None
    return together["results"] if together is not None else [shown(number) for number in range(count)]


@pytest.mark.parametrize("path", ["demo", *documents()], ids=lambda path: pathlib.Path(path).name)
def test_every_result_is_as_zmxf_shows_it(path, request):
    path = request.getfixturevalue("demo") if path == "demo" else path
    try:
        listed = zmxf("ls", path)["files"][0]["results"]
    except AssertionError:
        with pytest.raises(zelmresult.DocumentError):
            len(zelmresult.open(path))
        return
    with zelmresult.open(path) as doc:
        assert [result.kind for result in doc] == [one["kind"] for one in listed]
        for result, shown in zip(doc, shown_results(path, len(listed))):
            if shown is not None:
                check_result(result, shown)
            else:
                with pytest.raises(zelmresult.DocumentError):
                    result.values


def test_the_documents_of_the_tests_hold_all_forms(demo):
    forms = set()
    for path in [demo, *documents()]:
        with zelmresult.open(path, partial=True) as doc:
            for result in doc:
                try:
                    forms.add(result.form)
                except zelmresult.DocumentError:
                    pass
    assert forms == {"level", "broad_band", "global_level", "order_levels", "vector", "bands", "order_track",
                     "overview", "pair", "waterfall"}


def test_slices_are_those_of_the_whole_waterfall(doc, demo):
    for whole in doc.select(kind="waterfall"):
        for where, options in ((whole.slice(3), ["--slice", 3]), (whole.slice(block=70), ["--block", 70]),
                               (whole.at("3000rpm"), ["--at", "3000rpm"]), (whole.at("2.5 s"), ["--at", "2.5s"])):
            index = zmxf("show", demo, whole.number, *options)["slice"]["index"]
            assert where.coords["slice"].values == index
            numpy.testing.assert_array_equal(where.values, whole.values[index])
    with pytest.raises(ValueError, match="9000rpm"):
        whole.at("9000rpm")
    with pytest.raises(ValueError, match=f"demo.zmxf, result {whole.number}: .*no slice 999"):
        whole.slice(999)
    for wrong in ("", "rpm", "nan rpm"):
        with pytest.raises(ValueError, match="with a unit") as refused:
            whole.at(wrong)
        assert "--" not in str(refused.value)
    with pytest.raises(zelmresult.DocumentError):
        doc[0].slice(0)


def test_values_along_an_axis(doc):
    spectrum = doc.select(kind="autospectrum")[0]
    assert spectrum.at("50Hz") == spectrum.values[25]
    assert spectrum.at("0.05 kHz") == spectrum.values[25]
    track = doc.select(kind="order")[0]
    nearest = abs(track.coords["Speed"].to("rpm") - 3000).argmin()
    numpy.testing.assert_array_equal(track.at("3000rpm"), track.values[:, nearest])
    with pytest.raises(ValueError):
        spectrum.at("50 Pa")


@pytest.mark.parametrize("python, options", [
    ({"channel": "Channel 2", "kind": "autospectrum"}, ["--channel", "Channel 2", "--kind", "autospectrum"]),
    ({"channel": "*[13]"}, ["--channel", "*[13]"]),
    ({"channel": 2, "kind": ["frf", "coherence"]}, ["--channel", "#2", "--kind", "frf", "--kind", "coherence"]),
    ({"reference": "Channel 1"}, ["--reference", "Channel 1"]),
    ({"name": "*octave*", "system": 0}, ["--name", "*octave*", "--system", 0]),
    ({"kind": 2}, ["--kind", 2]),
    ({"number": [3, 34]}, ["--result", "3,34"])])
def test_selections_are_those_of_zmxf(doc, demo, python, options):
    wanted = [one["number"] for one in zmxf("ls", demo, *options)["files"][0]["results"]]
    assert [result.number for result in doc.select(**python)] == wanted != []


def test_selections_that_find_nothing(doc):
    assert len(doc.select(channel="no such")) == 0
    with pytest.raises(ValueError, match="wobble"):
        doc.select(kind="wobble")


def test_units_and_texts(doc, demo):
    speed = doc.select(kind="waterfall")[0].coords["Speed"]
    numpy.testing.assert_allclose(speed.to("rpm"), speed.values.astype(float) * 60)
    numpy.testing.assert_allclose(speed.to(), speed.to("rpm"))
    numpy.testing.assert_array_equal(speed.to("Hz"), speed.values)
    spectrum = doc.select(kind="autospectrum")[0]
    numpy.testing.assert_allclose(spectrum.to("g"), spectrum.values / 9.80665)
    shown = zmxf("show", demo, spectrum.number, "--db")["columns"][0]["dB"]
    numpy.testing.assert_allclose(spectrum.db(), [numpy.nan if level is None else level for level in shown])
    assert doc[1].text(doc[1].values) in ("2.77439 m/s2",)
    assert doc[1].text(doc[1].values, db=True).endswith(" dB") and doc[1].quantity.db_reference == "1 µm/s2"
    assert numpy.isnan(doc[1].quantity.db([0.0, -1.0])).all()
    for wrong in ("Pa", "furlong"):
        with pytest.raises(ValueError, match=wrong):
            spectrum.to(wrong)
    with pytest.raises(ValueError, match="no decibels"):
        speed.db()


def test_the_rest_of_a_document(doc, demo):
    assert doc.settings == zmxf("settings", demo)["systems"]
    assert doc.recording == zmxf("tracks", demo)["systems"]
    assert [quantity.key for quantity in doc.quantities][:2] == ["Acceleration", "Crest factor"]
    levels = doc.levels()
    assert {"channel": "Channel 1", "level": "RMS", "unit": "m/s²"}.items() <= levels[1].items()
    assert doc.verify() and doc.damage is None and doc.version is not None
    assert "waterfall" in repr(doc) and "<table>" in doc._repr_html_() and "<script" not in doc._repr_html_()
    assert doc[34].date == doc[-21].date and doc[-1].number == len(doc) - 1
    for wrong in (len(doc), -len(doc) - 1):
        with pytest.raises(IndexError, match="demo.zmxf: there are 55 results"):
            doc[wrong]
    assert [result.number for result in doc[50:]] == [50, 51, 52, 53, 54]


@pytest.mark.parametrize("opened", [
    str, os.fsencode, pathlib.Path, lambda path: io.BytesIO(path.read_bytes()), lambda path: path.open("rb"),
    lambda path: bytearray(path.read_bytes()), lambda path: memoryview(path.read_bytes())])
def test_sources(demo, opened):
    source = opened(demo)
    if isinstance(source, bytes):
        source = os.fsdecode(source)
    with zelmresult.open(source) as doc:
        assert len(doc) == 55 and doc[21].shape == (4001,) and doc.verify()


def test_a_name_of_any_bytes(demo, tmp_path):
    name = os.fsencode(tmp_path) + b"/\xff\xe9.zmxf"
    pathlib.Path(os.fsdecode(name)).write_bytes(demo.read_bytes())
    with zelmresult.open(os.fsdecode(name)) as doc:
        assert len(doc) == 55 and doc.verify()
    with open(os.fsdecode(name), "rb") as file, zelmresult.open(file) as doc:
        assert len(doc) == 55


def test_failures_to_open_say_why(tmp_path):
    with pytest.raises(FileNotFoundError) as missing:
        zelmresult.open(tmp_path / "none.zmxf")
    assert isinstance(missing.value, zelmresult.DocumentError) and missing.value.kind == "not_opened"
    assert str(missing.value) == f"{tmp_path}/none.zmxf: cannot be opened: No such file or directory"
    for source in (tmp_path, b"", b"RIFF1234WAVE"):
        with pytest.raises(zelmresult.DocumentError):
            zelmresult.open(source)
    for source in (None, 5, [1, 2], io.StringIO("RIFF")):
        with pytest.raises(TypeError, match="a path, bytes or a file object"):
            zelmresult.open(source)
    for use in (zelmresult.open, zelmresult.verify, zelmresult.new):
        with pytest.raises(ValueError, match="NUL"):
            use(f"{tmp_path}\0.zmxf")
    with pytest.raises(FileNotFoundError):
        zelmresult.verify(tmp_path / "none.zmxf")


@pytest.mark.parametrize("part", [0.3, 0.9, 0.999])
def test_a_document_that_is_cut_off(demo, part, tmp_path):
    cut = demo.read_bytes()[:int(part * demo.stat().st_size)]
    with pytest.raises(zelmresult.DocumentError) as refused:
        zelmresult.open(cut)
    assert refused.value.kind == "cut_off" and refused.value.offset == len(cut)
    with zelmresult.open(cut, partial=True) as doc:
        assert doc.damage.kind == "cut_off"
        whole = zelmresult.open(demo)
        read = [result for result in doc if result.header.waterfall_dimension == 0 and result.number < 21]
        assert [result.values for result in read] == [whole[result.number].values for result in read]
        found = doc.verify()
    path = tmp_path / "cut.zmxf"
    path.write_bytes(cut)
    shown = zmxf("verify", path, ok=(3,))
    assert not found and found.readable == shown["readable"] and found.verdict == shown["verdict"] == "damaged"
    assert [damage.text for damage in found.damages] == [damage["text"] for damage in shown["damages"]]


def test_damage_in_the_data_is_named(demo, doc):
    header = doc[21].header
    data = bytearray(demo.read_bytes())
    data[header.data_offset + 8:header.data_offset + 200] = b"\xff" * 192
    with zelmresult.open(data) as damaged:
        assert damaged[23].values.shape == (4001,)
        with pytest.raises(zelmresult.DocumentError, match="result 21") as refused:
            damaged[21].values
    error = refused.value
    assert error.kind == "damaged" and error.chunk and error.offset > 0 and error.filename == "<bytes>"
