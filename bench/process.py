"""Whole-process figures, as rows of a table: the extension's start, eleven timelines at once, large documents, a drawn
preview beside rsvg-convert. Usage: process.py PROGRAM_FOLDER"""

import json
import os
import resource
import subprocess
import sys
import tempfile
import time

programs = sys.argv[1]
extension = os.path.join(programs, "zelto-widgets")
zelto = os.path.join(programs, "zelto")


def median(values):
    return sorted(values)[len(values) // 2]


def cpu_milliseconds(pid):
    tasks = f"/proc/{pid}/task"
    return sum(int(open(f"{tasks}/{t}/schedstat").read().split()[0]) for t in os.listdir(tasks)) / 1e6


def pss_megabytes(pid):
    for line in open(f"/proc/{pid}/smaps_rollup"):
        if line.startswith("Pss:"):
            return int(line.split()[1]) / 1024
    return 0


def timelines(widgets):
    for number, widget in enumerate(widgets):
        yield json.dumps(
            {
                "id": number,
                "request": "timeline",
                "kind": widget["kind"],
                "family": widget["families"][-1],
                "locale": "pt_BR",
                "timeZone": "America/Sao_Paulo",
            }
        ).encode() + b"\n"


def extension_rows():
    start, wall, cpu, memory = [], [], [], []
    for _ in range(9):
        process = subprocess.Popen([extension], stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        process.stdin.write(b'{"id":1,"request":"bundle"}\n')
        process.stdin.flush()
        widgets = json.loads(process.stdout.readline())["widgets"]
        start.append(cpu_milliseconds(process.pid))
        began = time.perf_counter()
        process.stdin.write(b"".join(timelines(widgets)))
        process.stdin.flush()
        for _ in widgets:
            process.stdout.readline()
        wall.append(1000 * (time.perf_counter() - began))
        cpu.append(cpu_milliseconds(process.pid))
        memory.append(pss_megabytes(process.pid))
        process.stdin.close()
        process.wait()
    yield "start to `bundle` reply, CPU", f"{median(start):.1f} ms", "15 ms"
    yield "eleven timelines at once, wall", f"{median(wall):.0f} ms", "540 ms"
    yield "eleven timelines at once, CPU of the whole process", f"{median(cpu):.1f} ms", "40 ms"
    yield "memory (PSS) after eleven timelines", f"{median(memory):.1f} MB", "12 MB"


def peak_megabytes(document):
    """The peak resident memory of checking a document, less that of checking a tiny one."""

    def peak(data):
        with tempfile.NamedTemporaryFile() as file:
            file.write(data)
            file.flush()
            script = (
                "import resource,subprocess,sys;"
                "subprocess.run(sys.argv[1:],stdout=subprocess.DEVNULL,stderr=subprocess.DEVNULL);"
                "print(resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss)"
            )
            command = [sys.executable, "-c", script, zelto, "snapshot", "check", file.name]
            return int(subprocess.run(command, capture_output=True, check=True).stdout) / 1024

    return peak(document) - peak(b"{}")


def document_rows():
    sample = json.loads(subprocess.run([zelto, "snapshot", "sample"], capture_output=True, check=True).stdout)
    clip = dict(sample["clips"][0], text="Reunião às 15h com o time. " * 8)
    count = 64_000_000 // len(json.dumps(clip, ensure_ascii=False).encode())
    large = json.dumps(dict(sample, clips=[clip] * count), ensure_ascii=False).encode()
    size = len(large) / 1e6
    yield f"{size:.0f} MB snapshot, peak over its size", f"{peak_megabytes(large) * 1.048576 / size:.2f}", "2.2"
    depth = 16_500_000
    nested = b'{"unknown":' + b"[" * depth + b"]" * depth + b"," + json.dumps(sample).encode()[1:]
    size = len(nested) / 1e6
    yield (
        f"{size:.0f} MB of nested arrays under an unknown key, peak over its size",
        f"{peak_megabytes(nested) * 1.048576 / size:.2f}",
        "1.2",
    )


def preview_rows():
    with tempfile.TemporaryDirectory() as folder:
        live, svg, png = (os.path.join(folder, name) for name in ("live.json", "live.svg", "out.png"))
        with open(live, "w") as file:
            file.write(
                '{"battery":73,"charging":true,"cpu":0.37,"memory":0.68,"disk":0.89,'
                '"diskFree":112400000000,"diskTotal":994662584320}'
            )
        with open(svg, "wb") as file:
            file.write(subprocess.run([os.path.join(programs, "live-text-svg")], capture_output=True, check=True).stdout)
        ours = [zelto, "preview", "overview", "--family", "medium", "--live", live, "--no-snapshot"]
        ours += ["--date", "2026-03-11T14:05:00-03:00", "--locale", "pt_BR", "--time-zone", "America/Sao_Paulo"]
        ours += ["--format", "png", "--output", png]
        theirs = ["rsvg-convert", "-z", "2", svg, "-o", png]
        times = {0: [], 1: []}
        for _ in range(41):
            for index, command in enumerate((ours, theirs)):
                began = time.perf_counter()
                subprocess.run(command, check=True)
                times[index].append(time.perf_counter() - began)
        ratio = median(times[0]) / median(times[1])
        yield (
            "`zelto preview overview --format png` over `rsvg-convert` of the same picture with live text",
            f"{ratio:.2f} ({1000 * median(times[0]):.0f} ms / {1000 * median(times[1]):.0f} ms)",
            "0.70",
        )


print("| whole process | measured | to reach |\n|---|---|---|")
for rows in (extension_rows(), document_rows(), preview_rows()):
    for what, measured, goal in rows:
        print(f"| {what} | {measured} | under {goal} |", flush=True)
