#!/usr/bin/env bash
# Installs the build into a temporary prefix and builds the example host
# against that copy twice: with find_package(Pavona) and with pkg-config.
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

# Only the host-records header is public.
headers=$(cd "$prefix" && find . -name '*.h' | sort)
[[ $headers == "./include/pavona_host.h" ]] || fail "installed headers: $headers"
[[ -f $prefix/lib/libPavona.so ]] || fail "no lib/libPavona.so"
[[ -f $prefix/lib/cmake/Pavona/PavonaConfig.cmake ]] || fail "no CMake package"

# The example's first line names the plug-in's version.
expected="Pavona SDK_BASE_20200330_version_1.0"

cmake -S "$source/tests/install_consumer" -B "$work/consumer" -G Ninja \
  -DCMAKE_PREFIX_PATH="$prefix" \
  -DPAVONA_HOST_EXAMPLE="$source/tools/host-example.c" \
  -DCMAKE_C_FLAGS="${CFLAGS:-}" -DCMAKE_EXE_LINKER_FLAGS="${LDFLAGS:-}" \
  >"$work/configure.log" 2>&1 || { cat "$work/configure.log"; fail "find_package(Pavona) project did not configure"; }
cmake --build "$work/consumer" >"$work/build.log" 2>&1 ||
  { cat "$work/build.log"; fail "find_package(Pavona) project did not build"; }
out=$("$work/consumer/host_example")
[[ ${out%%$'\n'*} == "$expected" ]] || fail "CMake-built example printed '$out'"

export PKG_CONFIG_PATH=$prefix/lib/pkgconfig
flags=$(pkg-config --cflags --libs pavona) || fail "pkg-config does not know pavona"
# The flags must point into the prefix, wherever it is.
read -r -a words <<<"$flags"
for word in "${words[@]}"; do
  case $word in
    -I*) [[ $(realpath "${word#-I}") == $(realpath "$prefix/include") ]] || fail "cflags: $word" ;;
    -L*) [[ $(realpath "${word#-L}") == $(realpath "$prefix/lib") ]] || fail "libs: $word" ;;
    -lPavona) ;;
    *) fail "unexpected pkg-config word: $word" ;;
  esac
done
# shellcheck disable=SC2086 # word splitting of the flags is intended
cc ${CFLAGS:-} -Wall -Wextra -Werror \
  -DPAVONA_LIBRARY_PATH="\"$prefix/lib/libPavona.so\"" \
  "$source/tools/host-example.c" -o "$work/pc_example" $flags ${LDFLAGS:-} -ldl -lm \
  -Wl,-rpath,"$prefix/lib"
out=$("$work/pc_example")
[[ ${out%%$'\n'*} == "$expected" ]] || fail "pkg-config-built example printed '$out'"
echo "install_test: CMake package and pkg-config file work from $prefix"
