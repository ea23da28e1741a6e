// Axes: where values lie on a length, and which of them are worth a tick.

export interface Range {
  min: number;
  max: number;
}

export interface Axis extends Range {
  title: string;
  isLog: boolean;
  /** Names at places of their own, such as those of octave bands, instead of numbers. */
  labels?: { at: number; text: string }[];
}

/** The place of a value, 0 at the start of the axis and 1 at its end. */
export function place(axis: Pick<Axis, "min" | "max" | "isLog">, value: number): number {
  if (!axis.isLog) return (value - axis.min) / (axis.max - axis.min || 1);
  return Math.log(value / axis.min) / (Math.log(axis.max / axis.min) || 1);
}

/** The value at a place: the inverse of place. */
export function valueAt(axis: Pick<Axis, "min" | "max" | "isLog">, at: number): number {
  if (!axis.isLog) return axis.min + at * (axis.max - axis.min);
  return axis.min * (axis.max / axis.min) ** at;
}

/** Round numbers, about as many as count. */
export function linearTicks(min: number, max: number, count: number): number[] {
  const span = max - min;
  if (!(span > 0) || !Number.isFinite(span)) return [min];
  const rough = span / Math.max(1, count);
  const power = 10 ** Math.floor(Math.log10(rough));
  const step = [1, 2, 5, 10].map((factor) => factor * power).find((candidate) => candidate >= rough * 0.999) ?? rough;
  const ticks: number[] = [];
  for (let index = Math.ceil(min / step - 1e-9); index * step <= max + step * 1e-9; ++index) ticks.push(index * step);
  return ticks;
}

/** Decades, with 2 and 5 between them where there are few. */
export function logTicks(min: number, max: number): number[] {
  const factors = Math.log10(max / min) > 3 ? [1] : [1, 2, 5];
  const ticks: number[] = [];
  for (let decade = Math.floor(Math.log10(min)); decade <= Math.log10(max); ++decade)
    for (const factor of factors) {
      const tick = factor * 10 ** decade;
      if (tick >= min * 0.999 && tick <= max * 1.001) ticks.push(tick);
    }
  return ticks.length > 1 ? ticks : linearTicks(min, max, 5);
}

export function ticksOf(axis: Axis, count: number): { at: number; text: string }[] {
  if (axis.labels) return axis.labels.filter(({ at }) => at >= axis.min && at <= axis.max);
  const ticks = axis.isLog ? logTicks(axis.min, axis.max) : linearTicks(axis.min, axis.max, count);
  return tickTexts(ticks).map((text, index) => ({ at: ticks[index]!, text }));
}

/** Numbers of an axis, with the same digits after the point. Readings are printed by the library, not here. */
export function tickTexts(ticks: readonly number[]): string[] {
  const largest = Math.max(...ticks.map(Math.abs));
  const step = ticks.length > 1 ? Math.abs(ticks[1]! - ticks[0]!) : largest;
  if (largest !== 0 && (largest >= 1e6 || largest < 1e-3))
    return ticks.map((tick) =>
      tick === 0 ? "0" : String(Number(tick.toPrecision(4)).toExponential()).replace("e+", "e"),
    );
  const even = ticks.every((tick, i) => i < 2 || Math.abs(tick - ticks[i - 1]! - step) < step * 1e-6);
  if (!even) return ticks.map((tick) => String(Number(tick.toPrecision(6))));
  let digits = 0;
  while (digits < 9 && ticks.some((tick) => Math.abs(Number(tick.toFixed(digits)) - tick) > step / 1000)) ++digits;
  return ticks.map((tick) => (Math.abs(tick) < step / 1e6 ? 0 : tick).toFixed(digits));
}

/** The finite extremes of values; null without any. On a logarithmic axis only values above 0 count. */
export function extremes(values: ArrayLike<number>, aboveZero = false): Range | null {
  let min = Infinity;
  let max = -Infinity;
  for (let index = 0; index < values.length; ++index) {
    const value = values[index]!;
    if (!Number.isFinite(value) || (aboveZero && value <= 0)) continue;
    if (value < min) min = value;
    if (value > max) max = value;
  }
  return min <= max ? { min, max } : null;
}

/** The point nearest to a value in ascending or descending coordinates; else in any order. */
export function nearest(coordinates: ArrayLike<number>, value: number): number {
  const count = coordinates.length;
  const rises = count < 2 || coordinates[count - 1]! >= coordinates[0]!;
  let low = 0;
  let high = count - 1;
  while (high - low > 1) {
    const middle = (low + high) >> 1;
    if (coordinates[middle]! < value === rises) low = middle;
    else high = middle;
  }
  return Math.abs(coordinates[low]! - value) <= Math.abs(coordinates[high]! - value) ? low : high;
}

export function isMonotonic(values: ArrayLike<number>): boolean {
  let rises = true;
  let falls = true;
  for (let index = 1; index < values.length; ++index) {
    if (!(values[index]! >= values[index - 1]!)) rises = false;
    if (!(values[index]! <= values[index - 1]!)) falls = false;
  }
  return rises || falls;
}

export function sameValues(a: ArrayLike<number>, b: ArrayLike<number>): boolean {
  if (a.length !== b.length) return false;
  for (let index = 0; index < a.length; ++index) if (a[index] !== b[index]) return false;
  return true;
}
