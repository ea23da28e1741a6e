// What the library says of documents. Texts are as `zmxf` prints them; figures are those of `zmxf show --json`.
// Nothing here is computed by the page: units, decibels and their texts come from the library.

/** How values are shown: as stored (SI), in the unit of their quantity, or as levels. */
export type Scale = "si" | "unit" | "decibels";

/** A physical quantity. Pass it back to `OpenDocument.scaled` and `texts`; `handle` is what the library knows it by. */
export interface Quantity {
  handle: number;
  key: string; // the same in every language
  name: string;
  /** Exponents of the base units: { m: 1, s: -2 }. */
  dimension: Record<string, number>;
  dimensionText: string; // "m s^-2"
  siSymbol: string; // "m/s²", "" for a plain number
  unit: string; // the label of the shown unit, "mm/s2"; "" for a plain number
  /** Null when levels say nothing for it. */
  decibels: { referenceText: string } | null; // "1 µm/s2"
}

/** What a list says of a result, without its data. */
export interface Header {
  number: number; // in the order of the file: what `zmxf show` takes
  system: number;
  processType: number;
  kind: string; // "autospectrum", "frf", "octave", "level": the group people call it by, as `zmxf ls` prints it
  process: string; // the name that the program gave, which made it
  response: string; // channel
  responseChannel: number;
  responseId: string;
  reference: string; // channel, "" for none
  referenceChannel: number;
  date: string;
  caption: string;
  comment: string;
  analyzer: string;
  identification: string;
  file: string;
  weighting: number;
  timeWeighting: number;
  window: number;
  waterfallDimension: number;
}

export type Form =
  | "level"
  | "broad_band"
  | "global_level"
  | "order_levels"
  | "vector"
  | "bands"
  | "order_track"
  | "overview"
  | "pair"
  | "waterfall";

/**
 * An array with its labels: row-major, float32 in SI units. An array without dimensions holds one value.
 * A NaN is a missing value. In a vector along references an infinity is a block that was left out.
 */
export interface LabelledArray {
  name: string; // "frequency", "value", "upper": see Form
  title: string; // for people: "Short Leq"
  dimensions: string[];
  shape: number[];
  quantity: Quantity | null;
  /** "A" and so on; "" for none. */
  weighting: string;
  /** A constant of the library, which `texts` takes: adds "(A)" to decibels. */
  weightingCode: number;
  absolutePrecision: number;
  relativePrecision: number;
  /** A coordinate that a reference gives, such as a speed along slices. */
  isReference: boolean;
  /** Numbers: in SI units; of complex values the magnitude. Null for texts. */
  values: Float32Array | Int32Array | null;
  texts: string[] | null;
  /** Of complex values, as long as `values`; phase in degrees. */
  complex: { real: Float32Array; imaginary: Float32Array; phase: Float32Array } | null;
}

/**
 * A result as labelled arrays. Names of dimensions, coordinates and data, by form:
 *
 *   level         data value, minimum, maximum
 *   broad_band    (weighting) coordinate weighting, as texts; data short_lpk, and along weighting leq, short_leq,
 *                 instant_leq
 *   global_level  data dc, max, min, rms, energy, skewness, kurtosis, peak, peak_to_peak, crest_factor
 *   order_levels  (order) coordinate order; data level along order, and overall
 *   vector        (frequency) or (point): coordinate frequency, time or x; data value, which may be complex; along
 *                 references (point): a coordinate per reference
 *   bands         (band) coordinates band, the nominal middles, and exact_middle; data value, minimum, maximum, as far
 *                 as stored, and levels of all bands: global, global_weighted, global_minimum, ...
 *   order_track   (order, point) coordinates order, order_name, and those of points as in a vector; data value
 *   overview      (point) coordinate time or x; data upper, lower, level_1 to level_4
 *   pair          as a vector or bands; data minimum, maximum
 *   waterfall     (slice, and frequency, point or band) coordinates block and one per reference along slice, and those
 *                 of a vector or of bands; data as in these, along slice
 *
 * Each level of broad_band, global_level and order_levels has its extremes beside it: leq_minimum, leq_maximum.
 */
export interface LabelledResult {
  form: Form;
  header: Header;
  kindName: string; // of the process type: "Autospectrum"
  quantity: Quantity | null; // of the values, unless an array has another one
  coordinates: LabelledArray[];
  data: LabelledArray[];
  /** Per dimension the name of the coordinate it is shown along; no entry where points are only counted. */
  axes: Record<string, string>;
  /** "" without a choice. */
  chosenReference: string;
  /** Why references could not be read; the rest is whole. */
  lostReferences: string | null;
}

export interface StoredQuantity extends Quantity {
  code: string;
}

/** What a document holds besides the data of its results; what could not be read is said in `damages`. */
export interface DocumentInfo {
  name: string;
  version: number | null;
  type: number;
  contents: string[]; // "quantities", "results", ...
  systems: { number: number; results: number }[];
  hardware: Record<string, string | number>[]; // as `zmxf info --json`
  quantities: StoredQuantity[];
  comments: string[];
  /** Plain sentences: the file is cut off, a header can't be read. Empty for a whole document. */
  damages: string[];
}

/** As `zmxf settings --json`, with texts. `value` depends on the kind; `text` is the value on one line. */
export interface Setting {
  id: string;
  kind: string;
  type: number;
  title: string;
  visible: boolean;
  text: string;
  value: unknown;
  settings?: Setting[];
}
export interface Submodule {
  id: string;
  title: string;
  visible: boolean;
  settings: Setting[];
}
export interface SettingsModule {
  id: string;
  title: string;
  visible: boolean;
  submodules: Submodule[];
}
export interface SystemSettings {
  system: number;
  whole: boolean;
  application: { major: number; minor: number; build: string } | null;
  modules: SettingsModule[];
}

/** As `zmxf tracks --json`, with texts. */
export interface Track {
  track: number;
  id: string;
  name: string;
  comment: string;
  sampleRate: number;
  format: number;
  firstBlock: number;
  lastBlock: number;
  blockSize: number;
  offset: number;
  disk: number;
  overload: boolean;
  minimum: number | null;
  maximum: number | null;
  minimumText: string; // "-3.2 m/s2"
  maximumText: string;
  step: number | null;
  voltsPerCount: number | null;
  sensitivity: number | null;
  voltOffset: number | null;
  quantity: { key: string; name: string; unit?: string } | null;
}
export interface SystemRecording {
  system: number;
  whole: boolean;
  recording: {
    name: string;
    date: string;
    seconds: number;
    sampleRate: number;
    blockSize: number;
    records: number;
    markers: number;
    converted: boolean;
    disks: { tracks: number; files: { firstBlock: number; lastBlock: number }[] }[];
    tracks: Track[];
  } | null;
  transducers: { id: string; type: string; serialNumber: string; model: string; manufacturer: string }[];
}

/** As `zmxf verify --json`. */
export interface Verification {
  verdict: "whole" | "damaged" | "no result document";
  results: number;
  readable: number;
  loads: boolean;
  damages: { offset: number; text: string }[];
  notes: { offset: number; text: string }[];
}

/** What `texts` needs besides the quantity; an array has all of it. */
export type Digits = Pick<LabelledArray, "quantity" | "weightingCode" | "absolutePrecision" | "relativePrecision">;

/** Why the library could not do it: a plain sentence for the user. */
export class LibraryFailure extends Error {}

/** What is going on, and how far it is (0 to 1; null when that isn't known). */
export type Progress = (step: "reading the file" | "listing results", part: number | null) => void;
