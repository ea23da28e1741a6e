// The tree at the side: only the rows in sight are elements, so thousands of results cost no more than a few.

import { choice, h, name, replace } from "../dom";
import type { ResultKey, Workspace } from "../app/workspace";
import { isSame, kMostShown } from "../app/workspace";
import { kindsOf, kindTitle, rowsOf, type Filter, type Grouping, type Row } from "./rows";

export class Tree {
  readonly element = h("nav", { className: "browser", aria: { label: "Documents and results" } });
  private readonly search = h("input", {
    type: "search",
    placeholder: "Search results (/)",
    aria: { label: "Search results" },
    oninput: () => this.filterBy({ text: this.search.value }),
  });
  private readonly kinds = h("span");
  private readonly spacer = h("div", { className: "spacer" });
  private readonly list = h("div", {
    className: "tree",
    role: "tree",
    tabIndex: 0,
    aria: { label: "Results", multiselectable: "true" },
    onscroll: () => this.draw(),
    onkeydown: (event) => this.key(event),
  });
  private filter: Filter = { text: "", kind: "", grouping: "channel" };
  private readonly turned = new Set<string>();
  private rows: Row[] = [];
  private active = 0;
  private count = 0; // of open documents
  private anchor: string | null = null;

  constructor(
    private readonly workspace: Workspace,
    /** A row was chosen; on a narrow screen the view then takes the place of the tree. */
    private readonly chosen: () => void,
  ) {
    const groupings = [
      ["channel", "By channel"],
      ["kind", "By kind"],
    ] as const;
    const grouping = choice<Grouping>("Grouping", groupings, "channel", (value) => this.filterBy({ grouping: value }));
    this.element.append(h("div", { className: "filters" }, this.search, this.kinds, grouping), this.list);
    this.list.append(this.spacer);
    workspace.addEventListener("documents", () => this.refresh());
    workspace.addEventListener("selection", () => this.draw());
    new ResizeObserver(() => this.draw()).observe(this.list);
  }

  focusSearch(): void {
    this.search.focus();
    this.search.select();
  }

  private filterBy(change: Partial<Filter>): void {
    this.filter = { ...this.filter, ...change };
    this.list.scrollTop = 0;
    this.active = 0;
    this.update();
  }

  private refresh(): void {
    const { entries } = this.workspace;
    const latest = entries[entries.length - 1];
    const isNew = entries.length > this.count;
    this.count = entries.length;
    const kinds = kindsOf(this.workspace.entries);
    if (!kinds.includes(this.filter.kind)) this.filter.kind = "";
    const values = [["", "All kinds"] as const, ...kinds.map((kind) => [kind, kindTitle(kind)] as const)];
    replace(
      this.kinds,
      choice("Kind", values, this.filter.kind, (kind) => this.filterBy({ kind })),
    );
    this.update();
    if (isNew && latest) this.reveal(`d${latest.id}`);
  }

  /** Brings a row to the top. */
  private reveal(id: string): void {
    const index = this.rows.findIndex((row) => row.id === id);
    if (index < 0) return;
    this.active = index;
    this.list.scrollTop = index * this.rowHeight();
    this.draw();
  }

  private update(): void {
    this.rows = rowsOf(this.workspace, this.filter, this.turned);
    this.active = Math.min(this.active, Math.max(0, this.rows.length - 1));
    this.draw();
  }

  private rowHeight(): number {
    return matchMedia("(pointer: coarse)").matches ? 40 : 28;
  }

  private draw(): void {
    const height = this.rowHeight();
    this.spacer.style.height = `${this.rows.length * height}px`;
    const first = Math.max(0, Math.floor(this.list.scrollTop / height) - 4);
    const last = Math.min(this.rows.length, first + Math.ceil(this.list.clientHeight / height) + 8);
    const selected = new Set(this.workspace.selection.map((key) => `d${key.entry.id}r${key.number}`));
    const elements = this.rows
      .slice(first, last)
      .map((row, index) => this.rowElement(row, first + index, height, selected));
    this.spacer.replaceChildren(...elements);
    this.list.setAttribute("aria-activedescendant", `row-${this.active}`);
  }

  private rowElement(row: Row, index: number, height: number, selected: ReadonlySet<string>): HTMLElement {
    const isSelected = row.result ? selected.has(row.id) : this.isShown(row);
    const element = h("div", {
      className: `row${isSelected ? " selected" : ""}${index === this.active ? " active" : ""}${row.depth === 0 ? " document" : ""}`,
      id: `row-${index}`,
      role: "treeitem",
      data: row.result ? { number: String(row.result.number) } : {},
      title: row.detail && row.result ? `${row.label}, ${row.detail}` : row.label,
      aria: { level: String(row.depth + 1), selected: String(isSelected), setsize: "-1" },
      onclick: (event) => this.click(row, index, event),
    });
    Object.assign(element.style, {
      top: `${index * height}px`,
      height: `${height}px`,
      paddingLeft: `${6 + row.depth * 14}px`,
    });
    if (row.isOpen !== null) {
      element.setAttribute("aria-expanded", String(row.isOpen));
      element.append(h("span", { className: "arrow", aria: { hidden: "true" } }, row.isOpen ? "▾" : "▸"));
    } else if (row.result) {
      const box = h("input", {
        type: "checkbox",
        checked: isSelected,
        tabIndex: -1,
        aria: { label: "Show with others" },
      });
      box.onclick = (event) => {
        event.stopPropagation();
        this.workspace.toggle(row.result!);
      };
      element.append(box);
    } else element.append(h("span", { className: "arrow" }));
    element.append(name(row.label, "label"), name(row.detail, "detail"));
    if (row.depth === 0) element.append(this.closeButton(row));
    else if (row.members.length > 0) element.append(this.allButton(row));
    return element;
  }

  private closeButton(row: Row): HTMLElement {
    const close = h("button", { type: "button", title: `Close ${row.label}`, className: "quiet", tabIndex: -1 }, "×");
    close.onclick = (event) => {
      event.stopPropagation();
      this.workspace.close(row.entry);
    };
    return close;
  }

  private allButton(row: Row): HTMLElement {
    const title = `Show the results of ${row.label} together`;
    const all = h("button", { type: "button", title, className: "quiet", tabIndex: -1 }, "all");
    all.onclick = (event) => {
      event.stopPropagation();
      this.showMembers(row);
    };
    return all;
  }

  private showMembers(row: Row): void {
    this.workspace.select(row.members.slice(0, kMostShown));
    this.chosen();
  }

  private isShown(row: Row): boolean {
    const { shown } = this.workspace;
    return (
      shown.kind !== "results" &&
      row.page?.kind === shown.kind &&
      row.entry === shown.entry &&
      row.page.system === shown.system
    );
  }

  private click(row: Row, index: number, event: MouseEvent): void {
    this.active = index;
    const onArrow = (event.target as Element).classList.contains("arrow");
    if (row.result && event.shiftKey) this.selectRange(row);
    else if (row.result && (event.ctrlKey || event.metaKey)) this.workspace.toggle(row.result);
    else this.open(row, onArrow);
    this.draw();
  }

  private open(row: Row, onlyTurn: boolean): void {
    if (row.result) {
      this.anchor = row.id;
      this.workspace.select([row.result]);
      this.chosen();
    } else if (row.page && !onlyTurn) {
      this.workspace.show({ ...row.page, entry: row.entry });
      this.chosen();
    } else if (row.isOpen !== null) this.turn(row);
  }

  private turn(row: Row): void {
    if (!this.turned.delete(row.id)) this.turned.add(row.id);
    this.update();
  }

  private selectRange(row: Row): void {
    const from = this.rows.findIndex(({ id }) => id === this.anchor);
    const to = this.rows.indexOf(row);
    const between = from < 0 ? [row] : this.rows.slice(Math.min(from, to), Math.max(from, to) + 1);
    const keys = between.map(({ result }) => result).filter((key): key is ResultKey => key !== null);
    const kept = this.workspace.selection.filter((key) => !keys.some((other) => isSame(key, other)));
    this.workspace.select([...kept, ...keys].slice(0, kMostShown));
  }

  private key(event: KeyboardEvent): void {
    const row = this.rows[this.active];
    if (!row || event.target !== this.list) return;
    const steps: Record<string, number> = {
      ArrowDown: 1,
      ArrowUp: -1,
      PageDown: 15,
      PageUp: -15,
      Home: -1e9,
      End: 1e9,
    };
    const step = steps[event.key];
    if (step !== undefined) this.moveTo(this.active + step);
    else if (event.key === "ArrowRight" && row.isOpen === false) this.turn(row);
    else if (event.key === "ArrowLeft" && row.isOpen === true) this.turn(row);
    else if (event.key === "ArrowLeft")
      this.moveTo(this.rows.findLastIndex((r, at) => at < this.active && r.depth < row.depth));
    else if (event.key === "Enter" && row.members.length > 0) this.showMembers(row);
    else if (event.key === "Enter") this.open(row, false);
    else if (event.key === " " && row.result) this.workspace.toggle(row.result);
    else return;
    event.preventDefault();
  }

  private moveTo(index: number): void {
    this.active = Math.min(this.rows.length - 1, Math.max(0, index));
    const height = this.rowHeight();
    const top = this.active * height;
    if (top < this.list.scrollTop) this.list.scrollTop = top;
    else if (top + height > this.list.scrollTop + this.list.clientHeight)
      this.list.scrollTop = top + height - this.list.clientHeight;
    this.draw();
  }
}
