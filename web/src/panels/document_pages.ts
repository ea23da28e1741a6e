// Pages about a document: what it is, and its tables of quantities, hardware and comments.

import { button, facts, h, name, put, table } from "../dom";
import type { Entry, Workspace } from "../app/workspace";
import { kindTitle } from "../browse/rows";
import { PanelFrame } from "./panel";

export function documentPage(entry: Entry, workspace: Workspace): HTMLElement {
  const { info, results } = entry.document;
  const first = results[0];
  const frame = new PanelFrame(entry.name, entry.note);
  for (const damage of info.damages) put(frame.body, h("p", { className: "failure", role: "alert" }, name(damage)));
  if (info.damages.length > 0)
    put(
      frame.body,
      button("Check", "What is damaged, and where", () => workspace.show({ kind: "verification", entry })),
    );
  put(
    frame.body,
    facts([
      ["Results", String(results.length)],
      ["Systems", String(info.systems.length)],
      ["Caption", first?.caption ?? ""],
      ["Date", first?.date ?? ""],
      ["Made by", first?.analyzer ?? ""],
      ["Holds", info.contents.join(", ")],
      ["Version of the format", info.version === null ? "" : String(info.version)],
    ]),
  );
  const kinds = new Map<string, number[]>();
  for (const { kind, number } of results) kinds.set(kind, [...(kinds.get(kind) ?? []), number]);
  const list = h("div", { className: "kinds" });
  for (const [kind, numbers] of kinds)
    put(
      list,
      button(`${kindTitle(kind)} (${numbers.length})`, `Show ${kindTitle(kind)}`, () =>
        workspace.select(numbers.slice(0, kind === "waterfall" ? 2 : 32).map((number) => ({ entry, number }))),
      ),
    );
  put(frame.body, h("h3", {}, "Results"), list);
  if (info.comments.length > 0) put(frame.body, h("h3", {}, "Comments"), commentList(info.comments));
  return frame.element;
}

function commentList(comments: readonly string[]): HTMLElement {
  return h("div", {}, ...comments.map((comment) => h("p", { className: "comment-box" }, name(comment))));
}

export function commentsPage(entry: Entry): HTMLElement {
  const frame = new PanelFrame("Comments", entry.name);
  put(frame.body, commentList(entry.document.info.comments));
  return frame.element;
}

const kHardwareTitles: Record<string, string> = {
  shortName: "Name",
  serialNumber: "Serial number",
  diskName: "Disk",
  diskSerialNumber: "Serial number of the disk",
};

export function hardwarePage(entry: Entry): HTMLElement {
  const frame = new PanelFrame("Hardware", entry.name);
  for (const part of entry.document.info.hardware)
    put(
      frame.body,
      facts(Object.entries(part).map(([key, value]) => [kHardwareTitles[key] ?? key, String(value)] as const)),
    );
  return frame.element;
}

export function quantitiesPage(entry: Entry): HTMLElement {
  const { quantities } = entry.document.info;
  const columns = [
    { title: "Code", cell: (q: (typeof quantities)[0]) => q.code },
    { title: "Name", cell: (q: (typeof quantities)[0]) => name(q.name) },
    { title: "Key", cell: (q: (typeof quantities)[0]) => (q.key === q.name ? "" : name(q.key)) },
    { title: "Unit", cell: (q: (typeof quantities)[0]) => name(q.unit) },
    { title: "0 dB", cell: (q: (typeof quantities)[0]) => q.decibels?.referenceText ?? "" },
    { title: "Dimension", cell: (q: (typeof quantities)[0]) => q.dimensionText },
  ];
  const rows = () => [
    ["Code", "Key", "Name", "Unit", "0 dB", "Dimension"],
    ...quantities.map((q) => [q.code, q.key, q.name, q.unit, q.decibels?.referenceText ?? "", q.dimensionText]),
  ];
  const frame = new PanelFrame("Quantities", entry.name, { table: rows });
  put(frame.body, table(columns, quantities));
  return frame.element;
}
