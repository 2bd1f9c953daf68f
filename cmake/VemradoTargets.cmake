# What every target of the project is built with.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)

set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)
if(WIN32)
  # A DLL is found beside the program that loads it.
  set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
endif()

# RUNPATH, not RPATH: a host's own libraries of the same names can be put first with LD_LIBRARY_PATH.
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)
if(WIN32)
  add_link_options(LINKER:--no-insert-timestamp)  # the same bytes from the same sources
elseif(NOT EMSCRIPTEN)
  add_link_options(LINKER:--enable-new-dtags)
endif()

add_compile_options(-Wall -Wextra -Wpedantic -Wconversion -Wshadow)
if(EMSCRIPTEN)
  add_compile_options(-Wno-sign-conversion -Wno-shorten-64-to-32)  # memory has 32 bits here
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # GCC 12 warns of its own std::string wherever that is compiled into the caller.
  add_compile_options(-Wno-restrict)
endif()

if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND NOT WIN32)
  # A library with such symbols, which come from inside the standard library's templates, is never unloaded.
  add_compile_options(-fno-gnu-unique)
endif()

if(VEMRADO_HARDEN)
  add_compile_options(-fstack-protector-strong -fcf-protection -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
  add_link_options(LINKER:-z,relro LINKER:-z,now)
  # The same bytes whatever folder the project is built in.
  add_compile_options(-ffile-prefix-map=${PROJECT_SOURCE_DIR}=. -ffile-prefix-map=${CMAKE_BINARY_DIR}=build)
endif()

if(VEMRADO_SANITIZE)
  add_compile_options(-fsanitize=${VEMRADO_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${VEMRADO_SANITIZE})
endif()

if(VEMRADO_LIBFUZZER)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()
