#!/usr/bin/env python3
"""Writes the small ERD fixtures of tests/profile, one per edge case, byte for byte.

Each file is Shift-JIS with CR LF, like the files the program meets. Run from the repository root:
    python3 tools/make_erd_fixtures.py
The expected values the tests check are worked out by hand from the contents written here.
"""
import os

OUT = os.path.join(os.path.dirname(__file__), "..", "tests", "data", "erd")

LINE2 = "      1,      3,      3,      1,      5, 0.250000    ,     -1,"
STANDARD_HEADER = [
    "SHORTNAMLElev.",
    "LONGNAMELeft Elevation",
    "UNITSNAMmm",
    "GENNAME Elevation",
    "XLABEL  Distance",
    "XUNITS  m",
    "FORMAT  (G14.6)",
    "END",
]


def erd(title, data, line2=LINE2, header=None):
    lines = ["ERDFILEV2.00", line2, "TITLE   " + title]
    lines += STANDARD_HEADER if header is None else header
    return lines + data


FIXTURES = {
    # 99 filler keys, then TITLE as the 100th header line, then no END: "7.5" is the first sample.
    "header_without_end.erd": ["ERDFILEV2.00", LINE2]
    + ["NOTE%04d filler line %d" % (n, n) for n in range(1, 100)]
    + ["TITLE   hundredth", "7.5", "8.5"],
    "blank_line_in_data.erd": erd("blank lines", ["1.0", "", "   ", "2.0", ""]),
    "feet_units.erd": erd(
        "feet",
        ["10.0", "-2.5"],
        line2="      1,      2,      2,      1,      5, 0.500000    ,     -1,",
        header=["SHORTNAMLElev.", "UNITSNAMmm", "XLABEL  Distance", "XUNITS  ft", "END"],
    ),
    "cm_heights.erd": erd("cm", ["1.5", "-0.25", "0"], header=["UNITSNAMcm", "XUNITS  m", "END"]),
    "m_heights.erd": erd("m", ["0.0015", "-0.002", "1"], header=["UNITSNAMm", "XUNITS  m", "END"]),
    "sjis_title_with_kp.erd": erd("国道１２号　上り｜123.45000+-｜123.50000,124.00000", ["1", "2", "3"]),
    "title_short_kp.erd": erd("route｜-", ["1", "2", "3"]),
    "kp_no_value.erd": erd("road｜-99999.00000-+｜1.00000,2.00000", ["1", "2", "3"]),
    "header_count_differs.erd": erd(
        "count", ["1", "2", "3"], line2="      1,     10,     10,      1,      5, 0.250000    ,     -1,"
    ),
    "line2_free_widths.erd": erd("free widths", ["1", "2", "3"], line2="1,3,,,5,0.25,-1"),
    "short_key_padding.erd": ["ERDFILEV2.00", LINE2, "TITLE Short pad", "GENNAME Height",
                              "XLABEL Dist", "XUNITS m", "UNITSNAMmm", "END", "4", "5", "6"],
    "two_channel_header.erd": erd(
        "two channels",
        ["1.0", "2.0"],
        line2="      2,      2,      2,      1,      5, 0.100000    ,     -1,",
        header=["SHORTNAMLElev.  RElev.  ", "UNITSNAMcm      cm      ", "XUNITS  m", "END"],
    ),
    "not_erd.erd": ["ERDFILEV1.00", LINE2, "END", "1"],
    "format_code_4.erd": erd("f", ["1"], line2="      1,      1,      1,      1,      4, 0.250000    ,     -1,"),
    "three_channels.erd": erd("c", ["1"], line2="      3,      1,      1,      1,      5, 0.250000    ,     -1,"),
    "zero_step.erd": erd("s", ["1"], line2="      1,      1,      1,      1,      5, 0.000000    ,     -1,"),
    "data_line_not_number.erd": erd("bad", ["1.0", "2.0", "abc", "4.0"]),
    "two_numbers_on_line.erd": erd("pair", ["1.0 2.0"]),
}


def main():
    os.makedirs(OUT, exist_ok=True)
    for name, lines in FIXTURES.items():
        data = "".join(line + "\r\n" for line in lines).encode("cp932")
        with open(os.path.join(OUT, name), "wb") as f:
            f.write(data)


if __name__ == "__main__":
    main()
