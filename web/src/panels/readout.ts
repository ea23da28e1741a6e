// The values under the cursor, in the library's own text.

import type { LabelledArray } from "../library/document";
import { h, name, replace } from "../dom";
import { screenTheme } from "../charts/theme";
import { nearest } from "../charts/ticks";
import { quantityOf, type Source } from "./sources";

export interface Reading {
  at: string;
  value: string;
  decibels: string;
  phase: string;
}

/** What a column reads at a point. */
export async function readingOf(source: Source, point: number): Promise<Reading> {
  const { document } = source.loaded.entry;
  const value = source.values[point]!;
  const array = { ...source.array, quantity: quantityOf(source) };
  const hasLevel = array.quantity?.decibels !== null && array.quantity !== null;
  const values = source.lower ? [source.lower[point]!, value] : [value];
  const [at, inUnit, level] = await Promise.all([
    placeText(source, point),
    document.texts(array, values, "unit"),
    hasLevel ? document.texts(array, values, "decibels") : Promise.resolve([]),
  ]);
  const phase = source.phase ? `${source.phase[point]!.toFixed(1)}°` : "";
  return { at, value: inUnit.join(" to "), decibels: level.join(" to "), phase };
}

/** Where a point lies, such as "120 Hz". */
export async function placeText(source: Source, point: number): Promise<string> {
  return source.axis ? placeOn(source.axis, point, source) : String(point);
}

async function placeOn(axis: LabelledArray, point: number, { loaded }: Source): Promise<string> {
  if (axis.texts) return axis.texts[point] ?? "";
  const texts = await loaded.entry.document.texts(axis, [axis.values?.[point] ?? NaN], "unit");
  return texts[0] ?? "";
}

export interface ReadColumn {
  source: Source;
  x: Float32Array;
  title: string;
  colour: number;
  isDashed?: boolean;
}

const kHint = "Move over the chart to read values; click to keep the cursor; drag to zoom.";

function swatchOf({ colour, isDashed }: ReadColumn): HTMLElement {
  const theme = screenTheme();
  const swatch = h("span", { className: isDashed ? "swatch dashed" : "swatch" });
  swatch.style.color = theme.curves[colour % theme.curves.length]!;
  return swatch;
}

/** A table with a row per curve, which follows the cursor. */
export class Readout {
  readonly element = h("div", { className: "readout", aria: { live: "off" } });
  private wanted: number | null = null;
  private isBusy = false;

  constructor(private columns: ReadColumn[] = []) {
    this.hint();
  }

  /** The curves that are read from now on. */
  follow(columns: ReadColumn[]): void {
    this.columns = columns;
    this.read(this.wanted);
  }

  read(x: number | null): void {
    this.wanted = x;
    if (this.isBusy) return;
    if (x === null) {
      this.hint();
      return;
    }
    this.isBusy = true;
    void this.readNow(x).finally(() => {
      this.isBusy = false;
      if (this.wanted !== x) this.read(this.wanted);
    });
  }

  private hint(): void {
    const names = this.columns.map((column) => h("span", { className: "curve" }, swatchOf(column), name(column.title)));
    replace(this.element, h("div", { className: "legend" }, ...names), h("p", { className: "hint" }, kHint));
  }

  private async readNow(x: number): Promise<void> {
    const { columns } = this;
    const readings = await Promise.all(columns.map(({ source, x: places }) => readingOf(source, nearest(places, x))));
    const hasLevels = readings.some(({ decibels }) => decibels !== "");
    const hasPhase = readings.some(({ phase }) => phase !== "");
    const body = h("tbody");
    readings.forEach((reading, index) => {
      const column = columns[index]!;
      body.append(
        h(
          "tr",
          {},
          h("td", { className: "curve" }, swatchOf(column), name(column.title)),
          h("td", { className: "number" }, reading.at),
          h("td", { className: "number value" }, reading.value),
          hasLevels ? h("td", { className: "number" }, reading.decibels) : null,
          hasPhase ? h("td", { className: "number" }, reading.phase) : null,
        ),
      );
    });
    replace(this.element, h("div", { className: "table-box" }, h("table", {}, body)));
  }
}
