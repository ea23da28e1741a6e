// Tables as RFC 4180 has them, for spreadsheets.

export type Cell = string | number;

export function csv(rows: readonly (readonly Cell[])[]): string {
  return rows.map((row) => row.map(field).join(",") + "\n").join("");
}

/** As a spreadsheet takes it from the clipboard. */
export function tabbed(rows: readonly (readonly Cell[])[]): string {
  const cell = (value: Cell) => (typeof value === "number" ? field(value) : value.replace(/[\t\r\n]+/g, " "));
  return rows.map((row) => row.map(cell).join("\t") + "\n").join("");
}

function field(cell: Cell): string {
  if (typeof cell === "number") return Number.isFinite(cell) ? shortest(cell) : "";
  // A spreadsheet would take such a text for a formula, but not a number with a unit.
  const isFormula = /^[=+\-@\t\r]/.test(cell) && !/^[-+][\d.]+( [\p{L}\d/²³ ]*)?$/u.test(cell);
  const text = isFormula ? `'${cell}` : cell;
  return /[",\n\r]/.test(text) ? `"${text.replaceAll('"', '""')}"` : text;
}

/** The fewest digits that give the single precision value again. */
export function shortest(value: number): string {
  for (let digits = 6; digits < 9; ++digits) {
    const text = value.toPrecision(digits);
    if (Math.fround(Number(text)) === Math.fround(value)) return String(Number(text));
  }
  return String(Number(value.toPrecision(9)));
}
