#!/usr/bin/env bash
# Installs the build into a temporary prefix and builds the example host
# against that copy twice: with find_package(Pavona), and with the README's
# plain pkg-config line, run as the README shows it.
# Arguments: the build tree, the source tree. CFLAGS and LDFLAGS carry the
# build's own compiler flags (sanitizers), so the consumer can load it.
set -euo pipefail
build=$1
source=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
prefix=$work/prefix
fail() { echo "install_test: $*" >&2; exit 1; }

cmake --install "$build" --prefix "$prefix" >/dev/null

# Only the host-records and extensions headers are public.
headers=$(cd "$prefix" && find . -name '*.h' | sort | tr '\n' ' ')
[[ $headers == "./include/pavona_ext.h ./include/pavona_host.h " ]] ||
  fail "installed headers: $headers"
[[ -f $prefix/lib/libPavona.so ]] || fail "no lib/libPavona.so"
[[ -f $prefix/lib/cmake/Pavona/PavonaConfig.cmake ]] || fail "no CMake package"

# The example's first line names the plug-in's version; the installed
# library answers pavonaGetFrameInfo; and none of the example's lines runs
# into the plug-in's "close all log", which has no newline.
expected="Pavona SDK_BASE_20200330_version_1.0"
check_run() {
  local out
  out=$("$@") || fail "'$*' failed"
  [[ ${out%%$'\n'*} == "$expected" ]] || fail "'$*' printed '$out'"
  grep -q '^  4 rows, [0-9]* passes, shares' <<<"$out" || fail "'$*' printed no frame information: $out"
  ! grep -q 'close all log.' <<<"$out" || fail "'$*' ran into the plug-in's text: $out"
}

cmake -S "$source/tests/install_consumer" -B "$work/consumer" -G Ninja \
  -DCMAKE_PREFIX_PATH="$prefix" \
  -DPAVONA_HOST_EXAMPLE="$source/tools/host-example.c" \
  -DCMAKE_C_FLAGS="${CFLAGS:-}" -DCMAKE_EXE_LINKER_FLAGS="${LDFLAGS:-}" \
  >"$work/configure.log" 2>&1 || { cat "$work/configure.log"; fail "find_package(Pavona) project did not configure"; }
cmake --build "$work/consumer" >"$work/build.log" 2>&1 ||
  { cat "$work/build.log"; fail "find_package(Pavona) project did not build"; }
check_run "$work/consumer/host_example"

export PKG_CONFIG_PATH=$prefix/lib/pkgconfig
flags=$(pkg-config --cflags --libs pavona) || fail "pkg-config does not know pavona"
# The flags must point into the prefix, wherever it is.
read -r -a words <<<"$flags"
for word in "${words[@]}"; do
  case $word in
    -I*) [[ $(realpath "${word#-I}") == $(realpath "$prefix/include") ]] || fail "cflags: $word" ;;
    -L*) [[ $(realpath "${word#-L}") == $(realpath "$prefix/lib") ]] || fail "libs: $word" ;;
    -lPavona | -Wl,--push-state,--as-needed | -Wl,--pop-state) ;;
    *) fail "unexpected pkg-config word: $word" ;;
  esac
done
# The README's line; CFLAGS and LDFLAGS are empty but for sanitizer builds.
# shellcheck disable=SC2046,SC2086 # word splitting of the flags is intended
gcc ${CFLAGS:-} "$source/tools/host-example.c" \
  $(pkg-config --cflags --libs pavona) -ldl ${LDFLAGS:-} -o "$work/pc_example" ||
  fail "the README's pkg-config line does not build the example"
# Found by the loader's search, or named by absolute path.
check_run env LD_LIBRARY_PATH="$prefix/lib" "$work/pc_example"
check_run env -u LD_LIBRARY_PATH "$work/pc_example" "$prefix/lib/libPavona.so"
echo "install_test: CMake package and pkg-config file work from $prefix"
