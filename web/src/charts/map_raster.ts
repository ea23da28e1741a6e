// The picture of a waterfall: values as colours, and as many pixels as the screen has.

import { colourTable } from "./theme";
import { valueAt, type Axis, type Range } from "./ticks";

/** Values of slices along lines, row-major: a slice after the other. */
export interface Grid {
  values: Float32Array;
  slices: number;
  lines: number;
  /** Where slices and lines lie. Lines rise; slices may lie in any order, as the speeds of a run-up and a run-down do. */
  sliceAt: Float32Array;
  lineAt: Float32Array;
}

/** Slices in the order of where they lie, and the edges between them. */
export interface SliceOrder {
  order: Int32Array;
  places: Float64Array;
  edges: Float64Array; // one more than slices
}

export function orderSlices(sliceAt: Float32Array): SliceOrder {
  const usable = Array.from(sliceAt.keys()).filter((slice) => Number.isFinite(sliceAt[slice]!));
  const order = Int32Array.from(usable.sort((a, b) => sliceAt[a]! - sliceAt[b]!));
  const places = Float64Array.from(order, (slice) => sliceAt[slice]!);
  return { order, places, edges: edgesOf(places) };
}

/** The middles between ascending places, and half a step more at the ends. */
export function edgesOf(places: ArrayLike<number>): Float64Array {
  const count = places.length;
  const edges = new Float64Array(count + 1);
  for (let index = 1; index < count; ++index) edges[index] = (places[index - 1]! + places[index]!) / 2;
  const first = count > 1 ? (places[1]! - places[0]!) / 2 : 0.5;
  const last = count > 1 ? (places[count - 1]! - places[count - 2]!) / 2 : 0.5;
  edges[0] = (places[0] ?? 0) - first;
  edges[count] = (places[count - 1] ?? 0) + last;
  return edges;
}

/** Per pixel the first and the last cell that it shows; -1 outside of all cells. */
function cellsOf(axis: Pick<Axis, "min" | "max" | "isLog">, edges: Float64Array, pixels: number): Int32Array {
  const cells = new Int32Array(pixels * 2);
  const count = edges.length - 1;
  let cell = 0;
  for (let pixel = 0; pixel < pixels; ++pixel) {
    const low = valueAt(axis, pixel / pixels);
    const high = valueAt(axis, (pixel + 1) / pixels);
    while (cell < count && edges[cell + 1]! <= low) ++cell;
    let last = cell;
    while (last + 1 < count && edges[last + 1]! < high) ++last;
    const isOutside = cell >= count || high <= edges[0]!;
    cells[pixel * 2] = isOutside ? -1 : cell;
    cells[pixel * 2 + 1] = last;
  }
  return cells;
}

/** The picture, the lowest slice at the bottom. Of the values that share a pixel the highest shows, so no line gets lost. */
export function raster(
  grid: Grid,
  slices: SliceOrder,
  x: Pick<Axis, "min" | "max" | "isLog">,
  y: Pick<Axis, "min" | "max" | "isLog">,
  colours: Range,
  width: number,
  height: number,
): ImageData {
  const image = new ImageData(width, height);
  const pixels = new Uint32Array(image.data.buffer);
  const columns = cellsOf(x, edgesOf(grid.lineAt), width);
  const rows = cellsOf(y, slices.edges, height);
  const scale = 255 / (colours.max - colours.min || 1);
  const highest = new Float32Array(width);
  let drawn = -1; // the one slice that the row below shows
  for (let row = 0; row < height; ++row) {
    const first = rows[row * 2]!;
    const last = rows[row * 2 + 1]!;
    if (first < 0) continue;
    const target = (height - 1 - row) * width;
    if (first === last && drawn === first) {
      pixels.copyWithin(target, target + width, target + 2 * width);
      continue;
    }
    highest.fill(-Infinity);
    for (let at = first; at <= last; ++at) raise(highest, grid, slices.order[at]!, columns);
    for (let column = 0; column < width; ++column) {
      const value = highest[column]!;
      if (value === -Infinity) continue;
      const index = (value - colours.min) * scale;
      pixels[target + column] = colourTable[index <= 0 ? 0 : index >= 255 ? 255 : index | 0]!;
    }
    drawn = first === last ? first : -1;
  }
  return image;
}

function raise(highest: Float32Array, grid: Grid, slice: number, columns: Int32Array): void {
  const start = slice * grid.lines;
  const values = grid.values;
  for (let column = 0; column < highest.length; ++column) {
    const first = columns[column * 2]!;
    if (first < 0) continue;
    const last = start + columns[column * 2 + 1]!;
    let most = highest[column]!;
    for (let at = start + first; at <= last; ++at) if (values[at]! > most) most = values[at]!;
    highest[column] = most;
  }
}
