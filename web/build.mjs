// Makes the page: one HTML file with scripts, styles and the library inside, and a policy that lets nothing else in.
//
//     node build.mjs [OUT]

import { createHash } from "node:crypto";
import { mkdirSync, readFileSync, writeFileSync } from "node:fs";
import { dirname } from "node:path";
import { fileURLToPath } from "node:url";
import { build } from "esbuild";

const here = (path) => fileURLToPath(new URL(path, import.meta.url));

async function bundle(entry) {
  const result = await build({
    entryPoints: [here(entry)],
    bundle: true,
    minify: true,
    format: "iife",
    target: "es2022",
    charset: "utf8",
    define: { "import.meta.url": '""' }, // the module's script looks for nothing beside it
    loader: { ".wasm": "binary", ".css": "text" },
    write: false,
  });
  return result.outputFiles[0].text.trim();
}

/** In a script element nothing may look like its end, or like a comment of markup. */
const inScript = (text) => text.replace(/<\/(script)/gi, "<\\/$1").replace(/<!--/g, "<\\!--");
const hash = (text) => `'sha256-${createHash("sha256").update(text, "utf8").digest("base64")}'`;

const script = inScript(await bundle("src/main.ts"));
const worker = inScript(await bundle("src/library/worker.ts"));
// Those of the page come last: they hold for narrow windows and for paper too.
const styles = ["node_modules/uplot/dist/uPlot.min.css", "src/styles/panels.css", "src/styles/page.css"];
const style = styles.map((path) => readFileSync(here(path), "utf8")).join("");

// The worker's script is in the page as text and starts from memory; only it may compile WebAssembly.
const policy = [
  "default-src 'none'",
  `script-src ${hash(script)} blob: 'wasm-unsafe-eval'`,
  "worker-src blob:",
  `style-src ${hash(style)}`,
  "img-src blob: data:",
  "base-uri 'none'",
  "form-action 'none'",
].join("; ");

const parts = { policy, style, worker, script };
const page = readFileSync(here("src/page.html"), "utf8").replace(/\{\{(\w+)\}\}/g, (_, name) => parts[name]);
const out = process.argv[2] ?? here("dist/zmxf-viewer.html");
mkdirSync(dirname(out), { recursive: true });
writeFileSync(out, page);
console.log(`${out}: ${Math.ceil(Buffer.byteLength(page) / 1024)} KB`);
