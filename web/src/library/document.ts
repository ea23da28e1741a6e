// The library for the page: documents are opened and read in a worker, so nothing here blocks. Every promise that
// fails does so with a LibraryFailure, whose message is a sentence to show; the library goes on after it.
//
//     const library = new Library(new Worker(url));
//     const document = await library.open(file, file.name, (step, part) => ...);
//     const spectrum = await document.read(3);
//     const levels = await document.scaled(spectrum.data[0], "decibels");
//     const [text] = await document.texts(spectrum.data[0], [spectrum.data[0].values[17]], "decibels"); // "78.95 dB"
//     document.close();
//
// The worker is src/library/worker.ts, bundled by itself into one script. It needs no other file: the WebAssembly
// module is inside.

import type { Answer, Calls, Request } from "./protocol";
import { LibraryFailure } from "./types";
import type {
  Digits,
  DocumentInfo,
  Header,
  LabelledResult,
  Progress,
  Scale,
  SystemRecording,
  SystemSettings,
  Verification,
} from "./types";

export * from "./types";

interface Waiting {
  resolve(value: unknown): void;
  reject(reason: LibraryFailure): void;
  progress: Progress | undefined;
}

export class Library {
  private readonly waiting = new Map<number, Waiting>();
  private lastRequest = 0;

  /** Takes the worker over. */
  constructor(private readonly worker: Worker) {
    worker.onmessage = (event: MessageEvent<Answer>) => this.take(event.data);
    worker.onerror = (event) => {
      for (const { reject } of this.waiting.values())
        reject(new LibraryFailure(`the library has stopped: ${event.message}`));
      this.waiting.clear();
    };
  }

  /** Opens a file, or bytes, which are taken over. Several documents may be open at once. */
  async open(source: Blob | ArrayBuffer, name: string, progress?: Progress): Promise<OpenDocument> {
    const { document, info, results } = await this.call("open", { source, name }, progress);
    return new OpenDocument(this, document, info, results);
  }

  /** @internal */
  call<Name extends keyof Calls>(
    name: Name,
    parameters: Calls[Name]["parameters"],
    progress?: Progress,
  ): Promise<Calls[Name]["result"]> {
    return new Promise<unknown>((resolve, reject) => {
      const request: Request = { id: ++this.lastRequest, name, parameters };
      this.waiting.set(request.id, { resolve, reject, progress });
      const source = "source" in parameters ? parameters.source : null;
      this.worker.postMessage(request, source instanceof ArrayBuffer ? [source] : []);
    }) as Promise<Calls[Name]["result"]>;
  }

  private take(answer: Answer): void {
    const waiting = this.waiting.get(answer.id);
    if (!waiting) return;
    if ("step" in answer) {
      waiting.progress?.(answer.step, answer.part);
      return;
    }
    this.waiting.delete(answer.id);
    if ("failure" in answer) waiting.reject(new LibraryFailure(answer.failure));
    else waiting.resolve(answer.result);
  }
}

/** A document that stays open until it is closed. */
export class OpenDocument {
  /** Made by Library.open. */
  constructor(
    private readonly library: Library,
    private readonly document: number,
    readonly info: DocumentInfo,
    readonly results: readonly Header[],
  ) {}

  /** The result with all of its data: a waterfall with all slices. */
  read(number: number): Promise<LabelledResult> {
    return this.library.call("read", { document: this.document, number });
  }

  /** The coordinates of a waterfall, without data: fast for any number of slices. */
  readSlices(number: number): Promise<LabelledResult> {
    return this.library.call("readSlices", { document: this.document, number });
  }

  /** One slice of a waterfall, in which `slice` is a coordinate of one number. */
  readSlice(number: number, slice: number): Promise<LabelledResult> {
    return this.library.call("readSlice", { document: this.document, number, slice });
  }

  /**
   * Values in SI units, those of the array when none are given, on another scale. A NaN where there is no level, such
   * as that of 0. All at once for charts: 8 million take about a tenth of a second.
   */
  scaled(
    array: Digits & { values?: Float32Array | Int32Array | null },
    scale: Scale,
    values?: Float32Array,
  ): Promise<Float32Array> {
    const given = values ?? (array.values instanceof Float32Array ? array.values : new Float32Array(array.values ?? []));
    if (scale === "si") return Promise.resolve(given);
    const quantity = array.quantity?.handle ?? null;
    return this.library.call("scaled", { quantity, scale, values: given });
  }

  /** Values in SI units as the library prints them, each with its unit: "31.2 mm/s2", "78.95 dB". */
  texts(array: Digits, values: ArrayLike<number>, scale: Scale): Promise<string[]> {
    return this.library.call("texts", {
      quantity: array.quantity?.handle ?? null,
      weighting: array.weightingCode,
      absolutePrecision: array.absolutePrecision,
      relativePrecision: array.relativePrecision,
      scale,
      values: Float32Array.from(values),
    });
  }

  /** The points of the highest peaks, the highest first; of bands the highest bands. */
  peaks(values: Float32Array, count: number, areBands = false): Promise<number[]> {
    return this.library.call("peaks", { values, count, areBands });
  }

  settings(): Promise<SystemSettings[]> {
    return this.library.call("settings", { document: this.document });
  }

  recordings(): Promise<SystemRecording[]> {
    return this.library.call("recordings", { document: this.document });
  }

  /** Reads everything once, so it takes a while for large documents. */
  verify(): Promise<Verification> {
    return this.library.call("verify", { document: this.document });
  }

  /** Gives its memory back. No call may follow. */
  close(): void {
    void this.library.call("close", { document: this.document });
  }
}
