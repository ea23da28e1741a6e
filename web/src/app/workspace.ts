// What is open and what of it is looked at.

import type { Header, LabelledResult, OpenDocument } from "../library/document";

/** An open document. */
export interface Entry {
  id: number;
  name: string;
  document: OpenDocument;
  /** What was left out of it when it was embedded, for the reader of the page. */
  note: string;
}

/** A result of an open document. */
export interface ResultKey {
  entry: Entry;
  number: number;
}

export type PageKind =
  "document" | "settings" | "recording" | "quantities" | "hardware" | "comments" | "verification" | "comparison";

/** What the main part shows: the selected results, or a page about a document. */
export type Shown = { kind: "results" } | { kind: PageKind; entry: Entry; system?: number };

/** A result with its data. */
export interface Loaded extends ResultKey {
  result: LabelledResult;
}

/** More than fits into sight, and into memory. */
export const kMostShown = 64;
const kCacheBytes = 256 * 1024 * 1024;

export class Workspace extends EventTarget {
  entries: Entry[] = [];
  shown: Shown = { kind: "results" };
  selection: ResultKey[] = [];
  /** The document whose results are shown beside those of the same name in others; null compares nothing. */
  compareWith: Entry | null = null;
  private readonly cache = new Map<string, { result: Promise<LabelledResult>; bytes: number }>();
  private lastId = 0;

  add(document: OpenDocument, fileName: string, note = ""): Entry {
    let name = fileName;
    for (let count = 2; this.entries.some((other) => other.name === name); ++count) name = `${fileName} (${count})`;
    const entry = { id: ++this.lastId, name, document, note };
    this.entries.push(entry);
    this.tell("documents");
    return entry;
  }

  close(entry: Entry): void {
    this.entries = this.entries.filter((other) => other !== entry);
    for (const key of this.cache.keys()) if (key.startsWith(`${entry.id}/`)) this.cache.delete(key);
    entry.document.close();
    if (this.compareWith === entry) this.compareWith = null;
    this.selection = this.selection.filter((key) => key.entry !== entry);
    if (this.shown.kind !== "results" && this.shown.entry === entry) this.shown = { kind: "results" };
    this.tell("documents");
    this.tell("selection");
  }

  select(keys: ResultKey[]): void {
    this.selection = keys;
    this.shown = { kind: "results" };
    this.tell("selection");
  }

  toggle(key: ResultKey): void {
    const rest = this.selection.filter((other) => !isSame(other, key));
    this.select(rest.length < this.selection.length ? rest : [...this.selection, key]);
  }

  isSelected(key: ResultKey): boolean {
    return this.selection.some((other) => isSame(other, key));
  }

  show(shown: Shown): void {
    this.shown = shown;
    this.selection = [];
    this.tell("selection");
  }

  compare(entry: Entry | null): void {
    this.compareWith = entry;
    this.tell("selection");
  }

  /** The result that a document compared with another has in place of this one. */
  counterpart(key: ResultKey): ResultKey | null {
    const other = this.compareWith;
    if (!other || key.entry === other) return null;
    const wanted = matchKeys(key.entry.document.results)[key.number];
    const number = matchKeys(other.document.results).indexOf(wanted ?? "");
    return number < 0 ? null : { entry: other, number };
  }

  /** With its data, which is kept for a while. */
  async read(key: ResultKey): Promise<Loaded> {
    const name = `${key.entry.id}/${key.number}`;
    let kept = this.cache.get(name);
    if (!kept) {
      kept = { result: key.entry.document.read(key.number), bytes: 0 };
      this.cache.set(name, kept);
    }
    try {
      const result = await kept.result;
      kept.bytes = bytesOf(result);
      this.forget(name);
      return { ...key, result };
    } catch (reason) {
      this.cache.delete(name);
      throw reason;
    }
  }

  private forget(latest: string): void {
    const kept = this.cache.get(latest);
    if (!kept) return;
    this.cache.delete(latest);
    this.cache.set(latest, kept); // the last to be forgotten
    let total = 0;
    for (const { bytes } of this.cache.values()) total += bytes;
    for (const [name, { bytes }] of this.cache) {
      if (total <= kCacheBytes || name === latest) break;
      this.cache.delete(name);
      total -= bytes;
    }
  }

  private tell(what: "documents" | "selection"): void {
    this.dispatchEvent(new Event(what));
  }
}

export function isSame(a: ResultKey, b: ResultKey): boolean {
  return a.entry === b.entry && a.number === b.number;
}

export function headerOf(key: ResultKey): Header {
  return key.entry.document.results[key.number]!;
}

const keptMatchKeys = new WeakMap<readonly Header[], string[]>();

/** What a result is, apart from its values; the second of the same has another one than the first. */
export function matchKeys(headers: readonly Header[]): string[] {
  let keys = keptMatchKeys.get(headers);
  if (!keys) {
    const counts = new Map<string, number>();
    keys = headers.map((header) => {
      const { processType, process, response, reference, responseChannel, referenceChannel, waterfallDimension } =
        header;
      const key = JSON.stringify([
        header.system,
        processType,
        process,
        response,
        responseChannel,
        reference,
        referenceChannel,
        waterfallDimension,
      ]);
      const count = counts.get(key) ?? 0;
      counts.set(key, count + 1);
      return `${key}${count}`;
    });
    keptMatchKeys.set(headers, keys);
  }
  return keys;
}

function bytesOf(result: LabelledResult): number {
  let bytes = 1000;
  for (const array of [...result.coordinates, ...result.data])
    bytes += (array.values?.byteLength ?? 0) + (array.complex ? 3 * array.complex.real.byteLength : 0);
  return bytes;
}
