// The page in headless Chromium, as a user meets it. A test that ends has seen no request, no error and no dialog.

import assert from "node:assert/strict";
import { execFileSync } from "node:child_process";
import { mkdirSync, mkdtempSync, readdirSync, readFileSync, rmSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { fileURLToPath, pathToFileURL } from "node:url";
import puppeteer from "puppeteer-core";

const here = (path) => fileURLToPath(new URL(path, import.meta.url));

export const viewer = process.env.ZELMRESULT_VIEWER ?? here("../../build/zmxf-viewer.html");
const tool = process.env.ZMXF ?? here("../../build/release/tools/zmxf");
const shots = process.env.SCREENSHOTS ?? here("../../build/screenshots");

export const folder = mkdtempSync(join(tmpdir(), "zmxf-page-"));
export const data = (name) => here(`../../tests/data/${name}`);

/** What the tool prints; the exit status of `verify` says something, and isn't a failure. */
export function zmxf(...words) {
  try {
    return execFileSync(tool, words, { encoding: "utf8", maxBuffer: 1 << 28 });
  } catch (failure) {
    if (failure.stdout) return failure.stdout;
    throw failure;
  }
}

export const json = (...words) => JSON.parse(zmxf(...words, "--json"));

let browser;

export async function start() {
  mkdirSync(shots, { recursive: true });
  const args = ["--no-sandbox", "--force-color-profile=srgb", "--font-render-hinting=none"];
  browser = await puppeteer.launch({ executablePath: process.env.CHROMIUM ?? "/usr/bin/chromium", args });
}

export async function stop() {
  await browser.close();
  rmSync(folder, { recursive: true });
}

/** Runs steps on the page in a window of its own. */
export async function onPage(
  steps,
  { width = 1280, height = 720, isDark = false, isPhone = false, file = viewer } = {},
) {
  const page = await browser.newPage();
  const faults = [];
  page.on("console", (message) => ["error", "warn"].includes(message.type()) && faults.push(message.text()));
  page.on("pageerror", (error) => faults.push(error.message));
  page.on("dialog", (dialog) => {
    faults.push(`a dialog: ${dialog.message()}`);
    void dialog.dismiss();
  });
  page.on("request", (request) => {
    const isOwn = request.url() === pathToFileURL(file).href || /^(blob|data):/.test(request.url());
    if (!isOwn) faults.push(`a request to ${request.url()}`);
  });
  await page.setViewport({ width, height, isMobile: isPhone, hasTouch: isPhone });
  await page.emulateMediaFeatures([{ name: "prefers-color-scheme", value: isDark ? "dark" : "light" }]);
  await page.goto(pathToFileURL(file).href);
  try {
    await steps(new User(page));
    assert.deepEqual(faults, []);
  } finally {
    await page.close();
  }
}

/** What a user does. */
class User {
  constructor(page) {
    this.page = page;
  }

  async open(...files) {
    const before = await this.documents();
    const input = await this.page.$("input[type=file]");
    await input.uploadFile(...files);
    await this.until(
      (count) => document.title.split(", ").length - 1 + document.querySelectorAll(".notice.failure").length >= count,
      before + files.length,
    );
  }

  /** Those that are open, and those that were refused. */
  documents() {
    return this.page.evaluate(
      () => document.title.split(", ").length - 1 + document.querySelectorAll(".notice.failure").length,
    );
  }

  /** Lets go of bytes over the page. */
  async drop(fileName, bytes) {
    const before = await this.documents();
    await this.page.evaluate(
      (name, base64) => {
        const transfer = new DataTransfer();
        transfer.items.add(new File([Uint8Array.from(atob(base64), (c) => c.charCodeAt(0))], name));
        for (const type of ["dragover", "drop"])
          document.body.dispatchEvent(new DragEvent(type, { dataTransfer: transfer, bubbles: true, cancelable: true }));
      },
      fileName,
      Buffer.from(bytes).toString("base64"),
    );
    await this.until(
      (count) => document.title.split(", ").length - 1 + document.querySelectorAll(".notice.failure").length > count,
      before,
    );
  }

  until(condition, ...values) {
    return this.page.waitForFunction(condition, { timeout: 20_000 }, ...values);
  }

  async search(text) {
    await this.page.$eval(
      "input[type=search]",
      (input, value) => {
        input.value = value;
        input.dispatchEvent(new Event("input"));
      },
      text,
    );
  }

  /** Shows the result of that number, with others when it is added. */
  async show(number, { added = false } = {}) {
    await this.search(`#${number}`);
    await this.page.evaluate(
      (wanted, isAdded) => {
        const row = [...document.querySelectorAll(".row:has(input)")].find(({ dataset }) => dataset.number === wanted);
        (isAdded ? row.querySelector("input") : row).click();
      },
      String(number),
      added,
    );
    await this.settled();
  }

  /** Waits until nothing is being read any more. */
  async settled() {
    await this.until(() => document.querySelector('[aria-busy="true"]') === null);
    await this.page.evaluate(
      () => new Promise((resolve) => requestAnimationFrame(() => requestAnimationFrame(resolve))),
    );
    await this.until(() => document.querySelector('[aria-busy="true"]') === null);
  }

  /** A row of the tree that leads to a page. */
  async page_(title) {
    await this.search("");
    await this.page.$eval(".tree", (tree) => (tree.scrollTop = tree.scrollHeight));
    await this.until(
      (wanted) => [...document.querySelectorAll(".row .label")].some((row) => row.textContent === wanted),
      title,
    );
    await this.page.evaluate((wanted) => {
      [...document.querySelectorAll(".row")].find((row) => row.querySelector(".label").textContent === wanted).click();
    }, title);
    await this.settled();
  }

  /** Presses a button of a panel by its label. */
  async press(label, panel = 0) {
    await this.page.evaluate(
      (wanted, index) => {
        const within = document.querySelectorAll(".panel")[index] ?? document;
        [...within.querySelectorAll("button")].find((one) => one.textContent === wanted).click();
      },
      label,
      panel,
    );
  }

  async choose(label, value) {
    await this.page.select(`select[aria-label="${label}"]`, value);
    await this.settled();
  }

  /** What a button saves. */
  async saved(label, panel = 0) {
    const target = mkdtempSync(join(folder, "saved-"));
    const session = await this.page.createCDPSession();
    await session.send("Page.setDownloadBehavior", { behavior: "allow", downloadPath: target });
    await this.press(label, panel);
    for (let turn = 0; turn < 200; ++turn) {
      const [file] = readdirSync(target).filter((name) => !name.endsWith(".crdownload"));
      if (file) return readFileSync(join(target, file));
      await this.wait(50);
    }
    throw new Error(`${label} saved nothing: ${await this.text(".said")}`);
  }

  async csv(panel = 0) {
    const lines = (await this.saved("CSV", panel)).toString("utf8").trimEnd().split("\n");
    return lines.map((line) =>
      [...line.matchAll(/("(?:[^"]|"")*"|[^,]*)(?:,|$)/g)]
        .slice(0, -1)
        .map(([, cell]) => cell.replace(/^"(.*)"$/s, "$1").replaceAll('""', '"')),
    );
  }

  text(selector = "main") {
    return this.page.$eval(selector, (element) => element.innerText);
  }

  shot(name) {
    return this.page.screenshot({ path: join(shots, `${name}.png`) });
  }

  wait(milliseconds) {
    return new Promise((resolve) => setTimeout(resolve, milliseconds));
  }
}
