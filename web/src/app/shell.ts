// The page around the views: its head, the tree, the notices, and how files get in.

import { Library } from "../library/document";
import { isDark, switchTheme, themeChanges } from "../charts/theme";
import { button, h, name, plain, put, replace } from "../dom";
import { Tree } from "../browse/tree";
import { comparisonPage } from "../panels/comparison_page";
import { commentsPage, documentPage, hardwarePage, quantitiesPage } from "../panels/document_pages";
import { failureText, messageOf } from "../panels/panel";
import { recordingPage } from "../panels/recording_page";
import { ResultsView } from "../panels/results_view";
import { settingsPage } from "../panels/settings_page";
import { verificationPage } from "../panels/verification_page";
import type { Entry, Shown, Workspace } from "./workspace";

export class Shell {
  private readonly notices = h("div", { className: "notices" });
  private readonly view = h("div", { className: "view" });
  private readonly main = h("main", { tabIndex: -1 }, this.view);
  private readonly compareChoice = h("span");
  private readonly files = h("input", { type: "file", multiple: true, hidden: true });
  private readonly results: ResultsView;
  private readonly tree: Tree;
  private shows = 0;

  constructor(
    private readonly library: Library,
    private readonly workspace: Workspace,
  ) {
    this.results = new ResultsView(this.view, workspace);
    this.tree = new Tree(workspace, () => this.showView(true));
    document.body.append(
      this.head(),
      this.tree.element,
      this.notices,
      this.main,
      h("div", { className: "drop", aria: { hidden: "true" } }, "Drop result documents here"),
    );
    this.files.onchange = () => {
      void this.openFiles(this.files.files);
      this.files.value = "";
    };
    workspace.addEventListener("documents", () => this.documentsChanged());
    workspace.addEventListener("selection", () => {
      this.main.setAttribute("aria-busy", "true");
      const turn = this.shows + 1;
      void this.show().finally(() => turn === this.shows && this.main.setAttribute("aria-busy", "false"));
    });
    this.listen();
    this.documentsChanged();
  }

  /** Opens a document, or says why it can't be read. */
  async open(source: Blob | ArrayBuffer, fileName: string, note = ""): Promise<void> {
    const bar = h("progress", { max: 1 });
    const step = h("span", {}, "waiting");
    const notice = h("div", { className: "notice", role: "status" }, h("span", {}, name(fileName), ": ", step), bar);
    this.notices.append(notice);
    try {
      const document = await this.library.open(source, fileName, (what, part) => {
        step.textContent = what;
        if (part === null) bar.removeAttribute("value");
        else bar.value = part;
      });
      const entry = this.workspace.add(document, fileName, note);
      if (this.workspace.selection.length === 0) this.workspace.show({ kind: "document", entry });
    } catch (reason) {
      this.say(fileName, reason);
    }
    notice.remove();
  }

  /** One after the other, so that they stand in the order in which they were given. */
  private async openFiles(files: FileList | null): Promise<void> {
    for (const file of [...(files ?? [])]) await this.open(file, file.name);
  }

  private say(about: string, reason: unknown): void {
    const text = messageOf(reason);
    const notice = h(
      "div",
      { className: "notice failure", role: "alert" },
      h("span", {}, text.includes(about) ? null : name(`${about}: `), name(text)),
    );
    notice.append(button("×", "Dismiss", () => notice.remove(), "quiet"));
    this.notices.append(notice);
  }

  private head(): HTMLElement {
    const colours = button("", "Light or dark (D)", switchTheme);
    const label = () => (colours.textContent = isDark() ? "Light" : "Dark");
    themeChanges.addEventListener("change", label);
    label();
    return h(
      "header",
      { className: "head" },
      button("☰", "Back to the list of results", () => this.showView(false), "to-list"),
      h("h1", {}, "ZelmResult"),
      button("Open…", "Open result documents (O)", () => this.files.click(), "primary"),
      this.files,
      this.compareChoice,
      h("span", { className: "rest" }),
      button("Print", "Print what is shown (P)", () => this.print()),
      colours,
    );
  }

  private documentsChanged(): void {
    document.body.classList.toggle("empty", this.workspace.entries.length === 0);
    document.title = [...this.workspace.entries.map(({ name }) => plain(name)), "ZelmResult"].join(", ");
    const { entries, compareWith } = this.workspace;
    replace(this.compareChoice);
    if (entries.length > 1) {
      const select = h("select", { title: "Show a second document beside the first", aria: { label: "Compare with" } });
      select.append(h("option", { value: "" }, "Compare with…"));
      for (const entry of entries.slice())
        select.append(
          h("option", { value: String(entry.id), selected: entry === compareWith }, `Compare with ${entry.name}`),
        );
      select.onchange = () => this.compare(entries.find(({ id }) => String(id) === select.value) ?? null);
      put(this.compareChoice, select);
    }
    if (entries.length === 0) {
      this.results.clear();
      replace(
        this.view,
        welcome(() => this.files.click()),
      );
    }
  }

  private compare(other: Entry | null): void {
    this.workspace.compare(other);
    const first = this.workspace.entries.find((entry) => entry !== other);
    if (other && first && this.workspace.selection.length === 0)
      this.workspace.show({ kind: "comparison", entry: first });
  }

  private async show(): Promise<void> {
    const { workspace } = this;
    const turn = ++this.shows;
    const isWanted = () => turn === this.shows;
    const { shown } = workspace;
    if (workspace.entries.length === 0) return;
    try {
      if (shown.kind === "results") {
        if (workspace.selection.length > 0) return await this.results.show(isWanted);
        this.results.clear();
        put(
          this.view,
          h(
            "p",
            { className: "hint" },
            "Select results in the list. With Ctrl or the boxes several are shown together.",
          ),
        );
        return;
      }
      const page = await this.page(shown);
      if (!isWanted()) return;
      this.results.clear();
      put(this.view, page);
    } catch (reason) {
      if (!isWanted()) return;
      this.results.clear();
      put(this.view, failureText(reason));
    }
    this.main.scrollTop = 0;
  }

  private page(shown: Exclude<Shown, { kind: "results" }>): Promise<HTMLElement> | HTMLElement {
    const { entry, system = 0 } = shown;
    switch (shown.kind) {
      case "document":
        return documentPage(entry, this.workspace);
      case "settings":
        return settingsPage(entry, system);
      case "recording":
        return recordingPage(entry, system);
      case "quantities":
        return quantitiesPage(entry);
      case "hardware":
        return hardwarePage(entry);
      case "comments":
        return commentsPage(entry);
      case "verification":
        replace(this.view, h("p", { className: "hint" }, "Checking…"));
        return verificationPage(entry);
      case "comparison":
        return this.workspace.compareWith ? comparisonPage(entry, this.workspace) : documentPage(entry, this.workspace);
    }
  }

  /** On a narrow screen either the list or the view is in sight. */
  private showView(shown: boolean): void {
    document.body.classList.toggle("viewing", shown);
  }

  private print(): void {
    this.results.beforePrint();
    print();
  }

  private listen(): void {
    addEventListener("beforeprint", () => this.results.beforePrint());
    addEventListener("dragover", (event) => {
      event.preventDefault();
      document.body.classList.add("dragging");
    });
    addEventListener("dragleave", (event) => {
      if (event.relatedTarget === null) document.body.classList.remove("dragging");
    });
    addEventListener("drop", (event) => {
      event.preventDefault();
      document.body.classList.remove("dragging");
      void this.openFiles(event.dataTransfer?.files ?? null);
    });
    addEventListener("keydown", (event) => this.key(event));
  }

  private key(event: KeyboardEvent): void {
    const isField = event.target instanceof HTMLInputElement || event.target instanceof HTMLSelectElement;
    if (isField || event.ctrlKey || event.metaKey || event.altKey) return;
    const actions: Record<string, () => void> = {
      "/": () => {
        this.showView(false);
        this.tree.focusSearch();
      },
      o: () => this.files.click(),
      p: () => this.print(),
      d: switchTheme,
      Escape: () => this.showView(false),
    };
    const action = actions[event.key];
    if (!action) return;
    event.preventDefault();
    action();
  }
}

function welcome(open: () => void): HTMLElement {
  return h(
    "section",
    { className: "welcome" },
    h("h2", {}, "Drop result documents here"),
    h("p", {}, "or ", button("open files", "Open result documents", open, "primary"), "."),
    h("p", { className: "hint" }, "They are read on this computer, inside this page. Nothing is sent anywhere."),
  );
}
