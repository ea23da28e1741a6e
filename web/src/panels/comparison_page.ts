// Two documents beside each other: which results only one of them holds, and by how much levels differ.

import type { LabelledArray } from "../library/document";
import { button, choice, h, name, put, table, type Column } from "../dom";
import type { Cell } from "../saving/csv";
import { channelKey, channelsOf, type Channel, type ChannelPair } from "../app/pairing";
import { headerOf, type Entry, type Loaded, type ResultKey, type Workspace } from "../app/workspace";
import { channelTitle } from "../browse/rows";
import { levelRows, type LevelRow } from "./levels_panel";
import { PanelFrame } from "./panel";
import { shortened } from "../charts/curve_figure";
import { arrayNamed, axisOf, floats, quantityOf, sourcesOf, type Source } from "./sources";

interface Pair {
  first: ResultKey;
  second: ResultKey;
}

interface Matching {
  pairs: Pair[];
  onlyFirst: ResultKey[];
  onlySecond: ResultKey[];
}

function match(first: Entry, second: Entry, workspace: Workspace): Matching {
  const pairing = workspace.pairing(first, second);
  const rest = new Set(second.document.results.map(({ number }) => number));
  const found: Matching = { pairs: [], onlyFirst: [], onlySecond: [] };
  for (const { number } of first.document.results) {
    const other = pairing.counterpart(number);
    if (other === null) found.onlyFirst.push({ entry: first, number });
    else found.pairs.push({ first: { entry: first, number }, second: { entry: second, number: other } });
    if (other !== null) rest.delete(other);
  }
  found.onlySecond = [...rest].map((number) => ({ entry: second, number }));
  return found;
}

export interface Difference {
  pair: Pair;
  title: string;
  where: string; // of curves, where they differ most
  first: string;
  second: string;
  difference: string;
  decibels: string;
}

const kMostPairs = 500;
const kMostChannels = 100;

export async function comparisonPage(first: Entry, workspace: Workspace): Promise<HTMLElement> {
  const second = workspace.compareWith!;
  const { pairs, onlyFirst, onlySecond } = match(first, second, workspace);
  const levels = pairs.filter(({ first: key }) => headerOf(key).kind === "level").slice(0, kMostPairs);
  const differences = (await Promise.all(levels.map((pair) => differencesOf(pair, workspace)))).flat();
  const rows = () => differenceRows(differences, first.name, second.name);
  const frame = new PanelFrame(`${first.name} and ${second.name}`, "", { table: rows });
  const same = onlyFirst.length + onlySecond.length === 0 ? "Both hold the same results. " : "";
  const said =
    pairs.length === 0
      ? "No result is in both documents."
      : `${pairs.length} results are in both documents. ${same}Select one in the tree to see both in one chart.`;
  put(frame.body, h("p", {}, said));
  addChannels(frame.body, first, second, workspace);
  if (differences.length > 0)
    put(frame.body, h("h3", {}, "Levels"), differenceTable(differences, first.name, second.name));
  addOnly(frame.body, onlyFirst, workspace);
  addOnly(frame.body, onlySecond, workspace);
  return frame.element;
}

/** Where channels of the two have other names or numbers: which go together, and a way to say it. */
function addChannels(body: HTMLElement, first: Entry, second: Entry, workspace: Workspace): void {
  const { channels } = workspace.pairing(first, second);
  const others = channelsOf(second.document.results);
  const isSame = ({ first: a, second: b }: ChannelPair) => b !== null && channelKey(a) === channelKey(b);
  if (others.length === 0 || (channels.every(isSame) && channels.length === others.length)) return;
  const title = ({ system, name, number }: Channel) =>
    `${name || "Without a name"} (${number}${second.document.info.systems.length > 1 ? `, system ${system}` : ""})`;
  const choose = (pair: ChannelPair) => {
    const own = others.filter(({ system }) => system === pair.first.system);
    const values = own.map((channel) => [channelKey(channel), shortened(title(channel), 60)] as const);
    const chosen = pair.second ? channelKey(pair.second) : "";
    return choice(`Goes with ${pair.first.name}`, [["", "none"] as const, ...values], chosen, (key) =>
      workspace.pair(first, second, pair.first, own.find((channel) => channelKey(channel) === key) ?? null),
    );
  };
  const columns: Column<ChannelPair>[] = [
    { title: first.name, cell: (pair) => name(title(pair.first)) },
    { title: second.name, cell: choose },
  ];
  const unlike = [...channels].sort((a, b) => Number(isSame(a)) - Number(isSame(b)));
  put(body, h("h3", {}, "Channels that go together"), table(columns, unlike.slice(0, kMostChannels)));
}

function addOnly(body: HTMLElement, keys: readonly ResultKey[], workspace: Workspace): void {
  if (keys.length === 0) return;
  const list = h("div", { className: "kinds" });
  for (const key of keys.slice(0, 200)) {
    const { process, processType } = headerOf(key);
    put(
      list,
      button(`${channelTitle(headerOf(key))}: ${process || `type ${processType}`}`, "Show it", () =>
        workspace.select([key]),
      ),
    );
  }
  put(body, h("h3", {}, "Only in ", name(keys[0]!.entry.name)), list);
}

export function differenceTable(differences: readonly Difference[], first: string, second: string): HTMLElement {
  const columns: Column<Difference>[] = [
    { title: "Channel", cell: ({ pair }) => name(channelTitle(headerOf(pair.first))) },
    { title: "Result", cell: ({ title }) => name(title) },
    { title: first, cell: (row) => row.first, isNumber: true },
    { title: second, cell: (row) => row.second, isNumber: true },
    { title: "Difference", cell: ({ difference }) => h("strong", {}, difference), isNumber: true },
  ];
  if (differences.some(({ decibels }) => decibels !== ""))
    columns.push({ title: "in dB", cell: ({ decibels }) => decibels, isNumber: true });
  if (differences.some(({ where }) => where !== ""))
    columns.splice(2, 0, { title: "Most at", cell: ({ where }) => where, isNumber: true });
  return table(columns, differences);
}

export function differenceRows(differences: readonly Difference[], first: string, second: string): Cell[][] {
  const head = ["Channel", "Result", "Most at", first, second, "Difference", "Difference in dB"];
  const rows = differences.map((d) => [
    channelTitle(headerOf(d.pair.first)),
    d.title,
    d.where,
    d.first,
    d.second,
    d.difference,
    d.decibels,
  ]);
  return [head, ...rows];
}

/** By how much the two of a pair differ: each level, and each curve where it differs most. */
export async function differencesOf(pair: Pair, workspace: Workspace): Promise<Difference[]> {
  const [first, second] = await Promise.all([workspace.read(pair.first), workspace.read(pair.second)]);
  if (headerOf(pair.first).kind === "level") {
    const [own, others] = await Promise.all([levelRows(first), levelRows(second)]);
    const pairs = own.flatMap((row, index) => (others[index] ? [[row, others[index]] as const] : []));
    return Promise.all(pairs.map(([a, b]) => levelDifference(pair, a, b)));
  }
  const others = comparable(second);
  const found = await Promise.all(
    comparable(first).map((source, index) => curveDifference(pair, source, others[index])),
  );
  return found.filter((difference) => difference !== null);
}

async function levelDifference(pair: Pair, a: LevelRow, b: LevelRow): Promise<Difference> {
  const { document } = pair.first.entry;
  const isSameUnit =
    a.array.quantity?.unit === b.array.quantity?.unit && a.array.quantity?.key === b.array.quantity?.key;
  const [text = ""] = isSameUnit
    ? await document.texts({ ...a.array, relativePrecision: 0, absolutePrecision: 0 }, [b.si - a.si], "unit")
    : ["other units"];
  const level =
    isSameUnit && a.array.quantity?.decibels
      ? await document.scaled(a.array, "decibels", Float32Array.of(a.si, b.si))
      : null;
  return {
    pair,
    title: a.title,
    where: "",
    first: a.value,
    second: b.value,
    difference: text,
    decibels: level ? decibelText(level[1]! - level[0]!) : "",
  };
}

async function curveDifference(pair: Pair, a: Source, b: Source | undefined): Promise<Difference | null> {
  if (!b || quantityOf(a)?.key !== quantityOf(b)?.key || a.values.length !== b.values.length || !isSameAxis(a, b))
    return null;
  let most = 0;
  for (let point = 1; point < a.values.length; ++point) if (distance(a, b, point) > distance(a, b, most)) most = point;
  const isSame = !(distance(a, b, most) > 0);
  const { document } = a.loaded.entry;
  const array = { ...a.array, quantity: quantityOf(a) };
  const values = Float32Array.of(a.values[most]!, b.values[most]!);
  const [texts, difference, levels, where] = await Promise.all([
    document.texts(array, values, "unit"),
    document.texts({ ...array, relativePrecision: 0, absolutePrecision: 0 }, [values[1]! - values[0]!], "unit"),
    array.quantity?.decibels ? document.scaled(array, "decibels", values) : null,
    placesOf(a, most),
  ]);
  const { process } = headerOf(pair.first);
  return {
    pair,
    title: a.detail ? `${process}, ${a.detail}` : process,
    where: isSame ? "" : where.join(", "),
    first: texts[0] ?? "",
    second: texts[1] ?? "",
    difference: isSame ? "none" : (difference[0] ?? ""),
    decibels: levels ? decibelText(levels[1]! - levels[0]!) : "",
  };
}

/** The columns of a result; a waterfall as one of all of its slices. */
function comparable(loaded: Loaded): Source[] {
  const array = loaded.result.form === "waterfall" ? arrayNamed(loaded.result, "value") : null;
  return array ? [{ loaded, detail: "", axis: null, array, values: floats(array) }] : sourcesOf(loaded);
}

/** Where a point lies: along the axis, or in which slice and line. */
async function placesOf({ loaded, axis, array }: Source, point: number): Promise<string[]> {
  const { document } = loaded.entry;
  const on = (one: LabelledArray | null, at: number) =>
    one ? document.texts(one, [one.values?.[at] ?? NaN], "unit") : Promise.resolve([String(at)]);
  const [slices, lines] = array.dimensions;
  if (slices === undefined || lines === undefined) return on(axis, point);
  const count = array.shape[1] ?? 1;
  const { result } = loaded;
  const places = [on(axisOf(result, slices), Math.floor(point / count)), on(axisOf(result, lines), point % count)];
  return (await Promise.all(places)).flat();
}

/** A value that only one of them has differs most. */
function distance(a: Source, b: Source, point: number): number {
  const [own, other] = [a.values[point]!, b.values[point]!];
  if (Number.isFinite(own) !== Number.isFinite(other)) return Infinity;
  return Number.isFinite(own) ? Math.abs(other - own) : -1;
}

function isSameAxis(a: Source, b: Source): boolean {
  const [x, y] = [a.axis?.values, b.axis?.values];
  if (!x || !y) return !x === !y;
  return x.length === y.length && x.every((value, index) => value === y[index]);
}

function decibelText(difference: number): string {
  return Number.isFinite(difference) ? `${difference > 0 ? "+" : ""}${difference.toFixed(2)} dB` : "";
}
