// A colour map on the screen: picture, axes, colour bar, order lines and a cross at the cursor. The wheel zooms
// frequencies, with Shift slices; dragging zooms to a box; a double click shows all.

import { h } from "../dom";
import { shortened } from "./curve_figure";
import { orderSlices, raster, type Grid, type SliceOrder } from "./map_raster";
import { drawing, frame, label, line, svg, xOf, yOf, type Box } from "./svg";
import { colourTable, light, screenTheme, type Theme } from "./theme";
import { nearest, place, ticksOf, valueAt, type Axis, type Range } from "./ticks";

export interface MapPlot {
  title: string;
  grid: Grid;
  x: Axis;
  y: Axis;
  colours: Range;
  valueTitle: string;
  /** Where an order lies: x per y. */
  orderLines: { label: string; slope: number }[];
}

export interface MapPoint {
  slice: number;
  line: number;
}

const kHeight = 440;
const kLeft = 72;
const kRight = 92; // room for the colour bar
const kTop = 12;
const kBottom = 62;

export class ColourMap {
  readonly element = h("div", { className: "chart map", tabIndex: 0, role: "group" });
  private readonly canvas = h("canvas");
  private overlay: SVGSVGElement | null = null;
  private slices: SliceOrder;
  private x: Range;
  private y: Range;
  private point: MapPoint | null = null;
  private frameRequest = 0;
  private readonly sizes = new ResizeObserver(() => this.request());
  private dragged: { x: number; y: number } | null = null;

  constructor(
    private plot: MapPlot,
    private readonly moved: (point: MapPoint) => void,
    /** What is in sight, after each zoom. */
    private readonly zoomed: (x: Range, y: Range) => void,
  ) {
    this.slices = orderSlices(plot.grid.sliceAt);
    this.x = { min: plot.x.min, max: plot.x.max };
    this.y = { min: plot.y.min, max: plot.y.max };
    this.element.append(this.canvas);
    this.element.setAttribute(
      "aria-label",
      `${plot.title}: arrow keys move the cursor, plus and minus zoom, 0 shows all`,
    );
    this.sizes.observe(this.element);
    this.listen();
  }

  destroy(): void {
    this.sizes.disconnect();
    cancelAnimationFrame(this.frameRequest);
  }

  show(plot: MapPlot): void {
    if (plot.grid !== this.plot.grid) this.slices = orderSlices(plot.grid.sliceAt);
    if (plot.y.title !== this.plot.y.title) this.y = { min: plot.y.min, max: plot.y.max };
    if (plot.x.isLog !== this.plot.x.isLog) this.x = { min: plot.x.min, max: plot.x.max };
    this.plot = plot;
    this.request();
  }

  moveTo(point: MapPoint): void {
    this.point = point;
    this.request();
    this.moved(point);
  }

  request(): void {
    cancelAnimationFrame(this.frameRequest);
    this.frameRequest = requestAnimationFrame(() => this.draw());
  }

  showAll(): void {
    this.x = { min: this.plot.x.min, max: this.plot.x.max };
    this.y = { min: this.plot.y.min, max: this.plot.y.max };
    this.request();
  }

  private box(): Box {
    const width = Math.max(80, this.element.clientWidth - kLeft - kRight);
    return { left: kLeft, top: kTop, width, height: kHeight - kTop - kBottom };
  }

  private axes(): { x: Axis; y: Axis } {
    return { x: { ...this.plot.x, ...this.x }, y: { ...this.plot.y, ...this.y } };
  }

  private drawn = "";

  private draw(): void {
    if (this.element.clientWidth < kLeft + kRight) return;
    const box = this.box();
    const { x, y } = this.axes();
    const wanted = JSON.stringify([box, this.x, this.y, x.isLog, this.plot.colours, this.plot.valueTitle, y.title]);
    if (wanted !== this.drawn || this.canvas.width === 0) {
      this.drawn = wanted;
      const ratio = Math.min(2, devicePixelRatio);
      this.canvas.width = Math.round(box.width * ratio);
      this.canvas.height = Math.round(box.height * ratio);
      Object.assign(this.canvas.style, {
        left: `${box.left}px`,
        top: `${box.top}px`,
        width: `${box.width}px`,
        height: `${box.height}px`,
      });
      const { width, height } = this.canvas;
      const image = raster(this.plot.grid, this.slices, x, y, this.plot.colours, width, height);
      this.canvas.getContext("2d")!.putImageData(image, 0, 0);
      this.zoomed(this.x, this.y);
    }
    const overlay = drawing(this.element.clientWidth, kHeight, this.plot.title);
    this.put(overlay, box, screenTheme());
    this.overlay?.remove();
    this.overlay = overlay;
    this.element.append(overlay);
  }

  /** Everything but the picture. */
  private put(root: SVGSVGElement, box: Box, theme: Theme): void {
    const { x, y } = this.axes();
    root.append(frame(box, x, y, theme, false));
    root.append(colourBar(box, this.plot, theme));
    const id = `map-${Math.random().toString(36).slice(2)}`;
    const inside = svg("g", { "clip-path": `url(#${id})` });
    root.append(
      svg("clipPath", { id }, svg("rect", { x: box.left, y: box.top, width: box.width, height: box.height })),
    );
    root.append(inside);
    this.plot.orderLines.forEach(({ label: text, slope }, index) => this.putOrder(inside, box, text, slope, index));
    if (!this.point) return;
    const { sliceAt, lineAt } = this.plot.grid;
    const left = xOf(box, x, lineAt[this.point.line]!);
    const top = yOf(box, y, sliceAt[this.point.slice]!);
    // The cross leaves out what it points at.
    const gap = 9;
    for (const [stroke, width, opacity] of [
      ["#000", 2.5, 0.35],
      ["#fff", 1, 0.9],
    ] as const) {
      const look = { "stroke-width": width, "stroke-opacity": opacity };
      inside.append(
        line(left, box.top, left, top - gap, stroke, look),
        line(left, top + gap, left, box.top + box.height, stroke, look),
        line(box.left, top, left - gap, top, stroke, look),
        line(left + gap, top, box.left + box.width, top, stroke, look),
      );
    }
  }

  private putOrder(inside: SVGElement, box: Box, text: string, slope: number, index: number): void {
    const { x, y } = this.axes();
    const points: string[] = [];
    let last: [number, number] | null = null;
    for (let step = 0; step <= 60; ++step) {
      const speed = valueAt(y, step / 60);
      const at = speed * slope;
      if (!(at > 0) || (x.isLog && at < x.min)) continue;
      const left = xOf(box, x, at);
      const top = yOf(box, y, speed);
      points.push(`${left.toFixed(1)},${top.toFixed(1)}`);
      // Labels of neighbours stand at different heights.
      if (left <= box.left + box.width - 8 && top >= box.top + 4 + (index % 4) * 16) last = [left, top];
    }
    const shape = { points: points.join(" "), fill: "none" };
    inside.append(
      svg("polyline", {
        ...shape,
        stroke: "#000",
        "stroke-width": 2,
        "stroke-opacity": 0.4,
        "stroke-dasharray": "5 9",
      }),
      svg("polyline", { ...shape, stroke: "#fff", "stroke-width": 1, "stroke-dasharray": "5 9" }),
    );
    if (!last) return;
    const place = { "font-size": 11, "font-weight": 600, "text-anchor": "end" };
    const [left, top] = [last[0] - 4, Math.max(box.top + 14, last[1] + 4)];
    inside.append(
      label(left, top, text, { ...place, fill: "none", stroke: "#000", "stroke-width": 3, "stroke-opacity": 0.6 }),
      label(left, top, text, { ...place, fill: "#fff" }),
    );
  }

  /** The drawing on paper. */
  figure(): SVGSVGElement {
    const box = this.box();
    const width = this.element.clientWidth;
    const root = drawing(width, kHeight + 30, this.plot.title);
    root.append(svg("rect", { width, height: kHeight + 30, fill: light.paper }));
    root.append(label(width / 2, 20, shortened(this.plot.title, width / 8), { "text-anchor": "middle", "font-size": 15, fill: light.ink }));
    const moved = svg("g", { transform: "translate(0 28)" });
    const image = {
      href: this.canvas.toDataURL("image/png"),
      x: box.left,
      y: box.top,
      width: box.width,
      height: box.height,
    };
    moved.append(svg("image", { ...image, preserveAspectRatio: "none" }));
    const inner = drawing(width, kHeight, this.plot.title);
    this.put(inner, box, light);
    moved.append(...[...inner.children].filter((child) => child.tagName !== "title"));
    root.append(moved);
    return root;
  }

  private at(event: MouseEvent): { x: number; y: number } {
    const area = this.canvas.getBoundingClientRect();
    const clamp = (value: number) => Math.min(1, Math.max(0, value));
    return {
      x: clamp((event.clientX - area.left) / area.width),
      y: clamp(1 - (event.clientY - area.top) / area.height),
    };
  }

  private pointAt(at: { x: number; y: number }): MapPoint {
    const { x, y } = this.axes();
    const { lineAt } = this.plot.grid;
    const slice = this.slices.order[nearest(this.slices.places, valueAt(y, at.y))] ?? 0;
    return { slice, line: nearest(lineAt, valueAt(x, at.x)) };
  }

  private listen(): void {
    const { element } = this;
    element.addEventListener("pointermove", (event) => {
      if (event.target === this.canvas || this.isOver(event)) this.moveTo(this.pointAt(this.at(event)));
    });
    element.addEventListener("pointerdown", (event) => {
      if (!this.isOver(event)) return;
      this.moveTo(this.pointAt(this.at(event)));
      if (event.pointerType === "mouse") this.dragged = this.at(event);
    });
    element.addEventListener("pointerup", (event) => this.released(this.at(event)));
    element.addEventListener("dblclick", () => this.showAll());
    element.addEventListener(
      "wheel",
      (event) => {
        if (!this.isOver(event)) return;
        event.preventDefault();
        const at = this.at(event);
        const factor = event.deltaY + event.deltaX > 0 ? 1.25 : 0.8;
        this.zoom(event.shiftKey ? "y" : "x", event.shiftKey ? at.y : at.x, factor);
      },
      { passive: false },
    );
    element.addEventListener("keydown", (event) => this.key(event));
  }

  private isOver(event: MouseEvent): boolean {
    const area = this.canvas.getBoundingClientRect();
    return (
      event.clientX >= area.left &&
      event.clientX <= area.right &&
      event.clientY >= area.top &&
      event.clientY <= area.bottom
    );
  }

  private released(to: { x: number; y: number }): void {
    const from = this.dragged;
    this.dragged = null;
    if (!from || Math.abs(to.x - from.x) < 0.02 || Math.abs(to.y - from.y) < 0.02) return;
    const { x, y } = this.axes();
    const part = (axis: Axis, a: number, b: number) => ({
      min: valueAt(axis, Math.min(a, b)),
      max: valueAt(axis, Math.max(a, b)),
    });
    this.x = part(x, from.x, to.x);
    this.y = part(y, from.y, to.y);
    this.request();
  }

  zoom(which: "x" | "y", at: number, factor: number): void {
    const axis = this.axes()[which];
    const whole = this.plot[which];
    const min = Math.max(whole.min, valueAt(axis, at - at * factor));
    const max = Math.min(whole.max, valueAt(axis, at + (1 - at) * factor));
    if (max - min > (whole.max - whole.min) * 1e-4) this[which] = { min, max };
    this.request();
  }

  private key(event: KeyboardEvent): void {
    if (event.ctrlKey || event.metaKey || event.altKey) return;
    const steps: Record<string, [number, number]> = {
      ArrowLeft: [0, -1],
      ArrowRight: [0, 1],
      ArrowUp: [1, 0],
      ArrowDown: [-1, 0],
      PageUp: [10, 0],
      PageDown: [-10, 0],
    };
    const step = steps[event.key];
    if (step) this.step(step[0], step[1]);
    else if (event.key === "+" || event.key === "-") this.zoom("x", this.focus(), event.key === "+" ? 0.8 : 1.25);
    else if (event.key === "0") this.showAll();
    else return;
    event.preventDefault();
  }

  private focus(): number {
    if (!this.point) return 0.5;
    return Math.min(1, Math.max(0, place(this.axes().x, this.plot.grid.lineAt[this.point.line]!)));
  }

  private step(slices: number, lines: number): void {
    const { order } = this.slices;
    const from = this.point ?? { slice: order[0] ?? 0, line: 0 };
    const at = Math.min(order.length - 1, Math.max(0, order.indexOf(from.slice) + slices));
    this.moveTo({ slice: order[at] ?? 0, line: Math.min(this.plot.grid.lines - 1, Math.max(0, from.line + lines)) });
  }
}

function colourBar(box: Box, plot: MapPlot, theme: Theme): SVGGElement {
  const group = svg("g");
  const left = box.left + box.width + 14;
  const steps = 64;
  for (let step = 0; step < steps; ++step) {
    const pixel = colourTable[Math.round((step / (steps - 1)) * 255)]!;
    const fill = `#${[0, 8, 16].map((shift) => ((pixel >> shift) & 255).toString(16).padStart(2, "0")).join("")}`;
    const height = box.height / steps;
    group.append(
      svg("rect", { x: left, y: box.top + box.height - (step + 1) * height, width: 14, height: height + 0.6, fill }),
    );
  }
  const axis: Axis = { ...plot.colours, isLog: false, title: "" };
  for (const { at, text } of ticksOf(axis, 8))
    group.append(label(left + 19, yOf(box, axis, at) + 4, text, { fill: theme.ink, "font-size": 11 }));
  const middle = box.top + box.height / 2;
  const x = left + 68;
  group.append(
    label(x, middle, plot.valueTitle, {
      "text-anchor": "middle",
      fill: theme.ink,
      transform: `rotate(-90 ${x} ${middle})`,
    }),
  );
  return group;
}
