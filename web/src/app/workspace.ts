// What is open and what of it is looked at.

import type { Header, LabelledResult, OpenDocument } from "../library/document";
import { channelKey, Pairing, type Channel } from "./pairing";

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
  /** For each two documents what the user said of their channels, and what followed. */
  private readonly pairings = new Map<string, { said: Map<string, string | null>; pairing: Pairing | null }>();

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

  /** Which results of a document belong to those of the one it is compared with. */
  pairing(first: Entry, second: Entry): Pairing {
    const kept = this.saidOf(first, second);
    kept.pairing ??= new Pairing(first.document.results, second.document.results, kept.said);
    return kept.pairing;
  }

  /** The user says which channel of the second goes with one of the first; null for none. */
  pair(first: Entry, second: Entry, channel: Channel, other: Channel | null): void {
    const kept = this.saidOf(first, second);
    const wanted = other && channelKey(other);
    for (const [key, former] of kept.said) if (former === wanted) kept.said.delete(key);
    kept.said.set(channelKey(channel), wanted);
    kept.pairing = null;
    this.tell("selection");
  }

  private saidOf(first: Entry, second: Entry) {
    const key = `${first.id}/${second.id}`;
    const kept = this.pairings.get(key) ?? { said: new Map<string, string | null>(), pairing: null };
    this.pairings.set(key, kept);
    return kept;
  }

  /** The result that a document compared with another has in place of this one. */
  counterpart(key: ResultKey): ResultKey | null {
    const other = this.compareWith;
    if (!other || key.entry === other) return null;
    const number = this.pairing(key.entry, other).counterpart(key.number);
    return number === null ? null : { entry: other, number };
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

function bytesOf(result: LabelledResult): number {
  let bytes = 1000;
  for (const array of [...result.coordinates, ...result.data])
    bytes += (array.values?.byteLength ?? 0) + (array.complex ? 3 * array.complex.real.byteLength : 0);
  return bytes;
}
