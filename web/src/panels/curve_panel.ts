// Curves that share quantity and axis, in one chart; of transfer functions magnitude, phase and coherence together.

import type { LabelledArray, Scale } from "../library/document";
import { CurveChart } from "../charts/curve_chart";
import { curveFigure } from "../charts/curve_figure";
import { wholeX, type Curve, type CurvePlot } from "../charts/curves";
import { together } from "../charts/svg";
import { themeChanges } from "../charts/theme";
import { sameValues, type Range } from "../charts/ticks";
import { button, choice, h, name, put, replace, toggle } from "../dom";
import type { Cell } from "../saving/csv";
import type { Workspace } from "../app/workspace";
import { CursorTools } from "./cursor_tools";
import { PanelFrame, type Panel } from "./panel";
import { Readout, readingOf, type ReadColumn } from "./readout";
import { axisTitle, floats, quantityOf, sourcesOf, sourceTitle, type Source } from "./sources";

/** What the user chose for charts of one kind; it stays when other results are selected. */
export interface CurveChoices {
  scale: Scale;
  xLog: boolean;
  yLog: boolean;
  zoom: Range | null;
}

const kept = new Map<string, CurveChoices>();

interface Part {
  chart: CurveChart;
  plot(): CurvePlot;
}

const kPeaks = 10;

export class CurvePanel implements Panel {
  readonly element: HTMLElement;
  private readonly frame: PanelFrame;
  private readonly choices: CurveChoices;
  private readonly parts: Part[] = [];
  private readonly readout = new Readout();
  private readonly cursor: CursorTools;
  private readonly peaks = h("div", { className: "peaks" });
  private curves: Curve[] = [];
  private phases: Curve[] = [];
  /** Owners are the indices of the transfer functions, whose colours they have. */
  private coherences: { curves: Curve[]; sources: Source[]; owners: number[] } = { curves: [], sources: [], owners: [] };
  private readonly recolour = () => this.parts.forEach(({ chart }) => chart.rebuild());
  private readonly withDocument: boolean;

  constructor(
    private readonly sources: Source[],
    private readonly workspace: Workspace,
    group: string,
  ) {
    this.withDocument = workspace.entries.length > 1;
    const first = sources[0]!;
    const hasLevels = quantityOf(first)?.decibels != null;
    const isSpectrum = first.axis?.name === "frequency";
    const found = kept.get(group);
    this.choices = found ?? {
      scale: hasLevels && isSpectrum ? "decibels" : "unit",
      xLog: false,
      yLog: false,
      zoom: null,
    };
    kept.set(group, this.choices);
    const title = sources.length === 1 ? sourceTitle(first, this.withDocument) : this.groupTitle();
    const comments = new Set(sources.map(({ loaded }) => loaded.result.header.comment));
    const figure = () => this.figure();
    this.frame = new PanelFrame(title, comments.size === 1 ? [...comments][0] : "", {
      table: () => this.table(),
      figure,
    });
    this.element = this.frame.element;
    const moved = (x: number) => this.pin(x);
    this.cursor = new CursorTools(first.axis?.quantity?.unit ?? "", () => this.drawCursor(), moved);
    this.element.addEventListener("keydown", (event) => {
      const isField = event.target instanceof HTMLInputElement || event.target instanceof HTMLSelectElement;
      if (!isField && !event.ctrlKey && !event.metaKey && this.cursor.key(event.key)) event.preventDefault();
    });
    this.addTools(hasLevels);
    themeChanges.addEventListener("change", this.recolour);
    this.frame.during(this.build());
  }

  destroy(): void {
    themeChanges.removeEventListener("change", this.recolour);
    for (const { chart } of this.parts) chart.destroy();
  }

  beforePrint(): void {
    this.frame.beforePrint();
  }

  private groupTitle(): string {
    const titles = new Set(this.sources.map(({ loaded }) => loaded.result.header.process || loaded.result.kindName));
    return titles.size === 1
      ? [...titles][0]!
      : `${titles.size} kinds of results of ${quantityOf(this.sources[0]!)?.name ?? "numbers"}`;
  }

  private addTools(hasLevels: boolean): void {
    const { choices } = this;
    const scales = [
      ["unit", "Unit"],
      ["decibels", "dB"],
    ] as const;
    if (hasLevels)
      put(
        this.frame.tools,
        choice<Scale>("Scale", scales, choices.scale, (scale) => {
          choices.scale = scale;
          this.frame.during(this.refresh());
        }),
      );
    put(
      this.frame.tools,
      toggle("Log x", "Logarithmic axis", choices.xLog, (on) => {
        choices.xLog = on;
        choices.zoom = null;
        this.redraw();
      }).element,
      toggle("Log y", "Logarithmic values; decibels are logarithmic already", choices.yLog, (on) => {
        choices.yLog = on;
        this.redraw();
      }).element,
      button("−", "Zoom out (-)", () => this.parts[0]?.chart.zoomAround(0.5, 1.25)),
      button("+", "Zoom in (+)", () => this.parts[0]?.chart.zoomAround(0.5, 0.8)),
      button("All", "Show all (0, or a double click)", () => this.parts[0]?.chart.showAll()),
    );
    put(this.frame.tools, this.cursor.element);
    put(
      this.frame.tools,
      toggle("Peaks", "The highest peaks of each curve", false, (on) => this.frame.during(this.showPeaks(on))).element,
    );
  }

  private async build(): Promise<void> {
    await this.refreshData();
    const hasPhase = this.phases.length > 0;
    if (hasPhase) await this.loadCoherence();
    const hasCoherence = this.coherences.curves.length > 0;
    const above = (plot: CurvePlot): CurvePlot => ({ ...plot, xTitle: "" });
    this.addPart(() => (hasPhase ? above(this.valuePlot(300)) : this.valuePlot(400)));
    if (hasPhase) this.addPart(() => (hasCoherence ? above(this.phasePlot()) : this.phasePlot()));
    if (hasCoherence) this.addPart(() => this.coherencePlot());
    put(this.frame.body, this.readout.element, this.peaks);
    this.readout.follow(this.readColumns());
    this.applyZoom();
  }

  /** What was zoomed to before, as far as these curves reach. */
  private applyZoom(): void {
    const { zoom } = this.choices;
    const whole = this.parts[0]?.chart.range();
    if (!zoom || !whole) return;
    const sight = { min: Math.max(zoom.min, whole.min), max: Math.min(zoom.max, whole.max) };
    if (sight.max > sight.min) for (const { chart } of this.parts) chart.zoomTo(sight);
    else this.choices.zoom = null;
  }

  private addPart(plot: () => CurvePlot): void {
    const chart: CurveChart = new CurveChart(plot(), {
      cursor: (x) => this.readout.read(x),
      pinned: (x) => this.pin(x),
      zoomed: (x) => {
        const whole = wholeX(plot());
        this.choices.zoom = x.min <= whole.min && x.max >= whole.max ? null : x;
        for (const part of this.parts) if (part.chart !== chart) part.chart.zoomTo(x);
      },
    });
    this.parts.push({ chart, plot });
    this.frame.body.append(chart.element);
  }

  private async refreshData(): Promise<void> {
    const { scale } = this.choices;
    this.curves = await Promise.all(this.sources.map((source, index) => this.curveOf(source, index, scale)));
    this.phases = this.sources.flatMap((source, index) => {
      const curve = this.curves[index]!;
      return source.phase ? [{ ...curve, y: source.phase }] : [];
    });
  }

  private async curveOf(source: Source, index: number, scale: Scale): Promise<Curve> {
    const { document } = source.loaded.entry;
    const array = { ...source.array, quantity: quantityOf(source) };
    const isOther = this.workspace.compareWith === source.loaded.entry;
    const curve: Curve = {
      label: sourceTitle(source, this.withDocument),
      colour: this.colourOf(index),
      isDashed: isOther,
      x: await placesOf(source),
      y: await document.scaled(array, scale, source.values),
    };
    if (source.lower) curve.lower = await document.scaled(array, scale, source.lower);
    return curve;
  }

  /** In a comparison a result and its counterpart have one colour. */
  private colourOf(index: number): number {
    const other = this.workspace.compareWith;
    if (!other) return index;
    const own = this.sources.filter(({ loaded }) => loaded.entry !== other);
    const source = this.sources[index]!;
    if (source.loaded.entry !== other) return own.indexOf(source);
    const mate = own.findIndex(({ loaded, detail }) => {
      const key = this.workspace.counterpart(loaded);
      return key?.entry === other && key.number === source.loaded.number && detail === source.detail;
    });
    return mate >= 0 ? mate : index;
  }

  private async loadCoherence(): Promise<void> {
    const sources: Source[] = [];
    const owners: number[] = [];
    for (const [index, { loaded }] of this.sources.entries()) {
      const { response, reference, system, responseChannel, referenceChannel } = loaded.result.header;
      const header = loaded.entry.document.results.find(
        (other) =>
          other.kind === "coherence" &&
          other.response === response &&
          other.reference === reference &&
          other.system === system &&
          other.responseChannel === responseChannel &&
          other.referenceChannel === referenceChannel,
      );
      if (!header) continue;
      for (const source of sourcesOf(await this.workspace.read({ entry: loaded.entry, number: header.number }))) {
        sources.push(source);
        owners.push(index);
      }
    }
    const curves = await Promise.all(sources.map((source, i) => this.curveOf(source, owners[i]!, "unit")));
    this.coherences = { curves, sources, owners };
  }

  private valuePlot(height: number): CurvePlot {
    const { scale, xLog, yLog } = this.choices;
    const first = this.sources[0]!;
    const isCoherence = first.loaded.result.header.kind === "coherence";
    const plot: CurvePlot = {
      title: this.frame.element.getAttribute("aria-label") ?? "",
      curves: this.curves,
      xTitle: first.axis ? axisTitle(first.axis, "unit") : "Point",
      yTitle: this.valueTitle(),
      xLog,
      yLog: yLog && scale !== "decibels",
      height,
    };
    if (isCoherence && !plot.yLog) plot.yWhole = { min: 0, max: 1.02 };
    return plot;
  }

  /** Transfer functions have long names of quantities, which their title needs not. */
  private valueTitle(): string {
    const first = this.sources[0]!;
    const quantity = quantityOf(first);
    const title = axisTitle(first.array, this.choices.scale, quantity);
    return first.phase && quantity ? title.replace(quantity.name, "Magnitude") : title;
  }

  private phasePlot(): CurvePlot {
    const yWhole = { min: -190, max: 190 };
    const yTicks = [-180, -90, 0, 90, 180];
    return { ...this.valuePlot(190), curves: this.phases, yTitle: "Phase in °", yLog: false, yWhole, yTicks };
  }

  private coherencePlot(): CurvePlot {
    const yWhole = { min: 0, max: 1.02 };
    return { ...this.valuePlot(170), curves: this.coherences.curves, yTitle: "Coherence", yLog: false, yWhole };
  }

  private readColumns(): ReadColumn[] {
    const own = this.sources.map((source, index) => ({ source, curve: this.curves[index]! }));
    const more = this.coherences.sources.map((source, index) => ({ source, curve: this.coherences.curves[index]! }));
    return [...own, ...more].map(({ source, curve }) => ({
      source,
      x: curve.x,
      title: curve.label,
      colour: curve.colour,
      isDashed: curve.isDashed ?? false,
    }));
  }

  private async refresh(): Promise<void> {
    await this.refreshData();
    this.redraw();
    this.readout.follow(this.readColumns());
  }

  private redraw(): void {
    for (const { chart, plot } of this.parts) chart.show(plot());
  }

  private pin(x: number): void {
    this.cursor.set(x);
    this.readout.read(x);
    for (const { chart } of this.parts) chart.pin(x);
  }

  private drawCursor(): void {
    for (const { chart } of this.parts) {
      chart.lines = this.cursor.lines();
      chart.redraw();
    }
  }

  private async showPeaks(on: boolean): Promise<void> {
    replace(this.peaks);
    if (!on) return;
    for (const [index, source] of this.sources.entries()) {
      const { document } = source.loaded.entry;
      const points = await document.peaks(source.values, kPeaks);
      const readings = await Promise.all(points.map((point) => readingOf(source, point)));
      const body = h("tbody");
      readings.forEach((reading, rank) => {
        const go = button(
          reading.at,
          "Put the cursor there",
          () => this.pin(this.curves[index]!.x[points[rank]!]!),
          "quiet",
        );
        body.append(
          h(
            "tr",
            {},
            h("td", { className: "number" }, String(rank + 1)),
            h("td", { className: "number" }, go),
            h("td", { className: "number" }, reading.value),
            h("td", { className: "number" }, reading.decibels),
          ),
        );
      });
      const title = h("caption", {}, name(this.curves[index]!.label));
      this.peaks.append(h("div", { className: "table-box" }, h("table", {}, title, body)));
    }
  }

  /** A column per curve after that of its places; beside a transfer function its phase and its coherence. */
  private table(): Cell[][] {
    const columns: { title: string; values: Float32Array }[] = [];
    const add = (source: Source, curve: Curve, scale: Scale) => {
      const title = `${curve.label}, ${axisTitle(source.array, scale, quantityOf(source))}`;
      if (curve.lower) columns.push({ title: `${title}, lower`, values: curve.lower });
      columns.push({ title, values: curve.y });
      if (source.phase) columns.push({ title: "Phase in °", values: source.phase });
    };
    const addPlaces = ({ axis }: Source, { x }: Curve) =>
      columns.push({ title: axis ? axisTitle(axis, "unit") : "Point", values: x });
    const { curves: coherences, sources, owners } = this.coherences;
    this.sources.forEach((source, index) => {
      const curve = this.curves[index]!;
      addPlaces(source, curve);
      add(source, curve, this.choices.scale);
      owners.forEach((owner, at) => {
        if (owner !== index) return;
        const isElsewhere = !sameValues(coherences[at]!.x, curve.x);
        if (isElsewhere) addPlaces(sources[at]!, coherences[at]!);
        add(sources[at]!, coherences[at]!, "unit");
      });
    });
    const length = Math.max(...columns.map(({ values }) => values.length));
    const rows: Cell[][] = [columns.map(({ title }) => title)];
    for (let point = 0; point < length; ++point) rows.push(columns.map(({ values }) => values[point] ?? ""));
    return rows;
  }

  private figure(): SVGSVGElement {
    const figures = this.parts.map(({ chart, plot }) =>
      curveFigure(plot(), chart.range(), chart.shownY(), chart.lines),
    );
    return together(figures.map((figure) => [figure]));
  }
}

/** Where the points of a column lie, in the unit of the axis. */
export async function placesOf({
  axis,
  values,
  loaded,
}: Pick<Source, "axis" | "values" | "loaded">): Promise<Float32Array> {
  if (!axis?.values) return Float32Array.from(values, (_, index) => index);
  return scaledAxis(axis, loaded.entry.document);
}

export function scaledAxis(
  axis: LabelledArray,
  document: Source["loaded"]["entry"]["document"],
): Promise<Float32Array> {
  return document.scaled(axis, "unit", floats(axis));
}
