// Levels of all channels as one table: value, decibels, extremes, and what the program says of formula and calibration.

import type { LabelledArray } from "../library/document";
import { h, name, table, type Column } from "../dom";
import type { Cell } from "../saving/csv";
import { channelTitle } from "../browse/rows";
import type { Loaded } from "../app/workspace";
import { PanelFrame, type Panel } from "./panel";
import { axisTitle, floats } from "./sources";

export interface LevelRow {
  loaded: Loaded;
  title: string;
  value: string;
  decibels: string;
  maximum: string;
  minimum: string;
  /** In SI units, with the quantity, for tables of numbers. */
  si: number;
  array: LabelledArray;
}

/** The levels that a result holds, a row each. */
export async function levelRows(loaded: Loaded): Promise<LevelRow[]> {
  const { result } = loaded;
  const byName = new Map(result.data.map((array) => [array.name, array]));
  const isExtreme = (array: LabelledArray) =>
    array.name === "minimum" || array.name === "maximum" || /_(minimum|maximum)$/.test(array.name);
  const rows: LevelRow[] = [];
  for (const array of result.data) {
    if (isExtreme(array) || !array.values) continue;
    const extreme = (which: string) => byName.get(array.name === "value" ? which : `${array.name}_${which}`) ?? null;
    rows.push(...(await rowsOf(loaded, array, extreme("maximum"), extreme("minimum"))));
  }
  return rows;
}

async function rowsOf(
  loaded: Loaded,
  array: LabelledArray,
  highest: LabelledArray | null,
  lowest: LabelledArray | null,
): Promise<LevelRow[]> {
  const { document } = loaded.entry;
  const { result } = loaded;
  const withQuantity = (one: LabelledArray) => ({ ...one, quantity: one.quantity ?? result.quantity });
  const values = floats(array);
  const hasLevels = withQuantity(array).quantity?.decibels != null;
  const extremes = (one: LabelledArray | null) => (one ? document.texts(withQuantity(one), floats(one), "unit") : []);
  const [texts, levels, maxima, minima] = await Promise.all([
    document.texts(withQuantity(array), values, "unit"),
    hasLevels ? document.texts(withQuantity(array), values, "decibels") : [],
    extremes(highest),
    extremes(lowest),
  ]);
  const names = namesAlong(result.coordinates, array);
  const process = result.header.process || result.kindName;
  const title = array.name === "value" ? process : `${process}: ${array.title}`;
  return Array.from(values, (si, index) => ({
    loaded,
    title: names[index] ? `${title}, ${names[index]}` : title,
    value: texts[index] ?? "",
    decibels: levels[index] ?? "",
    maximum: maxima[index] ?? "",
    minimum: minima[index] ?? "",
    si,
    array: withQuantity(array),
  }));
}

/** Of levels along weightings or orders what each is of. */
function namesAlong(coordinates: readonly LabelledArray[], array: LabelledArray): string[] {
  const dimension = array.dimensions[0];
  const along = coordinates.find((coordinate) => coordinate.name === dimension);
  if (!along) return [];
  return along.texts ?? Array.from(along.values ?? [], (value) => `${along.title} ${value}`);
}

export class LevelsPanel implements Panel {
  readonly element: HTMLElement;
  private readonly frame: PanelFrame;
  private rows: LevelRow[] = [];

  constructor(
    private readonly results: Loaded[],
    private readonly withDocument: boolean,
  ) {
    const { header } = results[0]!.result;
    const title =
      results.length === 1 ? `${channelTitle(header)}: ${header.process}` : `${results.length} level results`;
    this.frame = new PanelFrame(title, "", { table: () => this.table() });
    this.element = this.frame.element;
    this.frame.during(this.build());
  }

  destroy(): void {}

  private async build(): Promise<void> {
    this.rows = (await Promise.all(this.results.map(levelRows))).flat();
    const columns: Column<LevelRow>[] = [
      { title: "Channel", cell: ({ loaded }) => name(channelTitle(loaded.result.header)) },
      { title: "Level, formula and calibration", cell: (row) => h("div", {}, name(row.title), commentOf(row)) },
      {
        title: "Value",
        cell: (row) => h("div", {}, h("strong", {}, row.value), h("div", { className: "muted" }, levelText(row))),
        isNumber: true,
      },
    ];
    if (this.withDocument) columns.unshift({ title: "Document", cell: ({ loaded }) => name(loaded.entry.name) });
    const has = (of: (row: LevelRow) => string) => this.rows.some((row) => of(row) !== "");
    if (has((row) => row.maximum)) columns.push({ title: "Maximum", cell: ({ maximum }) => maximum, isNumber: true });
    if (has((row) => row.minimum)) columns.push({ title: "Minimum", cell: ({ minimum }) => minimum, isNumber: true });
    this.frame.body.append(table(columns, this.rows, "levels"));
  }

  private table(): Cell[][] {
    const head = [
      "Document",
      "Channel",
      "Level",
      "Value",
      "Decibels",
      "Maximum",
      "Minimum",
      "Quantity",
      "Value in SI units",
      "Comment",
    ];
    return [
      head,
      ...this.rows.map(({ loaded, title, value, decibels, maximum, minimum, si, array }) => [
        loaded.entry.name,
        channelTitle(loaded.result.header),
        title,
        value,
        decibels,
        maximum,
        minimum,
        axisTitle(array, "si"),
        si,
        loaded.result.header.comment,
      ]),
    ];
  }
}

function commentOf({ loaded }: LevelRow): HTMLElement {
  return h("div", { className: "comment" }, name(loaded.result.header.comment));
}

function levelText({ decibels, array }: LevelRow): string {
  const reference = array.quantity?.decibels?.referenceText;
  return decibels && reference ? `${decibels} re ${reference}` : decibels;
}
