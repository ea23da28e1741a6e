"""Documents that Python fills, saves and changes."""
import datetime
import os

import numpy
import pytest
import zelmresult
from conftest import zmxf

ACCELERATION = zelmresult.Quantity("Acceleration", "m/s2")
SPEED = zelmresult.Quantity("Speed", "rpm")
TIME = zelmresult.Quantity("Time", "s")
RANDOM = numpy.random.default_rng(1)


def noise(*shape):
    return RANDOM.normal(size=shape).astype(numpy.float32)


def level(doc):
    doc.add_scalar(0.0123, ACCELERATION, minimum=0.01, maximum=0.02, kind="Peak")
    return {"value": numpy.float32(0.0123), "minimum": numpy.float32(0.01), "maximum": numpy.float32(0.02)}


def spectrum(doc):
    values = noise(401)
    doc.add_spectrum(values, ACCELERATION, step=2.5)
    return {"value": values, "frequency": numpy.arange(401) * 2.5}


def transfer(doc):
    values = noise(65) + 1j * noise(65)
    doc.add_spectrum(values, zelmresult.Quantity("Ratio", "", db_reference=1.0), step=1.0, start=10.0)
    return {"value": values.astype(numpy.complex64), "frequency": numpy.arange(65) + 10.0}


def history(doc):
    values = noise(5)
    doc.add_spectrum(values, ACCELERATION, step=0.5, axis=TIME, kind="Values at even steps")
    return {"value": values, "time": numpy.arange(5) * 0.5}


def bands(doc):
    values = abs(noise(3))
    doc.add_bands(values, ACCELERATION, first=1000, overall=2.5, overall_weighted=1.5, overall_weighting=1)
    return {"value": values, "band": [1000, 1250, 1600], "global": 2.5, "global_weighted": 1.5}


def waterfall(doc):
    values, speed, time = noise(5, 11), numpy.linspace(10, 50, 5), numpy.arange(5.0)
    doc.add_waterfall(values, ACCELERATION, step=2.0, references={"Speed": (speed, SPEED), "Time": (time, TIME)},
                      along="Time", blocks=[0, 1, 3, 4, 9])
    return {"value": values, "frequency": numpy.arange(11) * 2.0, "block": [0, 1, 3, 4, 9], "Speed": speed,
            "Time": time}


def complex_waterfall(doc):
    values, speed = noise(3, 11) + 1j * noise(3, 11), numpy.linspace(10, 50, 3)
    doc.add_waterfall(values, ACCELERATION, step=2.0, references={"Speed": (speed, SPEED)}, blocks=[0, 2, 3])
    return {"value": values.astype(numpy.complex64), "block": [0, 2, 3], "Speed": speed}


def order_track(doc):
    values, speed = noise(2, 6), numpy.linspace(5, 10, 6)
    doc.add_order_track(values, ACCELERATION, orders=[1, 2.5], references={"Speed": (speed, SPEED)})
    return {"value": values, "order": [1.0, 2.5], "Speed": speed}


KINDS = [level, spectrum, transfer, history, bands, waterfall, complex_waterfall, order_track]


def check_holds(result, arrays):
    for name, values in arrays.items():
        found = result.data[name] if name in result.data else result.coords[name]
        numpy.testing.assert_allclose(found.values, values, rtol=1e-6, err_msg=name)
    assert result.values.dtype == numpy.asarray(arrays["value"]).dtype


@pytest.mark.parametrize("add", KINDS)
def test_each_kind_comes_back(add, tmp_path):
    doc = zelmresult.new()
    arrays = add(doc)
    assert doc.check() == []
    doc.save(tmp_path / "new.zmxf")
    with zelmresult.open(tmp_path / "new.zmxf") as read:
        assert len(read) == len(doc) and read.verify()
        check_holds(read[-1], arrays)
        assert zmxf("show", tmp_path / "new.zmxf", read[-1].number)


def test_all_kinds_in_one_document(tmp_path):
    doc = zelmresult.new()
    wanted = [(add(doc), len(doc) - 1) for add in KINDS + [waterfall, bands]]
    with zelmresult.open(doc.to_bytes()) as read:
        for arrays, number in wanted:
            check_holds(read[number], arrays)
        falls = read.select(kind="waterfall")
        assert falls[0]._content.chosen_reference == "Time" and len(falls) == 3
        assert sorted(quantity.key for quantity in read.quantities) == [
            "Acceleration", "Frequency", "Ratio", "Speed", "Time"]


def test_header_fields():
    doc = zelmresult.new()
    date = datetime.datetime(2024, 2, 29, 12, 30, tzinfo=datetime.timezone.utc)
    fields = dict(channel="DE é\U0001f600", channel_number=7, reference="Force", reference_number=2, process="Mine",
                  caption="c", comment="line", analyzer="a", identification="i", weighting=1, time_weighting=2,
                  window=3, system=0)
    doc.add_scalar(1, ACCELERATION, date=date, **fields)
    with zelmresult.open(doc.to_bytes()) as read:
        assert read[0].date == date
        assert {name: getattr(read[0].header, name) for name in fields} == fields


def test_systems_keep_their_numbers(tmp_path):
    doc = zelmresult.new()
    for system in (3, 0, 16, 1):
        doc.add_spectrum([system, 1], ACCELERATION, step=1, system=system)
    assert doc.check() == []
    doc.save(tmp_path / "systems.zmxf")
    again = zelmresult.new(tmp_path / "systems.zmxf")
    again.add_scalar(7, ACCELERATION, system=7)
    with zelmresult.open(again.to_bytes()) as read:
        assert read.verify()
        assert {result.header.system: result.values.flat[0] for result in read} == {0: 0, 1: 1, 3: 3, 7: 7, 16: 16}


def test_a_document_through_python_and_back(demo, tmp_path):
    again = zelmresult.new(demo)
    again.save(tmp_path / "again.zmxf")
    again.add_scalar(1.5, ACCELERATION, channel="Extra")
    again.save(tmp_path / "more.zmxf")
    zmxf("diff", demo, tmp_path / "again.zmxf")
    zmxf("diff", demo, tmp_path / "more.zmxf", ok=(5,))
    with zelmresult.open(demo) as old, zelmresult.open(tmp_path / "again.zmxf") as new, \
            zelmresult.open(tmp_path / "more.zmxf") as more:
        assert len(new) == len(old) == len(more) - 1 and more[-1].values == 1.5
        assert new.settings == old.settings and new.recording == old.recording
        assert new.quantities == old.quantities
        for a, b in zip(old, new):
            assert a.header[:-2] == b.header[:-2] and a.quantity == b.quantity
            for name, array in {**a.data, **a.coords}.items():
                other = {**b.data, **b.coords}[name]
                assert array.quantity == other.quantity
                numpy.testing.assert_array_equal(array.values, other.values)


def test_a_file_can_be_added_to_again_and_again(tmp_path):
    path = tmp_path / "grows.zmxf"
    zelmresult.new().save(path)
    for number in range(3):
        doc = zelmresult.new(path)
        doc.add_spectrum([number, 1], ACCELERATION, step=1)
        assert doc.check() == []
        doc.save(path)
    with zelmresult.open(path) as read:
        assert [result.values[0] for result in read] == [0, 1, 2] and len(read.quantities) == 2


def test_a_save_that_fails_keeps_the_old_file(tmp_path):
    path = tmp_path / "kept.zmxf"
    path.write_bytes(b"precious")
    doc = zelmresult.new()
    doc.add_scalar(1, ACCELERATION, kind="Autospectrum")  # a load makes another class of it
    with pytest.raises(zelmresult.SaveError) as refused:
        doc.save(path)
    assert refused.value.reasons[:1] == doc.check() != [] and str(path) in str(refused.value)
    assert path.read_bytes() == b"precious" and os.listdir(tmp_path) == ["kept.zmxf"]
    with pytest.raises(zelmresult.SaveError):
        doc.to_bytes()
    with pytest.raises(zelmresult.SaveError):
        zelmresult.new().save(tmp_path / "no folder/x.zmxf")
    doc.save(path, accept_losses=True)
    assert path.read_bytes() != b"precious"


def test_a_source_that_does_not_load(tmp_path):
    for name, content in (("none.zmxf", None), ("bad.zmxf", b"1234")):
        if content is not None:
            (tmp_path / name).write_bytes(content)
        with pytest.raises(zelmresult.DocumentError, match=name):
            zelmresult.new(tmp_path / name)


@pytest.mark.parametrize("wrong", [
    lambda doc: doc.add_scalar("x", ACCELERATION),
    lambda doc: doc.add_scalar(1, ACCELERATION, kind="No such"),
    lambda doc: doc.add_scalar(1, ACCELERATION, colour="red"),
    lambda doc: doc.add_scalar(1, ACCELERATION, date="today"),
    lambda doc: doc.add_spectrum([], ACCELERATION, step=1),
    lambda doc: doc.add_spectrum([[1]], ACCELERATION, step=1),
    lambda doc: doc.add_bands([1], ACCELERATION, first=1000, fraction=2),
    lambda doc: doc.add_waterfall(noise(2, 2), ACCELERATION, step=1, references={}),
    lambda doc: doc.add_waterfall(noise(2, 2), ACCELERATION, step=1, references={"T": ([1], TIME)}),
    lambda doc: doc.add_waterfall(noise(2, 2), ACCELERATION, step=1, references={"T": ([1, 2], TIME)}, along="S"),
    lambda doc: doc.add_waterfall(noise(2, 2), ACCELERATION, step=1, references={"T": ([1, 2], TIME)}, blocks=[1, 1]),
    lambda doc: doc.add_order_track(noise(2, 2), ACCELERATION, orders=[1], references={"T": ([1, 2], TIME)}),
    lambda doc: doc.add_scalar(1, zelmresult.Quantity("Acceleration", "g")),
    lambda doc: doc.add_scalar(1, ACCELERATION, channel=5),
    lambda doc: doc.add_scalar(1, ACCELERATION, weighting=-1),
    lambda doc: doc.add_scalar(1, ACCELERATION, system=17),
    lambda doc: doc.add_scalar(1e300, ACCELERATION),
    lambda doc: doc.add_spectrum([1e300], ACCELERATION, step=1),
    lambda doc: doc.add_spectrum([1, 2], ACCELERATION, step=float("nan")),
    lambda doc: doc.add_bands([1, 2j], ACCELERATION, first=1000),
    lambda doc: doc.add_order_track(noise(1, 2) * 1j, ACCELERATION, orders=[1], references={"T": ([1, 2], TIME)}),
    lambda doc: doc.add_waterfall(noise(2, 2), ACCELERATION, step=1, references={"T": ([1, float("nan")], TIME)}),
    lambda doc: doc.add_order_track(noise(2, 2), ACCELERATION, orders=[1, 1], references={"T": ([1, 2], TIME)}),
    lambda doc: doc.save("a\0b"),
    lambda doc: zelmresult.Quantity("Flow", "m3/s"),
    lambda doc: zelmresult.Quantity("Flow", "m3/s", dimension={"l": 1}, per_si=1),
    lambda doc: zelmresult.Quantity("Flow", "m3/s", dimension={"m": 0.3}, per_si=1)])
def test_what_cannot_be_written_is_refused(wrong):
    doc = zelmresult.new()
    doc.add_scalar(1, ACCELERATION)
    with pytest.raises((ValueError, TypeError)):
        wrong(doc)
    assert len(doc) == 1 and zelmresult.open(doc.to_bytes()).verify()


def test_masked_values_are_missing():
    doc = zelmresult.new()
    doc.add_spectrum(numpy.ma.array([1, 2], mask=[False, True]), ACCELERATION, step=1)
    numpy.testing.assert_array_equal(zelmresult.open(doc.to_bytes())[0].values, [1, numpy.nan])


def test_quantities():
    noise_density = zelmresult.Quantity("Density", "µPa/√Hz", dimension={"kg": 1, "m": -1, "s": -1.5}, per_si=1e6,
                                        db_reference=20e-6, name="Noise")
    assert noise_density.dimension == {"m": -1.0, "kg": 1.0, "s": -1.5}
    assert noise_density.to(1e-3) == pytest.approx(1000) and noise_density.db(20e-6) == pytest.approx(0, abs=1e-4)
    celsius = zelmresult.Quantity("Temperature", "°C", dimension={"K": 1}, per_si=1, offset=-273.15)
    doc = zelmresult.new()
    doc.add_scalar(300, celsius)
    doc.add_scalar(1e-3, noise_density)
    with zelmresult.open(doc.to_bytes()) as read:
        assert read[0].to() == pytest.approx(26.85, abs=1e-4)
        assert read[1].quantity.dimension == noise_density.dimension and read[1].quantity.name == "Noise"
