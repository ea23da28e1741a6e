// Colours of charts. Curves keep apart for all kinds of colour vision, on light and on dark paper.

export interface Theme {
  paper: string;
  ink: string;
  faint: string; // grid
  muted: string; // frame and ticks
  accent: string; // cursor
  curves: readonly string[];
}

export const light: Theme = {
  paper: "#ffffff",
  ink: "#16202c",
  faint: "#e3e8ee",
  muted: "#5b6876",
  accent: "#b3261e",
  curves: ["#0067a8", "#c74e00", "#00805b", "#a03c87", "#7a6200", "#3f8fd0", "#4a4a4a", "#8a1c3c"],
};

export const dark: Theme = {
  paper: "#141a21",
  ink: "#e6ebf1",
  faint: "#28323d",
  muted: "#97a4b3",
  accent: "#ff8a80",
  curves: ["#56b4f4", "#ff9a4d", "#2fd0a0", "#e58fd0", "#e6cf4a", "#9ad0ff", "#c8c8c8", "#ff7f9c"],
};

const preference = matchMedia("(prefers-color-scheme: dark)");

/** What the user chose on the page; null follows the system. */
let chosen: "light" | "dark" | null = null;

export function isDark(): boolean {
  return chosen ? chosen === "dark" : preference.matches;
}

export function screenTheme(): Theme {
  return isDark() ? dark : light;
}

/** Tells when the colours of the screen change. */
export const themeChanges = new EventTarget();

function apply(): void {
  document.documentElement.dataset.theme = isDark() ? "dark" : "light";
  themeChanges.dispatchEvent(new Event("change"));
}

export function switchTheme(): void {
  chosen = isDark() ? "light" : "dark";
  apply();
}

export function followSystemTheme(): void {
  preference.addEventListener("change", apply);
  apply();
}

// Anchors of a colour map whose lightness rises evenly, so that it reads the same in grey and for all colour vision.
const kAnchors = [0x440154, 0x482878, 0x3e4989, 0x31688e, 0x26828e, 0x1f9e89, 0x35b779, 0x6ece58, 0xb5de2b, 0xfde725];

/** 256 colours as pixels of an image (little-endian RGBA). */
export const colourTable: Uint32Array = (() => {
  const colours = new Uint32Array(256);
  for (let index = 0; index < 256; ++index) {
    const at = (index / 255) * (kAnchors.length - 1);
    const low = Math.min(Math.floor(at), kAnchors.length - 2);
    const mix = (shift: number) => {
      const from = (kAnchors[low]! >> shift) & 255;
      const to = (kAnchors[low + 1]! >> shift) & 255;
      return Math.round(from + (to - from) * (at - low));
    };
    colours[index] = (0xff000000 | (mix(0) << 16) | (mix(8) << 8) | mix(16)) >>> 0;
  }
  return colours;
})();
