"""JSON, as Python's json and xarray read it."""
import json

import conftest
import pytest
import xarray


def refuse(text):
    raise ValueError(f"{text} is no JSON")


def read(text):
    return json.loads(text, parse_constant=refuse)


def lists_of(data):
    """The innermost lists, and those of one figure."""
    if not isinstance(data, list):
        return [[data]]
    return [data] if not data or not isinstance(data[0], list) else data


@pytest.mark.parametrize("name", conftest.DOCUMENTS)
def test_has_the_figures_that_are_shown(zmxf, documents, name):
    document = documents[name]
    plain = read(zmxf("export", document, "--to", "json", "-o", "-"))
    polar = read(zmxf("export", document, "--to", "json", "-o", "-", "--polar"))
    assert plain["schema"] == 2 and plain["file"] == document.name
    headers = zmxf.list(document)
    assert len(headers) == len(plain["results"])
    for number, header in enumerate(headers):
        exports = [plain["results"][number], polar["results"][number]]
        lists = [figures for export in exports for part in ("coords", "data_vars")
                 for array in export[part].values() for figures in lists_of(array["data"])]
        shown, single = conftest.shown_figures(zmxf, document, number)
        assert all(figures in lists or "data" not in figures for figures in shown if figures), number
        assert all([figure] in lists or any(figure in figures for figures in lists) for figure in single), number
        attributes = exports[0]["attrs"]
        assert [attributes[key] for key in ("number", "channel", "kind", "process", "comment", "process_type")] == [
            header[key] for key in ("number", "response", "kind", "process", "comment", "processType")]
        for export in exports:
            dataset = xarray.Dataset.from_dict(export)
            assert dict(dataset.sizes) == export["dims"]
            assert set(dataset.coords) == set(export["coords"]) and set(dataset) == set(export["data_vars"])


def test_is_a_dataset_of_xarray(zmxf, demo):
    results = read(zmxf("export", demo, "--to", "json", "-o", "-"))["results"]
    waterfall = xarray.Dataset.from_dict(results[34])
    assert waterfall["value"].dtype == float and waterfall["frequency"].dtype == float
    assert waterfall["value"].attrs["units"] == "m/s²"
    assert waterfall.attrs["chosen_reference"] == "Speed"
    row = waterfall["value"].isel(slice=70).sel(frequency=100.0)
    assert float(row) == zmxf.show(demo, 34, "--slice", 70)["columns"][0]["si"][50]
    response = xarray.Dataset.from_dict(results[26])
    assert set(response) == {"value_real", "value_imag"}
    assert float(response["value_imag"][3]) == zmxf.show(demo, 26)["imaginary"][3]
    assert response.attrs["date"] == zmxf.list(demo)[26]["date"].replace(" ", "T")


def test_converts_as_show_does(zmxf, demo):
    text = zmxf("export", demo, "--to", "json", "--db", "--units", "shown", "-o", "-", "--result", "26,40")
    response, orders = read(text)["results"]
    magnitude = response["data_vars"]["value_magnitude"]
    assert magnitude["attrs"]["units"] == "dB re 1 (m/s2)/(m/s2)"
    assert magnitude["data"] == pytest.approx(zmxf.show(demo, 26, "--db")["columns"][0]["dB"], rel=1e-6)
    assert orders["coords"]["Speed"]["attrs"]["units"] == "rpm"
    assert orders["coords"]["Speed"]["data"][0] == pytest.approx(634.0324)
