#!/usr/bin/env python3
"""tembrakey trace on a large log: its memory must not grow with the log.

trace_large.py TOOL [MEGABYTES]: compares a log of MEGABYTES (40) with one of a tenth of it.
"""
import os
import re
import subprocess
import sys
import tempfile
import time

GROWTH_ALLOWED = 12 << 20  # bytes; what a page holds of a log is bounded, but not the same for both


def block(number):
    """About 100 KB of log: ten calls, one of them failed, and a long hex text."""
    lines = []

    def put(thread, level, function, message):
        second = f"2026-11-{1 + number // 86400:02} {number // 3600 % 24:02}:{number // 60 % 60:02}:{number % 60:02}"
        lines.append(f"{thread} {second} [{level}] [{function}] {message} \n")

    for call in range(10):
        thread = 4700 + call % 3
        name = "DeviceVerifyPwd" if call == 0 else "DeviceCipherUpdate"
        put(thread, "DEBUG", "call_stack_tracer::call_stack_tracer", f">>>>> {name}")
        if call == 0:
            put(thread, "INFO", name, "hDevice = 0x55, type = 1, pwd = 314159, *pretrynum = 0")
            put(thread, "ERROR", name, "SKF_VerifyPIN fail, error = 0x0A000006")
        else:
            size = 5000 if number % 50 else 500_000  # now and then longer than the reader's piece
            put(thread, "VERBOSE", name, f"in[length:{size}]: " + "5A" * size)
        put(thread, "DEBUG", "call_stack_tracer::~call_stack_tracer", f"<<<<< {name}")
    return "".join(lines).encode()


def write_log(path, megabytes):
    blocks = 0
    with open(path, "wb") as log:
        while log.tell() < megabytes << 20:
            log.write(block(blocks))
            blocks += 1
    return blocks


def peak_memory(process):
    """Of a running process; the usage that wait() tells would count this script's own, from before
    the tool took its place."""
    try:
        with open(f"/proc/{process}/status", encoding="ascii") as status:
            text = status.read()
    except OSError:
        return 0
    found = re.search(r"VmHWM:\s*(\d+) kB", text)
    if not found or "Name:\ttembrakey" not in text:
        return 0
    return int(found.group(1)) << 10


def run(tool, *arguments):
    """Runs the tool: what it printed, its peak memory in bytes and its seconds."""
    started = time.monotonic()
    environment = dict(os.environ, LC_ALL="C.UTF-8")
    # AddressSanitizer keeps freed memory back, which is not the tool's.
    environment["ASAN_OPTIONS"] = environment.get("ASAN_OPTIONS", "") + ":quarantine_size_mb=1"
    with tempfile.TemporaryFile() as printed:
        child = subprocess.Popen([tool, "trace", *arguments], stdout=printed, env=environment)
        peak = 0
        while child.poll() is None:
            peak = max(peak, peak_memory(child.pid))
            time.sleep(0.002)
        assert child.returncode == 0, f"{arguments} ended with {child.returncode}"
        printed.seek(0)
        text = printed.read(1 << 16).decode()
    return text, peak, time.monotonic() - started


def main():
    tool = sys.argv[1]
    megabytes = int(sys.argv[2]) if len(sys.argv) > 2 else 40
    with tempfile.TemporaryDirectory() as folder:
        small, large = f"{folder}/small.log", f"{folder}/large.log"
        write_log(small, megabytes // 10)
        blocks = write_log(large, megabytes)
        for name, *options in (("listing", "--level", "error"), ("redact", "--redact", "/dev/null"),
                               ("page", "--html", f"{folder}/page.html")):
            _, less, _ = run(tool, small, *options)
            text, more, seconds = run(tool, large, *options)
            print(f"{name}: {megabytes} MB in {seconds:.1f} s, {more >> 20} MB of memory; "
                  f"{megabytes // 10} MB: {less >> 20} MB")
            assert more - less < GROWTH_ALLOWED, f"memory grows with the log: {less} -> {more}"
            if name == "listing":
                calls = f"{blocks * 10:,}".replace(",", " ")
                assert f"{calls} calls on 3 threads" in text, text[:300]
            if name == "redact":
                masked = f"{blocks * 10:,}".replace(",", " ")
                assert re.search(rf"masked in {masked} lines", text), text


if __name__ == "__main__":
    main()
