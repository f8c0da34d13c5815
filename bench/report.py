"""Turns the benchmark's JSON results into docs/benchmarks.md and its plots."""
import json
import pathlib
import platform
import statistics
import sys

ENGINES = ("qrylib", "sqlite_fresh", "sqlite_kept")
STATEMENTS = ("point_by_key", "point_by_column", "filtered_count", "like_prefix", "in_list", "ordered_two_columns",
              "all_columns", "join", "update_one", "delete_insert", "record_select", "unused_id")
TITLES = {"qrylib": "qrylib", "sqlite_fresh": "SQLite, fresh text", "sqlite_kept": "SQLite, kept statement",
          "lmdb": "LMDB, raw"}
COLOURS = {"qrylib": "#1b6ca8", "sqlite_fresh": "#c8553d", "sqlite_kept": "#8a8a8a", "lmdb": "#d9c27a"}


def load(folder):
    """Medians in microseconds by statement, size (None: the product's own) and engine, and counters."""
    times, counters, machine = {}, {}, {}
    for path in sorted(folder.glob("*.json")):
        data = json.loads(path.read_text())
        machine = data["context"]
        for run in data["benchmarks"]:
            if run["run_type"] != "iteration":
                continue
            statement, engine = run["run_name"].split("/")
            name, _, size = statement.partition(":")
            key = (name, int(size) if size else None, engine)
            times.setdefault(key, []).append(run["cpu_time"] / 1000)
            counters[key] = (run.get("allocations", 0), run.get("blocks", 0))
    return {key: statistics.median(values) for key, values in times.items()}, counters, machine


def svg(width, height, body):
    return (f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width} {height}" width="{width}" '
            f'height="{height}" font-family="sans-serif" font-size="12">\n'
            f'<rect width="{width}" height="{height}" fill="white"/>\n' + "\n".join(body) + "\n</svg>\n")


def ratio_plot(times, statements):
    """How many times faster than SQLite with fresh text; the line at 1 is SQLite."""
    scale, left, row = 60, 170, 22
    best = max(times[s, None, "sqlite_fresh"] / times[s, None, "qrylib"] for s in statements)
    width, height = left + int(scale * max(best, 3.5)) + 60, 40 + row * len(statements)
    body = []
    for mark in (1, 3):
        x = left + scale * mark
        body.append(f'<line x1="{x}" y1="20" x2="{x}" y2="{height - 10}" stroke="#bbb"/>'
                    f'<text x="{x}" y="15" text-anchor="middle" fill="#555">{mark} x</text>')
    for i, statement in enumerate(statements):
        ratio = times[statement, None, "sqlite_fresh"] / times[statement, None, "qrylib"]
        y = 28 + row * i
        body.append(f'<text x="{left - 8}" y="{y + 12}" text-anchor="end">{statement}</text>'
                    f'<rect x="{left}" y="{y}" width="{scale * ratio:.1f}" height="14" fill="{COLOURS["qrylib"]}"/>'
                    f'<text x="{left + scale * ratio + 5:.1f}" y="{y + 12}">{ratio:.1f}</text>')
    return svg(width, height, body)


def size_plot(times):
    """Time by number of records, both axes logarithmic."""
    import math
    points = {}
    for (name, size, engine), value in times.items():
        if size is not None and engine != "sqlite_kept":
            points.setdefault((name, engine), []).append((size, value))
    if not points:
        return None
    sizes = [s for line in points.values() for s, _ in line]
    values = [v for line in points.values() for _, v in line]
    left, top, width, height = 80, 20, 460, 300

    def place(size, value):
        x = left + width * (math.log(size) - math.log(min(sizes))) / (math.log(max(sizes)) - math.log(min(sizes)))
        y = top + height * (math.log(max(values)) - math.log(value)) / (math.log(max(values)) - math.log(min(values)))
        return x, y

    body = []
    for size in sorted(set(sizes)):
        x, _ = place(size, min(values))
        body.append(f'<text x="{x:.0f}" y="{top + height + 18}" text-anchor="middle">{size}</text>')
    for exponent in range(math.floor(math.log10(min(values))), math.ceil(math.log10(max(values))) + 1):
        value = 10.0 ** exponent
        if min(values) <= value <= max(values):
            _, y = place(min(sizes), value)
            body.append(f'<line x1="{left}" y1="{y:.0f}" x2="{left + width}" y2="{y:.0f}" stroke="#ddd"/>'
                        f'<text x="{left - 6}" y="{y + 4:.0f}" text-anchor="end">{value:g} us</text>')
    dashes = {name: dash for name, dash in zip(sorted({n for n, _ in points}), ("", "6 3", "2 3"))}
    label_y = top - 14
    for (name, engine), line in sorted(points.items(), key=lambda item: place(*max(item[1]))[1]):
        path = " ".join(f"{x:.1f},{y:.1f}" for x, y in (place(*p) for p in sorted(line)))
        body.append(f'<polyline points="{path}" fill="none" stroke="{COLOURS[engine]}" stroke-width="2" '
                    f'stroke-dasharray="{dashes[name]}"/>')
        x, y = place(*max(line))
        label_y = max(label_y + 14, y + 4)  # lines may end close together
        body.append(f'<text x="{x + 6:.0f}" y="{label_y:.0f}" fill="{COLOURS[engine]}">{name}, {TITLES[engine]}</text>')
    return svg(left + width + 260, top + height + 30, body)


def table(times, counters, statements):
    rows = ["| statement | qrylib | its platform calls alone | SQLite, fresh text | SQLite, kept | fresh / qrylib "
            "| kept / qrylib | fresh / calls | allocations | blocks |",
            "|---|---:|---:|---:|---:|---:|---:|---:|---:|---:|"]
    for statement in statements:
        ours, fresh, kept = (times[statement, None, engine] for engine in ENGINES)
        calls = times[statement, None, "platform_calls"]
        allocations, blocks = counters[statement, None, "qrylib"]
        rows.append(f"| {statement} | {ours:.2f} | {calls:.2f} | {fresh:.2f} | {kept:.2f} | {fresh / ours:.2f} "
                    f"| {kept / ours:.2f} | {fresh / calls:.2f} | {allocations:.0f} | {blocks:.0f} |")
    return "\n".join(rows)


def size_table(times):
    names = sorted({name for name, size, _ in times if size is not None})
    rows = ["| statement | records | qrylib | SQLite, fresh text | SQLite, kept | fresh / qrylib |",
            "|---|---:|---:|---:|---:|---:|"]
    for name in names:
        for size in sorted({s for n, s, _ in times if n == name and s is not None}):
            ours, fresh, kept = (times[name, size, engine] for engine in ENGINES)
            rows.append(f"| {name} | {size} | {ours:.2f} | {fresh:.2f} | {kept:.2f} | {fresh / ours:.2f} |")
    return "\n".join(rows)


def load_processes(path):
    """Medians of the repetitions by (readers, writers), engine and kind of statement: a dictionary of figures."""
    runs = {}
    for line in path.read_text().splitlines():
        run = json.loads(line)
        for kind, num in (("reads", run["readers"]), ("writes", run["writers"])):
            if num > 0:
                key = (run["readers"], run["writers"]), run["engine"], kind
                runs.setdefault(key, []).append(run[kind])
    return {key: {figure: statistics.median(run[figure] for run in repeated) for figure in repeated[0]}
            for key, repeated in runs.items()}


def process_table(figures):
    rows = ["| readers + writers | engine | statements | a second | qrylib's, times as many | median | 99.9th percentile "
            "| longest |", "|---|---|---|---:|---:|---:|---:|---:|"]
    for (mix, engine, kind), run in sorted(figures.items(), key=lambda item: (item[0][0], item[0][2])):
        ratio = figures[mix, "qrylib", kind]["per_second"] / run["per_second"]
        rows.append(f"| {mix[0]} + {mix[1]} | {TITLES[engine]} | {kind} | {run['per_second']:,.0f} | {ratio:.2f} "
                    f"| {run['median'] / 1000:.1f} | {run['p999'] / 1000:.1f} | {run['longest'] / 1000:,.0f} |")
    return "\n".join(rows)


def process_plot(figures):
    """Statements a second, a bar for each engine; LMDB, which reads no statements, only in the table."""
    left, row, width = 130, 16, 420
    shown = sorted({(mix, kind) for mix, _, kind in figures})
    most = max(run["per_second"] for (_, engine, _), run in figures.items() if engine in ENGINES)
    body, y = [], 10
    for mix, kind in shown:
        body.append(f'<text x="{left - 8}" y="{y + 28}" text-anchor="end">{mix[0]} + {mix[1]}, {kind}</text>')
        for engine in ENGINES:
            value = figures[mix, engine, kind]["per_second"]
            length = width * value / most
            body.append(f'<rect x="{left}" y="{y}" width="{length:.1f}" height="{row - 3}" fill="{COLOURS[engine]}"/>'
                        f'<text x="{left + length + 5:.1f}" y="{y + 11}">{value:,.0f}</text>')
            y += row
        y += 10
    for i, engine in enumerate(ENGINES):
        body.append(f'<text x="{left + 160 * i}" y="{y + 12}" fill="{COLOURS[engine]}">{TITLES[engine]}</text>')
    return svg(left + width + 80, y + 25, body)


def main():
    results, docs = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
    times, counters, machine = load(results)
    statements = sorted({name for name, size, _ in times if size is None}, key=STATEMENTS.index)
    (docs / "benchmark-ratios.svg").write_text(ratio_plot(times, statements))
    sizes = size_plot(times)
    page = (pathlib.Path(__file__).parent / "benchmarks.template").read_text()
    page = page.replace("@MACHINE@", f"{platform.machine()}, {machine['num_cpus']} cores at {machine['mhz_per_cpu']} MHz")
    page = page.replace("@TABLE@", table(times, counters, statements))
    plain, join = times["join", None, "plain_loop"], times["join", None, "qrylib"]
    page = page.replace("@JOIN@", f"{plain:.1f} \u00b5s; the whole statement takes {join:.1f} \u00b5s, "
                                  f"{join / plain:.2f} times as long")
    if sizes is not None:
        (docs / "benchmark-sizes.svg").write_text(sizes)
        page = page.replace("@SIZES@", size_table(times))
    processes = load_processes(results / "processes.jsonl")
    (docs / "benchmark-processes.svg").write_text(process_plot(processes))
    page = page.replace("@PROCESSES@", process_table(processes))
    # The section about fleets is scripts/bench_fleet.sh's.
    _, heading, fleets = (docs / "benchmarks.md").read_text().partition("\n## Fleets\n")
    (docs / "benchmarks.md").write_text(page + heading + fleets)


if __name__ == "__main__":
    main()
