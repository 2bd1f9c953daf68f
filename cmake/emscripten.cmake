# Cross build to WebAssembly with Debian's Emscripten.

find_program(em_config em-config REQUIRED)
execute_process(COMMAND ${em_config} EMSCRIPTEN_ROOT OUTPUT_VARIABLE emscripten_root OUTPUT_STRIP_TRAILING_WHITESPACE
  COMMAND_ERROR_IS_FATAL ANY)
include(${emscripten_root}/cmake/Modules/Platform/Emscripten.cmake)

# Without wide instructions every number would go through software arithmetic of 128 bits.
add_compile_options(-fwasm-exceptions -msimd128 -msse2)
add_link_options(-fwasm-exceptions)

# What the project's C++20 uses and this compiler's library lacks.
add_compile_options("SHELL:-include ${CMAKE_CURRENT_LIST_DIR}/../web/library/missing.h")
