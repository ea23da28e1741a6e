// The worker: takes requests of the page, lets the library answer, and hands arrays over without a further copy.

import { LibraryModule } from "./module";
import type { Place } from "./module";
import type { Answer, Calls, Request } from "./protocol";
import { LibraryFailure } from "./types";
import type { LabelledArray, LabelledResult, Progress } from "./types";

type ParametersOf<Name extends keyof Calls> = Calls[Name]["parameters"];

/** An array as the library tells it. */
interface ToldArray extends Omit<LabelledArray, "values" | "complex"> {
  floats: Place | null;
  integers: Place | null;
  complex: { real: Place; imaginary: Place; phase: Place } | null;
}
interface ToldResult extends Omit<LabelledResult, "coordinates" | "data"> {
  coordinates: ToldArray[];
  data: ToldArray[];
}

const library = LibraryModule.start();

function arrayOf(told: ToldArray, module: LibraryModule, handedOver: Transferable[]): LabelledArray {
  const keep = <Values extends Float32Array<ArrayBuffer> | Int32Array<ArrayBuffer>>(values: Values): Values => {
    handedOver.push(values.buffer);
    return values;
  };
  const { floats, integers, complex, ...labels } = told;
  const values = floats ? keep(module.floatsAt(floats)) : integers ? keep(module.integersAt(integers)) : null;
  const parts = complex && {
    real: keep(module.floatsAt(complex.real)),
    imaginary: keep(module.floatsAt(complex.imaginary)),
    phase: keep(module.floatsAt(complex.phase)),
  };
  return { ...labels, values, complex: parts };
}

function resultOf(told: ToldResult, module: LibraryModule, handedOver: Transferable[]): LabelledResult {
  const arrays = (all: ToldArray[]) => all.map((array) => arrayOf(array, module, handedOver));
  return { ...told, coordinates: arrays(told.coordinates), data: arrays(told.data) };
}

/** The bytes of a file in the memory of the module, read piece by piece. */
async function bytesOf(source: Blob | ArrayBuffer, module: LibraryModule, progress: Progress): Promise<Place> {
  if (source instanceof ArrayBuffer) return module.take(new Uint8Array(source));
  const place = module.allocate(source.size);
  try {
    let filled = 0;
    const reader = source.stream().getReader();
    for (let piece = await reader.read(); !piece.done; piece = await reader.read()) {
      module.bytesAt(place).set(piece.value, filled);
      filled += piece.value.length;
      progress("reading the file", filled / source.size);
    }
  } catch {
    module.free(place);
    throw new LibraryFailure("the file cannot be read");
  }
  return place;
}

async function open({ source, name }: ParametersOf<"open">, module: LibraryModule, progress: Progress) {
  const bytes = await bytesOf(source, module, progress); // which the library takes over
  progress("listing results", null);
  return module.call("open", { bytes, name });
}

/** Calls with an array of the page, which the library may change in place. */
function withValues<Result>(
  module: LibraryModule,
  values: Float32Array,
  action: (place: Place) => Result,
): Result {
  const bytes = module.take(new Uint8Array(values.buffer, values.byteOffset, values.byteLength));
  try {
    return action({ address: bytes.address, count: values.length });
  } finally {
    module.free(bytes);
  }
}

async function answer(request: Request, progress: Progress, handedOver: Transferable[]): Promise<unknown> {
  const module = await library;
  const { name, parameters } = request;
  switch (name) {
    case "open":
      return open(parameters as ParametersOf<"open">, module, progress);
    case "read":
    case "readSlices":
    case "readSlice":
      return resultOf(module.call(name, parameters) as ToldResult, module, handedOver);
    case "scaled":
      return withValues(module, (parameters as ParametersOf<"scaled">).values, (place) => {
        module.call(name, { ...parameters, values: place });
        const scaled = module.floatsAt(place);
        handedOver.push(scaled.buffer);
        return scaled;
      });
    case "texts":
    case "peaks":
      return withValues(module, (parameters as ParametersOf<"texts" | "peaks">).values, (place) =>
        module.call(name, { ...parameters, values: place }),
      );
    default:
      return module.call(name, parameters);
  }
}

self.onmessage = async (event: MessageEvent<Request>) => {
  const { id } = event.data;
  const handedOver: Transferable[] = [];
  const say = (message: Answer) => self.postMessage(message, { transfer: handedOver });
  try {
    const result = await answer(event.data, (step, part) => self.postMessage({ id, step, part }), handedOver);
    say({ id, result: result as Calls[keyof Calls]["result"] });
  } catch (failure) {
    handedOver.length = 0;
    say({ id, failure: failure instanceof Error ? failure.message : String(failure) });
  }
};
