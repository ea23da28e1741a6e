// What drawings are worked out from, without a browser.

import assert from "node:assert/strict";
import { mkdtempSync, rmSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { after, test } from "node:test";
import { fileURLToPath, pathToFileURL } from "node:url";
import { build } from "esbuild";

const folder = mkdtempSync(join(tmpdir(), "zelm-drawing-"));
after(() => rmSync(folder, { recursive: true }));

// What the modules want of a browser.
globalThis.matchMedia = () => ({ matches: false, addEventListener: () => undefined });
globalThis.ImageData = class {
  constructor(width, height) {
    Object.assign(this, { width, height, data: new Uint8ClampedArray(4 * width * height) });
  }
};

async function load(path) {
  const entry = fileURLToPath(new URL(`../src/${path}.ts`, import.meta.url));
  const { outputFiles } = await build({ entryPoints: [entry], bundle: true, format: "esm", write: false });
  const file = join(folder, `${path.replaceAll("/", "_")}.mjs`);
  writeFileSync(file, outputFiles[0].contents);
  return import(pathToFileURL(file));
}

const { edgesOf, orderSlices, raster } = await load("charts/map_raster");
const { linearTicks, logTicks, nearest, place, tickTexts, valueAt } = await load("charts/ticks");
const { piecesOf, rangeY } = await load("charts/curves");
const { csv, shortest, tabbed } = await load("saving/csv");

/** The brightness of each pixel of a raster, row by row from the top. */
function drawn(grid, x, y, width, height) {
  const image = raster(grid, orderSlices(grid.sliceAt), x, y, { min: 0, max: 1 }, width, height);
  const pixels = new Uint32Array(image.data.buffer);
  return Array.from({ length: height }, (_, row) => Array.from(pixels.subarray(row * width, (row + 1) * width)));
}

const lines = (count) => Float32Array.from({ length: count }, (_, line) => line);
const bright = 0xff25e7fd;
const dark = 0xff540144;

test("one high line among thousands stays in sight", () => {
  const values = new Float32Array(2 * 4000);
  values[3123] = values[4000 + 3123] = 1;
  const grid = { values, slices: 2, lines: 4000, sliceAt: lines(2), lineAt: lines(4000) };
  const rows = drawn(grid, { min: 0, max: 4000, isLog: false }, { min: 0, max: 1, isLog: false }, 40, 6);
  for (const row of rows)
    assert.deepEqual(
      row.map((pixel, at) => (pixel === bright ? at : -1)).filter((at) => at >= 0),
      [31],
    );
});

test("slices lie where their reference is, whatever their order; missing values and the outside are empty", () => {
  const grid = {
    values: Float32Array.of(0, 1, NaN, 0.5),
    slices: 4,
    lines: 1,
    sliceAt: Float32Array.of(10, 30, 20, NaN),
    lineAt: lines(1),
  };
  const rows = drawn(grid, { min: -0.5, max: 0.5, isLog: false }, { min: 5, max: 45, isLog: false }, 1, 4);
  assert.deepEqual(rows.flat(), [0, bright, 0, dark]);
});

test("on a logarithmic axis each decade is as wide", () => {
  const grid = {
    values: Float32Array.of(1, 0, 1),
    slices: 1,
    lines: 3,
    sliceAt: lines(1),
    lineAt: Float32Array.of(1, 10, 100),
  };
  const rows = drawn(grid, { min: 1, max: 100, isLog: true }, { min: -0.5, max: 0.5, isLog: false }, 20, 1);
  assert.equal(rows[0].indexOf(dark), Math.floor((Math.log10(5.5) / 2) * 20) + 1);
  assert.deepEqual([...edgesOf([1, 10, 100])], [-3.5, 5.5, 55, 145]);
});

test("numbers at axes are those of their ticks", () => {
  assert.deepEqual(tickTexts([0, 2.5, 5, 7.5]), ["0.0", "2.5", "5.0", "7.5"]);
  assert.deepEqual(tickTexts(linearTicks(-0.31, 0.29, 6)), ["-0.3", "-0.2", "-0.1", "0.0", "0.1", "0.2"]);
  assert.deepEqual(tickTexts([0, 2e-5]), ["0", "2e-5"]);
  assert.deepEqual(logTicks(20, 300), [20, 50, 100, 200]);
  for (const isLog of [false, true]) {
    const axis = { min: 3, max: 700, isLog };
    assert.ok(Math.abs(valueAt(axis, place(axis, 50)) - 50) < 1e-9);
  }
  assert.deepEqual([nearest([1, 2, 4], 3.2), nearest([4, 2, 1], 3.2), nearest([5], 0)], [2, 0, 0]);
});

test("a course that turns is drawn each way, and what an axis can't show is left out", () => {
  const plot = (x, y, xLog = false) => ({
    curves: [{ x: Float32Array.from(x), y: Float32Array.from(y) }],
    xLog,
    yLog: false,
  });
  const pieces = piecesOf(plot([1, 2, 3, 2, 1], [1, 2, 3, 4, 5])).map(({ x, y }) => [[...x], [...y]]);
  assert.deepEqual(pieces, [
    [
      [1, 2, 3],
      [1, 2, 3],
    ],
    [
      [1, 2, 3],
      [5, 4, 3],
    ],
  ]);
  assert.deepEqual([...piecesOf(plot([0, 1, 10], [7, 8, 9], true))[0].y], [8, 9]);
  const { min, max } = rangeY(plot([0, 1, 2], [10, NaN, 500]), { min: 0, max: 1 });
  assert.ok(min <= 10 && max < 20, "only what is in sight counts");
});

test("tables: quotes, formulas, and the fewest digits that give a number again", () => {
  assert.equal(csv([['a"b', "c,d", "=1+2", "-3.5 m/s2", 0.1, NaN]]), '"a""b","c,d",\'=1+2,-3.5 m/s2,0.1,\n');
  assert.equal(tabbed([["a\tb", 2]]), "a b\t2\n");
  for (const value of [1 / 3, 16777217, 1e-30, -2.5e10])
    assert.equal(Math.fround(Number(shortest(value))), Math.fround(value));
});
