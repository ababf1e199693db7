#!/usr/bin/env python3
"""Float32 colour science for tests/data/colour_bits.txt: sRGB -> L*a*b*,
CIEDE2000, and a palette row's lightness figure and saturation boost, from
the published formulas with each step's precision spelled out (a double
result rounded to float32 is the correctly rounded float32 result for
+ - * / and sqrt; powf, atan2f and cosf come from the C maths library, as
for the plug-in). Prints every value as the hex bits of a float32:
  lab R G B -> L A B;  de L1 A1 B1 L2 A2 B2 -> DE;
  row SCALE R G B -> R' G' B' FIGURE
Usage: tests/colour_reference.py > tests/data/colour_bits.txt
"""
import ctypes
import ctypes.util
import math
import random
import struct

LIBM = ctypes.CDLL(ctypes.util.find_library("m"))
for _name, _arity in (("powf", 2), ("atan2f", 2), ("cosf", 1)):
    getattr(LIBM, _name).restype = ctypes.c_float
    getattr(LIBM, _name).argtypes = [ctypes.c_float] * _arity


def f32(x):
    return struct.unpack("<f", struct.pack("<f", x))[0]


def bits(x):
    return struct.unpack("<I", struct.pack("<f", x))[0]


TWO_PI, PI = f32(2 * math.pi), f32(math.pi)
KNEE = f32(0.008856)
POW25_7 = f32(25.0 ** 7)  # 6103515648: 25^7 rounded to float, as shipped


def linear(v):
    if v > 0.04045:
        return LIBM.powf(f32(f32(v + f32(0.055)) / f32(1.055)), f32(2.4))
    return f32(v / 12.92)


def lab_f(t):
    if t > KNEE:
        return LIBM.powf(t, f32(1 / 3))
    return f32(f32(t * f32(7.787)) + f32(0.137931))


def rgb_to_lab(r, g, b):
    r, g, b = linear(r), linear(g), linear(b)
    x = f32(f32((g * 0.35758 + r * 0.412453) + b * 0.180423) / 0.95047)
    y = f32((g * 0.71516 + r * 0.212671) + b * 0.072169)
    z = f32(f32((g * 0.119193 + r * 0.019334) + b * 0.950227) / 1.08883)
    fx, fy, fz = lab_f(x), lab_f(y), lab_f(z)
    lightness = f32(f32(116 * fy) - 16) if y > KNEE else f32(f32(903.3) * y)
    return lightness, f32(f32(fx - fy) * 500), f32(f32(fy - fz) * 200)


def hue(b, a):
    if b == 0 and a == 0:
        return 0.0
    h = LIBM.atan2f(b, a)
    return f32(h + TWO_PI) if h < 0 else h


def seventh_ratio(c):
    c7 = math.pow(c, 7.0)
    return math.sqrt(c7 / (c7 + POW25_7))


def primed(a1, b1, a2, b2):
    c1 = f32(math.sqrt(f32(f32(a1 * a1) + f32(b1 * b1))))
    c2 = f32(math.sqrt(f32(f32(a2 * a2) + f32(b2 * b2))))
    g = f32((1.0 - seventh_ratio(f32(f32(c1 + c2) * 0.5))) * 0.5)
    return f32((1.0 + g) * a1), f32((1.0 + g) * a2)


def ciede2000(l1, a1, b1, l2, a2, b2, round_t=f32):
    """round_t takes T in double and gives it in float32."""
    a1p, a2p = primed(a1, b1, a2, b2)
    c1p = f32(math.sqrt(f32(f32(a1p * a1p) + f32(b1 * b1))))
    c2p = f32(math.sqrt(f32(f32(a2p * a2p) + f32(b2 * b2))))
    h1, h2 = hue(b1, a1p), hue(b2, a2p)
    product = f32(c1p * c2p)
    dh = 0.0
    if product != 0:
        dh = f32(h2 - h1)
        if dh < -PI:
            dh = f32(dh + TWO_PI)
        elif dh > PI:
            dh = f32(dh - TWO_PI)
    d_big_h = f32(2.0 * f32(math.sqrt(product)) * math.sin(dh * 0.5))
    l_bar, c_bar = f32(f32(l1 + l2) * 0.5), f32(f32(c1p + c2p) * 0.5)
    total = f32(h1 + h2)
    if product == 0:
        h_bar = total
    elif abs(f32(h1 - h2)) <= PI:
        h_bar = f32(total * 0.5)
    elif total < TWO_PI:
        h_bar = f32(f32(total + TWO_PI) * 0.5)
    else:
        h_bar = f32(f32(total - TWO_PI) * 0.5)
    t = round_t(1.0 - 0.17 * LIBM.cosf(f32(h_bar - f32(math.radians(30))))
            + 0.24 * math.cos(2.0 * h_bar)
            + 0.32 * math.cos(3.0 * h_bar + f32(math.radians(6)))
            - 0.2 * math.cos(4.0 * h_bar - f32(math.radians(63))))
    q = f32(f32(h_bar - f32(math.radians(275))) / f32(math.radians(25)))
    d_theta = f32(f32(math.radians(30)) * math.exp(-(q * q)))
    r_c = f32(2.0 * seventh_ratio(c_bar))
    l_off = l_bar - 50.0
    l_off *= l_off
    s_l = f32(1.0 + 0.015 * l_off / math.sqrt(20.0 + l_off))
    s_c = f32(1.0 + 0.045 * c_bar)
    s_h = f32(1.0 + 0.015 * c_bar * t)
    rotation = f32(math.sin(2.0 * d_theta) * r_c)
    tl, tc = f32(f32(l2 - l1) / s_l), f32(f32(c2p - c1p) / s_c)
    th = f32(d_big_h / s_h)
    cross = f32(f32(tc * rotation) * th)
    return f32(math.sqrt(tc * tc + tl * tl + th * th - cross))


def next_up(x, steps=1):
    return struct.unpack("<f", struct.pack("<I", bits(x) + steps))[0]


def first_grey_above_knee():
    low, high = 0.05, 0.15  # below the knee, above it
    while high > next_up(low):
        middle = next_up(low, (bits(high) - bits(low)) // 2)
        low, high = (low, middle) if linear(middle) > KNEE else (middle, high)
    return high


def colours(rng):
    """Greys through the companding threshold and just past the Lab knee,
    8-bit and 10-bit frame values, dark colours; channels in 0..1."""
    threshold, knee = f32(0.04045), first_grey_above_knee()
    greys = [v / 255 for v in range(0, 41)] + [
        threshold, next_up(threshold), 0.5, 1.0] + [
        next_up(knee, n) for n in (-1, 0, 3, 10, 30, 100)]
    out = [(f32(v), f32(v), f32(v)) for v in greys]
    out += [(1, 0, 0), (0, 1, 0), (0, 0, 1), (0, threshold, 0)]
    for scale, top, count in ((255, 255, 120), (1024, 1023, 40), (255, 30, 40)):
        out += [tuple(f32(rng.randint(0, top) / scale) for _ in range(3))
                for _ in range(count)]
    return out


def pairs(rng, labs):
    """Lab pairs: neutral ones, one side neutral, hues either side of the
    pi discontinuity and of the 0/2pi wrap, and pairs of frame colours."""
    out = [((50, 2, 0), (50, -3, 0)), ((50, -3, 0), (50, 2, 0)),
           ((30, 0, 0), (70, 0, 0)), ((50, 0, 0), (55, 10, -4)),
           ((60, 20, 0), (60, 0, 0)), ((40, 5, -0.001), (42, 6, 0.001))]
    for a in (-1e-3, 0, 1e-3):
        for b in (-2e-3, 0, 2e-3):
            out += [((50, 2.49, -0.001), (50, -2.49 + a, 0.001 + b)),
                    ((50, -0.001, 2.49), (50, 0.001 + a, -2.49 + b))]
    for _ in range(40):
        angle = rng.uniform(0, 2 * math.pi)
        near_pi = angle + math.pi + rng.uniform(-0.01, 0.01)
        c1, c2 = rng.uniform(1, 60), rng.uniform(1, 60)
        out.append(((rng.uniform(10, 90), c1 * math.cos(angle),
                     c1 * math.sin(angle)),
                    (rng.uniform(10, 90), c2 * math.cos(near_pi),
                     c2 * math.sin(near_pi))))
    out += [(rng.choice(labs), rng.choice(labs)) for _ in range(150)]
    # Mean chroma near 25, where G and R_C turn, and mean hues near 275
    # degrees, where the rotation term is largest: there the last bits of
    # those terms' constants show in the result.
    for _ in range(500):
        hue1 = math.radians(rng.gauss(275, 30))
        hue2 = hue1 + math.radians(rng.uniform(-40, 40))
        c1, c2 = rng.uniform(10, 40), rng.uniform(10, 40)
        out.append(((rng.uniform(20, 80), c1 * math.cos(hue1),
                     c1 * math.sin(hue1)),
                    (rng.uniform(20, 80), c2 * math.cos(hue2),
                     c2 * math.sin(hue2))))
    out += [(lab, lab) for lab in labs[::40]]
    out += exactly_pi_apart(rng) + near_a_rounding_tie_of_t(rng)
    return [(tuple(map(f32, p)), tuple(map(f32, q))) for p, q in out]


def near_a_rounding_tie_of_t(rng):
    """Pairs whose T lies within 1e-9 of halfway between two floats and
    whose result moves with T's last bit: a change of one part in 1e9 in
    any term of T shows in the result."""
    found = []
    while len(found) < 40:
        pair = []
        for _ in range(2):
            hue_angle, chroma = rng.uniform(0, 2 * math.pi), rng.uniform(5, 40)
            pair += [f32(rng.uniform(20, 80)), f32(chroma * math.cos(hue_angle)),
                     f32(chroma * math.sin(hue_angle))]
        seen = []
        result = ciede2000(*pair, round_t=lambda t: seen.append(t) or f32(t))
        t = seen[0]
        other = next_up(f32(t), 1 if t > f32(t) else -1)
        if abs(t - (f32(t) + other) / 2) < 1e-9 and \
                ciede2000(*pair, round_t=lambda _: other) != result:
            found.append((tuple(pair[:3]), tuple(pair[3:])))
    return found


def exactly_pi_apart(rng):
    """Pairs whose float hues differ by exactly 3.1415927f, with a mean hue
    near 270 degrees where the rotation term counts: both ties of the
    hue-difference and mean-hue branches, in either order."""
    found = []
    while len(found) < 8:
        angle = math.radians(355) + rng.uniform(-0.05, 0.05)
        c1, c2 = rng.uniform(5, 40), rng.uniform(5, 40)
        a1, b1 = f32(c1 * math.cos(angle)), f32(c1 * math.sin(angle))
        a2 = f32(c2 * math.cos(angle - math.pi))
        b2 = f32(c2 * math.sin(angle - math.pi))
        a1p, a2p = primed(a1, b1, a2, b2)
        if f32(hue(b1, a1p) - hue(b2, a2p)) == PI:
            first, second = (60, a1, b1), (55, a2, b2)
            found += [(first, second), (second, first)]
    return found


def palette_row(scale, r, g, b):
    """A centre as its palette row: the HSL lightness figure (min + max) *
    10 / 51, then the HSL saturation raised by a quarter, or to full from
    0.8 up, about the same lightness."""
    top, bottom = max(r, g, b), min(r, g, b)
    figure = f32(f32(f32(bottom + top) * 10) / 51)
    spread = f32(f32(top - bottom) / scale)
    if spread == 0:
        return r, g, b, figure
    total = f32(f32(top + bottom) / scale)
    lightness = f32(total * 0.5)
    sat = f32(spread / (total if lightness < 0.5 else f32(2 - total)))
    mid = f32(scale * lightness)
    factor = 0.25 if f32(sat + f32(0.2)) < 1 else f32(f32(1 / sat) - 1)
    return tuple(f32(v + f32(f32(v - mid) * factor)) for v in (r, g, b)) + (
        figure,)


def centres(rng):
    """Scale and centre: whole and fractional values of the 8-bit (255),
    10-bit (1024) and other (1) scales, greys, full saturation."""
    out = [(255, 80, 80, 80), (255, 200, 100, 100), (1024, 1000, 600, 600),
           (1, 255, 0, 0), (255, 100, 0, 0)]
    for scale, top in ((255, 255), (1024, 1023), (1, 255)):
        out += [(scale,) + tuple(f32(rng.uniform(0, top)) for _ in range(3))
                for _ in range(60)]
        out += [(scale,) + tuple(float(rng.randint(0, top)) for _ in range(3))
                for _ in range(30)]
    # Where the lightness does not survive the round trip through the
    # scale, mid = scale * l differs from (max + min) / 2 in its last bit.
    found = 0
    while found < 20:
        scale = rng.choice((255, 1024))
        centre = tuple(f32(rng.uniform(0, scale - 1)) for _ in range(3))
        both = f32(max(centre) + min(centre))
        if f32(scale * f32(f32(both / scale) * 0.5)) != f32(both * 0.5):
            out.append((scale,) + centre)
            found += 1
    return out


def main():
    rng = random.Random(18)
    rgbs = colours(rng)
    labs = [rgb_to_lab(*rgb) for rgb in rgbs]
    rows = [("lab", rgb, lab) for rgb, lab in zip(rgbs, labs)]
    rows += [("de", p + q, [ciede2000(*p, *q)]) for p, q in pairs(rng, labs)]
    rows += [("row", c, palette_row(*c)) for c in centres(rng)]
    for kind, inputs, outputs in rows:
        print(kind, *(f"{bits(v):08x}" for v in inputs), "->",
              *(f"{bits(v):08x}" for v in outputs))


if __name__ == "__main__":
    main()
