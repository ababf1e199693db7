#!/usr/bin/env python3
"""Plants each fault of scripts/mutants.txt, one at a time, and checks that
the release suite catches it.

A fault names a file, a text that occurs exactly once in it (a whole line or
part of one) and its replacement, so it keeps applying while other lines
change. A line '= TARGET...' names the test executables most likely to
catch the faults that follow it. For each fault: replace, build and run
only those, and only when they pass rebuild the release preset and run the
whole suite until the first failure; restore the file. A fault whose build
fails counts as caught. Exits 1 if a fault survived or no longer applies,
2 if the unchanged tree does not build or pass.

Usage: scripts/mutants.py [NAME_SUBSTRING...]   (default: every fault)
"""
import os
import signal
import subprocess
import sys
import time

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
LIST = os.path.join(ROOT, "scripts", "mutants.txt")
BUILD = os.path.join(ROOT, "build", "release")
CTEST = ["nice", "ctest", "--preset", "release", "-j2", "--stop-on-failure",
         "--timeout", "300"]
# The install test and the check of the recorded libc++ orders against
# libc++ test no code of ours; the suite runs without them. The slow tests
# run last, only when the rest passed.
SKIP = "^install|LibcxxStillSortsAsRecorded"
SLOW = "^Memcheck|PreviewAtTheSizeLimit"


def parse(path):
    """Blocks of '[name] file', '- original', '+ replacement'."""
    faults, current, hint = [], None, []
    with open(path) as f:
        for number, line in enumerate(f, 1):
            line = line.rstrip("\n")
            if not line.strip() or line.startswith("#"):
                continue
            if line.startswith("["):
                name, _, file = line[1:].partition("] ")
                current = {"name": name, "file": file.strip(), "line": number,
                           "hint": hint}
                faults.append(current)
            elif line.startswith("= "):
                hint = line[2:].split()
            elif line[:2] in ("- ", "+ ") and current is not None:
                current["old" if line[0] == "-" else "new"] = line[2:]
            else:
                sys.exit(f"{path}:{number}: cannot read '{line}'")
    for fault in faults:
        if "old" not in fault or "new" not in fault:
            sys.exit(f"{path}:{fault['line']}: fault {fault['name']} lacks -/+")
    return faults


def run(command, log):
    with open(log, "ab") as out:
        return subprocess.call(command, cwd=ROOT, stdout=out,
                               stderr=subprocess.STDOUT) == 0


def executable(target):
    for folder, _, files in os.walk(BUILD):
        if target in files:
            return os.path.join(folder, target)
    sys.exit(f"no test executable {target} in {BUILD}")


def build_and_test(log, hint=()):
    build = ["nice", "cmake", "--build", "--preset", "release"]
    if hint and not run(build + ["--target", *hint], log):
        return "build"
    for target in hint:
        if not run(["nice", executable(target), "--gtest_brief=1"], log):
            return "hinted"
    if not run(build, log):
        return "build"
    if not run(CTEST + ["-E", f"{SKIP}|{SLOW}"], log):
        return "suite"
    return "pass" if run(CTEST + ["-R", SLOW], log) else "suite"


def try_fault(fault, log):
    path = os.path.join(ROOT, fault["file"])
    with open(path) as f:
        original = f.read()
    if original.count(fault["old"]) != 1:
        return "gone"
    with open(path, "w") as f:
        f.write(original.replace(fault["old"], fault["new"]))
    try:
        return build_and_test(log, fault["hint"])
    finally:
        with open(path, "w") as f:
            f.write(original)


def main():
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(130))
    faults = parse(LIST)
    wanted = sys.argv[1:]
    if wanted:
        faults = [f for f in faults if any(w in f["name"] for w in wanted)]
    log = os.path.join(ROOT, "build", "mutants.log")
    os.makedirs(os.path.dirname(log), exist_ok=True)
    open(log, "w").close()
    if not run(["cmake", "--preset", "release"], log) or \
            build_and_test(log) != "pass":
        print(f"the unchanged tree does not build or pass; see {log}")
        return 2
    survivors, gone, start = [], [], time.time()
    for fault in faults:
        began = time.time()
        outcome = try_fault(fault, log)
        print(f"{outcome:6} {time.time() - began:4.0f}s  {fault['name']}",
              flush=True)
        if outcome == "pass":
            survivors.append(fault["name"])
        elif outcome == "gone":
            gone.append(fault["name"])
    run(["nice", "cmake", "--build", "--preset", "release"], log)
    caught = len(faults) - len(survivors) - len(gone)
    print(f"{caught} of {len(faults)} faults caught in "
          f"{time.time() - start:.0f}s")
    for name in survivors:
        print(f"SURVIVED: {name}")
    for name in gone:
        print(f"NO LONGER APPLIES (text not found exactly once): {name}")
    return 1 if survivors or gone else 0


if __name__ == "__main__":
    sys.exit(main())
