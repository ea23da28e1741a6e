// Bars of bands with nominal labels, beside them the levels of all bands. On the screen and on paper.

import { drawing, frame, label, line, svg, yOf, type Box } from "./svg";
import type { Theme } from "./theme";
import { shortened } from "./curve_figure";
import type { Axis, Range } from "./ticks";

export interface Bars {
  label: string;
  colour: number;
  values: Float32Array; // a NaN has no bar
  globals: { name: string; value: number }[];
}

export interface BarPlot {
  title: string;
  bands: string[];
  xTitle: string;
  yTitle: string;
  y: Range;
  yLog: boolean;
  series: Bars[];
}

const kTop = 34;
const kGlobalWidth = 38; // of a level of all bands, for its name

/** onPoint is told which band and series the pointer is over. */
export function barFigure(
  plot: BarPlot,
  size: { width: number; height: number },
  theme: Theme,
  chosen: number | null,
  onPoint?: (band: number) => void,
): SVGSVGElement {
  const legend = 18 * plot.series.length;
  const { width } = size;
  const height = size.height + legend;
  const root = drawing(width, height, plot.title);
  root.append(svg("rect", { width, height, fill: theme.paper }));
  root.append(label(width / 2, 20, plot.title, { "text-anchor": "middle", "font-size": 15, fill: theme.ink }));
  const names = plot.series[0]?.globals.map(({ name }) => name) ?? [];
  // In slots, which are as wide as a band.
  const globalSlots = Math.max(1.8, (kGlobalWidth * plot.bands.length) / (width - 84 - kGlobalWidth * names.length));
  const slots = plot.bands.length + (names.length > 0 ? names.length * globalSlots + 0.6 : 0);
  const box = { left: 70, top: kTop, width: width - 84, height: size.height - kTop - 62 };
  const labels = plot.bands.map((text, index) => ({ at: index + 0.5, text }));
  const xAxis: Axis = { min: 0, max: slots, isLog: false, title: plot.xTitle, labels };
  const yAxis: Axis = { ...plot.y, isLog: plot.yLog, title: plot.yTitle };
  root.append(frame(box, xAxis, yAxis, theme));
  const slot = box.width / slots;
  const globalAt = (index: number) => plot.bands.length + 0.6 + (index + 0.5) * globalSlots;
  const below = { "text-anchor": "middle", "font-size": 11, "font-weight": 600, fill: theme.ink };
  names.forEach((name, index) =>
    root.append(label(box.left + globalAt(index) * slot, box.top + box.height + 16, name, below)),
  );
  plot.series.forEach((bars, series) => {
    const fill = theme.curves[bars.colour % theme.curves.length]!;
    const put = (value: number, at: number, opacity: number) => {
      const rect = bar(value, at, series, { box, yAxis, slot, count: plot.series.length });
      if (rect) root.append(svg("rect", { ...rect, fill, "fill-opacity": opacity }));
    };
    bars.values.forEach((value, band) => put(value, band, chosen === null || chosen === band ? 0.95 : 0.7));
    bars.globals.forEach(({ value }, index) => put(value, globalAt(index) - 0.5, 0.6));
    const top = size.height + 8 + series * 18;
    root.append(svg("rect", { x: box.left, y: top - 9, width: 14, height: 10, fill }));
    root.append(label(box.left + 20, top, shortened(bars.label, Math.floor(box.width / 7.5)), { fill: theme.ink }));
  });
  if (names.length > 0) {
    const left = box.left + (plot.bands.length + 0.3) * slot;
    root.append(line(left, box.top, left, box.top + box.height, theme.muted, { "stroke-dasharray": "3 3" }));
  }
  if (onPoint)
    root.addEventListener("pointermove", (event) => {
      const band = Math.floor((event.clientX - root.getBoundingClientRect().left - box.left) / slot);
      if (band >= 0 && band < plot.bands.length) onPoint(band);
    });
  return root;
}

interface BarPlace {
  box: Box;
  yAxis: Axis;
  slot: number;
  count: number;
}

function bar(
  value: number,
  at: number,
  series: number,
  { box, yAxis, slot, count }: BarPlace,
): Record<string, number> | null {
  if (!Number.isFinite(value) || (yAxis.isLog && value <= 0)) return null;
  const width = (slot * 0.84) / count;
  const edge = box.top + box.height;
  const top = Math.min(box.top + box.height, Math.max(box.top, yOf(box, yAxis, value)));
  return {
    x: box.left + (at + 0.08) * slot + series * width,
    y: top,
    width: Math.max(0.5, width - 0.5),
    height: Math.max(0.5, edge - top),
  };
}
