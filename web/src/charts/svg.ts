// Drawings as SVG: bars and the frames of colour maps on the screen, and every chart on paper.

import { plain } from "../dom";
import { place, ticksOf, type Axis } from "./ticks";
import type { Theme } from "./theme";

const kNamespace = "http://www.w3.org/2000/svg";
export const kFont = "system-ui, 'DejaVu Sans', sans-serif";

type Attributes = Record<string, string | number>;

export function svg<Tag extends keyof SVGElementTagNameMap>(
  tag: Tag,
  attributes: Attributes = {},
  ...children: (Node | string)[]
): SVGElementTagNameMap[Tag] {
  const element = document.createElementNS(kNamespace, tag);
  for (const [name, value] of Object.entries(attributes)) element.setAttribute(name, String(value));
  element.append(...children.map((child) => (typeof child === "string" ? plain(child) : child)));
  return element;
}

export interface Box {
  left: number;
  top: number;
  width: number;
  height: number;
}

export function drawing(width: number, height: number, title: string): SVGSVGElement {
  const root = svg("svg", { width, height, viewBox: `0 0 ${width} ${height}`, role: "img", "font-family": kFont });
  root.append(svg("title", {}, title));
  return root;
}

export function label(x: number, y: number, text: string, attributes: Attributes): SVGTextElement {
  return svg("text", { x, y, "font-size": 12, ...attributes }, text);
}

export const xOf = (box: Box, axis: Axis, value: number) => box.left + place(axis, value) * box.width;
export const yOf = (box: Box, axis: Axis, value: number) => box.top + (1 - place(axis, value)) * box.height;

/** Keeps labels from running into each other: every n-th of them. */
function thinned<Item>(items: Item[], most: number): Item[] {
  const step = Math.ceil(items.length / Math.max(1, most));
  return items.filter((_, index) => index % step === 0);
}

/** Grid, frame, ticks and titles of a chart. */
export function frame(box: Box, x: Axis, y: Axis, theme: Theme, hasGrid = true): SVGGElement {
  const group = svg("g", { fill: theme.ink, stroke: "none" });
  const bottom = box.top + box.height;
  const ticks = ticksOf(x, box.width / 80);
  const widest = Math.max(3, ...ticks.map(({ text }) => text.length)) * 7.5 + 4;
  // Names that have no room beside each other are tilted.
  const isTilted = x.labels !== undefined && widest * ticks.length > box.width && box.width / ticks.length > 13;
  for (const { at, text } of isTilted ? ticks : thinned(ticks, box.width / widest)) {
    const left = xOf(box, x, at);
    if (hasGrid && !x.labels) group.append(line(left, box.top, left, bottom, theme.faint));
    group.append(line(left, bottom, left, bottom + 4, theme.muted));
    const [right, down] = [left + 4, bottom + 12];
    if (isTilted)
      group.append(
        label(right, down, text, { "text-anchor": "end", "font-size": 11, transform: `rotate(-50 ${right} ${down})` }),
      );
    else group.append(label(left, bottom + 17, text, { "text-anchor": "middle" }));
  }
  for (const { at, text } of thinned(ticksOf(y, box.height / 45), box.height / 16)) {
    const top = yOf(box, y, at);
    if (hasGrid) group.append(line(box.left, top, box.left + box.width, top, theme.faint));
    group.append(line(box.left - 4, top, box.left, top, theme.muted));
    group.append(label(box.left - 7, top + 4, text, { "text-anchor": "end" }));
  }
  group.append(
    svg("rect", { x: box.left, y: box.top, width: box.width, height: box.height, fill: "none", stroke: theme.muted }),
    label(box.left + box.width / 2, bottom + (isTilted ? 52 : 38), x.title, { "text-anchor": "middle" }),
  );
  const middle = box.top + box.height / 2;
  group.append(label(14, middle, y.title, { "text-anchor": "middle", transform: `rotate(-90 14 ${middle})` }));
  return group;
}

export function line(
  x1: number,
  y1: number,
  x2: number,
  y2: number,
  stroke: string,
  more: Attributes = {},
): SVGLineElement {
  return svg("line", { x1, y1, x2, y2, stroke, ...more });
}

/** A clip for what is drawn in a box. */
export function clip(box: Box, id: string): SVGClipPathElement {
  return svg("clipPath", { id }, svg("rect", { x: box.left, y: box.top, width: box.width, height: box.height }));
}

/** Drawings in rows, as one. */
export function together(rows: SVGSVGElement[][]): SVGSVGElement {
  if (rows.length === 1 && rows[0]!.length === 1) return rows[0]![0]!;
  const sizeOf = (figure: SVGSVGElement, side: "width" | "height") => Number(figure.getAttribute(side));
  const all = svg("svg", { role: "img" });
  let [width, height] = [0, 0];
  for (const row of rows) {
    let left = 0;
    for (const figure of row) {
      figure.setAttribute("x", String(left));
      figure.setAttribute("y", String(height));
      left += sizeOf(figure, "width");
      all.append(figure);
    }
    width = Math.max(width, left);
    height += Math.max(...row.map((figure) => sizeOf(figure, "height")));
  }
  for (const [name, value] of Object.entries({ width, height, viewBox: `0 0 ${width} ${height}` }))
    all.setAttribute(name, String(value));
  return all;
}
