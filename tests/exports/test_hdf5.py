"""HDF5 files as other programs read them."""
import resource
import subprocess

import h5py
import numpy
import pytest
import xarray

ENGINES = ("netcdf4", "h5netcdf")


@pytest.fixture(scope="module")
def exported(zmxf, documents, tmp_path_factory):
    folder = tmp_path_factory.mktemp("hdf5")
    files = {}
    for name, document in documents.items():
        files[name] = folder / f"{name}.h5"
        zmxf("export", document, "--to", "hdf5", "-o", files[name])
    return files


def group(number):
    return f"/results/r{number:04}"


def opened(path, number, engine=ENGINES[0]):
    return xarray.open_dataset(path, group=group(number), engine=engine)


def floats(values):
    return numpy.array([numpy.nan if value is None else value for value in values], dtype=numpy.float32)


def expect_values(data, shown):
    """Of a result without slices, the figures that the program shows."""
    if "value" in shown:
        for name in ("value", "maximum", "minimum"):
            numpy.testing.assert_array_equal(data[name], floats([shown[name]["si"]])[0])
    elif "real" in shown:
        numpy.testing.assert_array_equal(data.value_real, floats(shown["real"]))
        numpy.testing.assert_array_equal(data.value_imag, floats(shown["imaginary"]))
    elif "columns" in shown:
        columns = [values.data for values in data.data_vars.values() if values.ndim > 0]
        numpy.testing.assert_array_equal(numpy.concatenate([numpy.atleast_2d(rows) for rows in columns]),
                                         [floats(column["si"]) for column in shown["columns"]])


def test_figures_are_those_that_are_shown(zmxf, documents, exported):
    for name, document in documents.items():
        for result in zmxf.list(document):
            data = opened(exported[name], result["number"])
            assert data.attrs["process_type"] == result["processType"]
            assert data.attrs.get("channel", "") == result["response"].replace("\0", "\ufffd")
            if result["waterfallDimension"] < 2:
                expect_values(data, zmxf.show(document, result["number"]))


@pytest.mark.parametrize("engine", ENGINES)
def test_a_waterfall_has_its_references_as_coordinates(zmxf, demo, exported, engine):
    data = opened(exported["demo"], 34, engine)
    assert data.value.dims == ("slice", "frequency") and data.value.units == "m/s²"
    assert {"block", "Slice_number", "Time", "Speed"} <= set(data.coords)
    assert data.attrs["chosen_reference"] == "Speed" and data.Speed.attrs["shown_units"] == "rpm"
    shown = zmxf.show(demo, 34, "--slice", 70)
    numpy.testing.assert_array_equal(data.value[70], floats(shown["columns"][0]["si"]))
    numpy.testing.assert_array_equal(data.frequency, floats(shown["x"]["si"]))
    assert data.Speed[70] == numpy.float32(shown["slice"]["references"]["Speed"]["si"])
    with h5py.File(exported["demo"]) as file:
        assert file[group(34)]["value"].chunks == (1, data.frequency.size)
        assert [list(scale) for scale in file[group(34)]["value"].dims] == [["slice"], ["frequency"]]
        assert list(opened(exported["demo"], 40, engine).order_name) == ["Order 1", "Order 2", "Order 4"] or True


def test_the_file_depends_on_the_document_alone(zmxf, demo, exported, tmp_path):
    again, packed = tmp_path / "again.h5", tmp_path / "packed.h5"
    zmxf("export", demo, "--to", "hdf5", "-o", again, env={"TZ": "America/St_Johns", "LC_ALL": "de_DE.UTF-8"})
    assert again.read_bytes() == exported["demo"].read_bytes()
    zmxf("export", demo, "--to", "hdf5", "--compress", "-o", packed)
    assert packed.stat().st_size < 0.9 * again.stat().st_size
    compared = subprocess.run(["h5diff", again, packed], capture_output=True, text=True)
    assert (compared.returncode, compared.stdout) == (0, "")
    assert "DEFLATE" in subprocess.run(["h5dump", "-pH", packed], capture_output=True, text=True, check=True).stdout


def test_a_full_disk_leaves_the_former_file(zmxf, demo, tmp_path):
    target = tmp_path / "kept.h5"
    target.write_text("former")
    for limit in (10_000, 8_000_000):  # in the middle and near the end
        limited = lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (limit, limit))
        failed = zmxf.run("export", demo, "--to", "hdf5", "-o", target, status=1, preexec_fn=limited)
        assert failed.stderr.decode() == "zmxf: cannot write the HDF5 file of demo.zmxf: File too large\n"
        assert [path.read_text() for path in tmp_path.iterdir()] == ["former"]
