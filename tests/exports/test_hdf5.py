"""HDF5, as h5py, xarray with both of its readers, and the tools of HDF5 read it."""
import resource
import subprocess

import conftest
import h5py
import numpy
import pytest
import xarray

FORMAT = "hdf5"
ENGINES = ["netcdf4", "h5netcdf"]


def group(number):
    return f"/results/r{number:04}"


def floats(figures):
    return numpy.array([numpy.nan if figure is None else figure for figure in figures], dtype=numpy.float32)


def holds(arrays, figures):
    """Whether a row of an array has these figures, among which an infinity is none."""
    return any(numpy.array_equal(numpy.where(numpy.isinf(row), numpy.nan, row), floats(figures), equal_nan=True)
               for array in arrays for row in numpy.reshape(array, (-1, array.shape[-1] if array.ndim else 1)))


@pytest.mark.parametrize("name", conftest.DOCUMENTS)
def test_has_the_figures_that_are_shown(zmxf, documents, exported, name):
    document = documents[name]
    with h5py.File(exported[name]) as file:
        assert len(file["results"]) == len(zmxf.list(document))
        for number, header in enumerate(zmxf.list(document)):
            result = file[group(number)]
            written = [array[()] for array in result.values() if array.dtype.kind in "if"]
            if "value_imag" in result:
                real, imaginary = result["value_real"][()], result["value_imag"][()]
                written.append(numpy.hypot(real, imaginary))
            lists, single = conftest.shown_figures(zmxf, document, number)
            # Points that are only counted have no coordinate.
            assert all(holds(written, figures) for figures in lists if figures != list(range(len(figures)))), number
            assert all(any(numpy.isin(floats([figure]), array) for array in written)
                       for figure in single if figure is not None), number
            for attribute, key in {"channel": "response", "kind": "kind", "process": "process", "comment": "comment"}.items():
                # Half a surrogate pair is three bytes elsewhere.
                text = header[key].replace("\0", "\ufffd").replace(3 * "\ufffd", "\ufffd")
                assert result.attrs.get(attribute, "") == text, number


@pytest.mark.parametrize("engine", ENGINES)
@pytest.mark.parametrize("name", conftest.DOCUMENTS)
def test_is_a_dataset_of_xarray(exported, name, engine):
    with h5py.File(exported[name]) as file:
        for result in file["results"].values():
            data = xarray.open_dataset(exported[name], group=result.name, engine=engine).load()
            bare = {key for key, array in result.items() if b"not a netCDF variable" in array.attrs.get("NAME", b"")}
            assert set(data.variables) == set(result) - bare
            assert all(data[key].shape == result[key].shape for key in data.variables), result.name
            assert all(data.sizes[dimension] == result[dimension].size for dimension in bare)


@pytest.mark.parametrize("engine", ENGINES)
def test_coordinates_and_units_arrive(zmxf, demo, exported, engine):
    waterfall = xarray.open_dataset(exported["demo"], group=group(34), engine=engine)
    assert waterfall["value"].dims == ("slice", "frequency") and waterfall["value"].attrs["units"] == "m/s²"
    assert set(waterfall.coords) == {"frequency", "block", "Slice_number", "Time", "Speed"}
    assert waterfall.attrs["chosen_reference"] == "Speed"
    row = waterfall["value"].isel(slice=70).sel(frequency=100.0)
    assert row == numpy.float32(zmxf.show(demo, 34, "--slice", 70)["columns"][0]["si"][50])
    orders = xarray.open_dataset(exported["demo"], group=group(40), engine=engine)
    assert list(orders["order_name"].values) == ["1", "2", "4"]
    assert orders.attrs["date"] == zmxf.list(demo)[40]["date"].replace(" ", "T")
    with h5py.File(exported["demo"]) as file:
        assert file[group(34)]["value"].chunks == (1, waterfall.sizes["frequency"])


def test_the_bytes_depend_on_the_document_alone(zmxf, demo, exported, tmp_path):
    again, packed = tmp_path / "again.h5", tmp_path / "packed.h5"
    zmxf.run("export", demo, "--to", "hdf5", "-o", again, env={"TZ": "Asia/Kolkata", "LC_ALL": "de_DE.UTF-8"})
    assert again.read_bytes() == exported["demo"].read_bytes()
    zmxf("export", demo, "--to", "hdf5", "--compress", "-o", packed)
    assert packed.stat().st_size < 0.9 * again.stat().st_size
    subprocess.run(["h5diff", "-q", again, packed], check=True)
    assert b"DEFLATE" in subprocess.run(["h5dump", "-pH", packed], capture_output=True, check=True).stdout


@pytest.mark.parametrize("limit", [10_000, 8_000_000])  # at the start, and near the end
def test_a_full_disk_leaves_the_former_file(zmxf, demo, tmp_path, limit):
    target = tmp_path / "kept.h5"
    target.write_text("former")
    out, errors = zmxf.run("export", demo, "--to", "hdf5", "-o", target, status=1,
                           preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (limit, limit)))
    assert errors == "zmxf: cannot write the HDF5 file of demo.zmxf: File too large\n"
    assert [path.read_text() for path in tmp_path.iterdir()] == ["former"]
