// What happens with damaged, hostile and large documents, and how the page is used.

import assert from "node:assert/strict";
import { readFileSync, writeFileSync } from "node:fs";
import { after, before, test } from "node:test";
import { join } from "node:path";
import { folder, json, onPage, start, stop, zmxf } from "./browser.mjs";

const demo = join(folder, "demo.zmxf");

before(async () => {
  zmxf("demo", folder);
  await start();
});
after(stop);

/** A document of columns of numbers. */
function analysed(name, channels, rows) {
  const table = join(folder, `${name}.csv`);
  writeFileSync(table, `${rows.map((row) => row.join(",")).join("\n")}\n`);
  const out = join(folder, `${name}.zmxf`);
  zmxf("analyze", table, "--rate", "1000", "--unit", "m/s2", "--channel-names", channels.join(","), "-o", out);
  return out;
}

const wave = (count, columns, factor = 1) =>
  Array.from({ length: count }, (_, row) =>
    Array.from({ length: columns }, (_, column) => (factor * Math.sin(row * (0.2 + column / 1000))).toFixed(6)),
  );

test("a damaged document shows what can be read, and what verify says", () =>
  onPage(async (user) => {
    const bytes = readFileSync(demo);
    const cut = join(folder, "cut.zmxf");
    writeFileSync(cut, bytes.subarray(0, 5_000_000));
    const said = json("verify", cut);
    await user.open(cut);
    assert.match(await user.text(), /is cut off/);
    await user.page_("Check");
    const text = await user.text();
    assert.ok(text.includes(`${said.readable} of ${said.results} results can be read`), text);
    for (const { text: damage } of said.damages.slice(0, 3)) assert.ok(text.includes(damage), damage);
    await user.show(21);
    assert.equal((await user.csv()).length, 4002);
  }));

test("files of other kinds are refused in plain words, and the page goes on", () =>
  onPage(async (user) => {
    await user.drop("picture.png", Buffer.from([0x89, 0x50, 0x4e, 0x47, 13, 10, 26, 10, 0, 0]));
    await user.drop("empty.zmxf", Buffer.alloc(0));
    assert.match(await user.text(".notices"), /picture\.png is no result document.+empty\.zmxf is empty/s);
    await user.drop("demo.zmxf", readFileSync(demo));
    assert.match(await user.text(), /55/);
  }));

test("on a phone what is refused is seen beside the list of results", () =>
  onPage(
    async (user) => {
      await user.open(demo);
      await user.drop("picture.png", Buffer.from([0x89, 0x50, 0x4e, 0x47, 13, 10, 26, 10, 0, 0]));
      assert.ok(await user.page.$eval(".notice.failure", (notice) => notice.getBoundingClientRect().height > 0));
    },
    { width: 390, height: 844, isPhone: true },
  ));

test("hostile names stay text", () =>
  onPage(async (user) => {
    const names = [
      "<img src=x onerror=alert(1)>",
      "\u202egnp.exe",
      "</script><script>alert(2)</script>",
      `L${"o".repeat(3000)}ng`,
      "tab\u0007\u001bend",
    ];
    const document = analysed("hostile", names, wave(400, names.length));
    const stored = [...new Set(json("info", document).results.map(({ response }) => response))];
    await user.open(document);
    await user.show(0);
    for (const { number } of json("info", document, "--kind", "level").results.slice(1))
      await user.show(number, { added: true });
    const text = await user.text();
    assert.ok(text.includes(names[0]) && text.includes(names[2]), "markup is shown as it is");
    assert.ok(
      stored.some((response) => response.includes("\u0007")) === text.includes("\u2407"),
      "control characters are seen",
    );
    assert.equal(await user.page.$$eval("img, body script:not([id])", (all) => all.length), 1, "nothing was parsed");
    const direction = await user.page.$$eval("bdi", (all) => all.some((one) => one.textContent.includes("\u202e")));
    assert.ok(direction, "a text of other direction ends with its element");
    const width = await user.page.evaluate(() => document.documentElement.scrollWidth);
    assert.ok(width <= 1280, `the page is ${width} wide`);
    await user.shot("hostile");
  }));

test("thousands of results, and many channels", () =>
  onPage(async (user) => {
    const titles = Array.from({ length: 640 }, (_, column) => `Channel with a long name ${column}`);
    const document = analysed("many", titles, wave(128, titles.length));
    const { results } = json("info", document);
    assert.ok(results.length > 6000);
    await user.open(document);
    await user.search("name 639");
    await user.until(() =>
      [...document.querySelectorAll(".row .label")].some((row) => row.textContent.endsWith("name 639")),
    );
    assert.ok((await user.page.$$(".row")).length < 100, "only rows in sight are elements");
    await user.page.select('select[aria-label="Kind"]', "autospectrum");
    await user.search("");
    await user.page.$eval(".tree", (tree) => (tree.scrollTop = tree.scrollHeight / 2));
    await user.until(() =>
      [...document.querySelectorAll(".row .label")].some((row) => /name 3\d\d$/.test(row.textContent)),
    );
    await user.page.select('select[aria-label="Grouping"]', "kind");
    await user.until(() => document.querySelectorAll('button[title^="Show the results of"]').length > 0);
    await user.press("all", -1);
    await user.settled();
    await user.until(() => document.querySelectorAll(".legend .curve").length === 64);
    await user.shot("many");
  }));

test("a second document beside the first", () =>
  onPage(async (user) => {
    const first = analysed("first", ["Pump"], wave(2000, 1));
    const second = analysed("second", ["Pump"], wave(2000, 1, 2));
    await user.open(first, second);
    await user.page.select('select[aria-label="Compare with"]', "2");
    await user.settled();
    const rms = (await user.csv()).find((row) => row[1] === "RMS");
    assert.equal(rms.at(-1), "+6.02 dB");
    await user.search("#7");
    await user.page.$eval(".row:has(input)", (row) => row.click());
    await user.settled();
    await user.until(() => document.querySelectorAll(".panel").length === 2);
    assert.equal((await user.page.$$(".legend .curve")).length, 2);
    assert.match(await user.text(), /Differences/);
    await user.shot("compared");
  }));

test("a zoom stays for the next spectrum, as far as that one reaches", () =>
  onPage(async (user) => {
    await user.open(demo);
    const spectra = json("info", demo, "--kind", "autospectrum").results;
    const drag = async () => {
      const area = await (await user.page.$(".u-over")).boundingBox();
      await user.page.mouse.move(area.x + 0.7 * area.width, area.y + 50);
      await user.page.mouse.down();
      await user.page.mouse.move(area.x + 0.9 * area.width, area.y + 60, { steps: 4 });
      await user.page.mouse.up();
    };
    /** The numbers below what is saved. */
    const places = async () =>
      (await user.saved("SVG"))
        .toString()
        .match(/text-anchor="middle">\d+</g)
        .map((text) => Number(/>(\d+)</.exec(text)[1]));
    await user.show(spectra[0].number);
    await drag();
    assert.ok(Math.min(...(await places())) > 5000);
    await user.show(spectra[1].number);
    assert.ok(Math.min(...(await places())) > 5000, "the same part of the next one");
    const slow = analysed("slow", ["Pump"], wave(2000, 1));
    await user.open(slow);
    await user.search("pump autospectrum");
    await user.page.$eval(".row:has(input)", (row) => row.click());
    await user.settled();
    assert.equal(Math.max(...(await places())), 500, "all of one that ends before");
  }));

test("keys: search, tree, cursor and zoom", () =>
  onPage(async (user) => {
    const { keyboard } = user.page;
    await user.open(demo);
    await keyboard.press("/");
    await keyboard.type("autospectrum");
    await user.page.focus(".tree");
    for (const key of ["Home", "ArrowDown", "ArrowDown", "Enter"]) await keyboard.press(key);
    await user.settled();
    await user.page.focus(".chart");
    await keyboard.press("ArrowRight");
    await user.until(() => document.querySelector(".readout .value") !== null);
    const before = await user.text(".readout");
    await keyboard.press("ArrowRight");
    await user.until((text) => document.querySelector(".readout").innerText !== text, before);
    await keyboard.press("h");
    assert.equal(
      await user.page.$eval('button[title^="Lines at the multiples"]', (one) => one.getAttribute("aria-pressed")),
      "true",
    );
  }));

test("pictures: SVG and PNG", () =>
  onPage(async (user) => {
    await user.open(demo);
    for (const kind of ["autospectrum", "octave", "waterfall"]) {
      await user.show(json("info", demo, "--kind", kind).results[0].number);
      await user.settled();
      const drawing = (await user.saved("SVG")).toString("utf8");
      assert.match(drawing, /^<svg [^>]*xmlns="http:\/\/www\.w3\.org\/2000\/svg"/);
      assert.ok(drawing.includes("Channel 1: ") && !/class=|style=/.test(drawing), "it needs nothing else");
      const picture = await user.saved("PNG");
      assert.equal(picture.subarray(1, 4).toString(), "PNG");
      assert.ok(picture.length > 10_000, `${picture.length} bytes are no drawing`);
    }
  }));

test("a report opens by itself", { skip: !/^\s*(zmxf )?report /m.test(zmxf("--help")) }, () => {
  const report = join(folder, "report.html");
  zmxf("report", demo, "-o", report);
  return onPage(
    async (user) => {
      await user.until(() => document.querySelector(".row.document") !== null);
      await user.show(21);
      assert.equal((await user.csv()).length, 4002);
    },
    { file: report },
  );
});
