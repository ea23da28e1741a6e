// Harmonic and sideband lines around the cursor of a chart.

import type { CursorLine } from "../charts/curves";
import { h, put, toggle } from "../dom";

const kMostHarmonics = 20;
const kSidebands = 5;

/** The lines of a cursor, and the tools that choose them. */
export class CursorTools {
  readonly element = h("span", { className: "cursor-tools" });
  private x: number | null = null;
  private readonly at = h("input", {
    type: "number",
    step: "any",
    className: "short",
    aria: { label: "Cursor" },
    onchange: () => this.entered(),
  });
  private readonly spacing = h("input", {
    type: "number",
    step: "any",
    min: "0",
    className: "short",
    title: "Distance of the sidebands",
    aria: { label: "Distance of the sidebands" },
    oninput: () => this.changed(),
  });
  private readonly harmonics = toggle("Harmonics", "Lines at the multiples of the cursor (H)", false, () =>
    this.changed(),
  );
  private readonly sidebands = toggle("Sidebands", "Lines to both sides of the cursor (S)", false, () => {
    this.spacing.hidden = !this.sidebands.on();
    this.changed();
  });

  constructor(
    unit: string,
    private readonly changed: () => void,
    private readonly moved: (x: number) => void,
  ) {
    this.spacing.hidden = true;
    put(
      this.element,
      h("label", {}, "Cursor ", this.at, unit ? ` ${unit}` : ""),
      this.harmonics.element,
      this.sidebands.element,
      this.spacing,
    );
  }

  set(x: number): void {
    this.x = x;
    this.at.value = String(Number(x.toPrecision(7)));
    if (this.spacing.value === "" && x > 0) this.spacing.value = String(Number((x / 20).toPrecision(2)));
    this.changed();
  }

  lines(): CursorLine[] {
    if (this.x === null) return [];
    const lines: CursorLine[] = [{ x: this.x, label: this.harmonics.on() ? "1" : "", isMain: true }];
    if (this.harmonics.on() && this.x > 0)
      for (let order = 2; order <= kMostHarmonics; ++order)
        lines.push({ x: order * this.x, label: String(order), isMain: false });
    const spacing = Number(this.spacing.value);
    if (this.sidebands.on() && spacing > 0)
      for (let side = -kSidebands; side <= kSidebands; ++side)
        if (side !== 0)
          lines.push({ x: this.x + side * spacing, label: side > 0 ? `+${side}` : String(side), isMain: false });
    return lines;
  }

  /** Whether a key was one of these tools. */
  key(key: string): boolean {
    if (key !== "h" && key !== "s") return false;
    (key === "h" ? this.harmonics : this.sidebands).element.click();
    return true;
  }

  private entered(): void {
    const x = Number(this.at.value);
    if (this.at.value === "" || !Number.isFinite(x)) return;
    this.moved(x);
  }
}
