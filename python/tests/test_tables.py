"""Results as objects of xarray and pandas."""
import numpy
import pytest


def test_xarray_has_all_arrays_with_their_units(doc):
    for result in doc:
        data = result.to_xarray()
        assert set(data.data_vars) == set(result.data) and set(data.coords) == set(result.coords)
        for name, array in result.data.items():
            numpy.testing.assert_array_equal(data[name].values, array.values)
            assert data[name].dims == array.dims
    fall = doc[34].to_xarray(shown=True)
    assert fall["value"].attrs == {"long_name": "Acceleration", "units": "m/s2", "decibel_reference": "1 µm/s2"}
    assert fall["Speed"].attrs["units"] == "rpm" and fall["Speed"].max() > 5000
    assert fall.attrs["channel"] == "Channel 1" and fall.attrs["date"].startswith("20")
    assert doc[34].to_xarray()["Speed"].attrs["units"] == "Hz"


def test_pandas_has_a_row_per_point_slice_or_order(doc):
    spectrum = doc.select(kind="autospectrum")[0].to_pandas()
    assert spectrum.index.name == "Frequency [Hz]" and spectrum.shape == (4001, 1)
    fall = doc[34].to_pandas(shown=True)
    assert fall.shape == (159, 4001) and fall.index.name == "Speed [rpm]" and fall.columns.name == "Frequency [Hz]"
    assert fall.index[70] == pytest.approx(2996.11, abs=0.01)
    track = doc.select(kind="order")[0].to_pandas()
    assert list(track.index) == [1, 2, 4] and track.columns.name == "Speed [Hz]"
    bands = doc.select(kind="octave")[0].to_pandas()
    assert list(bands.index[:2]) == list(doc.select(kind="octave")[0].coords["band"].values[:2])
    assert bands.attrs["global"] == doc.select(kind="octave")[0].data["global"].values
    level = doc[1].to_pandas()
    assert list(level.columns) == ["value", "maximum", "minimum"] and len(level) == 1
    assert list(doc.levels().to_pandas()["channel"].unique()) == ["Channel 1", "Channel 2", "Channel 3"]
    assert doc.to_pandas().loc[34, "kind"] == "waterfall"
