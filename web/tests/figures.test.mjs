// What the page shows and saves is what the tool prints.

import assert from "node:assert/strict";
import { after, before, test } from "node:test";
import { join } from "node:path";
import { data, folder, json, onPage, start, stop, zmxf } from "./browser.mjs";

const demo = join(folder, "demo.zmxf");

before(async () => {
  zmxf("demo", folder);
  await start();
});
after(stop);

/** Single precision values: the page saves the fewest digits that give them again. */
function assertSame(cells, values, what) {
  assert.equal(cells.length, values.length, what);
  values.forEach((value, index) => {
    const cell = cells[index] === "" ? null : Number(cells[index]);
    const isSame =
      value === null ? cell === null : cell !== null && Math.abs(cell - value) <= Math.abs(value) * 2e-6 + 1e-30;
    assert.ok(isSame, `${what}, point ${index}: the page has ${cells[index]}, the tool ${value}`);
  });
}

const column = (rows, index) => rows.slice(1).map((row) => row[index]);

/** In the unit, from SI units. */
const inUnit = (quantity, values) =>
  values.map((value) => (value === null ? null : value * (quantity?.unitPerSI ?? 1) + (quantity?.unitOffset ?? 0)));

const numberOf = (kind) => json("info", demo, "--kind", kind).results[0].number;

for (const kind of ["autospectrum", "frf", "coherence", "order", "overview", "series"])
  test(`the table of a result of kind ${kind}`, () =>
    onPage(async (user) => {
      const number = numberOf(kind);
      const shown = json("show", demo, String(number));
      await user.open(demo);
      await user.show(number);
      if (kind === "autospectrum" || kind === "frf") await user.choose("Scale", "unit");
      const rows = await user.csv();
      assertSame(column(rows, 0), inUnit(shown.x.quantity, shown.x.si), "places");
      const perColumn = kind === "order" ? 2 : 1;
      shown.columns.forEach(({ name, si }, index) => {
        const at =
          kind === "order" ? index * perColumn + 1 : kind === "overview" ? [2, 1, 3, 4, 5, 6][index] : index + 1;
        const isPhase = kind === "frf" && index === 1;
        assertSame(column(rows, at), isPhase ? si : inUnit(shown.quantity, si), name);
      });
    }));

test("decibels of a spectrum", () =>
  onPage(async (user) => {
    const number = numberOf("autospectrum");
    const shown = JSON.parse(zmxf("show", demo, String(number), "--db", "--json"));
    await user.open(demo);
    await user.show(number);
    assertSame(column(await user.csv(), 1), shown.columns[0].dB, "decibels");
  }));

test("bands, and the levels of all bands", () =>
  onPage(async (user) => {
    const number = numberOf("octave");
    const shown = JSON.parse(zmxf("show", demo, String(number), "--db", "--json"));
    await user.open(demo);
    await user.show(number);
    const rows = await user.csv();
    const values = [...shown.columns[0].dB, ...Object.values(shown.levels).map(({ dB }) => dB)];
    assertSame(column(rows, 1), values, "bands");
    assert.equal(rows.at(-1)[0], "A");
    const names = await user.page.$$eval(".bars text", (texts) => texts.map((text) => text.textContent));
    for (const name of ["31.5", "1k", "1.25k", "6.3k", "Total", "A"]) assert.ok(names.includes(name), name);
  }));

test("all slices of a waterfall, and the value under the cursor", () =>
  onPage(async (user) => {
    const number = numberOf("waterfall");
    const last = json("show", demo, String(number)).slices.at(-1);
    await user.open(demo);
    await user.show(number);
    await user.choose("Scale", "unit");
    const rows = await user.csv();
    for (const slice of [0, 70, last.index]) {
      const shown = json("show", demo, String(number), "--slice", String(slice));
      assertSame(rows[0].slice(1), inUnit(shown.x.quantity, shown.x.si), "lines");
      assertSame(rows[slice + 1].slice(1), inUnit(shown.quantity, shown.columns[0].si), `slice ${slice}`);
      assertSame([rows[slice + 1][0]], [shown.slice.references.Speed.inUnit], "speed");
    }
    // The cursor begins at the highest value, which the tool finds among the peaks of that slice.
    const text = await user.text(".readout");
    const block = /Block\s+(\d+)/.exec(text)[1];
    const peak = zmxf("show", demo, String(number), "--slice", block, "--top", "1").trim().split("\n").at(-1);
    assert.ok(text.includes(peak.trim().split(/\s{2,}/)[1]), `${text} has not ${peak}`);
  }));

test("levels have the texts of the tool", () =>
  onPage(async (user) => {
    await user.open(demo);
    const levels = json("info", demo, "--kind", "level").results.filter(({ response }) => response === "Channel 2");
    for (const [index, { number }] of levels.entries()) await user.show(number, { added: index > 0 });
    const rows = (await user.csv()).slice(1);
    for (const { number, process } of levels.slice(0, 7)) {
      const [, value, unit, level] = /^\s*Value\s+(\S+)(?: (\S+) \((\S+ dB))?/m.exec(
        zmxf("show", demo, String(number)),
      );
      const row = rows.find((cells) => cells[2] === process);
      assert.equal(row[3], unit ? `${value} ${unit}` : value, process);
      assert.equal(row[4], level ?? "", process);
    }
    const broad = json("show", demo, String(levels.find(({ process }) => process.startsWith("Broad")).number));
    const wanted = Object.values(broad.levels).map(({ value }) => value.si);
    const shown = rows.filter((cells) => cells[2].startsWith("Broad")).map((cells) => Number(cells[8]));
    for (const si of wanted)
      assert.ok(
        shown.some((value) => Math.abs(value - si) <= Math.abs(si) * 2e-6),
        `${si} is missing`,
      );
  }));

test("the cursor and the peaks read as the tool prints them", () =>
  onPage(async (user) => {
    const number = numberOf("autospectrum");
    await user.open(demo);
    await user.show(number);
    await user.press("Peaks");
    await user.until(() => document.querySelectorAll(".peaks tr").length === 10);
    const peaks = zmxf("show", demo, String(number), "--top", "3").trim().split("\n").slice(-3);
    const shown = (await user.text(".peaks")).split("\n");
    for (const [rank, peak] of peaks.entries()) {
      const [place] = peak.trim().split(/\s{2,}/);
      assert.ok(
        shown.some((line) => line.startsWith(`${rank + 1}\t`) && line.includes(place)) || shown.includes(place),
        `${place} in ${shown}`,
      );
    }
    await user.page.evaluate(() => document.querySelector(".peaks button").click());
    await user.until(() => document.querySelector(".readout .value") !== null);
    const { value } = json("show", demo, String(number), "--top", "1").peaks[0];
    const [text, unit] = (await user.text(".readout .value")).split(" ");
    const scale = { "mm/s2": 1e-3, "m/s2": 1 }[unit];
    assert.ok(Math.abs(Number(text) * scale - value.si) <= value.si * 1e-5, `${text} ${unit} is not ${value.si}`);
  }));

for (const name of ["whole.zmxf", "whole_branches.zmxf", "whole_lxf.zmxf", "whole_references.zmxf"])
  test(`${name} opens, with all of its results and settings`, () =>
    onPage(async (user) => {
      await user.open(data(name));
      const { results } = json("info", data(name));
      for (const { number } of results) {
        await user.show(number);
        assert.ok((await user.page.$$(".panel, .failure")).length > 0, `result ${number}`);
      }
      const settings = json("settings", data(name)).systems;
      if (settings.length === 0) return;
      await user.page_("Settings");
      const text = await user.text();
      for (const { submodules } of settings[0].modules)
        for (const { settings: all } of submodules) for (const { title } of all) assert.ok(text.includes(title), title);
    }));
