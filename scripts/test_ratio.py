#!/usr/bin/env python3
"""Counts the lines of C, C++, Python and shell that git tracks in tests/
folders (tests/ and, for instance, gst/tests/) against the same languages
everywhere else, and prints both with their ratio. Data files are in none
of these languages, so they do not count. Extensionless files count when
their first line names a shell or Python."""
import os
import subprocess
import sys

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
SOURCE = (".c", ".h", ".cc", ".cpp", ".hpp", ".py", ".sh")


def is_source(path):
    if path.endswith(SOURCE):
        return True
    if os.path.splitext(path)[1]:
        return False
    with open(path, "rb") as f:
        first = f.readline()
    return first.startswith(b"#!") and any(
        word in first for word in (b"sh", b"python"))


def main():
    files = subprocess.run(["git", "ls-files", "-z"], cwd=ROOT, check=True,
                           capture_output=True).stdout.decode().split("\0")
    counts = {True: 0, False: 0}
    for path in filter(None, files):
        full = os.path.join(ROOT, path)
        if os.path.isfile(full) and is_source(full):
            with open(full, "rb") as f:
                counts["tests" in path.split("/")[:-1]] += sum(1 for _ in f)
    tests, rest = counts[True], counts[False]
    print(f"Test lines: {tests}; other lines: {rest}; "
          f"ratio {tests / max(rest, 1):.2f} (target 0.40 at most)")
    return 0


if __name__ == "__main__":
    sys.exit(main())
