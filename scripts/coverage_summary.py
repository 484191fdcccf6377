"""Sums up two exports of llvm-cov over src/: coverage_summary.py TESTS.json FUZZERS.json"""

import json
import os
import sys

CODE_REGION = 0


def load(path):
    with open(path, encoding="utf-8") as file:
        return json.load(file)["data"][0]


def percent(covered, count):
    return f"{covered:5d} of {count:5d}  {100 * covered / max(count, 1):6.2f} %"


def total(data, kind):
    totals = data["totals"][kind]
    return percent(totals["covered"], totals["count"])


def reached_regions(data):
    """Covered and all regions of the functions that ran; a template's instances count once."""
    regions = {}
    for function in data["functions"]:
        if function["count"] == 0:
            continue
        place = (function["filenames"][0], *function["regions"][0][:2])
        for region in function["regions"]:
            if region[7] == CODE_REGION:
                key = (place, region[5], *region[:4])
                regions[key] = regions.get(key, 0) + region[4]
    return sum(1 for count in regions.values() if count), len(regions)


def missed_lines(data):
    """File, first and last line of each run of lines that nothing executed."""
    for file in data["files"]:
        missed = set()
        previous = None
        for segment in file["segments"]:
            line, _, count, has_count, _, is_gap = segment[:6]
            if previous and previous[2] and not previous[3]:
                missed.update(range(previous[0], line + (segment[1] > 1)) if not previous[1] else ())
            previous = (line, count, has_count, is_gap)
        for line in sorted(missed):
            if line - 1 not in missed:
                last = line
                while last + 1 in missed:
                    last += 1
                yield os.path.relpath(file["filename"]), line, last


def main():
    tests, fuzzers = load(sys.argv[1]), load(sys.argv[2])
    for kind in ("regions", "functions", "lines"):
        print(f"tests    {kind:10s} {total(tests, kind)}")
    for kind in ("regions", "functions", "lines"):
        print(f"fuzzers  {kind:10s} {total(fuzzers, kind)}")
    print(f"fuzzers  regions of the functions they reach {percent(*reached_regions(fuzzers))}")
    print("not run by any test:")
    for name, first, last in missed_lines(tests):
        with open(name, encoding="utf-8") as file:
            text = file.read().splitlines()[first - 1].strip()
        print(f"  {name}:{first}{f'-{last}' if last > first else ''}: {text}")


if __name__ == "__main__":
    main()
