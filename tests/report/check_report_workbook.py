#!/usr/bin/python3
"""Checks a written report workbook against its interface file and its template, independently of
the program: the data sheet read by openpyxl (macros kept) must hold the interface file's table at
DataRow/DataColumn, and every zip part but the data sheet and the shared strings must be
byte-identical to the template's.

    check_report_workbook.py TEMPLATE WORKBOOK INTERFACE
Prints "ok" and exits 0, or prints each difference and exits 1.
"""
import sys
import xml.etree.ElementTree as ET
import zipfile

import openpyxl

REL_NS = "{http://schemas.openxmlformats.org/officeDocument/2006/relationships}id"
MAIN_NS = "{http://schemas.openxmlformats.org/spreadsheetml/2006/main}"
PKG_NS = "{http://schemas.openxmlformats.org/package/2006/relationships}"


def sheet_part(archive, name):
    workbook = ET.fromstring(archive.read("xl/workbook.xml"))
    rel_id = next(s.get(REL_NS) for s in workbook.iter(MAIN_NS + "sheet") if s.get("name") == name)
    rels = ET.fromstring(archive.read("xl/_rels/workbook.xml.rels"))
    target = next(r.get("Target") for r in rels.iter(PKG_NS + "Relationship") if r.get("Id") == rel_id)
    return target[1:] if target.startswith("/") else "xl/" + target


def main(template, workbook, interface):
    problems = []
    with open(interface, "rb") as f:
        lines = f.read().decode("cp932").split("\r\n")
    assert lines[-1] == "", "the interface file must end with CR LF"
    rows, columns, data_row, data_column, sheet = lines[0].split(",", 4)
    rows, columns, data_row, data_column = int(rows), int(columns), int(data_row), int(data_column)
    table = [line.split(",") for line in lines[1:1 + rows]]
    if len(lines) != rows + 2:
        problems.append(f"interface: {len(lines) - 2} table lines for {rows} rows")

    book = openpyxl.load_workbook(workbook, keep_vba=True)
    if book.vba_archive is None or "xl/vbaProject.bin" not in book.vba_archive.namelist():
        problems.append("the workbook has no macro project")
    ws = book[sheet]
    for r, cells in enumerate(table):
        if len(cells) != columns:
            problems.append(f"interface row {r + 1}: {len(cells)} cells for {columns} columns")
        for c, text in enumerate(cells):
            value = ws.cell(row=data_row + r, column=data_column + c).value
            if r == 0:
                expected = text if text != "" else None
            else:
                expected = float(text) if text != "" else None
            if value != expected:
                problems.append(f"row {r + 1} column {c + 1}: sheet {value!r}, interface {text!r}")

    with zipfile.ZipFile(template) as a, zipfile.ZipFile(workbook) as b:
        changed = {sheet_part(a, sheet), "xl/sharedStrings.xml"}
        if sorted(a.namelist()) != sorted(b.namelist()):
            problems.append(f"parts differ: {sorted(a.namelist())} / {sorted(b.namelist())}")
        for name in a.namelist():
            if name not in changed and name in b.namelist() and a.read(name) != b.read(name):
                problems.append(f"part {name} changed")

    for problem in problems[:20]:
        print(problem)
    if not problems:
        print("ok")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:4]))
