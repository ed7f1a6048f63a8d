#!/usr/bin/python3
"""The parts of scripts/check-workbooks and scripts/check-hostile-workbooks that need a look into files.

odd FILE.json TEXT...    the weather of a file with texts and numbers that are hard to carry, the given
                         texts among them, without assignments
many SHEETS ROWS         the weather of so many calendars of so many periods or windows
same A.json B.json NAME  whether two files have the same calendars
save IN.xlsx OUT.xlsx    opens and saves a workbook
make FILE.json OUT.xlsx  makes a workbook of weather data without one to begin with
around IN.xlsx OUT.xlsx  the same workbook, with a blank in a cell to the right of the data and below, so
                         that what stands around them gets onto a printed page
look FILE.xlsx           whether the sheets of an export look as they should
"""
import copy
import datetime
import json
import sys

import openpyxl

GREY, BLUE, WHITE = "C0C0C0", "3366FF", "FFFFFF"
DATE, PERCENT = "dd mmm yyyy", "0.00%"


def read(path):
    with open(path, encoding="utf-8") as file:
        return json.load(file)


def odd(path, *more):
    weather = read(path)
    weather["assign"] = []
    texts = ["=1+1", "'quoted'", '"', "<&>", " blank ", "Jänner", "+4", "@x",
             "two\nlines", "x" * 500, *more]
    weather["events"].append({"calendar": "Odd & Süß", "periods": [
        {"description": text, "start": "2028-02-29", "finish": "2028-03-01",
         "probability": [1, 0.07, 0.0001, 0.999, 0][i % 5], "min": 0, "likely": i, "max": 10 * i}
        for i, text in enumerate(texts)]})
    weather["windows"].append({"calendar": "Odd windows", "windows": [
        {"description": "w" + text, "start": ["2026-12-01", "2026-12-10", "2027-01-05"],
         "finish": ["2027-02-20", "2027-02-20", "2029-03-25"]} for text in texts]})
    print(json.dumps(weather))


def many(sheets, rows):
    sheets, rows = int(sheets), int(rows)

    def days(row, *after):
        first = datetime.date(2027, 1, 1) + datetime.timedelta(7 * row)
        return [str(first + datetime.timedelta(days)) for days in after]

    events = sheets * 4 // 5
    print(json.dumps({
        "events": [{"calendar": f"Site {sheet} wind", "periods": [
            {"description": f"Heavy rain and gales, week {row}", "start": days(row, 0)[0],
             "finish": days(row, 6)[0], "probability": round(row % 97 / 97, 3), "min": row % 3,
             "likely": row % 3 + 1, "max": row % 3 + 3} for row in range(rows)]}
            for sheet in range(events)],
        "windows": [{"calendar": f"River {sheet} ice", "windows": [
            {"description": f"Winter {row} on the river", "start": days(row, 0, 5, 9),
             "finish": days(row, 14, 18, 22)} for row in range(rows)]}
            for sheet in range(events, sheets)],
        "assign": []}))


def differences(old, new, where=""):
    """Where two JSON values differ, a line each."""
    if isinstance(old, dict) and isinstance(new, dict) and old.keys() == new.keys():
        for key in old:
            yield from differences(old[key], new[key], f"{where}.{key}")
    elif isinstance(old, list) and isinstance(new, list) and len(old) == len(new):
        for at, (one, other) in enumerate(zip(old, new)):
            yield from differences(one, other, f"{where}[{at}]")
    elif old != new:
        yield f"{where}: {old!r} became {new!r}"


def same(first, second, name):
    a, b = read(first), read(second)
    for kind in ("events", "windows"):
        lines = list(differences(a[kind], b[kind], kind))
        if lines:
            sys.exit("\n".join(f"{name}: {line}" for line in lines))


def save(source, target):
    openpyxl.load_workbook(source).save(target)


def make(source, target):
    weather = read(source)
    workbook = openpyxl.Workbook()
    workbook.remove(workbook.active)
    day = datetime.date.fromisoformat

    def put(sheet, row, values):
        for column, value in enumerate(values, start=2):
            cell = sheet.cell(row, column)
            cell.value = value
            if isinstance(value, str):
                cell.data_type = "s"  # also a text that begins with "="

    for calendar in weather["events"]:
        sheet = workbook.create_sheet(calendar["calendar"])
        sheet["A3"] = "Weather-Events"
        for row, one in enumerate(calendar["periods"], start=6):
            put(sheet, row, [one["description"], day(one["start"]), day(one["finish"]),
                             one["probability"], one["min"], one["likely"], one["max"]])
    for calendar in weather["windows"]:
        sheet = workbook.create_sheet(calendar["calendar"])
        sheet["A3"] = "Weather-Windows"
        for row, one in enumerate(calendar["windows"], start=6):
            put(sheet, row, [one["description"], *map(day, one["start"]), None,
                             *map(day, one["finish"])])
    workbook.save(target)


def around(source, target):
    workbook = openpyxl.load_workbook(source)
    for sheet in workbook:
        last = 8 if sheet["A3"].value == "Weather-Events" else 9
        corner = sheet.cell(sheet.max_row + 3, last + 2, " ")
        corner.fill = copy.copy(sheet["A1"].fill)
    workbook.save(target)


def fill_of(styled):
    return styled.fill.fgColor.rgb[-6:] if styled.fill.fill_type == "solid" else None


def styled_at(sheet, row, column):
    """What says how a place looks: its cell, else its row, else its column."""
    if (row, column) in sheet._cells:
        return sheet.cell(row, column)
    if sheet.row_dimensions[row].has_style:
        return sheet.row_dimensions[row]
    for dimension in sheet.column_dimensions.values():
        if dimension.min <= column <= dimension.max:
            return dimension
    return sheet.cell(row, column)


def look(path):
    wrong = []

    def expect(what, found, expected):
        if found != expected:
            wrong.append(f"{what}: expected {expected}, found {found}")

    workbook = openpyxl.load_workbook(path)
    for sheet in workbook:
        events = sheet["A3"].value == "Weather-Events"
        last = 8 if events else 9
        dates = (3, 4) if events else (3, 4, 5, 7, 8, 9)
        name = sheet.title
        expect(f"{name}: selection", sheet.sheet_view.selection[0].sqref, "B6")
        for row in range(1, 6):
            for column in range(1, last + 4):
                header = row == 5 and 2 <= column <= last
                expect(f"{name}: fill of row {row}, column {column}",
                       fill_of(styled_at(sheet, row, column)), BLUE if header else GREY)
        for column in range(2, last + 1):
            font = styled_at(sheet, 5, column).font
            expect(f"{name}: bold in column {column}", font.bold, True)
            expect(f"{name}: font of column {column}", font.color.rgb[-6:], WHITE)
        for row in [*range(6, sheet.max_row + 1), 100, 1000000]:
            for column in (1, last + 1, last + 100, 16384):
                expect(f"{name}: fill of row {row}, column {column}",
                       fill_of(styled_at(sheet, row, column)), GREY)
            for column in range(2, last + 1):
                cell = styled_at(sheet, row, column)
                where = f"{name}: row {row}, column {column}"
                expect(f"{where}: fill", fill_of(cell), None)
                if column in dates:
                    expect(f"{where}: format", cell.number_format, DATE)
                elif events and column == 5:
                    expect(f"{where}: format", cell.number_format, PERCENT)
                if not events and column > 2:
                    expect(f"{where}: alignment", cell.alignment.horizontal, "center")
        widths = [20] + [13] * 6 if events else [20, 15, 15, 15, 5, 15, 15, 15]
        for column, width in zip("BCDEFGHI", widths):
            # The file holds the width with the margin of its font.
            expect(f"{name}: width of {column}",
                   round(sheet.column_dimensions[column].width - 0.71), width)
    zooms = [sheet.sheet_view.zoomScale or 100 for sheet in workbook]
    expect("sheets at 80%", zooms.count(80), 1)
    if wrong:
        sys.exit("\n".join(wrong))


COMMANDS = {"odd": odd, "many": many, "same": same, "save": save, "make": make, "around": around,
            "look": look}
COMMANDS[sys.argv[1]](*sys.argv[2:])
