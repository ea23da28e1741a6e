// The library of the page in node: its worker, bundled as in the page, behind a page of messages.

import { mkdtempSync, rmSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { fileURLToPath, pathToFileURL } from "node:url";
import { build } from "esbuild";

const folder = mkdtempSync(join(tmpdir(), "zelm-library-"));
process.on("exit", () => rmSync(folder, { recursive: true }));

async function load(entry) {
  const { outputFiles } = await build({
    entryPoints: [fileURLToPath(new URL(`../../src/library/${entry}.ts`, import.meta.url))],
    bundle: true,
    format: "esm",
    target: "es2022",
    define: { "import.meta.url": '""' },
    loader: { ".wasm": "binary" },
    write: false,
  });
  const file = join(folder, `${entry}.mjs`);
  writeFileSync(file, outputFiles[0].contents);
  return import(pathToFileURL(file));
}

export async function startLibrary() {
  const worker = { onmessage: null, postMessage: (message, transfer) => answer(structuredClone(message, { transfer })) };
  globalThis.self = {
    location: { href: "" },
    postMessage: (message, options) => {
      const data = structuredClone(message, options);
      setImmediate(() => worker.onmessage({ data }));
    },
  };
  const answer = (data) => setImmediate(() => self.onmessage({ data }));
  await load("worker");
  const { Library } = await load("document");
  return new Library(worker);
}
