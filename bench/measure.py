"""Runs the benchmark programs: a process a row, ours and its peers in random turns."""

import csv
import datetime
import json
import os
import platform
import re
import statistics
import subprocess
import sys
import tempfile
from pathlib import Path

# What a peer is called, and the Debian package that has it.
PEER_PACKAGES = ["libc6", "libstdc++6", "libmsgpack-dev", "libmsgpack-cxx-dev", "libprotobuf-dev", "libspdlog-dev",
                 "libbsd-dev", "libglib2.0-dev", "libgnustep-base-dev", "libbenchmark-dev"]
# Their time goes by in the kernel and in other processes, which Callgrind does not see.
NOT_FOR_CALLGRIND = ["os_threads_bench", "os_files_bench"]


def read_goals(path):
    with open(path, newline="", encoding="utf-8") as lines:
        goals = list(csv.DictReader(lines))
    for goal in goals:
        goal["goal"] = float(goal["goal"]) if goal["goal"] else None
    return goals


def programs_by_row(folder):
    """The program that has each row, as the programs list them themselves."""
    rows = {}
    for program in sorted(folder.glob("*_bench")):
        listed = subprocess.run([program, "--benchmark_list_tests"], check=True, capture_output=True, text=True)
        for name in listed.stdout.split():
            rows.setdefault(name.split("/")[0], program)
    return rows


def run_program(program, filter_, options, environment=None, prefix=()):
    """All repetitions that Google Benchmark reports, in nanoseconds."""
    with tempfile.NamedTemporaryFile(suffix=".json") as out:
        command = [*prefix, program, f"--benchmark_filter={filter_}", f"--benchmark_out={out.name}",
                   "--benchmark_out_format=json", *options]
        run = subprocess.run(command, env={**os.environ, **(environment or {})}, capture_output=True, text=True)
        if run.returncode != 0:
            sys.exit(f"bench: {program.name} failed:\n{run.stderr}")
        report = json.load(out)
    return [entry for entry in report["benchmarks"] if entry["run_type"] == "iteration"]


def nanoseconds(entry):
    kind = "real_time" if entry["name"].endswith("real_time") else "cpu_time"
    return entry[kind] * {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}[entry["time_unit"]]


def size_of(entry):
    sizes = [part for part in entry["name"].split("/")[2:] if part.isdigit()]
    return int(sizes[0]) if sizes else None


def timed(program, row, quick):
    """Times of each (side, size), one a repetition."""
    options = ["--benchmark_enable_random_interleaving=true",
               f"--benchmark_repetitions={7 if quick else 11}",
               f"--benchmark_min_time={0.02 if quick else 0.1}"]
    times = {}
    for entry in run_program(program, f"^{row}/", options):
        side = entry["name"].split("/")[1]
        times.setdefault((side, size_of(entry)), []).append(nanoseconds(entry))
    return times


def compare(goal, times):
    """One line of the table from the repetitions of both sides."""
    ours, peer = ([repetitions for (side, _), repetitions in times.items() if side == wanted][0]
                  for wanted in ("ours", goal["peer"]))
    ratio = statistics.median(ours) / statistics.median(peer)
    pairs = statistics.quantiles([a / b for a in ours for b in peer], n=4)
    return {**goal, "ours_ns": statistics.median(ours), "peer_ns": statistics.median(peer), "ratio": ratio,
            "quartiles": [pairs[0], pairs[2]], "best_ratio": min(ours) / min(peer),
            "reached": goal["goal"] is None or ratio <= goal["goal"]}


def measure_rows(goals, programs, quick, progress):
    """Each line of the table as soon as it is known."""
    times = {}
    for number, goal in enumerate(goals, 1):
        row = goal["row"]
        if row not in times:
            progress(f"[{number}/{len(goals)}] {goal['work']}")
            times[row] = timed(programs[row], row, quick)
        yield compare(goal, times[row])


def measure_growth(programs, quick, progress):
    """Per kind of work: per side, [size, nanoseconds], smallest first."""
    growth = {}
    for row in sorted(row for row in programs if row.startswith("growth_")):
        progress(f"growth of {row.removeprefix('growth_')}")
        curves = growth.setdefault(row.removeprefix("growth_"), {})
        for (side, size), repetitions in timed(programs[row], row, quick).items():
            curves.setdefault(side, []).append([size, statistics.median(repetitions)])
        for curve in curves.values():
            curve.sort()
    return growth


def rows_by_program(programs, rows):
    """Each program with a filter that selects its rows."""
    wanted = {}
    for row in rows:
        wanted.setdefault(programs[row], []).append(row)
    return [(program, f"^({'|'.join(its)})/") for program, its in wanted.items()]


def count_allocations(folder, programs, rows, progress):
    """Per "row/side": allocations on the C heap per operation, exact."""
    counted = {}
    for program, filter_ in rows_by_program(programs, rows):
        progress(f"allocations of {program.name}")
        environment = {"ZOT_BENCH_COUNT": "1", "LD_PRELOAD": str(folder / "libbench_count_allocations.so")}
        for entry in run_program(program, filter_, ["--benchmark_min_time=0"], environment):
            counted["/".join(entry["name"].split("/")[:2])] = entry["allocations"]
    return counted


def count_instructions(programs, rows, progress):
    """Per "row/side": instructions in user space per operation, the same in every run."""
    counted = {}
    for program, filter_ in rows_by_program(programs, rows):
        if program.name in NOT_FOR_CALLGRIND:
            continue
        progress(f"instructions of {program.name}")
        with tempfile.TemporaryDirectory() as folder:
            valgrind = ["valgrind", "--quiet", "--tool=callgrind", "--collect-atstart=no",
                        f"--callgrind-out-file={folder}/out"]
            entries = run_program(program, filter_, ["--benchmark_min_time=0"], {"ZOT_BENCH_COUNT": "1"}, valgrind)
            for number, entry in enumerate(entries, 1):
                totals = re.search(r"^(?:totals|summary): (\d+)", Path(folder, f"out.{number}").read_text(), re.M)
                counted["/".join(entry["name"].split("/")[:2])] = int(totals[1]) / entry["operations"]
    return counted


def machine():
    def output(*command):
        return subprocess.run(command, check=True, capture_output=True, text=True).stdout.strip()

    cpu = re.search(r"^model name\s*: (.*)$", Path("/proc/cpuinfo").read_text(), re.M)
    packages = output("dpkg-query", "-W", "-f", "${Package} ${Version}\n", *PEER_PACKAGES)
    return {"date": datetime.date.today().isoformat(), "cpu": cpu[1] if cpu else platform.machine(),
            "cores": os.cpu_count(), "kernel": platform.release(), "compiler": output("g++-12", "--version").splitlines()[0],
            "commit": output("git", "rev-parse", "--short", "HEAD"), "load": os.getloadavg()[0],
            "packages": dict(line.split(" ", 1) for line in packages.splitlines())}
