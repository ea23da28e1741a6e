// The library as the worker sees it: requests and answers as JSON, arrays by their places in the memory of the module.

import createModule from "../../../build/wasm/web/binding/zelmresult_module.js";
import wasmBinary from "../../../build/wasm/web/binding/zelmresult_module.wasm";
import { LibraryFailure } from "./types";

/** Where an array is in the memory of the module. */
export interface Place {
  address: number;
  count: number;
}

const encoder = new TextEncoder();
const decoder = new TextDecoder();

/** Addresses beyond 2 GiB come as negative numbers. */
const address = (pointer: number) => pointer >>> 0;

export class LibraryModule {
  private hasStopped = false;

  private constructor(private readonly module: Awaited<ReturnType<typeof createModule>>) {}

  static async start(): Promise<LibraryModule> {
    const silent = () => undefined;
    return new LibraryModule(await createModule({ wasmBinary, locateFile: (name) => name, print: silent, printErr: silent }));
  }

  /** What the library gives for a request, as it says it. Places in it hold until the next call. */
  call(name: string, parameters: object): unknown {
    const request = this.take(encoder.encode(`${JSON.stringify({ name, parameters })}\0`));
    let answer: { result?: unknown; failure?: string };
    try {
      answer = JSON.parse(this.textAt(this.guarded(() => this.module._zelm_call(request.address)))) as typeof answer;
    } finally {
      this.free(request);
    }
    if (answer.failure !== undefined) throw new LibraryFailure(answer.failure);
    return answer.result;
  }

  /** Room for that many bytes, which the caller fills. */
  allocate(count: number): Place {
    const pointer = address(this.guarded(() => this.module._malloc(Math.max(count, 1))));
    if (pointer === 0) throw new LibraryFailure("there is not enough memory for it");
    return { address: pointer, count };
  }

  /** A copy of the bytes in the memory of the module. */
  take(bytes: Uint8Array): Place {
    const place = this.allocate(bytes.length);
    this.bytesAt(place).set(bytes);
    return place;
  }

  free(place: Place): void {
    if (!this.hasStopped) this.module._free(place.address);
  }

  /** A view that the next call may end. */
  bytesAt({ address, count }: Place): Uint8Array {
    return new Uint8Array(this.module.HEAPU8.buffer, address, count);
  }

  /** Copies, which may be handed on. */
  floatsAt({ address, count }: Place): Float32Array<ArrayBuffer> {
    return new Float32Array(this.module.HEAPU8.buffer, address, count).slice();
  }
  integersAt({ address, count }: Place): Int32Array<ArrayBuffer> {
    return new Int32Array(this.module.HEAPU8.buffer, address, count).slice();
  }

  private textAt(pointer: number): string {
    const heap = this.module.HEAPU8;
    const start = address(pointer);
    return decoder.decode(heap.subarray(start, heap.indexOf(0, start)));
  }

  /** After a fault nothing in the memory of the module can be trusted. */
  private guarded(action: () => number): number {
    if (this.hasStopped) throw new LibraryFailure("the library has stopped; open the page again");
    try {
      return action();
    } catch (fault) {
      this.hasStopped = true;
      const reason = fault instanceof Error ? fault.message : String(fault);
      throw new LibraryFailure(`the library has stopped (${reason}); open the page again`);
    }
  }
}
