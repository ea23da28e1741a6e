"""Tables of comma-separated values, as Python's csv and pandas read them."""
import csv
import io
import math

import conftest
import pandas
import pytest


def table(text, **dialect):
    """The rows of a table, titles first."""
    rows = list(csv.reader(io.StringIO(text, newline=""), strict=True, **dialect))
    assert all(len(row) == len(rows[0]) for row in rows) and len(set(rows[0])) == len(rows[0])
    return rows


def figure(cell):
    """The figure in a cell, None for what is no number."""
    try:
        return float(cell) if math.isfinite(float(cell)) else None
    except ValueError:
        return None


def strided(row, count):
    """Columns of slices lie side by side, those of complex values and of extremes one, two or three apart."""
    return (row[first:first + count * step:step] for step in (1, 2, 3) for first in range(len(row)))


@pytest.mark.parametrize("name", conftest.DOCUMENTS)
def test_has_the_figures_that_are_shown(zmxf, documents, tmp_path, name):
    document = documents[name]
    zmxf("export", document, "--to", "csv", "-o", tmp_path / "plain")
    zmxf("export", document, "--to", "csv", "-o", tmp_path / "polar", "--polar")
    results = zmxf.list(document)
    assert len(results) == len(list((tmp_path / "plain").iterdir())) > 0
    for number in range(len(results)):
        rows, columns, ends = [], [], []
        for folder in ("plain", "polar"):
            path = next((tmp_path / folder).glob(f"{number:04}_*.csv"))
            read = [[figure(cell) for cell in row] for row in table(path.read_bytes().decode())[1:]]
            rows += read
            ends += read[:1] + read[-1:]
            columns += [list(column) for column in zip(*read)]
        lists, single = conftest.shown_figures(zmxf, document, number)
        assert set(single) <= {cell for row in rows for cell in row}, number
        for figures in filter(None, lists):
            assert figures in columns or any(figures in strided(row, len(figures)) for row in ends), number


def test_says_what_its_columns_are(zmxf, demo):
    def titles(number, *options):
        return table(zmxf("export", demo, "--to", "csv", "-o", "-", "--result", number, *options))[0]

    assert titles(21) == ["Frequency [Hz]", "Acceleration [m/s²]"]
    assert titles(21, "--db", "--units", "shown") == ["Frequency [Hz]", "Acceleration [dB re 1 µm/s2]"]
    assert titles(30)[1:] == [f"Voltage / Acceleration {half} [m·kg/(s·A)]" for half in ("real", "imaginary")]
    assert titles(30, "--polar")[1:] == ["Voltage / Acceleration magnitude [m·kg/(s·A)]",
                                         "Voltage / Acceleration phase [°]"]
    assert titles(40, "--units", "shown") == ["Speed [rpm]", "Time [s]",
                                              *(f"Acceleration Order {order} [m/s2]" for order in (1, 2, 4))]
    assert titles(34)[:6] == ["Speed [Hz]", "Block", "Slice number", "Time [s]", "Acceleration 0 Hz [m/s²]",
                              "Acceleration 2 Hz [m/s²]"]


def test_converts_as_show_does(zmxf, demo):
    read = pandas.read_csv(io.StringIO(zmxf("export", demo, "--to", "csv", "--db", "-o", "-", "--result", 26)))
    shown = zmxf.show(demo, 26, "--db")
    assert read.iloc[:, 1].tolist() == pytest.approx(shown["columns"][0]["dB"], rel=1e-6)
    phase = [math.degrees(math.atan2(*parts)) for parts in zip(shown["imaginary"], shown["real"])]
    assert read.iloc[:, 2].tolist() == pytest.approx(phase, rel=1e-5)
    speeds = pandas.read_csv(
        io.StringIO(zmxf("export", demo, "--to", "csv", "--units", "shown", "-o", "-", "--result", 40)))
    assert speeds["Speed [rpm]"][0] == pytest.approx(60 * zmxf.show(demo, 40)["x"]["si"][0])


@pytest.mark.parametrize("options, reader", [
    (["--excel"], {"sep": ";", "decimal": ",", "encoding": "utf-8-sig"}),
    (["--delimiter", "tab", "--decimal", ","], {"sep": "\t", "decimal": ","}),
    (["--delimiter", "|"], {"sep": "|"}),
])
def test_comes_in_other_dialects(zmxf, kinds, options, reader):
    def read(options, **reader):
        text, _ = zmxf.run("export", kinds, "--to", "csv", "-o", "-", "--levels", *options)
        assert text.startswith(b"\xef\xbb\xbf") == ("--excel" in options)
        return pandas.read_csv(io.BytesIO(text), **reader)

    pandas.testing.assert_frame_equal(read(options, **reader), read([]))


def test_texts_are_no_formulas(zmxf, kinds):
    text = zmxf("export", kinds, "--to", "csv", "--levels", "-o", "-")
    assert "\n" not in text.replace("\r\n", "")
    rows = table(text)
    cells = {cell for row in rows for cell in row}
    assert {"'=1+1", "'@SUM(A1)", "'-3 V", "+Z", 'a,"b"  c;d', "café 🔊"} <= cells
    values = [row[rows[0].index("Value")] for row in rows]
    assert values[1:6] == ["0.33333334", "", "-inf", "0", "1e-40"]
    track = table(zmxf("export", kinds, "--to", "csv", "-o", "-", "--result", 11))
    assert track[2][5:7] == ["", ""], "a block that was left out"


def test_no_two_columns_of_long_tables_have_one_title(zmxf, kinds):
    titles = table(zmxf("export", kinds, "--to", "csv", "-o", "-", "--result", 11, "--long"))[0]
    assert {"value", "value (2)", "Value", "Value (2)"} <= set(titles) and len(set(titles)) == len(titles)


@pytest.mark.parametrize("number, row, column", [(35, "Block", "Frequency [Hz]"), (40, "Time [s]", "Order")])
def test_long_tables_hold_the_same(zmxf, demo, number, row, column):
    def read(*options):
        text = zmxf("export", demo, "--to", "csv", "-o", "-", "--result", number, *options)
        return pandas.read_csv(io.StringIO(text))

    long, wide = read("--long"), read()
    values = long[long["Name"] == "Acceleration"].pivot(index=row, columns=column, values="Value")
    spread = [title for title in wide if title.startswith("Acceleration ")]
    assert values.to_numpy().tolist() == wide[spread].to_numpy().tolist()
    assert long["Speed [Hz]"].unique().tolist()[:3] == wide["Speed [Hz]"].tolist()[:3]
    globals = long[long["Name"] == "Global"]
    assert globals["Value"].tolist() == (wide["Global [m/s²]"].tolist() if number == 35 else [])
    assert globals[column].isna().all()


def test_joins_what_has_equal_axes(zmxf, demo, tmp_path):
    joined = tmp_path / "x.csv"
    zmxf("export", demo, "--to", "csv", "--join", "--kind", "autospectrum", "-o", joined)
    read = pandas.read_csv(joined)
    assert list(read.columns) == ["Frequency [Hz]", "Channel 1: Acceleration [m/s²]",
                                  "Channel 2: Acceleration [m/s²]", "Channel 3: Voltage [V]"]
    assert read.iloc[:, 2].tolist() == zmxf.show(demo, 23)["columns"][0]["si"]
    _, errors = zmxf.run("export", demo, "--to", "csv", "--join", "--result", "21,22", "-o", joined, status=1)
    assert "result 22" in errors and "result 21" in errors and "equal axes" in errors
    slower = tmp_path / "slower.zmxf"
    zmxf("analyze", demo.with_suffix(".wav"), "--unit", "m/s2,m/s2,V", "--full-scale", "50,50,10", "--block-size", 8000,
         "--tacho", 3, "--pulses", 2, "-o", slower)
    _, errors = zmxf.run("export", demo, slower, "--to", "csv", "--join", "--result", 40, "-o", joined, status=1)
    assert "slower.zmxf has other points" in errors, "as many, at other speeds"
    assert len(pandas.read_csv(joined)) == len(read)


def test_one_table_of_the_levels_of_all_documents(zmxf, demo, kinds):
    read = pandas.read_csv(io.StringIO(zmxf("export", demo, kinds, "--to", "csv", "--levels", "-o", "-")))
    assert set(read["File"]) == {str(demo), str(kinds)}
    level = read[(read["Number"] == 1) & (read["File"] == str(demo))].iloc[0]
    shown = zmxf.show(demo, 1)
    assert [level[key] for key in ("Name", "Unit", "Channel", "Kind")] == ["RMS", "m/s²", "Channel 1", "level"]
    assert [level[key] for key in ("Value", "Minimum", "Maximum")] == [
        shown[key]["si"] for key in ("value", "minimum", "maximum")]
    weighted = read[(read["Number"] == 44) & (read["Name"] == "Leq A")].iloc[0]
    assert weighted["Value"] == zmxf.show(demo, 44)["levels"]["Leq A"]["value"]["si"]
