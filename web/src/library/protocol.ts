// What the page and the worker say to each other. Each request has one answer of its id, with progress before it.

import type {
  DocumentInfo,
  Header,
  LabelledResult,
  Progress,
  Scale,
  SystemRecording,
  SystemSettings,
  Verification,
} from "./types";

interface Call<Parameters extends object, Result> {
  parameters: Parameters;
  result: Result;
}
interface InDocument {
  document: number;
}
interface OfResult extends InDocument {
  number: number;
}

export interface Calls {
  open: Call<
    { source: Blob | ArrayBuffer; name: string },
    { document: number; info: DocumentInfo; results: Header[] }
  >;
  read: Call<OfResult, LabelledResult>;
  readSlices: Call<OfResult, LabelledResult>;
  readSlice: Call<OfResult & { slice: number }, LabelledResult>;
  scaled: Call<{ quantity: number | null; scale: Scale; values: Float32Array }, Float32Array>;
  texts: Call<
    {
      quantity: number | null;
      weighting: number;
      absolutePrecision: number;
      relativePrecision: number;
      scale: Scale;
      values: Float32Array;
    },
    string[]
  >;
  peaks: Call<{ values: Float32Array; count: number; areBands: boolean }, number[]>;
  settings: Call<InDocument, SystemSettings[]>;
  recordings: Call<InDocument, SystemRecording[]>;
  verify: Call<InDocument, Verification>;
  close: Call<InDocument, null>;
}

export interface Request {
  id: number;
  name: keyof Calls;
  parameters: Calls[keyof Calls]["parameters"];
}

export type Answer =
  | { id: number; result: Calls[keyof Calls]["result"] }
  | { id: number; failure: string }
  | { id: number; step: Parameters<Progress>[0]; part: number | null };
