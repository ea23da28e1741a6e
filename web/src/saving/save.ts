// What is shown, as files and on the clipboard. Nothing leaves the page but into the hands of the user.

import { h } from "../dom";

export function saveBlob(blob: Blob, fileName: string): void {
  const url = URL.createObjectURL(blob);
  h("a", { href: url, download: fileName }).click();
  setTimeout(() => URL.revokeObjectURL(url), 60_000);
}

export function svgText(figure: SVGSVGElement): string {
  const copy = figure.cloneNode(true) as SVGSVGElement;
  copy.setAttribute("xmlns", "http://www.w3.org/2000/svg");
  return new XMLSerializer().serializeToString(copy);
}

/** Twice the size of the drawing, enough for a printed report. */
export async function png(figure: SVGSVGElement): Promise<Blob> {
  const width = Number(figure.getAttribute("width"));
  const height = Number(figure.getAttribute("height"));
  const url = URL.createObjectURL(new Blob([svgText(figure)], { type: "image/svg+xml" }));
  try {
    const image = new Image();
    image.src = url;
    await image.decode();
    const canvas = h("canvas", { width: 2 * width, height: 2 * height });
    canvas.getContext("2d")!.drawImage(image, 0, 0, canvas.width, canvas.height);
    return await new Promise((resolve, reject) =>
      canvas.toBlob((blob) => (blob ? resolve(blob) : reject(new Error("the browser made no picture"))), "image/png"),
    );
  } finally {
    URL.revokeObjectURL(url);
  }
}

/** A file name of a title, without what file systems mind. */
export function fileName(title: string, extension: string): string {
  const name = title
    .replace(/[^\p{L}\p{N}._ -]+/gu, " ")
    .replace(/\s+/g, " ")
    .trim()
    .slice(0, 80);
  return `${name || "zelmresult"}.${extension}`;
}
