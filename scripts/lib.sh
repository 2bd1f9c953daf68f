# Shared by the scripts beside it: sourced, not run. Goes to the root of the project and makes what follows
# independent of the caller's environment.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root"

# Compiler settings, preloaded libraries and the module's own variables would change what is built and tested.
unset CC CXX CFLAGS CXXFLAGS CPPFLAGS LDFLAGS CMAKE_GENERATOR CMAKE_PREFIX_PATH CMAKE_TOOLCHAIN_FILE \
  LD_LIBRARY_PATH LD_PRELOAD DESTDIR CDPATH \
  ASAN_OPTIONS LSAN_OPTIONS UBSAN_OPTIONS GTEST_FILTER GTEST_SHUFFLE GDAL_DRIVER_PATH \
  VEMRADO_COUNTRY VEMRADO_REGISTRY
export LC_ALL=C.UTF-8

if command -v ccache >/dev/null; then
  export CMAKE_CXX_COMPILER_LAUNCHER=${CMAKE_CXX_COMPILER_LAUNCHER:-ccache}
fi

say() { printf '\n== %s\n' "$*"; }

# Configures and builds a preset, the given targets or all of them.
build() {
  local preset=$1
  shift
  cmake --preset "$preset" --log-level=WARNING
  cmake --build --preset "$preset" ${1:+--target "$@"}
}
