// The selected results: levels in one table, curves and bars that agree in one chart, each waterfall as a map.

import { button, h, name, put, replace } from "../dom";
import { headerOf, isSame, kMostShown, type Entry, type Loaded, type ResultKey, type Workspace } from "../app/workspace";
import { BandsPanel } from "./bands_panel";
import { differenceRows, differencesOf, differenceTable } from "./comparison_page";
import { CurvePanel } from "./curve_panel";
import { LevelsPanel } from "./levels_panel";
import { failureText, messageOf, PanelFrame, type Panel } from "./panel";
import { isBanded, quantityOf, sourcesOf, type Source } from "./sources";
import { WaterfallPanel } from "./waterfall_panel";

const kLevelForms = ["level", "broad_band", "global_level", "order_levels"];

export class ResultsView {
  private panels: Panel[] = [];

  constructor(
    private readonly host: HTMLElement,
    private readonly workspace: Workspace,
  ) {}

  clear(): void {
    for (const panel of this.panels) panel.destroy();
    this.panels = [];
    replace(this.host);
  }

  beforePrint(): void {
    for (const panel of this.panels) if ("beforePrint" in panel) (panel as { beforePrint(): void }).beforePrint();
  }

  /** Reads what is selected and shows it, unless isWanted says that something else was selected meanwhile. */
  async show(isWanted: () => boolean): Promise<void> {
    const keys = this.keys();
    const late = setTimeout(() => isWanted() && replace(this.host, h("p", { className: "hint" }, "Reading…")), 150);
    const loaded: Loaded[] = [];
    const failures: HTMLElement[] = [];
    for (const key of keys.slice(0, kMostShown)) {
      try {
        loaded.push(await this.workspace.read(key));
      } catch (reason) {
        failures.push(failureText(`Result ${key.number}, ${headerOf(key).process}: ${messageOf(reason)}`));
      }
      if (!isWanted()) break;
    }
    clearTimeout(late);
    if (!isWanted()) return;
    this.clear();
    put(this.host, ...failures);
    if (keys.length > kMostShown)
      put(this.host, h("p", { className: "hint" }, `The first ${kMostShown} of ${keys.length} are shown.`));
    this.addPanels(loaded);
    await this.addDifferences(isWanted);
  }

  /** In a comparison each selected result and what takes its place in the other document. */
  private keys(): ResultKey[] {
    const keys = [...this.workspace.selection];
    for (const key of this.workspace.selection) {
      const other = this.workspace.counterpart(key);
      if (other && !keys.some((known) => isSame(known, other))) keys.push(other);
    }
    return keys;
  }

  private addPanels(loaded: Loaded[]): void {
    const levels = loaded.filter(({ result }) => kLevelForms.includes(result.form));
    if (levels.length > 0) this.add(new LevelsPanel(levels, this.workspace.entries.length > 1));
    const groups = new Map<string, Source[]>();
    for (const one of loaded)
      for (const source of sourcesOf(one)) {
        const group = groupOf(source);
        groups.set(group, [...(groups.get(group) ?? []), source]);
      }
    for (const [group, sources] of groups)
      this.add(
        isBanded(sources[0]!.loaded.result)
          ? new BandsPanel(sources, this.workspace)
          : new CurvePanel(sources, this.workspace, group),
      );
    for (const one of loaded) {
      const { result } = one;
      if (result.form === "waterfall")
        this.add(new WaterfallPanel(one, this.workspace.entries.length > 1, this.peersOf(one, loaded)));
      if (result.lostReferences) put(this.host, failureText(result.lostReferences));
      const isShown = result.form === "waterfall" || kLevelForms.includes(result.form) || sourcesOf(one).length > 0;
      if (!isShown) put(this.host, failureText(`Result ${one.number} holds no values that can be shown.`));
    }
  }

  /** What a waterfall is compared with. */
  private peersOf(one: Loaded, loaded: readonly Loaded[]): Loaded[] {
    const areMates = (a: ResultKey, b: ResultKey) =>
      this.workspace.counterpart(a)?.number === b.number && b.entry === this.workspace.compareWith;
    return loaded.filter((other) => other !== one && (areMates(one, other) || areMates(other, one)));
  }

  private add(panel: Panel): void {
    this.panels.push(panel);
    this.host.append(panel.element);
  }

  private async addDifferences(isWanted: () => boolean): Promise<void> {
    const { workspace } = this;
    const pairs = workspace.selection.flatMap((first) => {
      const second = workspace.counterpart(first);
      return second ? [{ first, second }] : [];
    });
    if (pairs.length === 0) {
      const other = workspace.compareWith;
      const own = workspace.selection.find(({ entry }) => entry !== other);
      if (other && own) this.addMissing(own.entry, other);
      return;
    }
    const differences = (await Promise.all(pairs.map((pair) => differencesOf(pair, workspace)))).flat();
    if (!isWanted() || differences.length === 0) return;
    const [first, second] = [pairs[0]!.first.entry.name, pairs[0]!.second.entry.name];
    const frame = new PanelFrame("Differences", `${second} minus ${first}; of curves where they differ most`, {
      table: () => differenceRows(differences, first, second),
    });
    put(frame.tools, this.toAll(pairs[0]!.first.entry));
    put(frame.body, differenceTable(differences, first, second));
    this.host.append(frame.element);
  }

  private addMissing(first: Entry, second: Entry): void {
    put(this.host, h("p", { className: "hint" }, name(second.name), " holds no such result. ", this.toAll(first)));
  }

  /** The way to the page of both documents. */
  private toAll(entry: Entry): HTMLElement {
    return button("Both documents", "Differences of all levels, and which channels go together", () =>
      this.workspace.show({ kind: "comparison", entry }),
    );
  }
}

/** What agrees in this shares a chart: form, quantity, unit and axis. */
function groupOf(source: Source): string {
  const { result } = source.loaded;
  const quantity = quantityOf(source);
  const axis = source.axis?.quantity;
  const form = isBanded(result)
    ? `bands ${source.values.length} ${source.axis?.values?.[0] ?? ""}`
    : result.form === "overview" || result.form === "pair"
      ? "vector"
      : result.form;
  return JSON.stringify([
    form,
    quantity?.key,
    quantity?.unit,
    source.axis?.name ?? "",
    axis?.key,
    axis?.unit,
    source.phase !== undefined,
    result.header.kind === "coherence",
  ]);
}
