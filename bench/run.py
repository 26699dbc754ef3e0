"""scripts/bench once everything is built: measures, prints, draws."""

import argparse
import json
import re
import sys
from pathlib import Path

import measure
import report

ROOT = Path(__file__).resolve().parent.parent
PROGRAMS = ROOT / "build/release/bench"
RESULTS = ROOT / "build/bench"
PAGE = ROOT / "docs/performance.md"


def options():
    parser = argparse.ArgumentParser(prog="scripts/bench")
    parser.add_argument("--quick", action="store_true")
    parser.add_argument("--filter", default="")
    parser.add_argument("--instructions", action="store_true")
    parser.add_argument("--update-docs", action="store_true")
    chosen = parser.parse_args()
    if chosen.update_docs and (chosen.filter or chosen.quick):
        parser.error("--update-docs takes a whole run")
    return chosen


def progress(text):
    """What is being measured, on a terminal only and gone when the next line comes."""
    if sys.stderr.isatty():
        print(f"\r\033[K{text}\r", end="", file=sys.stderr, flush=True)


def main():
    chosen = options()
    pattern = re.compile(chosen.filter)
    goals = [goal for goal in measure.read_goals(ROOT / "bench/goals.csv")
             if pattern.search(goal["row"]) or pattern.search(goal["work"])]
    if not goals:
        sys.exit(f"bench: no row matches {chosen.filter}")
    programs = measure.programs_by_row(PROGRAMS)
    wanted = list(dict.fromkeys(goal["row"] for goal in goals))

    results = {"machine": measure.machine()}
    print(report.plain_head())
    results["rows"] = []
    for row in measure.measure_rows(goals, programs, chosen.quick, progress):
        progress("")
        print(report.plain_line(row), flush=True)
        results["rows"].append(row)
    if not chosen.filter:
        results["growth"] = measure.measure_growth(programs, chosen.quick, progress)
    results["allocations"] = measure.count_allocations(PROGRAMS, programs, wanted, progress)
    if chosen.instructions or chosen.update_docs:
        results["instructions"] = measure.count_instructions(programs, wanted, progress)
    progress("")

    report.print_counts(results)
    with_goal = [row for row in results["rows"] if row["goal"] is not None]
    print(f"{sum(row['reached'] for row in with_goal)} of {len(with_goal)} goals reached")
    RESULTS.mkdir(parents=True, exist_ok=True)
    (RESULTS / "results.json").write_text(json.dumps(results, indent=1), encoding="utf-8")
    draw(results, RESULTS)
    if chosen.update_docs:
        draw(results, ROOT / "docs/pictures", "bench-")
        report.update_page(PAGE, report.tables(results))


def draw(results, folder, prefix=""):
    report.ratio_chart(results["rows"], folder / f"{prefix}ratios.svg")
    if "growth" in results:
        report.growth_chart(results["growth"], folder / f"{prefix}growth.svg")


if __name__ == "__main__":
    main()
