// Each view opens, and has its picture taken to be looked at: build/screenshots.

import { after, before, test } from "node:test";
import { join } from "node:path";
import { folder, json, onPage, start, stop, zmxf } from "./browser.mjs";

const demo = join(folder, "demo.zmxf");

before(async () => {
  zmxf("demo", folder);
  await start();
});
after(stop);

const kinds = ["autospectrum", "octave", "frf", "coherence", "waterfall", "order", "overview", "series"];

for (const [where, options] of [
  ["light", {}],
  ["dark", { isDark: true }],
  ["phone", { width: 390, height: 844, isPhone: true }],
])
  for (const kind of kinds)
    test(`${kind}, ${where}`, () =>
      onPage(async (user) => {
        await user.open(demo);
        await user.show(json("info", demo, "--kind", kind).results[0].number);
        await user.settled();
        await user.until(() => document.querySelector(".chart canvas, .chart svg") !== null);
        await user.shot(`${kind}_${where}`);
        const widths = await user.page.evaluate(() => [document.documentElement.scrollWidth, innerWidth]);
        if (widths[0] > widths[1]) throw new Error(`the page is ${widths[0]} wide, the window ${widths[1]}`);
      }, options));

test("the picture of the README", () =>
  onPage(
    async (user) => {
      await user.open(demo);
      await user.show(json("info", demo, "--kind", "waterfall").results[0].number);
      await user.search("");
      await user.page.mouse.move(418, 300);
      for (let turn = 0; turn < 12; ++turn) await user.page.mouse.wheel({ deltaY: -100 });
      await user.page.type('input[title="Lines of these orders"]', "1, 2, 4\n");
      await user.settled();
      await user.page.mouse.click(567, 321);
      await user.page.mouse.move(640, 20);
      await user.settled();
      await user.shot("viewer");
    },
    { height: 900 },
  ));

test("pages about a document, and print", () =>
  onPage(async (user) => {
    await user.shot("welcome");
    await user.open(demo);
    await user.shot("document");
    for (const page of ["Settings", "Recording", "Quantities", "Hardware", "Check"]) {
      await user.page_(page);
      await user.shot(page.toLowerCase());
    }
    await user.show(json("info", demo, "--kind", "waterfall").results[0].number);
    await user.settled();
    await user.page.evaluate(() => dispatchEvent(new Event("beforeprint")));
    await user.page.emulateMediaType("print");
    await user.until(() => document.querySelector(".printed svg").getBoundingClientRect().height > 200);
    await user.shot("print");
    await user.page.emulateMediaType("screen");
  }));
