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
# Configured again: a tree first configured by `make demo`, before the test
# packages, has no counting plugin target until GoogleTest is found.
cmake --preset release >/dev/null
cmake --build --preset release --target pavona_insn_count pavona_sample_frames
plugin=$PWD/build/release/bench/aarch64/libpavona_insn_count.so
# The bundled photographs as raw NV21 frames, converted natively as the
# pavona tool converts them (the guest has no JPEG decoder): one
# "NAME WxH" line each in samples/sizes.
rm -rf "$build/samples"
mkdir -p "$build/samples"
build/release/bench/aarch64/pavona_sample_frames "$build/samples" \
  samples/*.jpg >"$build/samples/sizes"

# The dynamic loader comes from the cross toolchain; -L alone does not
# carry the library path through to the guest. Relative to $build.
libs=sysroot/usr/lib/aarch64-linux-gnu:sysroot/lib/aarch64-linux-gnu
libs+=:/usr/aarch64-linux-gnu/lib:/usr/lib/aarch64-linux-gnu/android
cpu=neoverse-n1

# count NAME IMPLEMENTATION CASE [K]: NAME.txt gets the regions, NAME.out
# what the guest printed.
count() {
  local name=$1
  shift
  # The guest's stack starts with its arguments and environment, whose
  # size moves the alignment work of a few memory calls: so the same
  # relative paths wherever the tree is, and no other environment.
  (cd "$build" && env -i qemu-aarch64 -cpu $cpu -L /usr/aarch64-linux-gnu \
    -E LD_LIBRARY_PATH="$libs" -plugin "$plugin,out=$out/$name.txt" \
    ./bench/aarch64/pavona_count_guest "$@" >"$out/$name.out") ||
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
samples=()
while read -r name size; do
  samples+=("$name $size")
  for k in 4 8 20; do
    for run in sample again; do
      jobs+=("${run}_${name}_k$k sample $k samples/$name.nv21 $size")
    done
  done
done <"$build/samples/sizes"
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

# mean NAME, span NAME (min - max), passes NAME
mean() { sed -n 's/.* mean \([0-9.]*\) .*/\1/p' "$out/$1.txt"; }
span() { sed -n 's/.* min \([0-9]*\) max \([0-9]*\)/\1 - \2/p' "$out/$1.txt"; }
passes() { sed -n 's/^passes //p' "$out/$1.out"; }
# Same regions, to the instruction, in both runs of k = 4, 8 and 20?
agree=yes
for k in 4 8 20; do
  cmp -s "$out/frame_k$k.txt" "$out/again_k$k.txt" || agree="NO (k = $k differs)"
  for sample in "${samples[@]}"; do
    name=${sample%% *}
    cmp -s "$out/sample_${name}_k$k.txt" "$out/again_${name}_k$k.txt" ||
      agree="NO ($name.jpg, k = $k differs)"
  done
done

# Columns: stage, k, ours, ours' min - max, peer, peer's count, floor.
rows=()
row() { rows+=("$(printf '%s\t' "$@")"); }
# ours STAGE K CASE [PEER PEER-CASE]: a row of means.
ours() { row "$1" "$2" "$(mean "$3")" "$(span "$3")" "${4:-}" "${5:+$(mean "$5")}"; }
div() { awk -v a="$1" -v b="$2" 'BEGIN { print a / b }'; }
mul() { awk -v a="$1" -v b="$2" 'BEGIN { print a * b }'; }
ours "Resize of both planes to 124x92" "" resize \
  "libyuv ScalePlane + UVScale, nearest" resize_libyuv
ours "" "" resize "OpenCV resize, nearest" resize_opencv
ours "YUV to float RGB, 124x92" "" convert \
  "libyuv NV21ToRGB24 + ByteToFloat" convert_libyuv
ours "" "" convert "OpenCV cvtColorTwoPlane + convertTo" convert_opencv
for k in 3 8 20; do
  p=$(passes kmeans_k$k) cvp=$(passes kmeans_opencv_k$k)
  sweep=$(mean floor_k$k)
  row "k-means ($p passes; OpenCV $cvp)" $k "$(mean kmeans_k$k)" \
    "$(span kmeans_k$k)" "OpenCV kmeans" "$(mean kmeans_opencv_k$k)" \
    "$(mul "$sweep" "$p")"
  row "k-means, a pass" $k "$(div "$(mean kmeans_k$k)" "$p")" "" \
    "OpenCV kmeans, a pass" "$(div "$(mean kmeans_opencv_k$k)" "$cvp")" "$sweep"
done
for k in 3 8 20; do ours "Colour selection" $k select_k$k; done
for k in 3 8 20; do ours "Preview" $k preview_k$k; done
frames=$(grep -c ': [0-9]' "$out/frame_k3.txt")
ours "Whole frame through the table, mean of $frames frames" 3 frame_k3 \
  "OpenCV whole-frame pipeline" frame_opencv_k3
ours "" 4 frame_k4
ours "" 8 frame_k8 "OpenCV whole-frame pipeline" frame_opencv_k8
ours "" 20 frame_k20
for sample in "${samples[@]}"; do
  read -r name size <<<"$sample"
  ours "Whole frame through the table: $name.jpg, $size, mean of $frames frames" \
    4 "sample_${name}_k4"
  for k in 8 20; do ours "" $k "sample_${name}_k$k"; done
done

cat <<HEAD
AArch64 instructions executed under qemu-aarch64 $(qemu-aarch64 --version |
  sed -n 's/.*version \([^ ]*\).*/\1/p') -cpu $cpu, counted by our TCG plugin;
one thread; the 4000x3000 NV21 photo frame of make bench and its working
points, and the bundled photographs as the pavona tool hands them over: at
their own sizes, to a handle set up for 4000x3000. Ours: GCC $(aarch64-linux-gnu-gcc -dumpfullversion) -O3, the peers as Debian ships them for arm64
($(cat "$sysroot/versions")).
Stages: mean of $(grep -c ': [0-9]' "$out/resize.txt") repeats after a warm-up. Floor: one sweep summing the
k-means lists' points in list order into k sums, times our passes. Lower
is better in every ratio.

HEAD
printf '%s\n' "${rows[@]}" | awk -F'\t' '
  function n(x) { return x == "" ? "" : sprintf("%d", x + 0.5) }
  function r(a, b) { return (a == "" || b == "") ? "" : sprintf("%.2f", a / b) }
  BEGIN {
    print "| Stage | k | Pavona | min - max | Peer | Peer | ours/peer | Floor | ours/floor |"
    print "|---|---:|---:|---:|---|---:|---:|---:|---:|"
  }
  { printf "| %s | %s | %s | %s | %s | %s | %s | %s | %s |\n", $1, $2, n($3), $4, $5,
      n($6), r($3, $6), n($7), r($3, $7) }'
echo
echo "Two runs of the whole frame, the photo frame's and each bundled"
echo "photograph's, agree to the instruction for k = 4, 8, 20: $agree"
echo "Counted in $((SECONDS - start)) s."
[[ $agree == yes ]]
