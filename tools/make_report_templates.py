#!/usr/bin/python3
"""Makes the example spreadsheet report templates.

- examples/report/iri_report.xlsm: a scripted report. Its "Option" sheet names the data sheet (A001)
  and the cell where the table begins (A002), asks for two free-text parameters (the start and end of
  the output, in the report's unit) and two profile choices (before and after repair), and lists the
  columns: the distance, both profiles, their difference, the 10 m continuous IRI of both, a long-wave
  and an octave-band column, then a 100 m section column pair. The data sheet "データ" receives the table.
- resources/Exel雛形データ/帳表(補修前後).xlsm: the fixed export's template, sheet "データ" with its
  headings on row 2 and the data from row 3 (column 1 positions, 5 elevations, 6 the 10 m continuous
  IRI, 7 to 15 the octave bands 1 to 9).

A macro-enabled workbook carries its macro project in the part xl/vbaProject.bin. These templates hold
a placeholder of a few bytes there (no macro): the program only carries that part over unchanged, and
the tests check that it does. The files are made reproducible: fixed document dates, fixed zip entry
times. Needs Debian's python3-openpyxl; run from the repository root:
    /usr/bin/python3 tools/make_report_templates.py
"""
import datetime
import io
import os
import zipfile

import openpyxl
from openpyxl.workbook.defined_name import DefinedName

ROOT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..")
FIXED_TIME = datetime.datetime(2024, 3, 5, 12, 0, 0)
VBA_PLACEHOLDER = b"velmora report template: placeholder macro project, no code\x00\x01\x02\x03"
VBA_CONTENT_TYPE = "application/vnd.ms-office.vbaProject"

OPTION_HEADING = ["No", "区分", "説明", "コード", "値・ラベル", "名前・データ式", "種別・タイトル式", "備考"]

# (code, description, field 5, field 6, field 7)
SCRIPTED_ROWS = [
    ("A001", "データシート名", "データ", "", ""),
    ("A002", "出力開始セル", "B4", "", ""),
    ("B001", "出力開始位置", "出力開始位置", "start", "入力"),
    ("B002", "出力終了位置", "出力終了位置", "end", "入力"),
    ("B003", "補修前プロファイル", "補修前プロファイル", "before", "選択"),
    ("B004", "補修後プロファイル", "補修後プロファイル", "after", "選択"),
    ("C001", "距離", "", "#DIST(, start, end)", '"距離[" & #UNIT & "]"'),
    ("C002", "補修前", "", "#PROF(ALL, before, start, end)", "#GETPROFILENAME(before)"),
    ("C003", "補修後", "", "#PROF(ALL, after, start, end)", "#GETPROFILENAME(after)"),
    ("C004", "差分", "", "#PROF(ALL, after, start, end) - #PROF(ALL, before, start, end)", '"差分(後-前)"'),
    ("C005", "IRI補修前", "", "#IRI(10B, before, start, end)", '"IRI 10m連続 補修前"'),
    ("C006", "IRI補修後", "", "#IRI(10B, after, start, end)", '"IRI 10m連続 補修後"'),
    ("C007", "長波長", "", "#PROF(LONG, before, start, end)", '"長波長 補修前"'),
    ("C008", "3-OCT", "", "#prof(3oct, before, start, end) * 2", '"3-OCT x2 補修前"'),
    ("C009", "100m区間", "", "#DIST(100, start, end)", '"100m区間 始点"'),
    ("C010", "100m IRI", "", "#IRI(100A, before, start, end)", '"IRI 100m 補修前"'),
]


def option_sheet(workbook, rows):
    sheet = workbook.create_sheet("Option")
    sheet.append(OPTION_HEADING)
    for number, (code, description, value, name, kind) in enumerate(rows, start=1):
        sheet.append([number, code[0], description, code, value, name, kind, ""])
    return sheet


def scripted_template():
    workbook = openpyxl.Workbook()
    data = workbook.active
    data.title = "データ"
    data["A1"] = "路面プロファイル帳票"
    data["B2"] = "velmora が B4 から表を書き込みます（1行目はタイトル）。"
    option_sheet(workbook, SCRIPTED_ROWS)
    return workbook


def fixed_template():
    workbook = openpyxl.Workbook()
    data = workbook.active
    data.title = "データ"
    data["A1"] = "帳表(補修前後)"
    headings = {1: "位置", 5: "プロファイル", 6: "IRI(10m連続)"}
    headings.update({6 + band: f"{band}-OCT" for band in range(1, 10)})
    for column, text in headings.items():
        data.cell(row=2, column=column, value=text)
    return workbook


def macro_archive():
    """The parts openpyxl carries into a macro-enabled workbook: the macro project and its type."""
    buffer = io.BytesIO()
    with zipfile.ZipFile(buffer, "w") as archive:
        archive.writestr("xl/vbaProject.bin", VBA_PLACEHOLDER)
        archive.writestr("[Content_Types].xml",
                         '<?xml version="1.0" encoding="UTF-8"?>'
                         '<Types xmlns="http://schemas.openxmlformats.org/package/2006/content-types"/>')
        archive.writestr("_rels/.rels",
                         '<?xml version="1.0" encoding="UTF-8"?>'
                         '<Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships"/>')
    buffer.seek(0)
    return zipfile.ZipFile(buffer)


def save_reproducibly(workbook, path):
    for name, sheet in (("select_Option", "Option"), ("select_データシート", "データ")):
        if sheet in workbook.sheetnames:
            workbook.defined_names.append(DefinedName(name, attr_text=f"'{sheet}'!$A$1"))
    workbook.properties.created = FIXED_TIME
    workbook.properties.modified = FIXED_TIME
    workbook.properties.creator = "velmora"
    workbook.vba_archive = macro_archive()
    raw = io.BytesIO()
    workbook.save(raw)
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with zipfile.ZipFile(raw) as source, zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED) as target:
        for info in source.infolist():
            data = source.read(info.filename)
            if info.filename == "[Content_Types].xml" and b'Extension="bin"' not in data:
                # openpyxl leaves the macro project's type out; a macro-enabled workbook needs it.
                data = data.replace(b"<Default ", b'<Default Extension="bin" ContentType="%s"/><Default '
                                    % VBA_CONTENT_TYPE.encode(), 1)
            entry = zipfile.ZipInfo(info.filename, date_time=FIXED_TIME.timetuple()[:6])
            entry.compress_type = zipfile.ZIP_DEFLATED
            target.writestr(entry, data)
    print(path)


def main():
    save_reproducibly(scripted_template(), os.path.join(ROOT, "examples", "report", "iri_report.xlsm"))
    save_reproducibly(fixed_template(), os.path.join(ROOT, "resources", "Exel雛形データ", "帳表(補修前後).xlsm"))


if __name__ == "__main__":
    main()
