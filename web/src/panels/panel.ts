// The frame of each panel: its title, its tools, and the ways to save what it shows.

import { button, h, name, put, replace } from "../dom";
import { csv, tabbed, type Cell } from "../saving/csv";
import { fileName, png, saveBlob, svgText } from "../saving/save";

export interface Panel {
  element: HTMLElement;
  destroy(): void;
}

/** What can be saved of a panel; a panel of tables has no figure. */
export interface Savable {
  table(): Promise<Cell[][]> | Cell[][];
  figure?(): SVGSVGElement;
}

export class PanelFrame {
  readonly tools = h("div", { className: "tools" });
  readonly body = h("div", { className: "body" });
  readonly element: HTMLElement;
  private readonly said = h("span", { className: "said", role: "status" });
  private readonly printed = h("div", { className: "printed" });

  constructor(
    private readonly title: string,
    subtitle = "",
    private readonly savable: Savable | null = null,
  ) {
    const heading = h("h2", {}, name(title));
    const head = h(
      "header",
      {},
      h("div", { className: "titles" }, heading, subtitle ? name(subtitle, "subtitle") : null),
      this.tools,
    );
    this.element = h("section", { className: "panel", aria: { label: title } }, head, this.body);
    if (savable) this.element.append(this.saveRow(savable));
    if (savable?.figure) this.element.append(this.printed);
  }

  /** The drawing for paper takes the place of what is on the screen. */
  beforePrint(): void {
    if (this.savable?.figure) replace(this.printed, this.savable.figure());
  }

  /** Until the work is done the panel is marked as busy; what it fails with is said in it. */
  during(work: Promise<void>): void {
    this.element.setAttribute("aria-busy", "true");
    void work
      .catch((reason: unknown) => put(this.body, failureText(reason)))
      .finally(() => this.element.setAttribute("aria-busy", "false"));
  }

  private saveRow(savable: Savable): HTMLElement {
    const row = h("footer", {});
    const act = (work: () => Promise<string>) => () =>
      void work().then(
        (text) => (this.said.textContent = text),
        (reason: unknown) => (this.said.textContent = messageOf(reason)),
      );
    put(
      row,
      button(
        "Copy table",
        "Copy the values as a table",
        act(async () => {
          await navigator.clipboard.writeText(tabbed(await savable.table()));
          return "Copied";
        }),
      ),
      button(
        "CSV",
        "Save the values as CSV",
        act(async () => {
          saveBlob(new Blob([csv(await savable.table())], { type: "text/csv" }), fileName(this.title, "csv"));
          return "Saved";
        }),
      ),
    );
    const figure = savable.figure?.bind(savable);
    if (figure)
      put(
        row,
        button(
          "PNG",
          "Save the picture as PNG",
          act(async () => {
            saveBlob(await png(figure()), fileName(this.title, "png"));
            return "Saved";
          }),
        ),
        button(
          "SVG",
          "Save the drawing as SVG",
          act(async () => {
            saveBlob(new Blob([svgText(figure())], { type: "image/svg+xml" }), fileName(this.title, "svg"));
            return "Saved";
          }),
        ),
        button(
          "Copy picture",
          "Copy the picture",
          act(async () => {
            await navigator.clipboard.write([new ClipboardItem({ "image/png": await png(figure()) })]);
            return "Copied";
          }),
        ),
      );
    put(row, this.said);
    return row;
  }
}

export function messageOf(reason: unknown): string {
  return reason instanceof Error ? reason.message : String(reason);
}

export function failureText(reason: unknown): HTMLElement {
  return h("p", { className: "failure", role: "alert" }, messageOf(reason));
}
