// Curves on paper: the drawing that is saved, copied and printed.

import type { CursorLine, CurvePlot } from "./curves";
import { clip, drawing, frame, label, line, svg, xOf, yOf, type Box } from "./svg";
import { light } from "./theme";
import { valueAt, type Axis, type Range } from "./ticks";

export interface Size {
  width: number;
  height: number; // without title and legend
}

let clips = 0;

export function curveFigure(
  plot: CurvePlot,
  x: Range,
  y: Range,
  lines: readonly CursorLine[],
  { width, height }: Size = { width: 960, height: 420 },
): SVGSVGElement {
  const legendHeight = plot.curves.length > 1 ? Math.ceil(plot.curves.length / 2) * 18 : 0;
  const root = drawing(width, height + legendHeight + 70, plot.title);
  root.append(svg("rect", { width: width, height: height + legendHeight + 70, fill: light.paper }));
  root.append(label(width / 2, 20, shortened(plot.title, width / 8), { "text-anchor": "middle", "font-size": 15, fill: light.ink }));
  const box = { left: 74, top: 34, width: width - 96, height: height - 20 };
  const xAxis: Axis = { ...x, title: plot.xTitle, isLog: plot.xLog };
  const yAxis: Axis = { ...y, title: plot.yTitle, isLog: plot.yLog };
  if (plot.xNames) xAxis.labels = plot.xNames.map((text, at) => ({ at, text }));
  if (plot.yTicks) yAxis.labels = plot.yTicks.map((at) => ({ at, text: String(at) }));
  root.append(frame(box, xAxis, yAxis, light));
  const id = `curves-${++clips}`;
  const inside = svg("g", { "clip-path": `url(#${id})` });
  root.append(clip(box, id), inside);
  for (const { x: at, label: text, isMain } of lines) {
    const left = xOf(box, xAxis, at);
    const stroke = isMain ? light.accent : light.muted;
    inside.append(line(left, box.top, left, box.top + box.height, stroke, isMain ? {} : { "stroke-dasharray": "4 3" }));
    if (text) inside.append(label(left + 3, box.top + 12, text, { "font-size": 10, fill: stroke }));
  }
  plot.curves.forEach((curve, index) => {
    const stroke = light.curves[curve.colour % light.curves.length]!;
    const dash = curve.isDashed ? { "stroke-dasharray": "6 4" } : {};
    for (const values of [curve.y, curve.lower])
      if (values)
        inside.append(
          svg("path", {
            d: pathOf(curve.x, values, box, xAxis, yAxis),
            fill: "none",
            stroke,
            "stroke-width": 1.2,
            ...dash,
          }),
        );
    if (plot.curves.length < 2) return;
    const left = box.left + (index % 2) * (box.width / 2);
    const top = height + 72 + Math.floor(index / 2) * 18;
    root.append(line(left, top - 4, left + 22, top - 4, stroke, { "stroke-width": 2, ...dash }));
    root.append(label(left + 28, top, shortened(curve.label, 62), { fill: light.ink }));
  });
  return root;
}

export function shortened(text: string, most: number): string {
  return text.length > most ? `${text.slice(0, most - 1)}…` : text;
}

/** A path with at most the highest and the lowest value of every half pixel. */
function pathOf(x: Float32Array, y: Float32Array, box: Box, xAxis: Axis, yAxis: Axis): string {
  const steps = box.width * 2;
  let path = "";
  let isDown = false;
  let column = NaN;
  let low = Infinity;
  let high = -Infinity;
  const point = (value: number) => {
    path += `${isDown ? "L" : "M"}${(box.left + column / 2).toFixed(1)} ${yOf(box, yAxis, value).toFixed(1)}`;
    isDown = true;
  };
  const flush = () => {
    if (low > high) return;
    point(low);
    if (high > low) point(high);
    low = Infinity;
    high = -Infinity;
  };
  const floor = yAxis.isLog ? valueAt(yAxis, -0.1) : -Infinity;
  for (let index = 0; index < x.length; ++index) {
    const value = y[index]!;
    const at = ((xOf(box, xAxis, x[index]!) - box.left) / box.width) * steps;
    if (!Number.isFinite(at) || at < -steps || at > 2 * steps) continue;
    if (!Number.isFinite(value)) {
      flush();
      isDown = false;
      column = NaN;
      continue;
    }
    if (Math.round(at) !== column) flush();
    column = Math.round(at);
    low = Math.min(low, Math.max(value, floor));
    high = Math.max(high, Math.max(value, floor));
  }
  flush();
  return path;
}
