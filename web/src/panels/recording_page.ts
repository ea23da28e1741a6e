// The recording that the results of a system were made from, its tracks and its transducers.

import type { SystemRecording, Track } from "../library/document";
import { facts, h, name, put, table, type Column } from "../dom";
import type { Entry } from "../app/workspace";
import { PanelFrame } from "./panel";

export async function recordingPage(entry: Entry, system: number): Promise<HTMLElement> {
  const all = await entry.document.recordings();
  const found = all.find((recording) => recording.system === system);
  const tracks = found?.recording?.tracks ?? [];
  const table = () => [
    [
      "Track",
      "Name",
      "Quantity",
      "Sample rate in Hz",
      "First block",
      "Last block",
      "Lowest",
      "Highest",
      "Overload",
      "Comment",
    ],
    ...tracks.map((t) => [
      t.track,
      t.name,
      t.quantity?.name ?? "",
      t.sampleRate,
      t.firstBlock,
      t.lastBlock,
      t.minimumText,
      t.maximumText,
      yesOrNo(t),
      t.comment,
    ]),
  ];
  const frame = new PanelFrame(found?.recording?.name || "Recording", entry.name, { table });
  if (found && !found.whole)
    put(frame.body, h("p", { className: "failure" }, "This recording is damaged: a part of it is missing here."));
  if (found?.recording) addRecording(frame.body, found.recording);
  else put(frame.body, h("p", {}, "This system describes no recording."));
  if (found && found.transducers.length > 0) addTransducers(frame.body, found.transducers);
  return frame.element;
}

const yesOrNo = (track: Track) => (track.overload ? "yes" : "no");

function addRecording(body: HTMLElement, recording: NonNullable<SystemRecording["recording"]>): void {
  put(
    body,
    facts([
      ["Date", recording.date],
      ["Sample rate", `${recording.sampleRate} Hz`],
      ["Length", `${Number(recording.seconds.toPrecision(6))} s`],
      ["Tracks", String(recording.tracks.length)],
      ["Markers", recording.markers ? String(recording.markers) : ""],
    ]),
  );
  const columns: Column<Track>[] = [
    { title: "Track", cell: ({ track }) => String(track), isNumber: true },
    { title: "Name", cell: (track) => name(track.name) },
    { title: "Quantity", cell: ({ quantity }) => name(quantity?.name ?? "") },
    { title: "Rate", cell: ({ sampleRate }) => `${sampleRate} Hz`, isNumber: true },
    { title: "Blocks", cell: ({ firstBlock, lastBlock }) => `${firstBlock} to ${lastBlock}`, isNumber: true },
    { title: "Lowest", cell: ({ minimumText }) => minimumText, isNumber: true },
    { title: "Highest", cell: ({ maximumText }) => maximumText, isNumber: true },
    { title: "Overload", cell: (track) => h("span", { className: track.overload ? "warning" : "" }, yesOrNo(track)) },
    { title: "Comment", cell: ({ comment }) => name(comment, "comment") },
  ];
  put(body, h("h3", {}, "Tracks"), table(columns, recording.tracks));
}

function addTransducers(body: HTMLElement, transducers: SystemRecording["transducers"]): void {
  const columns = [
    { title: "Channel", cell: (t: (typeof transducers)[0]) => t.id },
    { title: "Type", cell: (t: (typeof transducers)[0]) => name(t.type) },
    { title: "Manufacturer", cell: (t: (typeof transducers)[0]) => name(t.manufacturer) },
    { title: "Model", cell: (t: (typeof transducers)[0]) => name(t.model) },
    { title: "Serial number", cell: (t: (typeof transducers)[0]) => name(t.serialNumber) },
  ];
  put(body, h("h3", {}, "Transducers"), table(columns, transducers));
}
