#!/usr/bin/python3
"""Measures the program beside a bare window, both in one run, on a private X server with openbox.

    measure.py BUILD_FOLDER [--seconds 60] [--starts 11] [--before PROGRAM]

BUILD_FOLDER holds a release build with its benchmarks. The program runs against a home of its own in which twenty
sessions live and do nothing. Every figure is taken in the same way of both; the ratio is the one to read.

With --before it measures the program beside an earlier one instead, turn by turn: while a session works, with picom,
and when the sessions card opens and closes.
"""

import argparse
import contextlib
import pathlib
import re
import shutil
import signal
import statistics
import subprocess
import sys
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "tests/desktop"))
from desktop import BACKDROP, SCREEN, Desktop, end, eventually
from program import RING_ACROSS, Home

SESSIONS = 20


@contextlib.contextmanager
def running(desktop, *command):
    process = desktop.start(*command)
    try:
        yield process.pid
    finally:
        end(process)


def is_painted(desktop):
    """Whether something lies at the middle of the right edge, where both programs show their window."""
    return desktop.pixel(SCREEN[0] - 2, SCREEN[1] // 2) != BACKDROP


def until_clear(desktop):
    eventually(lambda: not is_painted(desktop), "an empty screen")


def add_idle_sessions(desktop):
    """A home with processes that sleep, each with its record and transcript."""
    home = Home(desktop.folder / "home")
    for number in range(SESSIONS):
        process = desktop.start("sleep", "100000")
        home.record(process.pid, startedAt=1_700_000_000_000 + number, updatedAt=None)
        home.transcript(f"session-{process.pid}", f"Bed {number}", "Dig it over")
    return home


def first_frame(command, desktop):
    """Milliseconds from exec until the window is painted."""
    until_clear(desktop)
    start = time.monotonic()
    with running(desktop, *command):
        eventually(lambda: is_painted(desktop), "the window", pause=0.0002)
        return (time.monotonic() - start) * 1000


def private_kilobytes(pid):
    text = pathlib.Path(f"/proc/{pid}/smaps_rollup").read_text()
    return sum(int(size) for size in re.findall(r"^Private_\w+: +(\d+) kB", text, re.MULTILINE))


def of_threads(pid, name, pattern):
    """The sum over the process's threads of the numbers that a file of theirs has."""
    total = 0
    for file in pathlib.Path(f"/proc/{pid}/task").glob(f"*/{name}"):
        with contextlib.suppress(OSError):
            total += sum(int(number) for number in re.findall(pattern, file.read_text(), re.MULTILINE))
    return total


def spent(pid):
    """Nanoseconds on a processor, context switches."""
    return of_threads(pid, "schedstat", r"\A\d+"), of_threads(pid, "status", r"ctxt_switches:\s+(\d+)")


def settled(pid):
    """Waits until what belongs to the start is over: two seconds in a row that cost the same."""
    before = None
    for _ in range(10):
        start = spent(pid)[0]
        time.sleep(1)
        cost = spent(pid)[0] - start
        if before is not None and abs(cost - before) < 1_000_000:
            return
        before = cost


def system_calls(pid, seconds, folder):
    """Of all threads per second, and messages to the X server in the whole time; none without strace."""
    trace = folder / "trace"
    if not shutil.which("strace"):
        return None
    tracer = subprocess.Popen(
        ["strace", "-f", "-yy", "-qq", "-o", str(trace), "-p", str(pid)], stderr=subprocess.DEVNULL)
    time.sleep(seconds)
    tracer.send_signal(signal.SIGINT)
    tracer.wait()
    if not trace.exists() or not trace.stat().st_size:
        return None
    calls = [line for line in trace.read_text().splitlines() if "resumed>" not in line]
    to_server = [line for line in calls if re.search(r" (writev|sendmsg|sendto|write)\(\d+<[^>]*X11-unix", line)]
    trace.unlink()
    return len(calls) / seconds, len(to_server)


def measure_idle(command, desktop, seconds):
    until_clear(desktop)
    with running(desktop, *command) as pid:
        eventually(lambda: is_painted(desktop), "the window")
        settled(pid)
        processor, switches = spent(pid)
        time.sleep(seconds)
        after = spent(pid)
        figures = {
            "private memory, MB": private_kilobytes(pid) / 1024,
            "processor, % of a core": (after[0] - processor) / seconds / 1e7,
            "context switches per second": (after[1] - switches) / seconds,
        }
        traced = system_calls(pid, seconds, desktop.folder)
        if traced:
            figures |= {"system calls per second": traced[0], "messages to the X server": traced[1]}
        return figures


def measure_working(command, desktop, seconds, servers):
    """One session of the home works. Of the program, and of those who show what it draws."""
    with running(desktop, *command) as pid:
        settled(pid)
        pids = {"program": pid} | servers
        before = {name: spent(each) for name, each in pids.items()}
        time.sleep(seconds)
        after = {name: spent(each) for name, each in pids.items()}
        figures = {f"{name}, % of a core": (after[name][0] - before[name][0]) / seconds / 1e7 for name in pids}
        figures["all of them, % of a core"] = sum(figures.values())
        figures["program, context switches/s"] = (after["program"][1] - before["program"][1]) / seconds
        return figures


def measure_card(command, desktop, times):
    """Milliseconds of the main thread, from the click until nothing moves any more."""
    with running(desktop, *command) as pid:
        settled(pid)
        main = pathlib.Path(f"/proc/{pid}/task/{pid}/schedstat")
        figures = {"card opens, ms": [], "card closes, ms": []}
        for _ in range(times + 1):
            for costs in figures.values():
                start = int(main.read_text().split()[0])
                desktop.click(SCREEN[0] - RING_ACROSS, SCREEN[1] // 2)
                time.sleep(0.5)
                costs.append((int(main.read_text().split()[0]) - start) / 1e6)
        return {name: statistics.median(costs[1:]) for name, costs in figures.items()}


def medians(runs):
    return {name: statistics.median(run[name] for run in runs) for name in runs[0]}


def compare_moving(desktop, home, programs, seconds):
    """Both programs by turns, three times."""
    servers = {"X server": desktop.services[0].pid, "compositor": desktop.start_compositor().pid}
    commands = [[str(program), "--home", str(home.path)] for program in programs]
    cards = [[measure_card(command, desktop, 10) for command in commands] for _ in range(3)]
    table(f"{SESSIONS} sessions, medians", *map(medians, zip(*cards)), names=("nubble", "before"))
    busy = desktop.start("sleep", "100000")
    home.record(busy.pid, status="busy")
    work = [[measure_working(command, desktop, seconds, servers) for command in commands] for _ in range(3)]
    table(f"a session works, {seconds} s", *map(medians, zip(*work)), names=("nubble", "before"))


def table(title, figures, other, names=("nubble", "bare")):
    print(f"{title:32}{names[0]:>10}{names[1]:>10}{'ratio':>8}")
    for name, value in figures.items():
        ratio = f"{value / other[name]:8.2f}" if other.get(name) else " " * 7 + "-"
        print(f"{name:32}{value:10.3f}{other.get(name, 0):10.3f}{ratio}")


def main():
    parser = argparse.ArgumentParser(description="Measures the program beside a bare window.")
    parser.add_argument("build", type=pathlib.Path)
    parser.add_argument("--seconds", type=int, default=60, help="of idling (default 60)")
    parser.add_argument("--starts", type=int, default=11, help="of each program (default 11)")
    parser.add_argument("--before", type=pathlib.Path, help="an earlier program, to be measured beside this one")
    options = parser.parse_args()
    bare = [next(str(path) for path in options.build.rglob("nubble_bench_bare_window") if path.is_file())]
    desktop = Desktop()
    try:
        home = add_idle_sessions(desktop)
        program = options.build.resolve() / "nubble"
        if options.before:
            compare_moving(desktop, home, (program, options.before.resolve()), options.seconds)
            return
        nubble = [str(program), "--home", str(home.path)]
        times = [
            (first_frame(nubble, desktop), first_frame(bare, desktop)) for _ in range(options.starts + 1)]
        own, others = map(statistics.median, zip(*times[1:]))  # the first fills caches
        name = "exec to first frame, ms"
        table(f"{options.starts} starts, median", {name: own}, {name: others})
        idle = [measure_idle(command, desktop, options.seconds) for command in (nubble, bare)]
        table(f"idle for {options.seconds} s, {SESSIONS} sessions", *idle)
    finally:
        desktop.close()


if __name__ == "__main__":
    main()
