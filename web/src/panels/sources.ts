// What a result gives to charts: its columns of values with the axis that they lie along.

import type { LabelledArray, LabelledResult, Quantity, Scale } from "../library/document";
import type { Loaded } from "../app/workspace";
import { channelTitle } from "../browse/rows";

/** One column of a result, in SI units. */
export interface Source {
  loaded: Loaded;
  detail: string; // "Order 2", "minimum"; "" when it is all of the result
  axis: LabelledArray | null; // null where points are only counted
  array: LabelledArray; // whose unit and digits the values have
  values: Float32Array;
  lower?: Float32Array;
  phase?: Float32Array;
}

export function arrayNamed(result: LabelledResult, name: string): LabelledArray | null {
  return [...result.data, ...result.coordinates].find((array) => array.name === name) ?? null;
}

export function axisOf(result: LabelledResult, dimension: string): LabelledArray | null {
  const name = result.axes[dimension];
  return name === undefined ? null : (result.coordinates.find((array) => array.name === name) ?? null);
}

/** As floats, whatever numbers they are. */
export function floats(array: LabelledArray): Float32Array {
  return array.values instanceof Float32Array ? array.values : Float32Array.from(array.values ?? []);
}

/** The columns of a result that are curves or bars; none of levels and waterfalls. */
export function sourcesOf(loaded: Loaded): Source[] {
  const { result } = loaded;
  switch (result.form) {
    case "vector":
      return columns(loaded, ["value"], (array) => (array.name === "value" ? "" : array.title));
    case "bands":
      return columns(loaded, ["value", "minimum", "maximum"], (array) => (array.name === "value" ? "" : array.title));
    case "overview":
      return [
        ...envelope(loaded, "upper", "lower", "envelope"),
        ...columns(loaded, ["level_1", "level_2", "level_3", "level_4"], titled),
      ];
    case "pair":
      return isBanded(result)
        ? columns(loaded, ["minimum", "maximum"], titled)
        : envelope(loaded, "maximum", "minimum", "range");
    case "order_track":
      return orders(loaded);
    default:
      return [];
  }
}

const titled = (array: LabelledArray) => array.title;

export function isBanded(result: LabelledResult): boolean {
  return result.data.some((array) => array.dimensions.includes("band")) && result.form !== "waterfall";
}

function columns(loaded: Loaded, names: string[], detail: (array: LabelledArray) => string): Source[] {
  const found: Source[] = [];
  for (const name of names) {
    const array = loaded.result.data.find((candidate) => candidate.name === name);
    if (!array?.values || array.dimensions.length !== 1) continue;
    const axis = axisOf(loaded.result, array.dimensions[0]!);
    const source: Source = { loaded, detail: detail(array), axis, array, values: floats(array) };
    if (array.complex) source.phase = array.complex.phase;
    found.push(source);
  }
  return found;
}

function envelope(loaded: Loaded, upper: string, lower: string, detail: string): Source[] {
  const top = loaded.result.data.find(({ name }) => name === upper);
  const bottom = loaded.result.data.find(({ name }) => name === lower);
  if (!top?.values || !bottom?.values) return columns(loaded, [upper, lower], titled);
  const axis = axisOf(loaded.result, top.dimensions[0]!);
  // The two edges of a pair may have lengths of their own.
  if (top.values.length !== bottom.values.length) return columns(loaded, [upper, lower], titled);
  return [{ loaded, detail, axis, array: top, values: floats(top), lower: floats(bottom) }];
}

function orders(loaded: Loaded): Source[] {
  const { result } = loaded;
  const array = result.data.find(({ name }) => name === "value");
  if (!array?.values) return [];
  const [count = 0, points = 0] = array.shape;
  const names = arrayNamed(result, "order_name")?.texts;
  const numbers = arrayNamed(result, "order")?.values;
  const nameOf = (order: number) => names?.[order] || String(numbers?.[order] ?? order + 1);
  const axis = axisOf(result, array.dimensions[1] ?? "");
  const values = floats(array);
  return Array.from({ length: count }, (_, order) => ({
    loaded,
    detail: nameOf(order).replace(/^(?=[\d.]+$)/, "Order "),
    axis,
    array,
    values: values.subarray(order * points, (order + 1) * points),
  }));
}

export function quantityOf(source: Source): Quantity | null {
  return source.array.quantity ?? source.loaded.result.quantity;
}

/** What is written at an axis of these values. */
export function axisTitle(array: LabelledArray, scale: Scale, fallback: Quantity | null = null): string {
  const quantity = array.quantity ?? fallback;
  if (!quantity) return array.title;
  const weighting = array.weighting ? ` (${array.weighting})` : "";
  if (scale === "decibels" && quantity.decibels)
    return `${quantity.name}, dB${weighting} re ${quantity.decibels.referenceText}`;
  const unit = scale === "si" ? quantity.siSymbol : quantity.unit;
  return `${quantity.name}${weighting}${unit && unit !== "-" ? ` in ${unit}` : ""}`;
}

/** Channels, process and what the column is; the document where several are open. */
export function sourceTitle(source: Source, withDocument: boolean): string {
  const { header } = source.loaded.result;
  const channels = header.reference ? `${channelTitle(header)} / ${header.reference}` : channelTitle(header);
  const document = withDocument ? ` (${source.loaded.entry.name})` : "";
  return `${channels}: ${header.process || source.loaded.result.kindName}${source.detail ? `, ${source.detail}` : ""}${document}`;
}
