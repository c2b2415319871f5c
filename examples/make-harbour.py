#!/usr/bin/env python3
"""Makes the example data and its document: harbour-station.csv and harbour.mox, the same bytes at every run.

A weather station at a harbour, one row every ten minutes for twenty weeks of 2024: unix time, air and water
temperature, wind. Sensors fail now and then, as they do: those cells are empty.
"""
import math
import pathlib
import plistlib
import random

START = 1714521600  # 2024-05-01 00:00:00 UTC
STEP = 600
ROWS = 140 * 24 * 6
HERE = pathlib.Path(__file__).resolve().parent


def rows():
    noise = random.Random(20240501)
    weather = front = gustiness = 0.0
    water = 8.0
    for i in range(ROWS):
        day = i * STEP / 86400
        season = math.sin((day - 5) / 140 * math.pi)
        sun = math.cos((day % 1 - 0.6) * 2 * math.pi)
        front += noise.gauss(0, 0.05) - front * 0.002
        weather += noise.gauss(0, 0.12) - weather * 0.05
        gustiness += noise.gauss(0, 0.25) - gustiness * 0.02
        air = 10 + 9 * season + (3 + 2 * season) * sun + 3 * front + weather
        water += (9 + 10 * season - water) / (6 * 24 * 10) + noise.gauss(0, 0.012)
        tide = 0.35 * math.sin(day / 0.5175 * 2 * math.pi)
        wind = abs(4.5 + 1.5 * sun + 2 * gustiness + noise.gauss(0, 0.4))
        yield START + i * STEP, air, water + tide, wind


def cell(value, missing, decimals):
    return "" if missing else f"{value:.{decimals}f}"


def write_data(path):
    with path.open("w", newline="\n") as file:
        file.write("time,air,water_1m,wind\n")
        for i, (time, air, water, wind) in enumerate(rows()):
            hour = i // 6
            station_down = 1180 <= hour < 1228          # two days without power in June
            air_down = station_down or 37 <= hour % 700 < 52
            wind_down = station_down or (hour // 24) % 31 == 17 and hour % 24 < 9
            file.write(f"{time},{cell(air, air_down, 2)},{cell(water, station_down, 2)},"
                       f"{cell(wind, wind_down, 1)}\n")


def curve(title, y, colour, width):
    return {"Title": title, "Color": [*colour, 1.0], "ColorAlpha": 1.0, "Visible": True, "TicksShape": 1,
            "TicksSize": 0, "LineType": width, "X_data_index": 1, "Y_data_index": y}


def write_document(path):
    document = {
        "Datasources": [{
            "PluginIdentifier": "com.quarnix.textfile",
            # Relative to where the program is started: the project's own folder.
            "Settings": {"Filename": "examples/harbour-station.csv", "Skiplines": 0, "EveryNthLine": 1,
                         "DelimiterType": 1, "ExtractColumnNames": True},
        }],
        "Curves": [
            curve("Air temperature", 2, (1.0, 0.5, 0.0), 1),
            curve("Water, 1 m", 3, (0.2, 0.45, 0.7), 2),
        ],
        "DatasourcesMap": [0, 0],
        "PlotAreaOptions": {
            "title": "Harbour station, summer of 2024", "axisTitleX": "Local time",
            "axisTitleY": "Temperature, °C",
            "axisX_type": "timeline", "axisY_type": "numeric",
            "showOriginX": True, "showOriginY": False, "showHorizontalLines": True, "showVerticalLines": True,
            "showLegend": False, "legendAlignment": 0, "legendMargins": [0.0, 0.0],
        },
    }
    with path.open("wb") as file:
        plistlib.dump(document, file)


if __name__ == "__main__":
    write_data(HERE / "harbour-station.csv")
    write_document(HERE / "harbour.mox")
