# SPDX-License-Identifier: MIT
"""Prints the tables of docs/performance.md from what bench/run has measured into a folder."""

import json
import math
import os
import platform
import statistics
import sys

folder = sys.argv[1]

MODES = {"6": "monochrome", "11": "Bayer"}
SCALES = {"One": ("1:1", 20), "Quarter": ("1:4", 20), "Four": ("4:1", 160)}  # and the goal in ms
COMMANDS = {
    "clear": "clear",
    "clearOfADetection": "clear of a detection",
    "load": "load",
    "sort": "sort",
    "classDelegate": "a class chosen",
    "selectByKey": "a row selected by key",
}
LIST = {
    "addEntries": "add 5,000 entries",
    "findNothing": "look for an entry that is not among 5,000",
    "loadFile": "load a file of 1,000,000 lines",
    "loadFileByTextStream": "the same by a text stream",
    "readBytes": "read its bytes",
    "saveFile": "save it",
    "clearUserEntries": "clear 1,000,000 entries",
    "sortEntries/0": "sort 1,000,000 random entries",
    "sortEntries/1": "sort 1,000,000 sorted entries",
}


def runs(program):
    """The runs of one benchmark program by their names."""
    with open(os.path.join(folder, program + ".json"), encoding="utf-8") as file:
        return {run["name"]: run for run in json.load(file)["benchmarks"]}


def of(results, benchmark):
    """The runs of one benchmark, each with its arguments by their names."""
    for name, run in results.items():
        if name.startswith(benchmark + "/"):
            yield dict(part.split(":") for part in name.split("/") if ":" in part), run


def megapixels(arguments):
    return int(arguments["width"]) * int(arguments["height"]) / 1e6


def milliseconds(run):
    return run["real_time"] * {"ns": 1e-6, "us": 1e-3, "ms": 1.0, "s": 1e3}[run["time_unit"]]


def three_digits(value):
    """With as many decimals as make three digits, and never an exponent."""
    return "%.*f" % (max(0, 2 - math.floor(math.log10(value))), value)


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


print("%s, %d cores, load %.1f when it was measured." % (processor(), os.cpu_count(), os.getloadavg()[0]))

detection = runs("detection_bench")
table("detection, ten frames", "ours (ms)", "OpenCV", "floor", "to OpenCV", "to floor (goal 1.8)")
for arguments, run in of(detection, "detection"):
    row("%.1f megapixels, %s" % (megapixels(arguments), MODES[arguments["mode"]]),
        "%.2f" % run["detect_ms"], "%.1f" % run["opencv_ms"] if "opencv_ms" in run else "–",
        "%.2f" % run["read_ms"], "%.2f" % run["to_opencv"] if "to_opencv" in run else "–",
        "%.2f" % run["to_read"])

dark = runs("darkframes_bench")
table("dark frames, ten of them", "stacked (ms)", "two or eight at a time", "sum of their values",
      "of their words", "to the sum of the values (goal 2.5)", "two or eight at a time")
for arguments, run in of(dark, "stacking"):
    row("%.1f megapixels, %s bits" % (megapixels(arguments), arguments["bits"]),
        "%.1f" % run["stack_ms"], "%.1f" % run["as_they_come_ms"], "%.1f" % run["read_ms"],
        "%.1f" % run["words_ms"], "%.2f" % run["to_read"], "%.2f" % run["as_they_come_to_read"])

table("survey of ten PNG files", "ours (ms)", "decoding them", "to decoding (goal 1.3)")
for arguments, run in of(dark, "surveyOfFiles"):
    row("%.1f megapixels, %s bits" % (megapixels(arguments), arguments["bits"]),
        "%.0f" % run["survey_ms"], "%.0f" % run["decode_ms"], "%.2f" % run["to_decode"])

table("from frame to screen, with 1,000 marks", "ms", "goal", "most memory to what is shown")
for name, run in runs("view_bench").items():
    if name.startswith("redrawOf20Megapixels/"):
        scale, goal = SCALES[name.split("/")[1]]
        row("20 megapixels at " + scale, "%.1f" % milliseconds(run), goal, "%.2f" % run["memory"])

table("command, 20 megapixels", "10 entries (ms)", "1,000", "5,000 (goal 150)", "50,000")
commands = {}
for name, run in runs("app_bench").items():
    _, command, entries = name.split("/")[:3]
    commands.setdefault(COMMANDS[command], {})[int(entries)] = milliseconds(run)
for command, times in commands.items():
    row(command, *("%.1f" % times[entries] for entries in (10, 1000, 5000, 50000)))

table("list", "time (ms)")
hotpixel = runs("hotpixel_bench")
for name, what in LIST.items():
    row(what, three_digits(milliseconds(hotpixel[name])))

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
    row(what, first, last, "%.0f" % times, three_digits(before), three_digits(after),
        "%.1f" % (after / before))


def of_sensor(what, results, benchmark, key, **wanted):
    """From the least sensor to the largest, with the other arguments as they are wanted."""
    found = sorted((megapixels(arguments), run[key]) for arguments, run in of(results, benchmark)
                   if wanted.items() <= arguments.items())
    (least, before), (largest, after) = found[0], found[-1]
    growth(what, "%.1f megapixels" % least, "%.1f" % largest, largest / least, before, after)


for mode, what in MODES.items():
    of_sensor("detection, " + what, detection, "detection", "detect_ms", mode=mode)
for bits in ("8", "16"):
    of_sensor("stacking ten frames of %s bits" % bits, dark, "stacking", "stack_ms", bits=bits)
for bits in ("8", "16"):
    of_sensor("survey of ten PNG files of %s bits" % bits, dark, "surveyOfFiles", "survey_ms", bits=bits)
more = {int(arguments["frames"]): milliseconds(run) for arguments, run in of(dark, "surveyOfMoreFiles")}
growth("survey of PNG files of 1.3 megapixels", "10 frames", "1,000", 100, more[10], more[1000])
for command, times in commands.items():
    growth(command, "10 entries", "50,000", 5000, times[10], times[50000])
