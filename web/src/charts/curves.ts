// What a chart of curves shows, apart from how it is drawn: on the screen by uPlot, on paper as SVG.

import { extremes, type Range } from "./ticks";

export interface Curve {
  label: string;
  colour: number; // index of the theme's colours
  isDashed?: boolean;
  x: Float32Array;
  y: Float32Array; // a NaN is a gap
  /** The lower edge of a band of which y is the upper edge, such as that of an envelope. */
  lower?: Float32Array;
}

export interface CurvePlot {
  title: string;
  curves: Curve[];
  xTitle: string; // "" where the chart below has it
  yTitle: string;
  /** Names at the places 0, 1, ... instead of numbers, such as those of bands. */
  xNames?: string[];
  xLog: boolean;
  yLog: boolean;
  /** The whole of an axis that is known beforehand: 0 to 1 of a coherence, -180 to 180 of a phase. */
  yWhole?: Range;
  yTicks?: number[];
  height: number;
}

/** Lines that the user put into a chart. */
export interface CursorLine {
  x: number;
  label: string;
  isMain: boolean;
}

export function wholeX(plot: CurvePlot): Range {
  const ranges = plot.curves.map((curve) => extremes(curve.x, plot.xLog)).filter((range) => range !== null);
  if (ranges.length === 0) return { min: plot.xLog ? 1 : 0, max: plot.xLog ? 10 : 1 };
  const min = Math.min(...ranges.map((range) => range.min));
  const max = Math.max(...ranges.map((range) => range.max));
  return max > min ? { min, max } : { min: min - (plot.xLog ? min / 2 : 0.5), max: max + (plot.xLog ? max : 0.5) };
}

/** The range of y for what x shows: with some room, and on a logarithmic axis at most six decades. */
export function rangeY(plot: CurvePlot, x: Range): Range {
  if (plot.yWhole) return plot.yWhole;
  let found: Range | null = null;
  for (const curve of plot.curves)
    for (const values of [curve.y, curve.lower]) {
      if (!values) continue;
      const part = values.filter((_, index) => curve.x[index]! >= x.min && curve.x[index]! <= x.max);
      const range = extremes(part, plot.yLog);
      if (!range) continue;
      found = found ? { min: Math.min(found.min, range.min), max: Math.max(found.max, range.max) } : range;
    }
  if (!found) return plot.yLog ? { min: 0.1, max: 10 } : { min: 0, max: 1 };
  if (plot.yLog) return { min: Math.max(found.min, found.max / 1e6) / 1.3, max: found.max * 1.6 };
  const room = (found.max - found.min || Math.abs(found.max) || 1) * 0.06;
  const startsAtZero = found.min >= 0 && found.min < found.max * 0.3;
  return { min: startsAtZero ? 0 : found.min - room, max: found.max + room };
}

/** A course that turns more often than that is drawn in the order of its places. */
const kMostPieces = 60;

/** The curves in pieces along which places rise, as a chart wants them: a run-down, and each way of a course that turns. */
export function piecesOf(plot: CurvePlot): Curve[] {
  return plot.curves.flatMap((curve) => {
    const usable: number[] = [];
    curve.x.forEach((place, index) => {
      if (Number.isFinite(place) && !(plot.xLog && place <= 0)) usable.push(index);
    });
    const runs = runsOf(curve.x, usable);
    if (runs.length === 1 && runs[0]!.length === curve.x.length && risesAlong(curve.x, runs[0]!)) return [curve];
    if (runs.length > kMostPieces)
      return [
        part(
          curve,
          usable.sort((a, b) => curve.x[a]! - curve.x[b]!),
        ),
      ];
    return runs.map((run) => part(curve, risesAlong(curve.x, run) ? run : run.reverse()));
  });
}

function risesAlong(x: Float32Array, run: readonly number[]): boolean {
  return x[run[run.length - 1]!]! >= x[run[0]!]!;
}

/** Points in stretches of one direction; a turning point belongs to both. */
function runsOf(x: Float32Array, points: readonly number[]): number[][] {
  if (points.length === 0) return [[]];
  const runs: number[][] = [];
  let run = [points[0]!];
  let direction = 0;
  for (const point of points.slice(1)) {
    const last = run[run.length - 1]!;
    const step = Math.sign(x[point]! - x[last]!);
    if (step !== 0 && direction !== 0 && step !== direction) {
      runs.push(run);
      run = [last];
    }
    if (step !== 0) direction = step;
    run.push(point);
  }
  return [...runs, run];
}

function part(curve: Curve, points: readonly number[]): Curve {
  const pick = (values: Float32Array) => Float32Array.from(points, (point) => values[point]!);
  const { lower } = curve;
  return { ...curve, x: pick(curve.x), y: pick(curve.y), ...(lower ? { lower: pick(lower) } : {}) };
}
