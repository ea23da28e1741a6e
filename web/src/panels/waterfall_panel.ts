// A waterfall as a colour map with linked cuts: the slice and the course of the line under the cursor.

import type { LabelledArray, Scale } from "../library/document";
import { ColourMap, type MapPlot, type MapPoint } from "../charts/colour_map";
import { CurveChart } from "../charts/curve_chart";
import { curveFigure } from "../charts/curve_figure";
import type { Curve, CurvePlot } from "../charts/curves";
import type { Grid } from "../charts/map_raster";
import { together } from "../charts/svg";
import { themeChanges } from "../charts/theme";
import { extremes, type Axis, type Range } from "../charts/ticks";
import { button, choice, h, put, replace, toggle } from "../dom";
import { shortest, type Cell } from "../saving/csv";
import type { Loaded } from "../app/workspace";
import { bandTexts } from "./bands_panel";
import { PanelFrame, type Panel } from "./panel";
import { axisTitle, floats, sourceTitle } from "./sources";

/** What the user chose for all waterfalls. */
const kept = { scale: "decibels" as Scale, xLog: false, orders: "", span: 80 };

/** In decibels, colours span that much below the highest value. */
const kSpans = [
  ["40", "40 dB"],
  ["60", "60 dB"],
  ["80", "80 dB"],
  ["120", "120 dB"],
] as const;

const kMostInTable = 2_000_000;

export class WaterfallPanel implements Panel {
  readonly element: HTMLElement;
  private readonly frame: PanelFrame;
  private readonly value: LabelledArray | null;
  private readonly lineAxis: LabelledArray | null;
  private readonly sliceAxes: LabelledArray[];
  private sliceAxis: LabelledArray | null;
  private readonly readout = h("div", { className: "readout" });
  private readonly cuts = h("div", { className: "cuts" });
  private cutPlots: { slice: CurvePlot; course: CurvePlot } | null = null;
  /** Where the cuts were taken, as the library prints it. */
  private cutTitles = { slice: "Slice under the cursor", course: "Course of the line under the cursor" };
  private map: ColourMap | null = null;
  private sliceCut: CurveChart | null = null;
  private courseCut: CurveChart | null = null;
  private grid: Grid | null = null;
  private names: string[] | null = null; // of bands
  private range: Range = { min: 0, max: 1 };
  private point: MapPoint | null = null;
  private sight: { x: Range; y: Range } | null = null;
  private cutRequest = 0;
  private isReading = false;
  private readonly recolour = () => {
    this.map?.request();
    this.sliceCut?.rebuild();
    this.courseCut?.rebuild();
  };

  constructor(
    private readonly loaded: Loaded,
    withDocument: boolean,
    /** In a comparison the maps of both documents have the same colours. */
    private readonly peers: readonly Loaded[],
  ) {
    const { result } = loaded;
    this.value =
      result.data.find(({ name }) => name === "value") ?? result.data.find(({ shape }) => shape.length === 2) ?? null;
    const array = this.value ?? result.data[0]!;
    const title = sourceTitle({ loaded, detail: "", axis: null, array, values: floats(array) }, withDocument);
    this.frame = new PanelFrame(title, result.header.comment, {
      table: () => this.table(),
      figure: () => this.figure(),
    });
    this.element = this.frame.element;
    const lineDimension = this.value?.dimensions[1] ?? "";
    this.lineAxis = result.coordinates.find(({ name }) => name === result.axes[lineDimension]) ?? null;
    this.sliceAxes = result.coordinates.filter(
      ({ dimensions, values }) => dimensions[0] === "slice" && values !== null,
    );
    this.sliceAxis =
      this.sliceAxes.find(({ name }) => name === result.chosenReference) ??
      this.sliceAxes.find(({ name }) => name === result.axes["slice"]) ??
      this.sliceAxes[0] ??
      null;
    this.addTools();
    themeChanges.addEventListener("change", this.recolour);
    this.frame.during(this.build());
  }

  destroy(): void {
    themeChanges.removeEventListener("change", this.recolour);
    cancelAnimationFrame(this.cutRequest);
    this.map?.destroy();
    this.sliceCut?.destroy();
    this.courseCut?.destroy();
  }

  beforePrint(): void {
    this.frame.beforePrint();
  }

  private scale(): Scale {
    return this.quantity()?.decibels ? kept.scale : "unit";
  }

  private quantity() {
    return this.value?.quantity ?? this.loaded.result.quantity;
  }

  private addTools(): void {
    const { tools } = this.frame;
    const axes = this.sliceAxes.map((axis) => [axis.name, `Against ${axis.title || axis.name}`] as const);
    if (axes.length > 1)
      put(
        tools,
        choice("Slices against", axes, this.sliceAxis?.name ?? "", (name) => {
          this.sliceAxis = this.sliceAxes.find((axis) => axis.name === name) ?? null;
          this.frame.during(this.refresh());
        }),
      );
    const scales = [
      ["unit", "Unit"],
      ["decibels", "dB"],
    ] as const;
    const span = choice("Colours span", kSpans, String(kept.span) as "80", (value) => {
      kept.span = Number(value);
      this.frame.during(this.refresh());
    });
    if (this.quantity()?.decibels)
      put(
        tools,
        choice<Scale>("Scale", scales, kept.scale, (scale) => {
          kept.scale = scale;
          this.frame.during(this.refresh());
        }),
        span,
      );
    if (this.lineAxis?.name === "frequency")
      put(
        tools,
        toggle("Log x", "Logarithmic frequencies", kept.xLog, (on) => {
          kept.xLog = on;
          this.frame.during(this.refresh());
        }).element,
      );
    if (this.lineAxis?.name === "frequency" && this.sliceAxes.some((axis) => isSpeed(axis))) {
      const orders = h("input", {
        value: kept.orders,
        placeholder: "1, 2, 4",
        className: "short",
        title: "Lines of these orders",
      });
      orders.onchange = () => {
        kept.orders = orders.value;
        this.frame.during(this.refresh());
      };
      put(tools, h("label", {}, "Orders ", orders));
    }
    put(
      tools,
      button("−", "Zoom out (-)", () => this.map?.zoom("x", 0.5, 1.25)),
      button("+", "Zoom in (+)", () => this.map?.zoom("x", 0.5, 0.8)),
      button("All", "Show all (0, or a double click)", () => this.map?.showAll()),
    );
  }

  private async build(): Promise<void> {
    if (!this.value?.values || this.value.dimensions.length !== 2)
      throw new Error("This waterfall holds no values that can be drawn.");
    const plot = await this.plot();
    this.map = new ColourMap(
      plot,
      (point) => this.pointed(point),
      (x, y) => this.zoomCuts(x, y),
    );
    put(this.frame.body, this.map.element, this.readout, this.cuts);
    if (this.grid!.slices > 0 && this.grid!.lines > 0) this.map.moveTo(this.highest());
  }

  private async refresh(): Promise<void> {
    this.map?.show(await this.plot());
    if (this.point) this.pointed(this.point);
  }

  private async plot(): Promise<MapPlot> {
    const { document } = this.loaded.entry;
    const value = this.value!;
    const [slices = 0, lines = 0] = value.shape;
    const quantity = this.quantity();
    const values = await document.scaled({ ...value, quantity }, this.scale(), floats(value));
    const banded = value.dimensions[1] === "band";
    const lineAt =
      this.lineAxis && !banded ? await document.scaled(this.lineAxis, "unit", floats(this.lineAxis)) : counted(lines);
    if (banded && this.lineAxis)
      this.names = bandTexts(await document.scaled(this.lineAxis, "unit", floats(this.lineAxis)));
    const axis = this.sliceAxis;
    const sliceAt = axis ? await document.scaled(axis, "unit", floats(axis)) : counted(slices);
    this.grid = { values, slices, lines, lineAt, sliceAt };
    this.range = await this.colours();
    return {
      title: this.element.getAttribute("aria-label") ?? "",
      grid: this.grid,
      x: this.lineRange(lineAt),
      y: {
        ...sliceRange(sliceAt),
        isLog: false,
        title: axis ? axisTitle(axis, "unit") : "Slice",
      },
      colours: this.range,
      valueTitle: axisTitle(value, this.scale(), quantity),
      orderLines: this.orderLines(),
    };
  }

  private async colours(): Promise<Range> {
    let min = Infinity;
    let max = -Infinity;
    for (const { entry, result } of [this.loaded, ...this.peers]) {
      const value = result.data.find(({ name }) => name === this.value!.name);
      const found = value ? extremes(floats(value)) : null;
      if (!value || !found) continue;
      const ends = Float32Array.of(found.min, found.max);
      const scaled = await entry.document.scaled(
        { ...value, quantity: value.quantity ?? result.quantity },
        this.scale(),
        ends,
      );
      min = Math.min(min, Number.isFinite(scaled[0]) ? scaled[0]! : Infinity);
      max = Math.max(max, Number.isFinite(scaled[1]) ? scaled[1]! : -Infinity);
    }
    if (max === -Infinity) return { min: 0, max: 1 };
    if (this.scale() === "decibels") min = Math.max(Math.min(min, max), max - kept.span);
    return { min: min < max ? min : max - 1, max };
  }

  private lineRange(lineAt: Float32Array): Axis {
    const whole = extremes(lineAt) ?? { min: 0, max: 1 };
    const title = this.lineAxis ? axisTitle(this.lineAxis, "unit") : "Line";
    if (this.names) {
      const labels = this.names.map((text, at) => ({ at, text }));
      return { min: -0.5, max: lineAt.length - 0.5, isLog: false, title, labels };
    }
    const isLog = kept.xLog && this.lineAxis?.name === "frequency";
    const min = isLog && whole.min <= 0 ? (lineAt.find((value) => value > 0) ?? 1) : whole.min;
    return { min, max: whole.max > min ? whole.max : min + 1, isLog, title };
  }

  /** Along a speed an order lies on a straight line: so many times the revolutions per second. */
  private orderLines(): MapPlot["orderLines"] {
    const axis = this.sliceAxis;
    if (!axis || !isSpeed(axis) || this.names) return [];
    const perUnit = revolutionsPerUnit(axis, this.grid!.sliceAt);
    return [...kept.orders.matchAll(/\d+(\.\d+)?/g)].map(([order]) => ({
      label: order,
      slope: Number(order) * perUnit,
    }));
  }

  private highest(): MapPoint {
    const { values, lines } = this.grid!;
    let most = 0;
    for (let index = 1; index < values.length; ++index)
      if (values[index]! > values[most]! || !(values[most]! === values[most]!)) most = index;
    return { slice: Math.floor(most / lines), line: most % lines };
  }

  private pointed(point: MapPoint): void {
    this.point = point;
    cancelAnimationFrame(this.cutRequest);
    this.cutRequest = requestAnimationFrame(() => {
      this.drawCuts(point);
      if (!this.isReading) this.frame.during(this.read());
    });
  }

  private async read(): Promise<void> {
    this.isReading = true;
    try {
      for (let read: MapPoint | null = null; read !== this.point;) {
        read = this.point!;
        await this.readPoint(read);
      }
    } finally {
      this.isReading = false;
    }
  }

  private async readPoint({ slice, line }: MapPoint): Promise<void> {
    const { document } = this.loaded.entry;
    const value = { ...this.value!, quantity: this.quantity() };
    const si = floats(value)[slice * this.grid!.lines + line] ?? NaN;
    const text = async (array: LabelledArray, at: number) =>
      (await document.texts(array, [array.values?.[at] ?? NaN], "unit"))[0] ?? "";
    const [inUnit, level, place, ...references] = await Promise.all([
      document.texts(value, [si], "unit"),
      value.quantity?.decibels ? document.texts(value, [si], "decibels") : [],
      this.lineAxis ? text(this.lineAxis, line) : String(line),
      ...this.sliceAxes.map(async (axis) => [axis.title || axis.name, await text(axis, slice)] as const),
    ]);
    const along = this.sliceAxis ? references[this.sliceAxes.indexOf(this.sliceAxis)]! : ["number", String(slice)];
    this.cutTitles = {
      slice: `Slice at ${along.join(" ")}`,
      course: `Course at ${this.lineAxis?.title ?? "Line"} ${place}`,
    };
    const list = h("dl", { className: "facts wide" });
    const rows = [
      ["Value", [inUnit[0], level[0]].filter(Boolean).join(", ")],
      [this.lineAxis?.title ?? "Line", place],
      ...references,
    ] as const;
    for (const [title, text] of rows) list.append(h("div", {}, h("dt", {}, title), h("dd", {}, text ?? "")));
    replace(this.readout, list);
  }

  private drawCuts({ slice, line }: MapPoint): void {
    const { values, lines, slices, lineAt, sliceAt } = this.grid!;
    const course = new Float32Array(slices);
    for (let index = 0; index < slices; ++index) course[index] = values[index * lines + line]!;
    const valueTitle = axisTitle(this.value!, this.scale(), this.quantity());
    const plot = (title: string, curve: Omit<Curve, "label" | "colour">, xTitle: string, xLog: boolean): CurvePlot => ({
      title,
      curves: [{ ...curve, label: title, colour: 0 }],
      xTitle,
      yTitle: valueTitle,
      xLog,
      yLog: false,
      yWhole: { min: this.range.min, max: this.range.max + (this.range.max - this.range.min) * 0.04 },
      height: 230,
    });
    const lineTitle = this.lineAxis ? axisTitle(this.lineAxis, "unit") : "Line";
    const slicePlot: CurvePlot = plot(
      "The slice under the cursor",
      { x: lineAt, y: values.subarray(slice * lines, (slice + 1) * lines) },
      lineTitle,
      kept.xLog && !this.names,
    );
    if (this.names) slicePlot.xNames = this.names;
    const coursePlot = plot(
      "The course of the line under the cursor",
      { x: sliceAt, y: course },
      this.sliceAxis ? axisTitle(this.sliceAxis, "unit") : "Slice",
      false,
    );
    this.cutPlots = { slice: slicePlot, course: coursePlot };
    if (!this.sliceCut || !this.courseCut) {
      this.sliceCut = new CurveChart(slicePlot, { pinned: (x) => this.moveLine(x) });
      this.courseCut = new CurveChart(coursePlot, { pinned: (x) => this.moveSlice(x) });
      const cut = (title: string, chart: CurveChart) => h("figure", {}, h("figcaption", {}, title), chart.element);
      if (this.sight) this.zoomCuts(this.sight.x, this.sight.y);
      put(
        this.cuts,
        cut("Slice under the cursor", this.sliceCut),
        cut("Course of the line under the cursor", this.courseCut),
      );
    } else {
      this.sliceCut.show(slicePlot);
      this.courseCut.show(coursePlot);
    }
    this.sliceCut.pin(lineAt[line] ?? null);
    this.courseCut.pin(sliceAt[slice] ?? null);
  }

  /** The map, and below it the cuts: beside each other where there is room. */
  private figure(): SVGSVGElement {
    const map = this.map!.figure();
    const { cutPlots, sliceCut, courseCut, cutTitles } = this;
    if (!cutPlots || !sliceCut || !courseCut) return map;
    const width = Number(map.getAttribute("width"));
    const isWide = width >= 700;
    const size = { width: isWide ? width / 2 : width, height: 220 };
    const cut = (plot: CurvePlot, title: string, chart: CurveChart) =>
      curveFigure({ ...plot, title }, chart.range(), chart.shownY(), chart.marks(), size);
    const slice = cut(cutPlots.slice, cutTitles.slice, sliceCut);
    const course = cut(cutPlots.course, cutTitles.course, courseCut);
    return together(isWide ? [[map], [slice, course]] : [[map], [slice], [course]]);
  }

  /** The cuts show what the map shows. */
  private zoomCuts(x: Range, y: Range): void {
    this.sight = { x, y };
    this.sliceCut?.zoomTo(x);
    this.courseCut?.zoomTo(y);
  }

  private moveLine(x: number): void {
    if (this.point) this.map?.moveTo({ ...this.point, line: nearestAnywhere(this.grid!.lineAt, x) });
  }

  private moveSlice(x: number): void {
    if (this.point) this.map?.moveTo({ ...this.point, slice: nearestAnywhere(this.grid!.sliceAt, x) });
  }

  private table(): Cell[][] {
    const { values, slices, lines, lineAt, sliceAt } = this.grid!;
    if (slices * lines > kMostInTable) throw new Error("This is too large for a table. zmxf export writes it.");
    const corner = `${this.sliceAxis ? axisTitle(this.sliceAxis, "unit") : "Slice"} / ${this.lineAxis ? axisTitle(this.lineAxis, "unit") : "Line"}`;
    const rows: Cell[][] = [[corner, ...(this.names ?? Array.from(lineAt, shortest))]];
    for (let slice = 0; slice < slices; ++slice)
      rows.push([sliceAt[slice]!, ...values.subarray(slice * lines, (slice + 1) * lines)]);
    return rows;
  }
}

/** A single slice, or several at one speed, have room around them. */
function sliceRange(sliceAt: Float32Array): Range {
  const { min, max } = extremes(sliceAt) ?? { min: 0, max: 1 };
  return max > min ? { min, max } : { min: min - 0.5, max: max + 0.5 };
}

function counted(count: number): Float32Array {
  return Float32Array.from({ length: count }, (_, index) => index);
}

function nearestAnywhere(places: Float32Array, x: number): number {
  let best = 0;
  for (let index = 1; index < places.length; ++index)
    if (Math.abs(places[index]! - x) < Math.abs(places[best]! - x)) best = index;
  return best;
}

/** Revolutions, or an angle, per second. */
function isSpeed(axis: LabelledArray): boolean {
  const { dimension, unit } = axis.quantity ?? {};
  if (dimension?.["s"] !== -1 || unit === "Hz") return false;
  return Object.entries(dimension).every(
    ([base, power]) => base === "s" || power === 0 || (base === "rad" && power === 1),
  );
}

/** How many revolutions per second one of the shown unit is. */
function revolutionsPerUnit(axis: LabelledArray, inUnit: Float32Array): number {
  const si = floats(axis);
  const at = inUnit.findIndex((value) => Number.isFinite(value) && value !== 0);
  if (at < 0) return 0;
  const turn = axis.quantity?.dimension["rad"] === 1 ? 2 * Math.PI : 1;
  return si[at]! / inUnit[at]! / turn;
}
