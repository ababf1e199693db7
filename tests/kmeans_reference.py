#!/usr/bin/env python3
"""Plain float32 k-means for the expected values of tests/kmeans_test.cpp.

Every step is written out one float32 operation at a time (a double result
rounded to float32 is the correctly rounded float32 result for + - * / and
sqrt), so it shares nothing with the C++ code. Prints each case's pass
count and, per cluster in seed order, its member count and centre bits.
"""
import math
import struct


def f32(x):
    return struct.unpack("<f", struct.pack("<f", x))[0]


def bits(x):
    return struct.unpack("<I", struct.pack("<f", x))[0]


FAR = struct.unpack("<f", bytes([100] * 4))[0]
FLT_MIN = struct.unpack("<f", struct.pack("<I", 0x00800000))[0]


def distance(s, c, weighted):
    dr, dg, db = (f32(s[n] - c[n]) for n in range(3))
    if weighted:
        return f32(f32(f32(dr * f32(dr + dr)) + f32(dg * f32(4 * dg)))
                   + f32(db * f32(3 * db)))
    return f32(f32(f32(dr * dr) + f32(dg * dg)) + f32(db * db))


def seeds(k, width, height):
    h4, h2, w4, w2 = height // 4, height // 2, width // 4, width // 2
    cells = {4: [(h4, w2), (h2, w4), (h2, 3 * w4), (3 * h4, w2)],
             8: [(h4, w4), (h4, w2), (h4, 3 * w4), (h2, w4), (h2, w2),
                 (h2, 3 * w4), (3 * h4, w4), (3 * h4, 3 * w4)]}[k]
    return [row * width + col for row, col in cells]


def kmeans(grid, width, height, k, threshold):
    n = width * height
    centres = [grid[i] for i in seeds(k, width, height)]
    passes = 0
    while True:
        lists = [[c] for c in centres]
        nearest = [FAR] * n
        labels = [0] * n
        for i in range(k):
            for j in range(n):
                d = distance(grid[j], centres[i], j >= n // 4 * 4)
                if d < nearest[j]:
                    nearest[j], labels[j] = d, i
        for j in range(n):
            lists[labels[j]].append(grid[j])
        largest = FLT_MIN
        for i in range(k):
            sums = [0.0, 0.0, 0.0]
            for p in lists[i]:
                sums = [f32(sums[m] + p[m]) for m in range(3)]
            moved = [f32(s / len(lists[i])) for s in sums]
            dr, dg, db = (f32(moved[m] - centres[i][m]) for m in range(3))
            dr2, dg2, db2 = f32(dr * dr), f32(dg * dg), f32(db * db)
            shift = f32(math.sqrt(f32(f32(f32(dr2 + dr2) + f32(4 * dg2))
                                      + f32(3 * db2))))
            centres[i] = moved
            if shift > largest:
                largest = shift
        passes += 1
        if passes - 1 > 500 or largest < threshold:
            return passes, [(len(lists[i]), centres[i]) for i in range(k)]


def lattice_grid(width, height):
    # The C++ test builds the same grid: four colour blobs plus a ramp.
    grid = []
    for j in range(width * height):
        row, col = divmod(j, width)
        blob = (row * 2 // height) * 2 + col * 2 // width
        base = [(200, 30, 40), (20, 180, 60), (40, 50, 220), (230, 220, 90)]
        r, g, b = base[blob]
        grid.append((float(r + j * 7 % 23), float(g + j * 11 % 19),
                     float(b + j * 5 % 17)))
    return grid


def main():
    worked = [(10, 10, 10), (20, 20, 20), (200, 0, 0), (210, 0, 0),
              (0, 200, 0), (0, 0, 200), (0, 210, 0), (0, 0, 210)]
    cases = [("worked 4x2 k=4", worked, 4, 2, 4),
             ("blobs 14x10 k=4", lattice_grid(14, 10), 14, 10, 4),
             ("blobs 13x9 k=8", lattice_grid(13, 9), 13, 9, 8),
             # Red moves most, so its doubled square decides the last pass.
             ("red ramp 6x4 k=4",
              [(float(j * 3 % 97), float(j % 3), 0.0) for j in range(24)],
              6, 4, 4)]
    for name, grid, width, height, k in cases:
        passes, clusters = kmeans(grid, width, height, k, f32(0.001))
        print(f"{name}: {passes} passes")
        for count, c in clusters:
            print(f"  {count:4d}  0x{bits(c[0]):08X}, 0x{bits(c[1]):08X}, "
                  f"0x{bits(c[2]):08X}  ({c[0]:.6g}, {c[1]:.6g}, {c[2]:.6g})")


if __name__ == "__main__":
    main()
