# SPDX-License-Identifier: MIT
"""Prints the tables of docs/performance.md from what bench/run has measured into a folder."""

import json
import os
import platform
import statistics
import sys

folder = sys.argv[1]


def runs(program):
    with open(os.path.join(folder, program + ".json"), encoding="utf-8") as file:
        return {run["name"]: run for run in json.load(file)["benchmarks"]}


def milliseconds(run):
    return run["real_time"] * {"ns": 1e-6, "us": 1e-3, "ms": 1.0, "s": 1e3}[run["time_unit"]]


def processor():
    with open("/proc/cpuinfo", encoding="utf-8") as file:
        for line in file:
            if line.startswith("model name"):
                return line.split(":", 1)[1].strip()
    return platform.machine()


def row(*cells):
    print("| " + " | ".join(str(cell) for cell in cells) + " |")


def table(*titles):
    print()
    row(*titles)
    print("|" + "---|" * len(titles))


def ratio(run, key):
    return "%.2f" % run[key] if key in run else "–"


print("%s, %d cores, load %.1f when it was measured." % (processor(), os.cpu_count(), os.getloadavg()[0]))

detection = runs("detection_bench")
table("detection, ten frames", "ours (ms)", "OpenCV", "floor", "to OpenCV", "to floor (goal 1.8)")
for name, run in detection.items():
    if not name.startswith("detection/"):
        continue
    parts = dict(part.split(":") for part in name.split("/")[1:4])
    size = int(parts["width"]) * int(parts["height"]) / 1e6
    row("%.1f megapixels, %s" % (size, {"6": "monochrome", "11": "Bayer"}[parts["mode"]]),
        "%.2f" % run["detect_ms"], "%.1f" % run["opencv_ms"] if "opencv_ms" in run else "–",
        "%.2f" % run["read_ms"], ratio(run, "to_opencv"), ratio(run, "to_read"))

dark = runs("darkframes_bench")
sizes = {"1280": "1.3", "5472": "20"}
table("dark frames, ten of them", "stacked (ms)", "two or eight at a time", "sum of their values",
      "of their words", "to the sum of the values (goal 2.5)", "two or eight at a time")
for name, run in dark.items():
    if name.startswith("stacking/"):
        parts = dict(part.split(":") for part in name.split("/")[1:4])
        row("%s megapixels, %s bits" % (sizes[parts["width"]], parts["bits"]), "%.1f" % run["stack_ms"],
            "%.1f" % run["as_they_come_ms"], "%.1f" % run["read_ms"],
            "%.1f" % run["words_ms"], ratio(run, "to_read"), ratio(run, "as_they_come_to_read"))

table("survey of ten PNG files", "ours (ms)", "decoding them", "to decoding (goal 1.3)")
for name, run in dark.items():
    if name.startswith("surveyOfFiles/"):
        parts = dict(part.split(":") for part in name.split("/")[1:4])
        row("%s megapixels, %s bits" % (sizes[parts["width"]], parts["bits"]), "%.0f" % run["survey_ms"],
            "%.0f" % run["decode_ms"], ratio(run, "to_decode"))

table("from frame to screen, with 1,000 marks", "ms", "goal", "most memory to what is shown")
goals = {"One": 20, "Quarter": 20, "Four": 160}
for name, run in runs("view_bench").items():
    if name.startswith("redrawOf20Megapixels"):
        kind = name.split("/")[1]
        row("20 megapixels at " + {"One": "1:1", "Quarter": "1:4", "Four": "4:1"}[kind],
            "%.1f" % milliseconds(run), goals[kind], "%.2f" % run["memory"])

table("command, 20 megapixels", "10 entries (ms)", "1,000", "5,000 (goal 150)", "50,000")
commands = {}
for name, run in runs("app_bench").items():
    _, command, entries = name.split("/")[:3]
    commands.setdefault(command, {})[int(entries)] = milliseconds(run)
for command, times in commands.items():
    row(command, *("%.1f" % times[entries] for entries in (10, 1000, 5000, 50000)))

table("list", "time (ms)")
for name, run in runs("hotpixel_bench").items():
    row(name.split("/manual")[0], "%.3g" % milliseconds(run))

with open(os.path.join(folder, "demo.txt"), encoding="utf-8") as file:
    figures = [line.split() for line in file if line.startswith(("start ", "live "))]
starts = [int(value) for kind, value in figures if kind == "start"]
live = [int(value) for kind, value in figures if kind == "live"]
if starts:
    table("demo", "", "goal")
    row("from its start to a window that takes input, median of five",
        "%d ms" % statistics.median(starts), "350 ms")
    if live:
        row("20 megapixels at 2 frames per second", "%d %% of a core" % live[0], "15 %")


# --- how the figures grow

table("how it grows", "from", "to", "times as much", "ms", "ms", "times as long")


def growth(what, first, last, times, before, after):
    row(what, first, last, "%.0f" % times, "%.3g" % before, "%.3g" % after, "%.1f" % (after / before))


Megapixels = {"1280": 1280 * 1024 / 1e6, "5472": 5472 * 3648 / 1e6}


def of_sensor(what, results, key, **wanted):
    found = {}
    for name, run in results.items():
        parts = dict(part.split(":") for part in name.split("/") if ":" in part)
        if parts.get("width") in Megapixels and key in run and wanted.items() <= parts.items():
            found[parts["width"]] = run[key]
    growth(what, "1.3 megapixels", "20", Megapixels["5472"] / Megapixels["1280"], found["1280"], found["5472"])


of_sensor("detection, monochrome", detection, "detect_ms", mode="6")
of_sensor("detection, Bayer", detection, "detect_ms", mode="11")
of_sensor("stacking ten frames of 8 bits", dark, "stack_ms", bits="8")
of_sensor("stacking ten frames of 16 bits", dark, "stack_ms", bits="16")
of_sensor("survey of ten PNG files of 8 bits", dark, "survey_ms", bits="8")
of_sensor("survey of ten PNG files of 16 bits", dark, "survey_ms", bits="16")
more = {int(name.split(":")[1].split("/")[0]): milliseconds(run)
        for name, run in dark.items() if name.startswith("surveyOfMoreFiles/")}
growth("survey of PNG files of 1.3 megapixels", "10 frames", "1,000", 100, more[10], more[1000])
for command, times in commands.items():
    growth(command, "10 entries", "50,000", 5000, times[10], times[50000])
