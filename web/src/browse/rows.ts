// The rows of the tree: documents, what they hold, and their results by channel or by kind.

import type { Header } from "../library/document";
import type { Entry, PageKind, ResultKey, Workspace } from "../app/workspace";

export type Grouping = "channel" | "kind";

export interface Filter {
  text: string;
  kind: string; // "" for all
  grouping: Grouping;
}

export interface Row {
  id: string; // the same after each change
  depth: number;
  label: string;
  detail: string;
  entry: Entry;
  /** Of groups whether they are open; null for what holds nothing. */
  isOpen: boolean | null;
  page: { kind: PageKind; system?: number } | null;
  result: ResultKey | null;
  /** All results of a group. */
  members: ResultKey[];
}

/** Where there are more results, groups are closed until one is opened. */
const kFewResults = 120;

const kKindTitles: Record<string, string> = {
  level: "Levels",
  autospectrum: "Autospectra",
  spectrum: "Spectra",
  octave: "Octave bands",
  frf: "Transfer functions",
  coherence: "Coherence",
  waterfall: "Waterfalls",
  order: "Order tracks",
  series: "Values along a run-up",
  overview: "Overviews",
  orbit: "Orbits",
  mask: "Masks",
  values: "Values",
};

export function kindTitle(kind: string): string {
  return kKindTitles[kind] ?? kind;
}

/** The kinds that open documents hold. */
export function kindsOf(entries: readonly Entry[]): string[] {
  const kinds = new Set<string>();
  for (const { document } of entries) for (const header of document.results) kinds.add(header.kind);
  return [...kinds].sort((a, b) => kindTitle(a).localeCompare(kindTitle(b)));
}

export function channelTitle(header: Header): string {
  return header.response || (header.responseChannel ? `Channel ${header.responseChannel}` : "Without a channel");
}

/** Opened and closed groups that differ from how they begin. */
export type Turned = ReadonlySet<string>;

export function rowsOf(workspace: Workspace, filter: Filter, turned: Turned): Row[] {
  const rows: Row[] = [];
  for (const entry of workspace.entries) {
    const row = rowOf(entry, `d${entry.id}`, 0, entry.name, { kind: "document" });
    row.isOpen = !turned.has(row.id);
    rows.push(row);
    if (row.isOpen) addDocument(rows, entry, filter, turned);
  }
  return rows;
}

function rowOf(entry: Entry, id: string, depth: number, label: string, page: Row["page"]): Row {
  return { id, depth, label, detail: "", entry, isOpen: null, page, result: null, members: [] };
}

function addDocument(rows: Row[], entry: Entry, filter: Filter, turned: Turned): void {
  const { info, results } = entry.document;
  const matching = matches(results, filter);
  const isFiltered = filter.text !== "" || filter.kind !== "";
  const several = info.systems.length > 1;
  for (const { number } of info.systems) {
    const inSystem = matching.filter((header) => header.system === number);
    let depth = 1;
    if (several) {
      if (isFiltered && inSystem.length === 0) continue;
      const row = rowOf(entry, `d${entry.id}s${number}`, 1, `System ${number}`, null);
      row.isOpen = !turned.has(row.id);
      row.detail = String(inSystem.length);
      rows.push(row);
      if (!row.isOpen) continue;
      depth = 2;
    }
    addGroups(rows, entry, inSystem, depth, filter, turned, isFiltered || results.length <= kFewResults);
    if (isFiltered) continue;
    const prefix = `d${entry.id}s${number}`;
    if (has(info.contents, "settings"))
      rows.push(rowOf(entry, `${prefix}settings`, depth, "Settings", { kind: "settings", system: number }));
    rows.push(rowOf(entry, `${prefix}recording`, depth, "Recording", { kind: "recording", system: number }));
  }
  if (isFiltered) return;
  const pages = [
    ["quantities", "Quantities", info.quantities.length],
    ["hardware", "Hardware", info.hardware.length],
    ["comments", "Comments", info.comments.length],
    ["verification", "Check", null],
  ] as const;
  for (const [kind, title, count] of pages) {
    if (count === 0) continue;
    const row = rowOf(entry, `d${entry.id}${kind}`, 1, title, { kind });
    row.detail = count === null ? "" : String(count);
    rows.push(row);
  }
}

function has(contents: readonly string[], what: string): boolean {
  return contents.some((content) => content.includes(what));
}

function matches(headers: readonly Header[], filter: Filter): Header[] {
  const words = filter.text
    .toLowerCase()
    .split(/\s+/)
    .filter((word) => word !== "");
  return headers.filter((header) => {
    if (filter.kind !== "" && header.kind !== filter.kind) return false;
    if (words.length === 0) return true;
    const text = [header.process, header.response, header.reference, header.kind, header.caption, `#${header.number}`]
      .join(" ")
      .toLowerCase();
    return words.every((word) => text.includes(word));
  });
}

function addGroups(
  rows: Row[],
  entry: Entry,
  headers: readonly Header[],
  depth: number,
  filter: Filter,
  turned: Turned,
  beginsOpen: boolean,
): void {
  const groups = new Map<string, Header[]>();
  for (const header of headers) {
    const title = filter.grouping === "channel" ? channelTitle(header) : kindTitle(header.kind);
    const key = filter.grouping === "channel" ? `${header.responseChannel} ${title}` : title;
    const group = groups.get(key);
    if (group) group.push(header);
    else groups.set(key, [header]);
  }
  for (const [key, group] of groups) {
    const title = filter.grouping === "channel" ? channelTitle(group[0]!) : key;
    const row = rowOf(entry, `d${entry.id}s${group[0]!.system}g${key}`, depth, title, null);
    row.isOpen = beginsOpen !== turned.has(row.id);
    row.detail = String(group.length);
    row.members = group.map(({ number }) => ({ entry, number }));
    rows.push(row);
    if (!row.isOpen) continue;
    for (const header of group) rows.push(resultRow(entry, header, depth + 1, filter.grouping));
  }
}

function resultRow(entry: Entry, header: Header, depth: number, grouping: Grouping): Row {
  const process = header.process || `Type ${header.processType}`;
  const row = rowOf(entry, `d${entry.id}r${header.number}`, depth, process, null);
  if (grouping === "kind") row.label = `${channelTitle(header)}: ${process}`;
  if (header.reference) row.detail = `re ${header.reference}`;
  row.result = { entry, number: header.number };
  return row;
}
