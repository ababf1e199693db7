#!/usr/bin/env bash
# Unpacks Debian's arm64 libyuv and OpenCV (core, imgproc), with the
# libraries they load, into a sysroot for the counted guest:
#   bench/aarch64/sysroot.sh DIR
# apt-get download and dpkg-deb -x only: installing them through multiarch
# would move dozens of amd64 packages to matching versions.
set -euo pipefail
root=$1
debs=$root.debs
packages=(
  libyuv0 libyuv-dev libjpeg62-turbo
  libopencv-core406 libopencv-core-dev libopencv-imgproc406 libopencv-imgproc-dev
  libtbb12 libtbbmalloc2 libblas3 liblapack3 libgfortran5 zlib1g
  libglx0 libglvnd0 libx11-6 libxcb1 libxau6 libxdmcp6 libbsd0 libmd0
  libbenchmark-dev libbenchmark1debian
)
[[ -f $root/.complete ]] && exit 0
rm -rf "$root" "$debs"
mkdir -p "$debs"
# _apt downloads into a folder it may write to.
chmod 777 "$debs"
download() { (cd "$debs" && apt-get download -qq "${packages[@]/%/:arm64}"); }
# A fresh machine may hold no package lists yet.
download || { apt-get update -qq && download; }
for deb in "$debs"/*.deb; do dpkg-deb -x "$deb" "$root"; done
lib=$root/usr/lib/aarch64-linux-gnu
# The links Debian's alternatives system would make.
ln -sf blas/libblas.so.3 "$lib/libblas.so.3"
ln -sf lapack/liblapack.so.3 "$lib/liblapack.so.3"
# Every library a peer loads must be here or in the cross toolchain's.
missing=0
while read -r needed; do
  found=$(find "$root" /usr/aarch64-linux-gnu/lib -name "$needed" -print -quit)
  [[ -n $found ]] || { echo "sysroot: $needed not found" >&2; missing=1; }
done < <(find "$root" -name '*.so.*' -type f -exec aarch64-linux-gnu-readelf -d {} + |
  sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' | sort -u)
[[ $missing -eq 0 ]]
# What the table names as the peers.
for deb in "$debs"/*.deb; do
  # shellcheck disable=SC2016 # dpkg-deb expands the fields
  dpkg-deb -W --showformat='${Package} ${Version}\n' "$deb"
done | grep -E '^(libyuv0|libopencv-core406|libopencv-imgproc406) ' |
  paste -sd, | sed 's/,/, /g' >"$root/versions"
rm -rf "$debs"
touch "$root/.complete"
