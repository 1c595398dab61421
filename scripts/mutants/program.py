# SPDX-License-Identifier: Apache-2.0
"""Runs a test program of GoogleTest's, and ends it when it hangs."""
import ctypes
import dataclasses
import os
import re
import resource
import shutil
import signal
import subprocess
import time
from pathlib import Path

MOST_MEMORY = 16 << 30  # some tests hold texts of gigabytes


@dataclasses.dataclass
class Run:
    failed: str  # the test that failed, and how; nothing if all passed
    seconds: dict  # how long each test took that passed


def adopt_orphans():
    """What a test's children leave running becomes a child of this process, which can then end it."""
    PR_SET_CHILD_SUBREAPER = 36
    ctypes.CDLL(None, use_errno=True).prctl(PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0)


def end_children():
    own = Path(f"/proc/self/task/{os.getpid()}/children")
    for _ in range(100):
        for child in map(int, own.read_text().split()):
            os.kill(child, signal.SIGKILL)
            os.waitpid(child, 0)


def run(program, tests, usual, environment, scratch, limits_memory):
    """tests: names, or nothing for all. usual: how long each test takes, if it is known. A test that takes many times
    as long has failed."""
    shutil.rmtree(scratch, ignore_errors=True)
    (scratch / "home").mkdir(parents=True)
    environment = {**environment, "TMPDIR": str(scratch), "HOME": str(scratch / "home")}
    expected = sum(usual.get(t, 0) for t in tests) if tests else sum(usual.values())

    def limit():
        # The hard limit stays: tests look at what the program makes of it.
        resource.setrlimit(resource.RLIMIT_CORE, (0, resource.getrlimit(resource.RLIMIT_CORE)[1]))
        if usual:
            resource.setrlimit(resource.RLIMIT_CPU, (int(2 + 10 * expected), int(5 + 10 * expected)))
        if limits_memory:
            resource.setrlimit(resource.RLIMIT_AS, (MOST_MEMORY, MOST_MEMORY))

    # The first run goes on behind a failure, to find all tests that fail.
    command = [program] + (["--gtest_fail_fast"] if usual else [])
    command += ["--gtest_filter=" + ":".join(tests)] if tests else []
    output = scratch.parent / "output"
    with open(output, "wb") as sink:
        process = subprocess.Popen(command, cwd=scratch, env=environment, stdin=subprocess.DEVNULL, stdout=sink,
                                   stderr=sink, start_new_session=True, preexec_fn=limit)  # fmt: skip
    status, test, since = None, "", time.monotonic()
    while status is None:
        try:
            status = process.wait(timeout=0.5)
        except subprocess.TimeoutExpired:
            if (current := last_started(tail(output))) != test:
                test, since = current, time.monotonic()
            if usual and time.monotonic() - since > 20 + 10 * usual.get(test, 0.5):
                process.kill()
                status = process.wait()
    end_children()
    text = tail(output)
    seconds = {name: int(ms) / 1000 for name, ms in re.findall(r"^\[       OK \] (\S+) \((\d+) ms\)", text, re.M)}
    if status == 0:
        return Run("", seconds)
    failed = re.search(r"^\[  FAILED  \] ([^\s,]+)", text, re.M)
    is_limit = status in (-signal.SIGKILL, -signal.SIGXCPU)
    how = "failed" if failed else "time limit" if is_limit else f"status {status}"
    return Run(f"{failed[1] if failed else last_started(text) or '?'} ({how})", seconds)


def last_started(text):
    return (re.findall(r"^\[ RUN      \] (\S+)", text, re.M) or [""])[-1]


def tail(file):
    with open(file, "rb") as source:
        source.seek(max(0, source.seek(0, os.SEEK_END) - 1000000))
        return source.read().decode(errors="replace")
