// The start of the page: the worker with the library, the documents that the page brings along, and what is around them.

import { Shell } from "./app/shell";
import { Workspace } from "./app/workspace";
import { followSystemTheme } from "./charts/theme";
import { Library } from "./library/document";

/** The script of the worker, which stands in the page as text. */
function workerUrl(): string {
  const script = document.getElementById("worker")!.textContent!;
  return URL.createObjectURL(new Blob([script], { type: "text/javascript" }));
}

function bytesOf(base64: string): ArrayBuffer {
  const text = atob(base64.replace(/\s+/g, ""));
  const bytes = new Uint8Array(text.length);
  for (let index = 0; index < text.length; ++index) bytes[index] = text.charCodeAt(index);
  return bytes.buffer;
}

/** Documents that were put into the page: <script type="application/x-zmxf" data-name="..." data-note="...">base64. */
async function openBrought(shell: Shell): Promise<void> {
  for (const element of document.querySelectorAll<HTMLScriptElement>('script[type="application/x-zmxf"]')) {
    const bytes = bytesOf(element.textContent ?? "");
    element.textContent = "";
    await shell.open(bytes, element.dataset["name"] ?? "document", element.dataset["note"] ?? "");
  }
}

followSystemTheme();
const library = new Library(new Worker(workerUrl()));
void openBrought(new Shell(library, new Workspace()));
