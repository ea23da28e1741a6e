// Curves on the screen, with zoom, pan and a cursor. Dragging zooms, the wheel zooms around the pointer, dragging with
// Shift pans, two fingers do both, a double click shows all. The cursor stays where a click or the keys put it.

import uPlot from "uplot";
import { h } from "../dom";
import { piecesOf, rangeY, wholeX, type Curve, type CursorLine, type CurvePlot } from "./curves";
import { kFont } from "./svg";
import { screenTheme } from "./theme";
import { isMonotonic, nearest, place, sameValues, tickTexts, valueAt, type Range } from "./ticks";

export interface ChartEvents {
  /** The pointer or the keys moved the cursor; null when the pointer left a chart whose cursor isn't set. */
  cursor?(x: number | null): void;
  /** The user set the cursor. */
  pinned?(x: number): void;
  zoomed?(x: Range): void;
}

export class CurveChart {
  readonly element = h("div", { className: "chart", tabIndex: 0, role: "group" });
  lines: CursorLine[] = [];
  private chart: uPlot | null = null;
  private x: Range;
  private y: Range | null = null; // null follows x
  private pieces: Curve[];
  private pinnedAt: number | null = null;
  private readonly sizes = new ResizeObserver(() => this.fit());
  private readonly fingers = new Map<number, number>();

  constructor(
    private plot: CurvePlot,
    private readonly events: ChartEvents = {},
  ) {
    this.x = wholeX(plot);
    this.pieces = piecesOf(plot);
    this.element.setAttribute(
      "aria-label",
      `${plot.title}: arrow keys move the cursor, plus and minus zoom, 0 shows all`,
    );
    this.sizes.observe(this.element);
    this.element.addEventListener("keydown", (event) => this.key(event));
  }

  destroy(): void {
    this.sizes.disconnect();
    this.chart?.destroy();
  }

  /** Other curves or axes; what is zoomed to stays unless the axis changed. */
  show(plot: CurvePlot, keepZoom = true): void {
    const isSameAxis = keepZoom && plot.xLog === this.plot.xLog && plot.xTitle === this.plot.xTitle;
    if (plot.yLog !== this.plot.yLog || plot.yTitle !== this.plot.yTitle || !isSameAxis) this.y = null;
    const former = { ...this.plot, curves: this.pieces };
    this.plot = plot;
    this.pieces = piecesOf(plot);
    if (!isSameAxis) this.x = wholeX(plot);
    if (this.chart && looksAlike({ ...plot, curves: this.pieces }, former)) {
      this.chart.setData(this.data(), false);
      this.zoomTo(this.x, this.y);
    } else this.rebuild();
  }

  range(): Range {
    return this.x;
  }

  shownY(): Range {
    return this.y ?? rangeY(this.plot, this.x);
  }

  zoomTo(x: Range, y: Range | null = null): void {
    this.x = x;
    this.y = y;
    const shown = this.shownY();
    this.chart?.batch(() => {
      this.chart?.setScale("x", x);
      this.chart?.setScale("y", shown);
    });
  }

  /** Puts the cursor there; null takes it away. */
  pin(x: number | null): void {
    this.pinnedAt = x;
    this.chart?.redraw(false);
  }

  /** The lines of the user, and the cursor where it was put. */
  marks(): CursorLine[] {
    if (this.pinnedAt === null || this.lines.some((line) => line.isMain)) return this.lines;
    return [...this.lines, { x: this.pinnedAt, label: "", isMain: true }];
  }

  redraw(): void {
    this.chart?.redraw(false);
  }

  rebuild(): void {
    this.chart?.destroy();
    const width = this.element.clientWidth;
    this.chart = width < 60 ? null : new uPlot(this.options(width), this.data(), this.element);
    if (this.chart) this.listen(this.chart);
  }

  private fit(): void {
    const width = this.element.clientWidth;
    if (!this.chart) this.rebuild();
    else if (width > 60 && width !== this.chart.width) this.chart.setSize({ width, height: this.plot.height });
  }

  private data(): uPlot.AlignedData {
    const gap = (values: Float32Array) =>
      Array.from(values, (value) => (Number.isFinite(value) && !(this.plot.yLog && value <= 0) ? value : null));
    const tables = this.pieces.map((piece): uPlot.AlignedData => [
      Array.from(piece.x),
      gap(piece.y),
      ...(piece.lower ? [gap(piece.lower)] : []),
    ]);
    if (tables.length === 0) return [[]];
    const shared = tables.every((part) => sameValues(part[0], tables[0]![0]));
    if (!shared) return uPlot.join(tables);
    return [tables[0]![0], ...tables.flatMap((part) => part.slice(1))] as uPlot.AlignedData;
  }

  private options(width: number): uPlot.Options {
    const theme = screenTheme();
    const series: uPlot.Series[] = [{}];
    const bands: uPlot.Band[] = [];
    for (const curve of this.pieces) {
      const stroke = theme.curves[curve.colour % theme.curves.length]!;
      const line: uPlot.Series = { stroke, width: 1.4, points: { show: curve.x.length < 40 }, spanGaps: false };
      if (curve.isDashed) line.dash = [6, 4];
      series.push(line);
      if (!curve.lower) continue;
      bands.push({ series: [series.length - 1, series.length], fill: stroke + "40" });
      series.push({ ...line });
    }
    return {
      width,
      height: this.plot.height,
      legend: { show: false },
      padding: [12, 16, 0, 0],
      cursor: {
        drag: { x: true, y: true, uni: 30, setScale: false },
        points: { show: false },
        bind: { dblclick: () => null },
      },
      scales: {
        x: { time: false, distr: this.plot.xLog ? 3 : 1, range: () => [this.x.min, this.x.max] },
        y: { distr: this.plot.yLog ? 3 : 1, range: () => [this.shownY().min, this.shownY().max] },
      },
      axes: this.axes(),
      series,
      bands,
      hooks: {
        draw: [(chart) => this.drawLines(chart)],
        setCursor: [(chart) => this.pointerMoved(chart)],
        setSelect: [(chart) => this.selected(chart)],
      },
    };
  }

  private axes(): uPlot.Axis[] {
    const theme = screenTheme();
    const { xNames, yTicks, xTitle, yTitle } = this.plot;
    const axis = (isLog: boolean, label: string, size: number): uPlot.Axis => ({
      stroke: theme.ink,
      font: `12px ${kFont}`,
      labelFont: `12px ${kFont}`,
      ...(label ? { label, labelSize: 20 } : {}),
      size,
      grid: { stroke: theme.faint, width: 1 },
      ticks: { stroke: theme.muted, width: 1, size: 4 },
      values: (_, splits) => (isLog ? logTexts(splits) : tickTexts(splits)),
    });
    const x = axis(this.plot.xLog, xTitle, 34);
    const y = axis(this.plot.yLog, yTitle, 58);
    if (xNames) {
      x.incrs = [1, 2, 3, 6, 12];
      x.values = (_, splits) => splits.map((at) => xNames[at] ?? "");
    }
    if (yTicks) y.splits = () => yTicks;
    return [x, y];
  }

  private pointerMoved(chart: uPlot): void {
    if (!this.events.cursor) return;
    const left = chart.cursor.left ?? -1;
    if (left < 0) this.events.cursor(this.pinnedAt);
    else this.events.cursor(chart.posToVal(left, "x"));
  }

  private selected(chart: uPlot): void {
    const { left, top, width, height } = chart.select;
    if (width < 4 && height < 4) return;
    const x = width < 4 ? this.x : { min: chart.posToVal(left, "x"), max: chart.posToVal(left + width, "x") };
    const wholeHeight = chart.over.clientHeight;
    const y =
      height < 4 || height >= wholeHeight - 1
        ? this.y
        : { min: chart.posToVal(top + height, "y"), max: chart.posToVal(top, "y") };
    chart.setSelect({ left: 0, top: 0, width: 0, height: 0 }, false);
    this.zoomed(x, y);
  }

  private zoomed(x: Range, y: Range | null): void {
    if (!(x.max > x.min)) return;
    this.zoomTo(x, y);
    this.events.zoomed?.(x);
  }

  private drawLines(chart: uPlot): void {
    const theme = screenTheme();
    const { ctx, bbox } = chart;
    const all = this.marks();
    ctx.save();
    ctx.beginPath();
    ctx.rect(bbox.left, bbox.top, bbox.width, bbox.height);
    ctx.clip();
    ctx.textAlign = "left";
    ctx.textBaseline = "alphabetic";
    ctx.font = `${11 * devicePixelRatio}px ${kFont}`;
    for (const { x, label, isMain } of all) {
      const left = Math.round(chart.valToPos(x, "x", true)) + 0.5;
      ctx.strokeStyle = ctx.fillStyle = isMain ? theme.accent : theme.muted;
      ctx.setLineDash(isMain ? [] : [4 * devicePixelRatio, 3 * devicePixelRatio]);
      ctx.beginPath();
      ctx.moveTo(left, bbox.top);
      ctx.lineTo(left, bbox.top + bbox.height);
      ctx.stroke();
      if (label) ctx.fillText(label, left + 3, bbox.top + 12 * devicePixelRatio);
    }
    ctx.restore();
  }

  private listen(chart: uPlot): void {
    const over = chart.over;
    over.addEventListener(
      "wheel",
      (event) => {
        event.preventDefault();
        this.zoomAround(event.offsetX / over.clientWidth, event.deltaY > 0 ? 1.25 : 0.8);
      },
      { passive: false },
    );
    over.addEventListener("dblclick", () => this.zoomed(wholeX(this.plot), null));
    // The end of a drag is a click too, but sets no cursor.
    let pressedAt = { x: 0, y: 0 };
    over.addEventListener("pointerdown", (event) => (pressedAt = { x: event.clientX, y: event.clientY }));
    over.addEventListener("click", (event) => {
      const moved = Math.abs(event.clientX - pressedAt.x) + Math.abs(event.clientY - pressedAt.y);
      if (!event.shiftKey && moved < 5) this.set(this.onCurve(chart.posToVal(event.offsetX, "x")));
    });
    // Panning takes the pointer before uPlot starts to select.
    this.element.addEventListener(
      "mousedown",
      (event) => {
        if (!event.shiftKey || event.target !== over) return;
        event.stopPropagation();
        event.preventDefault();
        const move = (moved: MouseEvent) => this.pan(-moved.movementX / over.clientWidth);
        const end = () => removeEventListener("mousemove", move);
        addEventListener("mousemove", move);
        addEventListener("mouseup", end, { once: true });
      },
      { capture: true },
    );
    over.addEventListener("pointermove", (event) => this.touch(event, over));
    for (const type of ["pointerup", "pointercancel", "pointerleave"] as const)
      over.addEventListener(type, (event) => this.fingers.delete(event.pointerId));
  }

  private touch(event: PointerEvent, over: HTMLElement): void {
    if (event.pointerType !== "touch") return;
    const before = [...this.fingers.values()];
    const former = this.fingers.get(event.pointerId);
    this.fingers.set(event.pointerId, event.offsetX);
    if (former === undefined || before.length !== 2) return;
    const after = [...this.fingers.values()];
    const spread = (xs: number[]) => Math.max(20, Math.abs(xs[0]! - xs[1]!));
    const middle = (xs: number[]) => (xs[0]! + xs[1]!) / 2;
    this.pan((middle(before) - middle(after)) / over.clientWidth);
    this.zoomAround(middle(after) / over.clientWidth, spread(before) / spread(after));
  }

  /** Makes what is shown wider or narrower by a factor; a part of it, 0 to 1, stays where it is. */
  zoomAround(at: number, factor: number): void {
    const axis = { ...this.x, isLog: this.plot.xLog };
    const whole = wholeX(this.plot);
    const min = Math.max(whole.min, valueAt(axis, at - at * factor));
    const max = Math.min(whole.max, valueAt(axis, at + (1 - at) * factor));
    if (max - min > (whole.max - whole.min) * 1e-6) this.zoomed({ min, max }, this.y);
  }

  private pan(part: number): void {
    const axis = { ...this.x, isLog: this.plot.xLog };
    const whole = wholeX(this.plot);
    const least = place(axis, whole.min);
    const most = place(axis, whole.max) - 1;
    const by = Math.min(most, Math.max(least, part));
    this.zoomed({ min: valueAt(axis, by), max: valueAt(axis, 1 + by) }, this.y);
  }

  showAll(): void {
    this.zoomed(wholeX(this.plot), null);
  }

  /** The nearest point of the first curve, so that the cursor stands on a value. */
  private onCurve(x: number): number {
    const places = this.plot.curves[0]?.x;
    return places?.length && isMonotonic(places) ? places[nearest(places, x)]! : x;
  }

  private set(x: number): void {
    this.pin(x);
    this.events.pinned?.(x);
    this.events.cursor?.(x);
  }

  private key(event: KeyboardEvent): void {
    if (event.ctrlKey || event.metaKey || event.altKey || event.target !== this.element) return;
    const steps: Record<string, number> = { ArrowLeft: -1, ArrowRight: 1, PageDown: 20, PageUp: -20 };
    const step = steps[event.key];
    if (step !== undefined && event.shiftKey) this.pan(step / 10);
    else if (step !== undefined) this.stepCursor(step);
    else if (event.key === "+" || event.key === "-") this.zoomAround(this.focus(), event.key === "+" ? 0.8 : 1.25);
    else if (event.key === "0") this.showAll();
    else return;
    event.preventDefault();
  }

  private focus(): number {
    const at = this.pinnedAt === null ? 0.5 : place({ ...this.x, isLog: this.plot.xLog }, this.pinnedAt);
    return at >= 0 && at <= 1 ? at : 0.5;
  }

  private stepCursor(step: number): void {
    const x = this.plot.curves[0]?.x;
    if (!x?.length) return;
    const from = nearest(x, this.pinnedAt ?? valueAt({ ...this.x, isLog: this.plot.xLog }, 0.5));
    const rises = x[x.length - 1]! >= x[0]! ? 1 : -1;
    this.set(x[Math.min(x.length - 1, Math.max(0, from + step * rises))]!);
  }
}

/** Whether only values differ. */
function looksAlike(a: CurvePlot, b: CurvePlot): boolean {
  return (
    a.xLog === b.xLog &&
    a.yLog === b.yLog &&
    a.xTitle === b.xTitle &&
    a.yTitle === b.yTitle &&
    a.height === b.height &&
    a.curves.length === b.curves.length &&
    a.curves.every((curve, index) => !curve.lower === !b.curves[index]!.lower)
  );
}

/** uPlot gives null for those that have no room. */
function logTexts(splits: (number | null)[]): string[] {
  return splits.map((value) => (value === null ? "" : isWorthAText(value) ? tickTexts([value])[0]! : ""));
}

function isWorthAText(value: number): boolean {
  const leading = value / 10 ** Math.floor(Math.log10(value) + 1e-9);
  return [1, 2, 5].some((digit) => Math.abs(leading - digit) < 1e-6);
}
