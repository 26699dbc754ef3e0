"""What a run found, as a table, as pictures and in docs/performance.md."""

import math
import re

import matplotlib

matplotlib.use("svg")
import matplotlib.pyplot as plt  # noqa: E402  the back end is chosen first

# Texts stay texts, and equal runs give equal files.
plt.rcParams.update({"svg.fonttype": "none", "svg.hashsalt": "bench", "font.size": 9, "font.family": "sans-serif",
                     "axes.spines.top": False, "axes.spines.right": False})
REACHED, MISSED, PEER = "#2b7a3d", "#c0502a", "#6b7280"
COLOURS = {"build": "#1f5fa8", "find": "#b3541e", "load": "#1f5fa8", "look_up": "#b3541e"}
GROWTH_NAMES = {"build": "build records", "find": "find the last record", "load": "load texts",
                "look_up": "look one text up"}


def number(value):
    return f"{value:.3f}" if value < 0.095 else f"{value:.2f}"


def time_text(nanoseconds):
    for unit, size in (("s", 1e9), ("ms", 1e6), ("µs", 1e3)):
        if nanoseconds >= size:
            return f"{nanoseconds / size:.3g} {unit}"
    return f"{nanoseconds:.3g} ns"


def verdict(row):
    return "" if row["goal"] is None else "yes" if row["reached"] else "no"


def plain_line(row):
    goal = "" if row["goal"] is None else f"{row['goal']:.2f}"
    return (f"{row['work']:<34} {row['beside']:<30} {number(row['ratio']):>6} {goal:>6} {verdict(row):>4}"
            f" {time_text(row['ours_ns']):>9} {time_text(row['peer_ns']):>9}")


def plain_head():
    return f"{'work':<34} {'beside':<30} {'ratio':>6} {'goal':>6} {'met':>4} {'ours':>9} {'peer':>9}"


def print_counts(results):
    work = {row["row"]: row["work"] for row in results["rows"]}
    for kind in ("allocations", "instructions"):
        lines = [line for line in counts_table(results.get(kind, {}), lambda count: f"{count:,.6g}") if line[0] in work]
        if lines:
            print(f"\n{kind + ' an operation':<34} {'ours':>9}  peers")
        for row, ours, peers in lines:
            print(f"{work[row]:<34} {ours:>9}  {peers}")
    print()


def ratio_chart(rows, path):
    """A bar a row on a logarithmic axis, its goal as a mark, the peer as a line at 1."""
    rows = rows[::-1]
    figure, axes = plt.subplots(figsize=(8.2, 0.215 * len(rows) + 1.0))
    low = 10 ** math.floor(math.log10(min(row["ratio"] for row in rows)))
    for at, row in enumerate(rows):
        colour = PEER if row["goal"] is None else REACHED if row["reached"] else MISSED
        axes.barh(at, row["ratio"] - low, left=low, height=0.62, color=colour)
        axes.text(1.01, at, number(row["ratio"]), va="center", fontsize=7.5, transform=axes.get_yaxis_transform())
        if row["goal"] is not None:
            axes.plot([row["goal"]] * 2, [at - 0.42, at + 0.42], color="black", linewidth=1.6)
    axes.axvline(1, color=PEER, linewidth=0.8, linestyle="--", zorder=0)
    axes.set_xscale("log")
    axes.set_xlim(low, max(2.0, max(row["ratio"] for row in rows) * 1.1))
    axes.xaxis.set_major_formatter(matplotlib.ticker.FuncFormatter(lambda value, _: f"{value:g}"))
    axes.set_ylim(-0.7, len(rows) - 0.3)
    axes.set_yticks(range(len(rows)), [f"{row['work']}  /  {row['beside']}" for row in rows], fontsize=7.5)
    axes.tick_params(axis="y", length=0)
    axes.set_xlabel("time of ours / time of the peer (left of 1: ours is faster)")
    marks = [matplotlib.patches.Patch(color=REACHED, label="goal reached"),
             matplotlib.patches.Patch(color=MISSED, label="goal not reached"),
             matplotlib.patches.Patch(color=PEER, label="no goal"),
             matplotlib.lines.Line2D([], [], color="black", linewidth=1.6, label="goal")]
    figure.legend(handles=marks, loc="upper center", ncol=4, frameon=False, fontsize=8)
    figure.tight_layout(rect=(0, 0, 1, 1 - 0.3 / figure.get_figheight()))
    save(figure, path)


def growth_chart(growth, path):
    """Time against size, ours drawn through and the peer dashed, with linear growth for comparison."""
    figure, panels = plt.subplots(1, 2, figsize=(8.2, 3.7))
    kinds = (("build", "find"), 8, "bytes of records"), (("load", "look_up"), 1, "texts")
    for axes, (names, scale, label) in zip(panels, kinds):
        for name in names:
            for side, curve in sorted(growth[name].items(), key=lambda item: item[0] != "ours"):
                sizes, times = [size * scale for size, _ in curve], [time for _, time in curve]
                ours = side == "ours"
                axes.plot(sizes, times, color=COLOURS[name], linestyle="-" if ours else ":", marker="o" if ours else "",
                          markersize=3, linewidth=1.4,
                          label=GROWTH_NAMES[name] + ("" if ours else f" ({side.replace('_', '-')})"))
        span = [min(sizes), max(sizes)]
        axes.plot(span, [20 * size / span[0] for size in span], color="#b8bdc6", linewidth=0.8, label="linear growth")
        axes.set(xscale="log", yscale="log", xlabel=label)
        axes.yaxis.set_major_formatter(matplotlib.ticker.FuncFormatter(lambda value, _: time_text(value)))
        axes.legend(fontsize=7, frameon=False, loc="upper left")
    panels[0].set_ylabel("time for the whole work")
    figure.tight_layout()
    save(figure, path)


def save(figure, path):
    path.parent.mkdir(parents=True, exist_ok=True)
    figure.savefig(path, metadata={"Date": None})
    plt.close(figure)


def counts_table(counts, kind):
    """Ours and each peer of a row beside each other."""
    lines = []
    for name, value in counts.items():
        row, side = name.split("/")
        if side == "ours":
            peers = ", ".join(f"{other.split('/')[1].replace('_', '-')} {kind(count)}"
                              for other, count in counts.items() if other.startswith(row + "/") and other != name)
            lines.append((row, kind(value), peers))
    return lines


def code(name):
    """A name of a program or function as a code span."""
    return re.sub(r"std::\w+|\b\w+\(\)|\b\w+_\w+\b|\b(?:strlcpy|strlcat|snprintf|semop|msgpack-c\w*|protobuf|spdlog)\b", r"`\g<0>`",
                  name)


def markdown_table(head, alignment, lines):
    return "\n".join("| " + " | ".join(line) + " |" for line in [head, alignment, *lines])


def tables(results):
    """The generated sections of docs/performance.md by their names."""
    rows, machine = results["rows"], results["machine"]
    work = {row["row"]: row["work"] for row in rows}
    with_goal = [row for row in rows if row["goal"] is not None]
    met = sum(row["reached"] for row in with_goal)
    packages = ", ".join(f"{name} {version}" for name, version in machine["packages"].items())
    sections = {"machine": f"Measured on {machine['date']} at {machine['commit']}: {machine['cpu']}, {machine['cores']} "
                           f"cores, Linux {machine['kernel']}, {machine['compiler']}, release build; load average "
                           f"{machine['load']:.1f} before the run.\nPackages: {packages}.\n\n"
                           f"**{met} of {len(with_goal)} goals are reached in this run.**"}
    sections["ratios"] = markdown_table(
        ["Work", "Beside", "Ours/peer", "Middle half", "Goal", "Reached", "Ours", "Peer"],
        ["---", "---", "---:", "---:", "---:", "---", "---:", "---:"],
        [[row["work"], code(row["beside"]), number(row["ratio"]), " to ".join(number(q) for q in row["quartiles"]),
          "" if row["goal"] is None else f"{row['goal']:.2f}", verdict(row), time_text(row["ours_ns"]),
          time_text(row["peer_ns"])] for row in rows])
    for kind, show in (("allocations", lambda count: f"{count:g}"), ("instructions", lambda count: f"{count:,.0f}")):
        if results.get(kind):
            lines = [[work[row], ours, peers] for row, ours, peers in counts_table(results[kind], show) if row in work]
            sections[kind] = markdown_table(["Work", "Ours", "Peers"], ["---", "---:", "---"], lines)
    return sections


def update_page(page, sections):
    """Replaces what stands between "<!-- NAME: generated -->" and "<!-- end -->"; the rest is written by hand."""
    text = page.read_text(encoding="utf-8")
    for name, section in sections.items():
        mark = f"<!-- {name}: generated by scripts/bench --update-docs -->"
        place = re.compile(re.escape(mark) + r".*?<!-- end -->", re.S)
        if not place.search(text):
            raise SystemExit(f"bench: {page} has no place for {name}")
        text = place.sub(lambda _: f"{mark}\n{section}\n<!-- end -->", text)
    page.write_text(text, encoding="utf-8")
