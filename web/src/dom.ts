// Elements of the page. Texts become text nodes, never markup, so nothing that a document holds is ever parsed.

type Child = Node | string | null | undefined | false;
type Properties<Tag extends keyof HTMLElementTagNameMap> = Partial<Omit<HTMLElementTagNameMap[Tag], "style">> & {
  aria?: Record<string, string>;
  data?: Record<string, string>;
  role?: string;
};

export function h<Tag extends keyof HTMLElementTagNameMap>(
  tag: Tag,
  properties: Properties<Tag> = {},
  ...children: Child[]
): HTMLElementTagNameMap[Tag] {
  const element = document.createElement(tag);
  const { aria, data, role, ...rest } = properties;
  Object.assign(element, rest);
  if (role) element.setAttribute("role", role);
  for (const [name, value] of Object.entries(aria ?? {})) element.setAttribute(`aria-${name}`, value);
  for (const [name, value] of Object.entries(data ?? {})) element.dataset[name] = value;
  put(element, ...children);
  return element;
}

/** Appends, with nothing for what is null or false. */
export function put(parent: Element, ...children: Child[]): void {
  for (const child of children) if (child) parent.append(typeof child === "string" ? plain(child) : child);
}

export function replace(parent: Element, ...children: Child[]): void {
  parent.replaceChildren();
  put(parent, ...children);
}

/** Control characters as their pictures, so that they are seen and do nothing. */
export function plain(text: string): string {
  return text.replace(/[\u0000-\u0008\u000b-\u001f\u007f-\u009f]/g, (character) => {
    const code = character.charCodeAt(0);
    if (code === 0x0d) return "";
    return code < 0x20 ? String.fromCharCode(0x2400 + code) : code === 0x7f ? "\u2421" : "\ufffd";
  });
}

/** A text of a document: its direction ends with it. */
export function name(text: string, className = ""): HTMLElement {
  return h("bdi", { className: text.length <= 24 ? `${className} short-name` : className }, text);
}

export function button(label: string, title: string, onclick: () => void, className = ""): HTMLButtonElement {
  return h("button", { type: "button", title, onclick, className }, label);
}

export interface Switch {
  element: HTMLElement;
  on(): boolean;
  set(on: boolean): void;
}

/** A button that is on or off. */
export function toggle(label: string, title: string, on: boolean, changed: (on: boolean) => void): Switch {
  const element = button(label, title, () => {
    set(!state());
    changed(state());
  });
  const state = () => element.getAttribute("aria-pressed") === "true";
  const set = (value: boolean) => element.setAttribute("aria-pressed", String(value));
  set(on);
  return { element, on: state, set };
}

/** One of several. */
export function choice<Value extends string>(
  label: string,
  values: readonly (readonly [Value, string])[],
  chosen: Value,
  changed: (value: Value) => void,
): HTMLElement {
  const select = h("select", { title: label, aria: { label }, onchange: () => changed(select.value as Value) });
  for (const [value, text] of values) select.append(h("option", { value, selected: value === chosen }, text));
  return select;
}

export interface Column<Row> {
  title: string;
  cell(row: Row): Child;
  isNumber?: boolean;
}

export function table<Row>(columns: Column<Row>[], rows: readonly Row[], className = ""): HTMLElement {
  const head = h("tr", {}, ...columns.map((c) => h("th", { className: c.isNumber ? "number" : "" }, c.title)));
  const body = h("tbody");
  for (const row of rows)
    body.append(h("tr", {}, ...columns.map((c) => h("td", { className: c.isNumber ? "number" : "" }, c.cell(row)))));
  return h("div", { className: "table-box" }, h("table", { className }, h("thead", {}, head), body));
}

/** A table of names and values, without the empty ones. */
export function facts(rows: readonly (readonly [string, string])[]): HTMLElement {
  const list = h("dl", { className: "facts" });
  for (const [title, value] of rows) if (value) list.append(h("dt", {}, title), h("dd", {}, name(value)));
  return list;
}
