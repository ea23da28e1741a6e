"""Memory, threads, and objects that outlive each other."""
import copy
import gc
import os
import pathlib
import pickle
import threading

import numpy
import pytest
import zelmresult
from conftest import ROOT, SEEDS


def test_arrays_outlive_everything_and_cannot_be_written(demo):
    doc = zelmresult.open(demo)
    result = doc.select(kind="waterfall")[0]
    values, speed, cut = result.values, result.coords["Speed"].values, result.at("3000rpm").values
    total = values.sum(dtype=float)
    doc.close()
    del doc, result
    gc.collect()
    spoil = [numpy.full(200_000, 7, numpy.float32) for _ in range(20)]
    assert values.sum(dtype=float) == total and speed.shape == (159,) and cut.shape == (4001,) and len(spoil) == 20
    for array in (values, speed, values[3], values.T, result_of(values)):
        with pytest.raises(ValueError):
            array[...] = 0
    with pytest.raises(ValueError):
        values.flags.writeable = True


def test_a_file_is_closed_with_the_last_that_uses_it(demo):
    def is_open():
        return any(os.path.realpath(entry) == str(demo) for entry in pathlib.Path("/proc/self/fd").iterdir())

    gc.disable()
    try:
        doc = zelmresult.open(demo)
        chosen = doc.select(kind="frf")
        del doc
        assert is_open()
        result = chosen[0]
        del chosen
        assert is_open() and result.values.size
        del result
        assert not is_open()
    finally:
        gc.enable()


def result_of(values):
    return values.reshape(-1)


def test_types_and_layout(doc):
    for result in doc:
        for array in (*result.data.values(), *result.coords.values()):
            assert array.values.flags.c_contiguous and array.values.flags.aligned
            assert array.dtype.kind == "U" or array.dtype in (numpy.float32, numpy.complex64, numpy.int32)
            assert array.shape == array.values.shape and len(array.dims) == array.values.ndim
    assert doc.select(kind="frf")[0].dtype == numpy.complex64


@pytest.mark.parametrize("use", [
    lambda doc: doc[0], len, list, lambda doc: doc.select(kind="level"), lambda doc: doc.levels(),
    lambda doc: doc.settings, lambda doc: doc.recording, lambda doc: doc.quantities, lambda doc: doc.verify(),
    lambda doc: doc.version, lambda doc: doc.damage])
def test_a_closed_document(demo, use):
    doc = zelmresult.open(demo)
    unread, read = doc[21], doc[23]
    read.values
    doc.close()
    doc.close()
    assert doc.closed and "closed" in repr(doc)
    with pytest.raises(ValueError, match="closed"):
        use(doc)
    with pytest.raises(ValueError, match="closed"):
        unread.values
    assert read.values.shape == (4001,)


def test_pickled_results_are_the_same(doc):
    for result in doc.select(kind=["frf", "order", "octave", "level"]):
        again = pickle.loads(pickle.dumps(result))
        assert again.header == result.header and again.quantity == result.quantity
        for name, array in result.data.items():
            numpy.testing.assert_array_equal(again.data[name].values, array.values)
            assert not again.data[name].values.flags.writeable
        assert again.text(0.0123) == result.text(0.0123)
    assert copy.deepcopy(again).header == again.header
    with pytest.raises(zelmresult.DocumentError) as refused:
        zelmresult.open(b"1234")
    error = pickle.loads(pickle.dumps(refused.value))
    assert (str(error), error.kind, error.offset) == (str(refused.value), refused.value.kind, refused.value.offset)


def test_a_result_equals_itself_alone(demo, doc):
    fall, spectrum = doc.select(kind="waterfall")[0], doc.select(kind="autospectrum")[0]
    assert doc[3] == doc[3] != doc[4] and doc[3] in doc and spectrum not in doc.select(kind="waterfall")
    assert doc.index(spectrum) == spectrum.number and {spectrum: 1}[doc[spectrum.number]] == 1
    assert fall.slice(70) == fall.slice(block=70) not in (fall, fall.slice(71))
    assert pickle.loads(pickle.dumps(spectrum)) in doc and copy.deepcopy(fall.slice(70)) == fall.slice(70)
    assert spectrum != spectrum.number
    with zelmresult.open(demo) as other:
        assert spectrum not in other and other[0] not in doc


def run(count, work):
    """Runs work in threads, and returns what went wrong."""
    wrong = []

    def guarded(number):
        try:
            work(number)
        except Exception as error:  # noqa: BLE001
            wrong.append(error)

    threads = [threading.Thread(target=guarded, args=(number,)) for number in range(count)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    return wrong


def test_threads_share_a_document(doc):
    wanted = [result.values.sum() for result in doc.select(kind=["autospectrum", "waterfall"])]

    def work(_):
        for _ in range(3):
            found = [result.values.sum() for result in doc.select(kind=["autospectrum", "waterfall"])]
            assert found == wanted and doc.settings and doc.levels()

    assert run(6, work) == []


def test_a_thread_closes_what_others_read(demo):
    for _ in range(10):
        doc = zelmresult.open(demo)
        started = threading.Barrier(4)

        def work(number, doc=doc, started=started):
            started.wait()
            if number == 0:
                doc.close()
                return
            for result in doc:
                result.values

        wrong = run(4, work)
        assert all(isinstance(error, ValueError) and "closed" in str(error) for error in wrong)


def test_threads_with_documents_of_their_own(demo, tmp_path):
    def work(number):
        for _ in range(3):
            with zelmresult.open(demo) as doc:
                total = sum(float(abs(result.values).sum()) for result in doc.select(kind="autospectrum"))
                again = zelmresult.new(demo)
                again.save(tmp_path / f"{number}.zmxf")
            with zelmresult.open(tmp_path / f"{number}.zmxf") as doc:
                assert total == sum(float(abs(r.values).sum()) for r in doc.select(kind="autospectrum"))

    assert run(4, work) == []


def test_others_run_while_a_file_is_read(demo):
    """A long read holds no lock that another thread needs."""
    doc = zelmresult.open(demo)
    counted = [0]
    done = threading.Event()

    def count():
        while not done.is_set():
            counted[0] += 1

    counter = threading.Thread(target=count)
    counter.start()
    doc.verify()
    done.set()
    counter.join()
    assert counted[0] > 0


@pytest.mark.parametrize("path", sorted([*SEEDS.glob("document/*"), *SEEDS.glob("structure/*"),
                                         *(ROOT / "fuzz/corpus").glob("*/*")]), ids=lambda path: path.name)
def test_hostile_bytes_give_results_or_errors(path):
    data = pathlib.Path(path).read_bytes()
    for partial in (False, True):
        try:
            with zelmresult.open(data, partial=partial) as doc:
                repr(doc), doc.settings, doc.recording
                for result in doc:
                    try:
                        repr(result.values)
                    except zelmresult.DocumentError as error:
                        assert error.kind and str(error)
                doc.quantities
        except zelmresult.DocumentError as error:
            assert error.kind and str(error)
