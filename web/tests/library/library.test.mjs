// The library behind the page, in node: what it says of documents is what zmxf says.

import assert from "node:assert/strict";
import { execFileSync } from "node:child_process";
import { mkdtempSync, readFileSync, readdirSync, rmSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { after, before, test } from "node:test";
import { fileURLToPath } from "node:url";
import { startLibrary } from "./harness.mjs";

const root = fileURLToPath(new URL("../../../", import.meta.url));
const tool = process.env.ZMXF ?? join(root, "build/release/tools/zmxf");
const seeds = process.env.FUZZ_SEEDS ?? join(root, "build/wasm/fuzz/fuzz_seeds.js");
const folder = mkdtempSync(join(tmpdir(), "zmxf-library-"));

const filesIn = (path) =>
  readdirSync(path, { withFileTypes: true, recursive: true })
    .filter((entry) => entry.isFile())
    .map((entry) => join(entry.parentPath ?? entry.path, entry.name));
const documents = filesIn(join(root, "tests/data")).filter((name) => name.endsWith(".zmxf"));

function zmxf(...words) {
  try {
    return execFileSync(tool, words, { encoding: "utf8", maxBuffer: 1 << 29, stdio: ["ignore", "pipe", "ignore"] });
  } catch (failure) {
    return failure.stdout; // the status of verify, and of show where a result can't be shown
  }
}
const json = (...words) => JSON.parse(zmxf(...words, "--json"));

let library;
const openFile = (path) => library.open(new Blob([readFileSync(path)]), path);

before(async () => {
  library = await startLibrary();
  zmxf("demo", folder);
  documents.push(join(folder, "demo.zmxf"));
});
after(() => rmSync(folder, { recursive: true }));

const finite = (values) => Array.from(values, (value) => (Number.isFinite(value) ? value : null));
const singles = (values) => values.map((value) => (value === null ? null : Math.fround(value)));

function assertVector(result, shown, what) {
  const [first] = result.data;
  const axis = result.coordinates.find(({ name }) => name === result.axes[first.dimensions.at(-1)]);
  if (axis) assert.deepEqual(finite(axis.values), singles(shown.x.si), `${what}: places`);
  const length = first.shape.at(-1);
  const rows = result.data
    .filter(({ dimensions }) => dimensions.length > 0)
    .flatMap(({ values, shape }) =>
      Array.from({ length: shape.length > 1 ? shape[0] : 1 }, (_, row) => values.subarray(row * length, (row + 1) * length)),
    );
  shown.columns.forEach(({ si }, index) => {
    if (first.complex && index > 0) return; // the parts, below
    assert.deepEqual(finite(rows[index]), singles(si), `${what}: column ${index}`);
  });
  if (!shown.real) return;
  assert.deepEqual(finite(first.complex.real), singles(shown.real), what);
  assert.deepEqual(finite(first.complex.imaginary), singles(shown.imaginary), what);
}

async function assertLevel(document, { data: [level] }, shown, what) {
  assert.equal(level.values[0], Math.fround(shown.value.si), what);
  const [inUnit] = await document.scaled(level, "unit");
  assert.equal(inUnit, Math.fround(shown.value.inUnit), what);
  const [decibels] = await document.scaled(level, "decibels");
  assert.deepEqual(finite([decibels]), singles([shown.value.dB]), what);
}

test("results, their units and decibels are those of zmxf", async () => {
  for (const path of documents) {
    const document = await openFile(path);
    const shown = json("show", path, "--result", `0-${document.results.length - 1}`);
    for (const { header, ...expected } of shown.results ?? [shown]) {
      const what = `${path}, result ${header.number}`;
      const result = await document.read(header.number);
      const { kind: _, ...told } = result.header;
      assert.deepEqual(told, header, what);
      if (expected.columns) assertVector(result, expected, what);
      if (expected.value) await assertLevel(document, result, expected, what);
      if (expected.slices) {
        const block = result.coordinates.find(({ name }) => name === "block");
        assert.deepEqual(Array.from(block.values), expected.slices.map((slice) => slice.block), what);
        const slice = await document.readSlice(header.number, 1);
        const { length } = slice.data[0].values;
        assert.deepEqual(slice.data[0].values, result.data[0].values.subarray(length, 2 * length), what);
      }
    }
    document.close();
  }
});

/** The page is told texts besides. */
const withoutTexts = (tree) =>
  JSON.parse(JSON.stringify(tree), (key, value) => (/^(text|minimumText|maximumText)$/.test(key) ? undefined : value));

test("all else of a document is what zmxf prints", async () => {
  for (const path of documents) {
    const document = await openFile(path);
    assert.deepEqual(withoutTexts(await document.settings()), withoutTexts(json("settings", path).systems), path);
    assert.deepEqual(withoutTexts(await document.recordings()), json("tracks", path).systems, path);
    const { schema: _, file: __, ...verified } = json("verify", path);
    assert.deepEqual(await document.verify(), verified, path);
    const told = json("info", path);
    for (const key of ["version", "type", "contents", "systems", "hardware"])
      assert.deepEqual(document.info[key], told[key], `${path}: ${key}`);
    assert.deepEqual(document.info.quantities.map(({ name, code }) => [name, code]),
      told.quantities.map(({ name, code }) => [name, code]), path);
    document.close();
  }
});

test("values are printed as the library prints them", async () => {
  const document = await openFile(join(folder, "demo.zmxf"));
  const number = document.results.find(({ kind }) => kind === "autospectrum").number;
  const { data: [spectrum] } = await document.read(number);
  const peaks = await document.peaks(spectrum.values, 5);
  const shown = json("show", join(folder, "demo.zmxf"), String(number), "--top", "5");
  assert.deepEqual(peaks, shown.peaks.map(({ point }) => point));
  const highest = [spectrum.values[peaks[0]]];
  const printed = zmxf("show", join(folder, "demo.zmxf"), String(number), "--top", "1", "--db");
  assert.ok(printed.includes((await document.texts(spectrum, highest, "decibels"))[0].replace(" dB", "")), printed);
  assert.match((await document.texts(spectrum, highest, "unit"))[0], /^\d+(\.\d+)? mm\/s2$/);
  assert.deepEqual(await document.texts(spectrum, [0], "decibels"), ["N.A."]);
  document.close();
});

test("what can't be read says why, and the library goes on", async () => {
  await assert.rejects(library.open(new Blob(["RIFF is not all"]), "x.txt"), { message: "x.txt is no result document" });
  await assert.rejects(library.open(structuredClone(new Blob([])), "empty"), { message: "empty is empty" });
  const bytes = readFileSync(join(folder, "demo.zmxf")).subarray(0, 5_000_000);
  const cut = await library.open(Uint8Array.from(bytes).buffer, "cut.zmxf");
  assert.match(cut.info.damages[0], /ends|cut/);
  const readable = [];
  for (const { number } of cut.results) await cut.read(number).then(() => readable.push(number), () => undefined);
  const { verdict, readable: count } = await cut.verify();
  assert.deepEqual([verdict, readable.length], ["damaged", count]);
  await assert.rejects(cut.read(9999));
  await assert.rejects(cut.readSlices(0));
  cut.close();
  await assert.rejects(cut.read(0), { message: "the document is closed" });
});

test("hostile documents neither stop the library nor take its memory", { timeout: 600_000 }, async () => {
  execFileSync("node", ["--no-experimental-fetch", seeds, join(folder, "seeds")]);
  const hostile = [...filesIn(join(root, "fuzz/corpus")), ...["document", "structure"].flatMap((name) => filesIn(join(folder, "seeds", name)))];
  let opened = 0;
  for (const path of hostile) {
    const document = await openFile(path).catch((failure) => assert.doesNotMatch(failure.message, /stopped/, path));
    if (!document) continue;
    ++opened;
    const calls = [document.settings(), document.recordings(), document.verify()];
    for (const { number } of document.results) calls.push(document.read(number));
    for (const { reason } of await Promise.allSettled(calls)) if (reason) assert.doesNotMatch(reason.message, /stopped/, path);
    document.close();
  }
  assert.ok(opened > hostile.length / 4, `${opened} of ${hostile.length} opened`);
  assert.ok(process.memoryUsage().rss < 1.5e9, `${process.memoryUsage().rss} bytes`);
});
