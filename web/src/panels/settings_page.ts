// The settings that the results of a system were made with, as indented tables.

import type { Setting } from "../library/document";
import { h, name, put } from "../dom";
import type { Cell } from "../saving/csv";
import type { Entry } from "../app/workspace";
import { PanelFrame } from "./panel";

export async function settingsPage(entry: Entry, system: number): Promise<HTMLElement> {
  const all = await entry.document.settings();
  const found = all.find((settings) => settings.system === system);
  const rows: Cell[][] = [["Identifier", "Module", "Setting", "Value"]];
  const frame = new PanelFrame("Settings", entry.name, { table: () => rows });
  if (!found) {
    put(frame.body, h("p", {}, "This system holds no settings."));
    return frame.element;
  }
  if (!found.whole)
    put(
      frame.body,
      h("p", { className: "failure" }, "A setting is damaged or of an unknown kind: what follows it can't be shown."),
    );
  const { application } = found;
  if (application)
    put(
      frame.body,
      h(
        "p",
        { className: "hint" },
        `Application version ${application.major}.${application.minor} `,
        name(application.build),
      ),
    );
  for (const module of found.modules) {
    put(frame.body, h("h3", {}, name(module.title || module.id)));
    for (const submodule of module.submodules) {
      const body = h("tbody");
      addSettings(body, submodule.settings, 0);
      collect(rows, submodule.settings, `${module.title} / ${submodule.title}`);
      const caption = h("caption", {}, name(submodule.title || submodule.id));
      if (submodule.settings.length > 0)
        put(frame.body, h("div", { className: "table-box" }, h("table", { className: "settings" }, caption, body)));
    }
  }
  return frame.element;
}

function addSettings(body: HTMLElement, settings: readonly Setting[], depth: number): void {
  for (const setting of settings) {
    const title = h("td", {}, name(setting.title || setting.id));
    title.style.paddingLeft = `${10 + Math.min(depth, 12) * 18}px`;
    body.append(
      h(
        "tr",
        { className: setting.visible ? "" : "hidden-setting" },
        title,
        h("td", { className: "value" }, name(setting.text)),
        h("td", { className: "muted" }, setting.kind),
      ),
    );
    if (setting.settings) addSettings(body, setting.settings, depth + 1);
  }
}

function collect(rows: Cell[][], settings: readonly Setting[], module: string): void {
  for (const setting of settings) {
    rows.push([setting.id, module, setting.title, setting.text]);
    if (setting.settings) collect(rows, setting.settings, module);
  }
}
