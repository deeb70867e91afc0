#!/usr/bin/env python3
"""Makes the example profiles in examples/ from a documented synthetic road.

The road is a sum of sinusoids, three in each of the nine octave bands of wavelength (band 1 is
51.2-102.4 m, band 9 is 0.2-0.4 m; the sinusoids sit at 0.75, 1.0 and 1.33 times the band's
geometric centre, so 0.21 m to 96.5 m overall), plus a little white noise. The amplitudes follow the
displacement spectrum of ISO 8608, G(n) = G0 (n / 0.1)^-2 with n in cycles/m: a band of width dn
carries the variance G(n) dn, shared by its three sinusoids, so the amplitude of one sinusoid is
sqrt(2 G(n) dn / 3) and grows with the square root of the wavelength, as on a real road.
Phases come from a fixed seed, so the files are the same on every run.

Files are written in the ERD layout (Shift-JIS, CR LF), heights in mm, pitch in m. Run from the
repository root with the Python 3 standard library only:
    python3 tools/make_examples.py
"""
import math
import os
import random

OUT = os.path.join(os.path.dirname(__file__), "..", "examples")

# Road class by its G0 in m^3 (ISO 8608 geometric means: A 16e-6, B 64e-6, C 256e-6).
EXAMPLES = [
    # file, title, short name, samples, pitch m, G0, noise sigma mm, seed
    ("road_a_kp.erd", "国道１２号　上り　第１車線｜12.30000++", "LElev.", 3000, 0.1, 16e-6, 0.05, 1201),
    ("road_b.erd", "Test road B, right wheel path", "RElev.", 5000, 0.05, 64e-6, 0.05, 1202),
    ("road_c_rough.erd", "Rough service road C", "LElev.", 3000, 0.1, 256e-6, 0.08, 1203),
]


def road(samples, pitch, g0, noise, seed):
    rng = random.Random(seed)
    waves = []
    for band in range(1, 10):
        low = 0.2 * 2 ** (9 - band)  # wavelength bounds of the band, m
        centre = low * math.sqrt(2.0)
        n_centre = 1.0 / centre
        dn = n_centre * (math.sqrt(2.0) - 1.0 / math.sqrt(2.0))  # width of the band in cycles/m
        for factor in (0.75, 1.0, 4.0 / 3.0):
            wavelength = centre * factor
            n = 1.0 / wavelength
            variance = g0 * (n / 0.1) ** -2 * dn / 3.0  # m^2
            amplitude_mm = math.sqrt(2.0 * variance) * 1000.0
            waves.append((amplitude_mm, 2.0 * math.pi / wavelength, rng.uniform(0.0, 2.0 * math.pi)))
    heights = []
    for i in range(samples):
        x = i * pitch
        h = sum(a * math.sin(k * x + p) for a, k, p in waves) + rng.gauss(0.0, noise)
        heights.append(h)
    return heights


def sample_text(value):
    text = "%.8f" % value
    return "0.00000000" if text == "-0.00000000" else text


def erd_lines(title, short_name, heights, pitch):
    line2 = "%7d,%7d,%7d,%7d,%7d, %.6f    ,%7d," % (1, len(heights), len(heights), 1, 5, pitch, -1)
    right = short_name.strip().upper() == "RELEV"  # the writer's test, without the full stop
    return [
        "ERDFILEV2.00",
        line2,
        "TITLE   " + title,
        "SHORTNAM" + short_name,
        "LONGNAME" + ("Right Elevation" if right else "Left Elevation"),
        "UNITSNAMmm",
        "GENNAME Elevation",
        "XLABEL  Distance",
        "XUNITS  m",
        "FORMAT  (G14.6)",
        "END",
    ] + [sample_text(h) + " " for h in heights]


def main():
    os.makedirs(OUT, exist_ok=True)
    for name, title, short_name, samples, pitch, g0, noise, seed in EXAMPLES:
        lines = erd_lines(title, short_name, road(samples, pitch, g0, noise, seed), pitch)
        with open(os.path.join(OUT, name), "wb") as f:
            f.write("".join(line + "\r\n" for line in lines).encode("cp932"))


if __name__ == "__main__":
    main()
