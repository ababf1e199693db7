#!/usr/bin/env bash
# make bench-aarch64: builds the arm64 peer sysroot, the counted guest and
# the counting plugin, counts every case under qemu-aarch64 (two at a time)
# and prints one table. Run from the source tree.
set -euo pipefail
start=$SECONDS
build=build/bench-aarch64
sysroot=$PWD/$build/sysroot
out=$PWD/$build/counts
bench/aarch64/sysroot.sh "$sysroot"
cmake --preset bench-aarch64 >/dev/null
cmake --build --preset bench-aarch64 --target pavona_count_guest
[[ -f build/release/CMakeCache.txt ]] || cmake --preset release >/dev/null
cmake --build --preset release --target pavona_insn_count
guest=$PWD/$build/bench/aarch64/pavona_count_guest
plugin=$PWD/build/release/bench/aarch64/libpavona_insn_count.so

# The dynamic loader comes from the cross toolchain; -L alone does not
# carry the library path through to the guest.
libs=$sysroot/usr/lib/aarch64-linux-gnu:$sysroot/lib/aarch64-linux-gnu
libs+=:/usr/aarch64-linux-gnu/lib:/usr/lib/aarch64-linux-gnu/android
cpu=neoverse-n1

# count NAME IMPLEMENTATION CASE [K]: NAME.txt gets the regions, NAME.out
# what the guest printed.
count() {
  local name=$1
  shift
  qemu-aarch64 -cpu $cpu -L /usr/aarch64-linux-gnu -E LD_LIBRARY_PATH="$libs" \
    -plugin "$plugin,out=$out/$name.txt" "$guest" "$@" >"$out/$name.out" ||
    { echo "bench-aarch64: $* failed" >&2; return 1; }
}

jobs=(
  "frame_k4 pavona frame 4" "frame_k8 pavona frame 8" "frame_k20 pavona frame 20"
  "again_k4 pavona frame 4" "again_k8 pavona frame 8" "again_k20 pavona frame 20"
  "frame_k3 pavona frame 3"
  "resize pavona resize" "convert pavona convert"
  "resize_libyuv libyuv resize" "convert_libyuv libyuv convert"
  "resize_opencv opencv resize" "convert_opencv opencv convert"
  "frame_opencv_k3 opencv frame 3" "frame_opencv_k8 opencv frame 8"
)
for k in 3 8 20; do
  jobs+=("kmeans_k$k pavona kmeans $k" "floor_k$k pavona floor $k"
    "select_k$k pavona select $k" "preview_k$k pavona preview $k"
    "kmeans_opencv_k$k opencv kmeans $k")
done
rm -rf "$out"
mkdir -p "$out"
failed=0
for job in "${jobs[@]}"; do
  while (($(jobs -rp | wc -l) >= 2)); do wait -n || failed=1; done
  # shellcheck disable=SC2086
  count $job &
done
while (($(jobs -rp | wc -l) > 0)); do wait -n || failed=1; done
((failed == 0))

# mean NAME, passes NAME
mean() { sed -n 's/.* mean \([0-9.]*\) .*/\1/p' "$out/$1.txt"; }
passes() { sed -n 's/^passes //p' "$out/$1.out"; }
# Same regions, to the instruction, in both runs of k = 4, 8 and 20?
agree=yes
for k in 4 8 20; do
  cmp -s "$out/frame_k$k.txt" "$out/again_k$k.txt" || agree="NO (k = $k differs)"
done

rows=()
row() { rows+=("$(printf '%s\t' "$@")"); }
row "Resize of both planes to 124x92" "" "$(mean resize)" \
  "libyuv ScalePlane + UVScale, nearest" "$(mean resize_libyuv)"
row "" "" "$(mean resize)" "OpenCV resize, nearest" "$(mean resize_opencv)"
row "YUV to float RGB, 124x92" "" "$(mean convert)" \
  "libyuv NV21ToRGB24 + ByteToFloat" "$(mean convert_libyuv)"
row "" "" "$(mean convert)" "OpenCV cvtColorTwoPlane + convertTo" \
  "$(mean convert_opencv)"
for k in 3 8 20; do
  ours=$(mean kmeans_k$k) p=$(passes kmeans_k$k) cvp=$(passes kmeans_opencv_k$k)
  floor=$(awk -v s="$(mean floor_k$k)" -v p="$p" 'BEGIN { print s * p }')
  row "k-means, whole ($p passes; OpenCV $cvp)" $k "$ours" \
    "OpenCV kmeans, whole" "$(mean kmeans_opencv_k$k)" "$floor"
  row "k-means, a pass" $k "$(awk -v a="$ours" -v p="$p" 'BEGIN { print a / p }')" \
    "OpenCV kmeans, a pass" \
    "$(awk -v a="$(mean kmeans_opencv_k$k)" -v p="$cvp" 'BEGIN { print a / p }')" \
    "$(mean floor_k$k)"
done
for k in 3 8 20; do row "Colour selection" $k "$(mean select_k$k)"; done
for k in 3 8 20; do row "Preview" $k "$(mean preview_k$k)"; done
row "Whole frame through the table, mean of $(grep -c ': [0-9]' "$out/frame_k3.txt") frames" 3 \
  "$(mean frame_k3)" "OpenCV whole-frame pipeline" "$(mean frame_opencv_k3)"
row "Whole frame through the table" 4 "$(mean frame_k4)"
row "" 8 "$(mean frame_k8)" "OpenCV whole-frame pipeline" "$(mean frame_opencv_k8)"
row "" 20 "$(mean frame_k20)"

cat <<HEAD
AArch64 instructions executed, counted by qemu-aarch64 $(qemu-aarch64 --version |
  sed -n 's/.*version \([^ ]*\).*/\1/p') (-cpu $cpu) through a TCG plugin,
one thread, on the 4000x3000 NV21 photo frame of make bench; ours built
by $(aarch64-linux-gnu-gcc -dumpfullversion) -O3 (Release), the peers as Debian ships them for arm64
($(cat "$sysroot/versions")). Stages: the mean of $(grep -c ': [0-9]' "$out/resize.txt") repeats after a warm-up.
The floor: one sweep summing the k-means lists' points in list order into
k sums, times our passes.

HEAD
printf '%s\n' "${rows[@]}" | awk -F'\t' '
  function n(x) { return x == "" ? "" : sprintf("%d", x + 0.5) }
  function r(a, b) { return (a == "" || b == "") ? "" : sprintf("%.2f", a / b) }
  BEGIN {
    print "| Stage | k | Pavona | Peer | Peer count | ours/peer | Floor | ours/floor |"
    print "|---|---:|---:|---|---:|---:|---:|---:|"
  }
  { printf "| %s | %s | %s | %s | %s | %s | %s | %s |\n", $1, $2, n($3), $4, n($5),
      r($3, $5), n($6), r($3, $6) }'
echo
echo "Two runs of the whole frame agree to the instruction for k = 4, 8, 20: $agree"
echo "Counted in $((SECONDS - start)) s."
[[ $agree == yes ]]
