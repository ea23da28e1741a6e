# The toolchain of the preset wasm: Debian's emscripten, whose programs run in node.
include("/usr/share/emscripten/cmake/Modules/Platform/Emscripten.cmake")

# This emscripten takes node for a browser once node has a fetch of its own.
set(CMAKE_CROSSCOMPILING_EMULATOR "${NODE_JS_EXECUTABLE};--no-experimental-fetch")
