#!/usr/bin/env python3
"""Writes the example plan and its ranges: vestdal-bridge.xer and vestdal-ranges.csv.

The job is told here in working days, activity by activity; this script puts it into the tables of
an XER file. It takes nothing from the clock or from chance, so running it again gives the same
bytes. What it writes is committed: building and running the example needs no Python.
"""

import datetime
import pathlib
import zlib

HERE = pathlib.Path(__file__).resolve().parent
PROJECT = "VESTDAL"
PROJECT_NAME = "Vestdal River Bridge"
START = "2026-03-02 08:00"
DATA_DATE = "2026-06-01 00:00"

# ---------------------------------------------------------------------------- calendars

EASTER = {2026: (4, 5), 2027: (3, 28), 2028: (4, 16)}


def public_holidays():
    days = []
    for year, (month, day) in EASTER.items():
        easter = datetime.date(year, month, day)
        days += [easter + datetime.timedelta(offset) for offset in (-3, -2, 1, 39, 50)]
        days += [datetime.date(year, m, d) for m, d in
                 ((1, 1), (5, 1), (5, 17), (12, 24), (12, 25), (12, 26), (12, 31))]
    return sorted(set(days))


def shutdown_days():
    """Three weeks in July in which workshops and offices are closed."""
    days = []
    for first in (datetime.date(2026, 7, 13), datetime.date(2027, 7, 12), datetime.date(2028, 7, 10)):
        days += [first + datetime.timedelta(n) for n in range(19)]
    return days


def short_holidays():
    return [day for day in public_holidays()
            if (day.month, day.day) in ((1, 1), (5, 17), (12, 24), (12, 25), (12, 26))]


DAY_8 = [("08:00", "12:00"), ("13:00", "17:00")]
DAY_10 = [("07:00", "12:00"), ("12:30", "17:30")]
DAY_12 = [("06:00", "18:00")]
DAY_24 = [("00:00", "00:00")]

# key: (number, name, shifts, worked days of the week with Monday 0, holidays, hours a day)
CALENDARS = {
    "W": (601, "Works 5-day, 8 h", DAY_8, range(5), public_holidays() + shutdown_days(), 8),
    "S": (602, "Site 5-day, 8 h", DAY_8, range(5), public_holidays(), 8),
    "X": (603, "Site 6-day, 10 h", DAY_10, range(6), public_holidays(), 10),
    "M": (604, "Marine 7-day, 12 h", DAY_12, range(7), short_holidays(), 12),
    "C": (605, "Around the clock, 24 h", DAY_24, range(7), [], 24),
}
DEFAULT_CALENDAR = "S"

# ---------------------------------------------------------------------------- the job

WBS = []         # (key, name, parent key)
ACTIVITIES = []  # dictionaries, in the plan's order
_area = None


def area(key, name, parent="VB"):
    global _area
    WBS.append((key, name, parent))
    _area = key


def act(code, name, days, calendar, preds="", spread="site", **more):
    """One activity: `days` on its calendar; preds as "A1010, A1020 SS+3, A1030 FF-2" with the lag
    in days of the predecessor's calendar; `spread` names its row in SPREADS."""
    ACTIVITIES.append(dict(code=code, name=name, days=days, calendar=calendar, preds=preds,
                           spread=spread, wbs=_area, kind="TT_Task", **more))


def milestone(code, name, preds="", start=False, **more):
    ACTIVITIES.append(dict(code=code, name=name, days=0, calendar=DEFAULT_CALENDAR, preds=preds,
                           spread=None, wbs=_area, kind="TT_Mile" if start else "TT_FinMile",
                           **more))


WBS.append(("VB", PROJECT_NAME, None))


def contract_and_design():
    area("MS", "Contract milestones")
    milestone("MS010", "Contract awarded", start=True, started="2026-03-02 08:00",
              finished="2026-03-02 08:00")
    milestone("MS020", "Access to the west bank", "MS010 FS+10", start=True,
              started="2026-03-16 08:00", finished="2026-03-16 08:00")
    milestone("MS030", "Access to the east bank", "MS010", start=True,
              constraint=("CS_MSOA", "2026-06-15 08:00"))
    milestone("MS040", "River works licence granted", "DE060", constraint=None)
    milestone("MS050", "River foundations complete", "P2-150, P3-150, P4-150")
    milestone("MS060", "Steel erected", "ST-920, ST-900")
    milestone("MS070", "Deck complete", "DK-910, DK-920")
    milestone("MS080", "New bridge open to traffic", "FI-140, WR-110, ER-110, CM-030",
              constraint=("CS_MEOB", "2028-06-30 17:00"))
    milestone("MS090", "Contract complete", "MS050, MS060, DM-100, CM-050, CM-060")

    area("DE", "Design and approvals")
    act("DE010", "Ground investigation, west bank and river", 20, "S", "MS010",
        started="2026-03-03 08:00", finished="2026-03-30 17:00")
    act("DE020", "Ground investigation, east bank", 12, "S", "MS030")
    act("DE030", "Foundation design, west bank and river", 25, "W", "DE010 SS+10", "desk",
        started="2026-03-17 08:00", finished="2026-04-29 17:00")
    act("DE040", "Foundation design, east bank", 15, "W", "DE020, DE030", "desk")
    act("DE050", "River model and scour study", 30, "W", "MS010", "desk",
        started="2026-03-04 08:00", finished="2026-04-21 17:00")
    act("DE060", "River works licence: application and hearing", 40, "W", "DE050", "approval",
        started="2026-04-22 08:00", remaining=8, percent=75)
    act("DE070", "Substructure working drawings", 30, "W", "DE030 SS+10", "desk",
        started="2026-04-07 08:00", remaining=5, percent=80)
    act("DE080", "Steelwork connection design and drawings", 45, "W", "MS010 FS+10", "desk",
        started="2026-03-23 08:00", remaining=9, percent=80)
    act("DE090", "Independent check of the steelwork", 20, "W", "DE080 FS-10", "approval")
    act("DE100", "Deck and finishes drawings", 40, "W", "DE080, DE090 FF+10", "desk")
    act("DE110", "Lifting plan: method, crane and barge checks", 25, "W", "DE090", "desk")
    act("DE120", "Harbour office approves the lifting plan", 15, "W", "DE110", "approval")
    act("DE130", "Traffic plan for the tie-ins", 20, "W", "DE040", "desk")
    act("DE140", "Demolition plan and permits", 35, "W", "DE120", "approval")

    area("PR", "Procurement and fabrication")
    act("PR010", "Order and roll plates, spans 1 to 3", 50, "W", "DE080 SS+25", "supply",
        started="2026-05-04 08:00", remaining=33, percent=34)
    act("PR020", "Order and roll plates, spans 4 to 6", 45, "W", "PR010 FS-15, DE090", "supply")
    for span in range(1, 7):
        before = "PR010" if span <= 3 else "PR020"
        chain = f", PR{span + 1}10" if span > 1 else ", DE090"
        act(f"PR{span + 2}10", f"Fabricate girders, span {span}", 26 if span in (1, 6) else 34, "W",
            before + chain + (" SS+22" if span > 1 else ""), "fabrication")
        act(f"PR{span + 2}20", f"Trial assembly and blast, span {span}", 8, "W", f"PR{span + 2}10",
            "fabrication")
        act(f"PR{span + 2}30", f"Paint shop, span {span}", 12, "W", f"PR{span + 2}20", "fabrication")
        act(f"PR{span + 2}40", f"Deliver girders to the yard, span {span}", 4, "S",
            f"PR{span + 2}30, SU090", "supply")
    act("PR910", "Bearings: order, make and test", 75, "W", "DE090", "supply")
    act("PR920", "Expansion joints: order and make", 70, "W", "DE100", "supply")
    act("PR930", "Precast deck planks: moulds and casting", 90, "W", "DE100", "fabrication")
    act("PR940", "Parapets and lighting columns: order and make", 60, "W", "DE100", "supply")
    act("PR950", "Charter the floating crane", 10, "W", "DE120", "approval")


def site_and_utilities():
    area("SU", "Site set-up and diversions")
    act("SU010", "West compound: fence, offices, power", 15, "S", "MS020",
        started="2026-03-17 08:00", finished="2026-04-13 17:00")
    act("SU020", "Clear and strip the west bank", 10, "X", "SU010 SS+8", "earth",
        started="2026-03-30 07:00", finished="2026-04-16 17:30")
    act("SU030", "Haul road and crane pads, west", 14, "X", "SU020", "earth",
        started="2026-04-17 07:00", finished="2026-05-06 17:30")
    act("SU040", "Clear and strip the east bank", 10, "X", "MS030", "earth")
    act("SU050", "Haul road and crane pads, east", 14, "X", "SU040", "earth")
    act("SU060", "Jetty and slipway for the river fleet", 24, "X", "SU030 SS+6, DE030", "piling",
        started="2026-04-28 07:00", remaining=5, percent=78)
    act("SU070", "Mobilise barges, rig and tugs", 12, "M", "SU060 FS-3, MS040", "marine")
    act("SU080", "Batching plant: erect and trial mixes", 20, "S", "SU030",
        started="2026-05-07 08:00", remaining=6, percent=70)
    act("SU090", "Girder yard: hardstanding and gantry", 30, "X", "SU050", "earth")
    act("SU100", "Divert water main and fibre duct, west", 24, "S", "SU020", "utility",
        started="2026-04-20 08:00", finished="2026-05-27 17:00")
    act("SU110", "Divert power cables, east", 30, "S", "SU040", "utility")
    act("SU120", "River marks and boom laid out", 4, "M", "SU070", "marine")
    act("SU130", "River marks taken in for the winter", 2, "M", "P3-060", "marine",
        constraint=("CS_MEOB", "2026-12-05 18:00"))
    act("SU900", "Site management and supervision", 400, "S", "SU010 SS, MS080 FF", None,
        loe=True)


def land_support(key, name, side, abutment, first_preds, started=()):
    """An abutment or a pier on the bank. `started` gives what is known of its first activities."""
    area(key, name, side)
    progress = list(started) + [{}] * 20

    def step(number, text, days, calendar, preds, spread):
        act(f"{key}-{number:03d}", f"{name}: {text}", days, calendar, preds, spread,
            **progress.pop(0))

    step(10, "platform and guide walls", 5, "X", first_preds, "earth")
    step(20, "bored piles", 16 if abutment else 12, "X", f"{key}-010", "piling")
    step(30, "cut down and test piles", 7, "X", f"{key}-020 FS+7", "piling")
    step(40, "excavate", 6, "X", f"{key}-030 SS+3, {key}-030 FF+2", "earth")
    step(50, "blinding, formwork and bars of the base", 11, "X", f"{key}-040", "concrete")
    step(60, "pour base", 1, "X", f"{key}-050", "pour")
    step(70, "base gains strength", 5, "C", f"{key}-060", None)
    step(80, "formwork and bars of the wall" if abutment else "formwork and bars of the columns",
         18 if abutment else 13, "X", f"{key}-070", "concrete")
    step(90, "pour wall" if abutment else "pour columns", 2, "X", f"{key}-080", "pour")
    step(100, "wall gains strength" if abutment else "columns gain strength", 7, "C", f"{key}-090",
         None)
    step(110, "bearing shelf" if abutment else "crosshead formwork and bars", 12, "X",
         f"{key}-100", "concrete")
    step(120, "pour bearing shelf" if abutment else "pour crosshead", 1, "X", f"{key}-110", "pour")
    step(130, "set bearings", 4, "X", f"{key}-120 FS+7, PR910", "site")
    if abutment:
        step(140, "drainage layer and backfill", 14, "X", f"{key}-120 FS+6", "earth")
        step(150, "wing walls", 22, "X", f"{key}-090, {key}-140 FF", "concrete")


def river_pier(key, name, first_preds):
    """A pier in the river: built in a cofferdam, from the fleet, between two winters."""
    area(key, name, "SB")

    def step(number, text, days, calendar, preds, spread):
        act(f"{key}-{number:03d}", f"{name}: {text}", days, calendar, preds, spread)

    step(10, "drive cofferdam sheets", 12, "M", first_preds, "marine")
    step(20, "frames and dredging inside", 11, "M", f"{key}-010", "marine")
    step(30, "set up rig and casing frame", 3, "M", f"{key}-020", "marine")
    step(40, "bored piles 1 to 4", 12, "M", f"{key}-030", "piling")
    step(50, "bored piles 5 to 8", 12, "M", f"{key}-040", "piling")
    step(60, "pile tests and cut-down", 5, "M", f"{key}-050 SS+6, {key}-050 FF+4", "piling")
    step(70, "tremie seal", 2, "M", f"{key}-060", "marine")
    step(80, "pump out, cap formwork and bars", 12, "X", f"{key}-070 FS+5", "concrete")
    step(90, "pour pile cap", 2, "X", f"{key}-080", "pour")
    step(100, "cap gains strength", 7, "C", f"{key}-090", None)
    step(110, "climbing form and bars of the shaft", 18, "X", f"{key}-100", "concrete")
    step(120, "pour shaft", 3, "X", f"{key}-110 FF+2", "pour")
    step(130, "crosshead", 16, "X", f"{key}-120", "concrete")
    step(140, "pour crosshead", 1, "X", f"{key}-130", "pour")
    step(150, "draw cofferdam sheets", 6, "M", f"{key}-120 FS+4", "marine")
    step(160, "set bearings", 4, "X", f"{key}-140 FS+7, PR910", "site")


def substructure():
    area("SB", "Substructure")
    area("LW", "West bank", "SB")
    area("LE", "East bank", "SB")
    land_support("WA", "West abutment", "LW", True, "SU030, DE030",
                 started=(dict(started="2026-05-11 07:00", finished="2026-05-16 17:30"),
                          dict(started="2026-05-18 07:00", remaining=7, percent=55)))
    land_support("P1", "Pier 1", "LW", False, "WA-020, DE070")
    land_support("P5", "Pier 5", "LE", False, "SU050, DE040, SU110 SS+12")
    land_support("EA", "East abutment", "LE", True, "P5-020, SU110")
    river_pier("P2", "Pier 2", "SU120, DE070")
    river_pier("P3", "Pier 3", "P2-020, P2-050 SS-12")
    river_pier("P4", "Pier 4", "P3-020, P2-150 SS, P3-060")
    # One rig and one gang of divers: the next pier's piles follow this one's.
    LINKS_LATER.extend([("WA-060", "SU080"), ("P1-060", "SU080"), ("P3-040", "P2-050"),
                        ("P4-040", "P3-050"), ("P4-010", "SU140")])
    global _area
    _area = "SU"
    act("SU140", "River marks and boom laid out after the ice", 3, "M", "SU130", "marine",
        constraint=("CS_MSOA", "2027-04-12 06:00"))


LINKS_LATER = []


def superstructure():
    area("SP", "Superstructure")
    area("ST", "Steelwork", "SP")
    supports = {1: "WA-130, P1-130", 2: "P1-130, P2-160", 3: "P2-160, P3-160", 4: "P3-160, P4-160",
                5: "P4-160, P5-130", 6: "P5-130, EA-130"}
    order = [1, 2, 3, 6, 5, 4]  # the two ends meet over the shipping channel
    before = {1: "DE120", 2: "ST-150", 3: "ST-250", 6: "DE120", 5: "ST-650, ST-350", 4: "ST-350, ST-550"}
    act("ST-010", "Floating crane: tow in and load test", 6, "M", "PR950, MS040", "marine",
        constraint=("CS_MSOA", "2027-05-03 06:00"))
    for span in order:
        over_water = span in (2, 3, 4, 5)
        calendar = "M" if over_water else "X"
        crane = ", ST-010" if over_water else ""
        act(f"ST-{span}10", f"Span {span}: assemble girder pairs", 9 if over_water else 7, "X",
            f"PR{span + 2}40", "site")
        act(f"ST-{span}20", f"Span {span}: load out and sea fastening" if over_water
            else f"Span {span}: set up crawler crane", 3, calendar,
            f"ST-{span}10, {before[span]}, {supports[span]}{crane}", "marine")
        act(f"ST-{span}30", f"Span {span}: lift first girder pair", 2, calendar, f"ST-{span}20", "lift")
        act(f"ST-{span}40", f"Span {span}: lift second girder pair", 2, calendar,
            f"ST-{span}30 FS+1", "lift")
        act(f"ST-{span}50", f"Span {span}: brace and bolt up", 9, "X", f"ST-{span}40", "site")
        act(f"ST-{span}60", f"Span {span}: weld splices and test", 11, "X", f"ST-{span}50", "site")
    act("ST-900", "Floating crane: tow away", 3, "M", "ST-440, ST-540", "marine")
    act("ST-910", "Bearings: release and grout", 8, "X", "ST-460, ST-660", "site")
    act("ST-920", "Steelwork: touch-up paint", 18, "X", "ST-910 SS+4, ST-460", "site")

    area("DK", "Deck", "SP")
    deck_order = [1, 2, 3, 6, 5, 4]
    previous = None
    for span in deck_order:
        chain = f", DK-{previous}20" if previous else ""
        act(f"DK-{span}10", f"Span {span}: lift deck planks", 4, "X",
            f"ST-{span}60, PR930{chain}", "lift")
        act(f"DK-{span}20", f"Span {span}: deck bars and edge forms", 13, "X", f"DK-{span}10", "concrete")
        act(f"DK-{span}30", f"Span {span}: pour deck", 1, "X", f"DK-{span}20, ST-920 FS-12" if
            span == 4 else f"DK-{span}20", "pour")
        act(f"DK-{span}40", f"Span {span}: deck gains strength", 7, "C", f"DK-{span}30", None)
        previous = span
    act("DK-900", "Stitch pours over the piers", 8, "X", ", ".join(f"DK-{n}40" for n in deck_order), "pour")
    act("DK-910", "Strip forms and check levels", 10, "X", "DK-900 FS+4", "site")
    act("DK-920", "Load test of the deck", 4, "X", "DK-910", "site")


def finishes():
    area("FI", "Finishes", "SP")
    act("FI-010", "Kerbs and edge beams, spans 1 to 3", 18, "X", "DK-340", "concrete")
    act("FI-020", "Kerbs and edge beams, spans 4 to 6", 18, "X", "DK-920, FI-010", "concrete")
    act("FI-030", "Deck drainage", 12, "X", "FI-010 SS+6, FI-020 FF+2", "site")
    act("FI-040", "Prepare and waterproof deck, spans 1 to 3", 13, "X", "FI-010, DK-920", "membrane")
    act("FI-050", "Prepare and waterproof deck, spans 4 to 6", 13, "X", "FI-020, FI-040", "membrane")
    act("FI-060", "Expansion joints, west", 7, "X", "PR920, FI-040, WA-150", "site")
    act("FI-070", "Expansion joints, east", 7, "X", "FI-050, FI-060, EA-150", "site")
    act("FI-080", "Parapets", 20, "S", "PR940, FI-020 SS+5", "site")
    act("FI-090", "Asphalt base course on the deck", 4, "X", "FI-050, FI-070 FF", "paving",
        constraint=("CS_MSOA", "2028-03-27 07:00"))
    act("FI-100", "Asphalt surface course on the deck", 3, "X", "FI-090, WR-080, ER-080", "paving")
    act("FI-110", "Lighting columns and cables", 15, "S", "FI-080 SS+8, FI-080 FF+4", "site")
    act("FI-120", "Road markings and signs", 5, "S", "FI-100", "paving")
    act("FI-130", "Inspection gantry and access ladders", 12, "S", "ST-920", "site")
    act("FI-140", "Snagging of the bridge", 10, "S", "FI-120, FI-110, FI-130, FI-030", "site")


def approach(key, name, start_preds, abutment):
    area(key, name)

    def step(number, text, days, calendar, preds, spread, **more):
        act(f"{key}-{number:03d}", f"{name}: {text}", days, calendar, preds, spread, **more)

    step(10, "strip topsoil", 6, "X", start_preds, "earth")
    step(20, "culvert", 14, "X", f"{key}-010", "concrete")
    step(30, "embankment, lower half", 18, "X", f"{key}-010 SS+4, {key}-020 FF+4", "earth")
    step(40, "embankment, upper half with surcharge", 20, "X", f"{key}-030, {abutment}-140", "earth")
    step(50, "settlement under surcharge", 60, "C", f"{key}-040", "settle")
    step(60, "remove surcharge and trim", 8, "X", f"{key}-050", "earth")
    step(70, "drains, ducts and chambers", 16, "X", f"{key}-060 SS+3", "utility")
    step(80, "sub-base and asphalt base course", 12, "X", f"{key}-070, {key}-060", "paving")
    step(90, "safety barriers and signs", 9, "S", f"{key}-080", "site")
    step(100, "tie-in to the road, one lane at a time", 12, "S",
         f"{key}-080, DE130, FI-100", "paving")
    step(110, "surface course and markings", 5, "X", f"{key}-100, {key}-090", "paving")


def demolition_and_handover():
    area("DM", "Old bridge")
    act("DM-010", "Traffic over the new bridge, old bridge closed", 2, "S", "MS080, DE140", "site")
    act("DM-020", "Strip surfacing, rails and services", 12, "X", "DM-010", "site")
    act("DM-030", "Cut deck free, spans A and B", 9, "X", "DM-020", "site")
    act("DM-040", "Lift out old truss, span A", 2, "M", "DM-030", "lift")
    act("DM-050", "Lift out old truss, span B", 2, "M", "DM-040 FS+2", "lift")
    act("DM-060", "Cut up trusses on the jetty", 15, "X", "DM-040 SS+1, DM-050 FF+5", "site")
    act("DM-070", "Break down old piers to river bed", 18, "M", "DM-050", "marine")
    act("DM-080", "Dredge and sweep the channel", 8, "M", "DM-070", "marine")
    act("DM-090", "Bank protection and landscaping", 18, "X", "DM-060, DM-070 SS+10", "earth")
    act("DM-100", "Clear the site", 10, "X", "DM-080, DM-090", "site")

    area("CM", "Commissioning and handover")
    act("CM-010", "Lighting and gantry commissioning", 6, "S", "FI-110, FI-130", "site")
    act("CM-020", "Principal inspection", 5, "S", "FI-120", "site")
    act("CM-030", "Road safety audit and opening permit", 8, "W", "CM-020 SS+2, CM-020 FF+3, CM-010",
        "approval")
    act("CM-040", "As-built drawings and manuals", 30, "W", "MS070", "desk")
    act("CM-050", "Handover files accepted", 10, "W", "CM-040, MS080", "approval")
    # The shift rota: the night watch ends when the demolition fleet starts.
    act("CM-060", "Night watch on the old bridge", 30, "S", "DM-040 SF, FI-140", "site")


# ---------------------------------------------------------------------------- ranges

# Least and most as shares of the likely duration, and the shape.
SPREADS = {
    "site": (0.90, 1.25, "triangular"),
    "desk": (0.90, 1.35, "triangular"),
    "approval": (0.80, 1.90, "pert"),
    "supply": (0.95, 1.40, "pert"),
    "fabrication": (0.92, 1.30, "triangular"),
    "earth": (0.85, 1.35, "triangular"),
    "piling": (0.80, 1.60, "pert"),
    "marine": (0.85, 1.45, "triangular"),
    "concrete": (0.90, 1.25, "triangular"),
    "pour": (1.00, 1.00, None),
    "lift": (1.00, 1.00, None),
    "membrane": (0.90, 1.50, "triangular"),
    "paving": (0.90, 1.30, "triangular"),
    "utility": (0.85, 1.60, "pert"),
    "settle": (0.80, 1.30, "uniform"),
}


def remaining_days(activity):
    """What remains, in days of the activity's own calendar."""
    if activity.get("finished"):
        return 0
    return activity.get("remaining", activity["days"])


def plan_days(activity, days):
    """Days of eight hours, in which the plan counts."""
    return days * CALENDARS[activity["calendar"]][5] / 8


def ranges_rows():
    for activity in ACTIVITIES:
        low, high, shape = SPREADS.get(activity["spread"], (1, 1, None))
        remaining = remaining_days(activity)
        if shape is None or remaining == 0 or activity["kind"] != "TT_Task":
            continue
        # Estimates differ by activity: a little wider or narrower, told by the ID, in half days.
        wider = 0.8 + (zlib.crc32(activity["code"].encode()) % 5) / 10
        likely = plan_days(activity, remaining)
        least = round(likely * (1 - (1 - low) * wider) * 2) / 2
        most = round(likely * (1 + (high - 1) * wider) * 2) / 2
        yield activity["code"], min(least, likely), likely, max(most, likely + 0.5), shape


# ---------------------------------------------------------------------------- the XER file


def day_serial(day):
    return (day - datetime.date(1899, 12, 30)).days


def calendar_data(shifts, worked, holidays):
    def shift_nodes():
        return "".join(f"(0||{n}(s|{begin}|f|{end})())" for n, (begin, end) in enumerate(shifts))

    # The days of the week count from Sunday.
    days = "".join(f"(0||{number}()({shift_nodes() if (number + 5) % 7 in worked else ''}))"
                   for number in range(1, 8))
    exceptions = "".join(f"(0||{n}(d|{day_serial(day)})())"
                         for n, day in enumerate(sorted(set(holidays))))
    return (f"(0||CalendarData()((0||DaysOfWeek()({days}))(0||VIEW(ShowTotal|N)())"
            f"(0||Exceptions()({exceptions}))))")


class Table:
    def __init__(self, name, fields):
        self.name, self.fields, self.rows = name, fields.split(), []

    def add(self, **values):
        unknown = set(values) - set(self.fields)
        assert not unknown, unknown
        self.rows.append([str(values.get(field, "")) for field in self.fields])

    def lines(self):
        yield "%T\t" + self.name
        yield "%F\t" + "\t".join(self.fields)
        for row in self.rows:
            yield "%R\t" + "\t".join(row)


def hours(value):
    return f"{value:g}"


def parse_preds(text):
    for part in filter(None, (part.strip() for part in text.split(","))):
        code, _, rest = part.partition(" ")
        kind, lag = (rest[:2], float(rest[2:] or 0)) if rest else ("FS", 0.0)
        yield code, kind, lag


def tables():
    by_code = {activity["code"]: activity for activity in ACTIVITIES}
    assert len(by_code) == len(ACTIVITIES), "an ID is taken twice"
    for code, predecessor in LINKS_LATER:
        by_code[code]["preds"] += ", " + predecessor

    project = Table("PROJECT", "proj_id proj_short_name clndr_id critical_drtn_hr_cnt "
                    "last_recalc_date plan_start_date plan_end_date critical_path_type "
                    "project_flag task_code_base task_code_step def_duration_type")
    project.add(proj_id=77, proj_short_name=PROJECT, clndr_id=CALENDARS[DEFAULT_CALENDAR][0],
                critical_drtn_hr_cnt=0, last_recalc_date=DATA_DATE, plan_start_date=START,
                critical_path_type="CT_TotFloat", project_flag="Y", task_code_base=1000,
                task_code_step=10, def_duration_type="DT_FixedDUR2")
    yield project

    calendar = Table("CALENDAR", "clndr_id default_flag clndr_name proj_id base_clndr_id "
                     "clndr_type day_hr_cnt week_hr_cnt month_hr_cnt year_hr_cnt clndr_data")
    for key, (number, name, shifts, worked, holidays, day_hours) in CALENDARS.items():
        calendar.add(clndr_id=number, default_flag="Y" if key == DEFAULT_CALENDAR else "N",
                     clndr_name=name, clndr_type="CA_Base", day_hr_cnt=day_hours,
                     week_hr_cnt=day_hours * len(worked), month_hr_cnt=day_hours * len(worked) * 4,
                     year_hr_cnt=day_hours * len(worked) * 52,
                     clndr_data=calendar_data(shifts, worked, holidays))
    yield calendar

    options = Table("SCHEDOPTIONS", "schedoptions_id proj_id sched_outer_depend_type "
                    "sched_open_critical_flag sched_lag_early_start_flag sched_retained_logic "
                    "sched_float_type sched_calendar_on_relationship_lag sched_use_expect_end_flag "
                    "sched_progress_override sched_use_project_end_date_for_float")
    options.add(schedoptions_id=7, proj_id=77, sched_outer_depend_type="SD_None",
                sched_open_critical_flag="N", sched_lag_early_start_flag="Y",
                sched_retained_logic="Y", sched_float_type="FT_FF",
                sched_calendar_on_relationship_lag="rcal_Predecessor",
                sched_use_expect_end_flag="N", sched_progress_override="N",
                sched_use_project_end_date_for_float="N")
    yield options

    wbs = Table("PROJWBS", "wbs_id proj_id seq_num proj_node_flag status_code wbs_short_name "
                "wbs_name parent_wbs_id")
    wbs_ids = {key: 7000 + n for n, (key, _, _) in enumerate(WBS)}
    for n, (key, name, parent) in enumerate(WBS):
        wbs.add(wbs_id=wbs_ids[key], proj_id=77, seq_num=n, status_code="WS_Open",
                proj_node_flag="N" if parent else "Y", wbs_short_name=key if parent else PROJECT,
                wbs_name=name, parent_wbs_id=wbs_ids.get(parent, ""))
    yield wbs

    task = Table("TASK", "task_id proj_id wbs_id clndr_id phys_complete_pct complete_pct_type "
                 "task_type duration_type status_code task_code task_name remain_drtn_hr_cnt "
                 "target_drtn_hr_cnt cstr_type cstr_date act_start_date act_end_date priority_type")
    task_ids = {code: 70000 + 10 * n for n, code in enumerate(by_code, 1)}
    for activity in ACTIVITIES:
        number, _, _, _, _, day_hours = CALENDARS[activity["calendar"]]
        started, finished = activity.get("started"), activity.get("finished")
        constraint, when = activity.get("constraint") or ("", "")
        percent = 100 if finished else activity.get("percent", 0)
        task.add(task_id=task_ids[activity["code"]], proj_id=77, wbs_id=wbs_ids[activity["wbs"]],
                 clndr_id=number, phys_complete_pct=percent, complete_pct_type="CP_Phys",
                 task_type="TT_LOE" if activity.get("loe") else activity["kind"],
                 duration_type="DT_FixedDUR2", task_code=activity["code"],
                 status_code="TK_Complete" if finished else "TK_Active" if started else
                 "TK_NotStart", task_name=activity["name"],
                 remain_drtn_hr_cnt=hours(remaining_days(activity) * day_hours),
                 target_drtn_hr_cnt=hours(activity["days"] * day_hours), cstr_type=constraint,
                 cstr_date=when, act_start_date=started or "", act_end_date=finished or "",
                 priority_type="PT_Normal")
    yield task

    link = Table("TASKPRED", "task_pred_id task_id pred_task_id proj_id pred_proj_id pred_type "
                 "lag_hr_cnt")
    for activity in ACTIVITIES:
        for code, kind, lag in parse_preds(activity["preds"]):
            link.add(task_pred_id=90000 + len(link.rows), task_id=task_ids[activity["code"]],
                     pred_task_id=task_ids[code], proj_id=77, pred_proj_id=77,
                     pred_type="PR_" + kind,
                     lag_hr_cnt=hours(lag * CALENDARS[by_code[code]["calendar"]][5]))
    yield link


def main():
    contract_and_design()
    site_and_utilities()
    substructure()
    superstructure()
    finishes()
    approach("WR", "West approach", "SU030, SU100", "WA")
    approach("ER", "East approach (Årnes)", "SU050", "EA")
    demolition_and_handover()

    lines = ["ERMHDR\t19.12\t2026-06-01\tProject\tplanner\tPlanning office\tvestdal\t"
             "Project Management\tNOK"]
    for table in tables():
        lines.extend(table.lines())
    lines.append("%E")
    (HERE / "vestdal-bridge.xer").write_bytes(("\r\n".join(lines) + "\r\n").encode("cp1252"))

    rows = ["id,min,likely,max,shape"]
    rows += [f"{code},{low:g},{likely:g},{high:g},{shape}" for code, low, likely, high, shape in ranges_rows()]
    (HERE / "vestdal-ranges.csv").write_text("\n".join(rows) + "\n")
    print(len(ACTIVITIES), "activities,", len(rows) - 1, "ranges")


if __name__ == "__main__":
    main()
