// Octave bands as bars, with the levels of all bands beside them.

import type { LabelledArray, Scale } from "../library/document";
import { barFigure, type BarPlot, type Bars } from "../charts/bar_figure";
import { light, screenTheme, themeChanges } from "../charts/theme";
import { extremes, type Range } from "../charts/ticks";
import { choice, h, put, replace } from "../dom";
import type { Cell } from "../saving/csv";
import type { Workspace } from "../app/workspace";
import { PanelFrame, type Panel } from "./panel";
import { Readout } from "./readout";
import { arrayNamed, axisTitle, floats, quantityOf, sourceTitle, type Source } from "./sources";

const kGlobals = [
  ["global", "Total"],
  ["global_weighted", "Weighted"],
] as const;

const kHeight = 400;
let keptScale: Scale = "decibels";

export class BandsPanel implements Panel {
  readonly element: HTMLElement;
  private readonly frame: PanelFrame;
  private readonly chart = h("div", {
    className: "chart bars",
    tabIndex: 0,
    role: "group",
    aria: { label: "Bands: arrow keys move the cursor" },
  });
  private readonly readout = new Readout();
  private readonly redraw = () => this.draw();
  private readonly sizes = new ResizeObserver(this.redraw);
  private plot: BarPlot | null = null;
  private middles: Float32Array = new Float32Array();
  private chosen: number | null = null;

  constructor(
    private readonly sources: Source[],
    private readonly workspace: Workspace,
  ) {
    const first = sources[0]!;
    const title = sources.length === 1 ? sourceTitle(first, this.withDocument()) : first.loaded.result.header.process;
    this.frame = new PanelFrame(title, sources.length === 1 ? first.loaded.result.header.comment : "", {
      table: () => this.table(),
      figure: () => barFigure(this.plot!, { width: 960, height: 420 }, light, null),
    });
    this.element = this.frame.element;
    const scales = [
      ["unit", "Unit"],
      ["decibels", "dB"],
    ] as const;
    if (this.hasLevels())
      put(
        this.frame.tools,
        choice<Scale>("Scale", scales, keptScale, (scale) => {
          keptScale = scale;
          this.frame.during(this.refresh());
        }),
      );
    put(this.frame.body, this.chart, this.readout.element);
    this.sizes.observe(this.chart);
    themeChanges.addEventListener("change", this.redraw);
    this.chart.addEventListener("keydown", (event) => this.key(event));
    this.frame.during(this.refresh());
  }

  destroy(): void {
    this.sizes.disconnect();
    themeChanges.removeEventListener("change", this.redraw);
  }

  beforePrint(): void {
    this.frame.beforePrint();
  }

  private withDocument(): boolean {
    return this.workspace.entries.length > 1;
  }

  private hasLevels(): boolean {
    return quantityOf(this.sources[0]!)?.decibels != null;
  }

  private async refresh(): Promise<void> {
    const scale = this.hasLevels() ? keptScale : "unit";
    const first = this.sources[0]!;
    const series = await Promise.all(this.sources.map((source, index) => this.barsOf(source, index, scale)));
    const bands = await bandNames(first);
    this.plot = {
      title: this.element.getAttribute("aria-label") ?? "",
      bands,
      xTitle: first.axis ? axisTitle(first.axis, "unit") : "Band",
      yTitle: axisTitle(first.array, scale, quantityOf(first)),
      y: barRange(series, scale),
      yLog: false,
      series,
    };
    this.middles = Float32Array.from(bands, (_, band) => band);
    this.readout.follow(
      this.sources.map((source, index) => ({
        source,
        x: this.middles,
        title: series[index]!.label,
        colour: series[index]!.colour,
      })),
    );
    this.draw();
  }

  private async barsOf(source: Source, index: number, scale: Scale): Promise<Bars> {
    const { document } = source.loaded.entry;
    const { result } = source.loaded;
    const scaled = (array: LabelledArray) =>
      document.scaled({ ...array, quantity: array.quantity ?? result.quantity }, scale, floats(array));
    const globals: Bars["globals"] = [];
    if (source.array.name === "value")
      for (const [arrayName, title] of kGlobals) {
        const array = arrayNamed(result, arrayName);
        if (array) globals.push({ name: array.weighting || title, value: (await scaled(array))[0] ?? NaN });
      }
    return {
      label: sourceTitle(source, this.withDocument()),
      colour: index,
      values: await scaled(source.array),
      globals,
    };
  }

  private draw(): void {
    const width = this.chart.clientWidth;
    if (!this.plot || width < 80) return;
    replace(
      this.chart,
      barFigure(this.plot, { width, height: kHeight }, screenTheme(), this.chosen, (band) => this.choose(band)),
    );
  }

  private choose(band: number): void {
    if (band === this.chosen) return;
    this.chosen = band;
    this.draw();
    this.readout.read(band);
  }

  private key(event: KeyboardEvent): void {
    const step = event.key === "ArrowRight" ? 1 : event.key === "ArrowLeft" ? -1 : 0;
    if (step === 0) return;
    event.preventDefault();
    this.choose(Math.min(this.middles.length - 1, Math.max(0, (this.chosen ?? -step) + step)));
  }

  private table(): Cell[][] {
    const { plot } = this;
    if (!plot) return [];
    const head = [plot.xTitle, ...plot.series.map(({ label }) => `${label}, ${plot.yTitle}`)];
    const rows: Cell[][] = plot.bands.map((band, index) => [
      band,
      ...plot.series.map(({ values }) => values[index] ?? ""),
    ]);
    const globals = plot.series[0]?.globals ?? [];
    for (const [index, { name }] of globals.entries())
      rows.push([name, ...plot.series.map((bars) => bars.globals[index]?.value ?? "")]);
    return [head, ...rows];
  }
}

/** The nominal middles, as they are called. */
async function bandNames(source: Source): Promise<string[]> {
  const { axis, values, loaded } = source;
  if (!axis) return Array.from(values, (_, index) => String(index + 1));
  if (axis.texts) return axis.texts;
  return bandTexts(await loaded.entry.document.scaled(axis, "unit", floats(axis)));
}

/** Middles from 1000 on with a k, as instruments print them below bars. */
export function bandTexts(middles: ArrayLike<number>): string[] {
  return Array.from(middles, (middle) => {
    const value = Number(middle.toPrecision(4));
    return value >= 1000 ? `${Number((value / 1000).toPrecision(4))}k` : String(value);
  });
}

function barRange(series: readonly Bars[], scale: Scale): Range {
  const found = series
    .map(({ values, globals }) => extremes([...values, ...globals.map(({ value }) => value)]))
    .filter((range) => range !== null);
  if (found.length === 0) return { min: 0, max: 1 };
  const max = Math.max(...found.map((range) => range.max));
  if (scale !== "decibels") return { min: Math.min(0, ...found.map((range) => range.min)), max: max * 1.08 || 1 };
  const lowest = Math.max(Math.min(...found.map((range) => range.min)), max - 80);
  return { min: Math.floor((lowest - 5) / 10) * 10, max: Math.ceil((max + 1) / 5) * 5 };
}
