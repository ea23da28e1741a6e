// Which results of two documents belong together: those of the same system and process on channels that go together.

import type { Header } from "../library/document";

export interface Channel {
  system: number;
  name: string;
  number: number;
}

/** A channel of the first document and what goes with it in the second. */
export interface ChannelPair {
  first: Channel;
  second: Channel | null;
}

/** What the user said: keys of channels, and null for a channel that goes with none. */
export type Said = ReadonlyMap<string, string | null>;

export function channelKey({ system, name, number }: Channel): string {
  return JSON.stringify([system, name, number]);
}

export function channelsOf(headers: readonly Header[]): Channel[] {
  const channels = new Map<string, Channel>();
  for (const header of headers)
    for (const channel of [responseOf(header), referenceOf(header)])
      if (channel.name !== "" || channel.number !== 0) channels.set(channelKey(channel), channel);
  return [...channels.values()];
}

const responseOf = (header: Header): Channel => ({
  system: header.system,
  name: header.response,
  number: header.responseChannel,
});
const referenceOf = (header: Header): Channel => ({
  system: header.system,
  name: header.reference,
  number: header.referenceChannel,
});

export class Pairing {
  readonly channels: ChannelPair[];
  private readonly seconds: (number | null)[];

  constructor(first: readonly Header[], second: readonly Header[], said: Said) {
    this.channels = pairChannels(channelsOf(first), channelsOf(second), said);
    const names = new Map(this.channels.map((pair) => [channelKey(pair.first), pair.second]));
    const inSecond = (channel: Channel) => {
      const other = names.get(channelKey(channel));
      return other === undefined ? channelKey(channel) : other && channelKey(other);
    };
    const numbers = new Map(keysOf(second, channelKey).map((key, number) => [key, number]));
    this.seconds = keysOf(first, inSecond).map((key) => numbers.get(key) ?? null);
  }

  /** The number of the result of the second document that belongs to one of the first. */
  counterpart(number: number): number | null {
    return this.seconds[number] ?? null;
  }
}

/** What a result is, apart from its values; the second of the same has another one than the first. */
function keysOf(headers: readonly Header[], channel: (channel: Channel) => string | null): string[] {
  const counts = new Map<string, number>();
  return headers.map((header, index) => {
    const [response, reference] = [channel(responseOf(header)), channel(referenceOf(header))];
    if (response === null || reference === null) return `none ${index}`;
    const { system, processType, process, waterfallDimension } = header;
    const key = JSON.stringify([system, processType, process, response, reference, waterfallDimension]);
    const count = counts.get(key) ?? 0;
    counts.set(key, count + 1);
    return `${key}${count}`;
  });
}

/**
 * As the user said; else channels of the same name and number, then of the same name, then of the same number, which are
 * those that were renamed. No channel goes with two.
 */
function pairChannels(first: Channel[], second: Channel[], said: Said): ChannelPair[] {
  const pairs = first.map((channel): ChannelPair => ({ first: channel, second: null }));
  const open = new Set(pairs.filter((pair) => !said.has(channelKey(pair.first))));
  const free = new Map(second.map((channel) => [channelKey(channel), channel]));
  const take = (pair: ChannelPair, channel: Channel | undefined) => {
    if (!channel) return;
    pair.second = channel;
    free.delete(channelKey(channel));
    open.delete(pair);
  };
  for (const pair of pairs) take(pair, free.get(said.get(channelKey(pair.first)) ?? ""));
  const likenesses: ((channel: Channel) => string)[] = [
    channelKey,
    ({ system, name }) => JSON.stringify([system, name]),
    ({ system, number }) => JSON.stringify([system, number]),
  ];
  for (const likeness of likenesses) {
    const like = new Map([...free.values()].reverse().map((channel) => [likeness(channel), channel]));
    for (const pair of open) {
      const channel = like.get(likeness(pair.first));
      if (channel) take(pair, free.get(channelKey(channel)));
    }
  }
  return pairs;
}
