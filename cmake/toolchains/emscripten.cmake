# The browser: WebAssembly by the distribution's emscripten, its programs run by node in the tests. Its cross
# compiler is found where the distribution puts it.
set(EMSCRIPTEN_ROOT_PATH /usr/share/emscripten)
include(${EMSCRIPTEN_ROOT_PATH}/cmake/Modules/Platform/Emscripten.cmake)

# A node that is newer than emscripten has a fetch of its own, which emscripten would take for a browser's.
find_program(QRYLIB_NODE node REQUIRED)
set(CMAKE_CROSSCOMPILING_EMULATOR ${QRYLIB_NODE} --no-experimental-fetch)

# Exceptions are off there unless both the compiler and the linker are told.
set(CMAKE_C_FLAGS_INIT -fexceptions)
set(CMAKE_CXX_FLAGS_INIT -fexceptions)
