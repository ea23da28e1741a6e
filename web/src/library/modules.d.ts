// What the build of the library gives: the module as WebAssembly, and the script that starts it.

declare module "*/zelmresult_module.js" {
  interface Module {
    HEAPU8: Uint8Array;
    _zelm_call(request: number): number;
    _malloc(size: number): number;
    _free(address: number): void;
  }
  export default function createModule(options: {
    wasmBinary: Uint8Array;
    locateFile(name: string): string;
    print(text: string): void;
    printErr(text: string): void;
  }): Promise<Module>;
}

declare module "*.wasm" {
  const bytes: Uint8Array;
  export default bytes;
}
