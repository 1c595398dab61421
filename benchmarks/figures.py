# SPDX-License-Identifier: Apache-2.0
"""Turns what the benchmarks measured into tables: one for each operation, a line for each size, a column for each
peer with its time and, in parentheses, our time divided by it.

figures.py COMPILER [PAGE] JSON...   prints the tables, or puts them between the marks of the page (empty: prints)
"""

import json
import os
import platform
import re
import sys

BEGIN = "<!-- figures: written by scripts/benchmark.sh -->"
END = "<!-- end of figures -->"


def inWords(nanoseconds):
    for unit, size in (("s", 1e9), ("ms", 1e6), ("µs", 1e3)):
        if nanoseconds >= size:
            return f"{nanoseconds / size:.3g} {unit}"
    return f"{nanoseconds:.3g} ns"


def inFigures(size, value):
    # A benchmark tells times only: a nanosecond stands for an instruction.
    return f"{value / 1e6:.0f} million" if size.startswith("instructions") else inWords(value)


def processor():
    for line in open("/proc/cpuinfo", encoding="utf-8"):
        if line.startswith("model name"):
            return line.split(":", 1)[1].strip()
    return platform.machine()


def vectorUnit():
    if os.environ.get("COUNTERSIGN_BENCHMARK_WITHOUT_AVX512"):
        return "AVX2 (AVX-512 not used)"
    text = open("/proc/cpuinfo", encoding="utf-8").read()
    for flag, name in (("avx512bw", "AVX-512"), ("avx2", "AVX2")):
        if re.search(rf"\b{flag}\b", text):
            return name
    return "no AVX2"


def main():
    compiler, page, files = sys.argv[1], sys.argv[2], sys.argv[3:]
    operations = {}
    date = processors = ""
    for name in files:
        run = json.load(open(name, encoding="utf-8"))
        date = run["context"]["date"][:10]
        processors = run["context"]["num_cpus"]
        for one in run["benchmarks"]:
            if one["aggregate_name"] != "median":
                continue
            operation, size, who = one["run_name"].split("/")[:3]
            isClock = one["run_name"].endswith(("real_time", "manual_time"))
            factor = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}[one["time_unit"]]
            time = one["real_time" if isClock else "cpu_time"] * factor
            operations.setdefault(operation, {}).setdefault(size, {})[who] = (time, one.get("peakKiB"))

    lines = [f"Measured on {date}: {processor()}, {processors} processors, {vectorUnit()}; {compiler}.", ""]
    for operation, sizes in operations.items():
        peers = []
        for times in sizes.values():
            peers += [who for who in times if who != "ours" and who not in peers]
        hasPeak = any(peak for times in sizes.values() for _, peak in times.values())
        lines += [f"### {operation}", ""]
        lines += ["| size | ours | " + "".join(f"{who} | " for who in peers).rstrip() + (" peak memory |" if hasPeak else "")]
        lines += ["|---" * (len(peers) + 2 + hasPeak) + "|"]
        for size, times in sizes.items():
            ours, peak = times["ours"]
            cells = [size, f"**{inFigures(size, ours)}**"]
            for who in peers:
                cells += [f"{inFigures(size, times[who][0])} ({ours / times[who][0]:.2f})" if times.get(who, (0,))[0] else ""]
            if hasPeak:
                cells += [f"{peak / 1024:.1f} MiB" if peak else ""]
            lines += ["| " + " | ".join(cells) + " |"]
        lines += [""]
    tables = "\n".join(lines)
    if not page:
        print(tables)
        return
    text = open(page, encoding="utf-8").read()
    before, rest = text.split(BEGIN, 1)
    after = rest.split(END, 1)[1]
    with open(page, "w", encoding="utf-8") as out:
        out.write(f"{before}{BEGIN}\n\n{tables}\n{END}{after}")


main()
