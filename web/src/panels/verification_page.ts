// Whether a document is whole, and what of a damaged one can be read.

import { h, name, put, table, type Column } from "../dom";
import type { Entry } from "../app/workspace";
import { PanelFrame } from "./panel";

export async function verificationPage(entry: Entry): Promise<HTMLElement> {
  const found = await entry.document.verify();
  const rows = () => [
    ["Kind", "Offset", "Text"],
    ...found.damages.map(({ offset, text }) => ["damage", offset, text]),
    ...found.notes.map(({ offset, text }) => ["note", offset, text]),
  ];
  const frame = new PanelFrame("Check", entry.name, { table: rows });
  const isWhole = found.verdict === "whole";
  const sentence = isWhole
    ? `The document is whole: all ${found.results} results can be read.`
    : `The document is ${found.verdict === "damaged" ? "damaged" : "no result document"}: ${found.readable} of ${found.results} results can be read.`;
  put(frame.body, h("p", { className: isWhole ? "good" : "failure" }, sentence));
  if (!found.loads && !isWhole)
    put(
      frame.body,
      h(
        "p",
        {},
        "It doesn't load as a whole. What can be read is in the tree; zmxf salvage makes a copy that loads.",
      ),
    );
  const columns: Column<{ offset: number; text: string }>[] = [
    { title: "At", cell: (one) => `0x${one.offset.toString(16).toUpperCase()}`, isNumber: true },
    { title: "What", cell: (one) => name(one.text) },
  ];
  if (found.damages.length > 0) put(frame.body, h("h3", {}, "Damage"), table(columns, found.damages));
  if (found.notes.length > 0) put(frame.body, h("h3", {}, "Notes, which are no damage"), table(columns, found.notes));
  return frame.element;
}
