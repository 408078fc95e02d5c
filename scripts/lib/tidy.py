#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""clang-tidy over our sources, two at a time; what was clean and has not changed is
skipped."""
import concurrent.futures
import hashlib
import json
import pathlib
import shlex
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
BUILD = ROOT / "build" / "clang"
CLEAN = BUILD / "tidy"
FOLDERS = ("src", "tools", "examples")
PROGRAM = "clang-tidy-14"


def own_sources():
    """The compiler's commands for each file: a test may compile one its own way."""
    found = {}
    for entry in json.loads((BUILD / "compile_commands.json").read_text()):
        path = pathlib.Path(entry["file"])
        if any(path.is_relative_to(ROOT / folder) for folder in FOLDERS):
            found.setdefault(path, []).append(entry)
    return found


def preprocessed(entry):
    """All that the compiler sees."""
    command = shlex.split(entry["command"])
    # A launcher keeps what it has seen before, which preprocessing has no use for.
    command = [word for word in command if not word.endswith("ccache")]
    command[command.index("-o") + 1] = "-"
    command[command.index("-c")] = "-E"
    return subprocess.run(
        command, cwd=entry["directory"], check=True, stdout=subprocess.PIPE
    ).stdout


def findings_in(path, entries):
    seen = hashlib.sha256((ROOT / ".clang-tidy").read_bytes())
    for entry in entries:
        seen.update(preprocessed(entry))
    stamp = CLEAN / seen.hexdigest()
    if stamp.exists():
        return ""
    result = subprocess.run(
        [PROGRAM, "--quiet", "-p", BUILD, path], capture_output=True, text=True
    )
    if result.returncode == 0:
        stamp.touch()
        return ""
    return result.stdout or result.stderr


def main():
    CLEAN.mkdir(exist_ok=True)
    sources = own_sources()
    with concurrent.futures.ThreadPoolExecutor(2) as pool:
        results = list(pool.map(findings_in, sources, sources.values()))
    for path, text in zip(sources, results):
        if text:
            name = path.relative_to(ROOT)
            print(f"finding: {PROGRAM} on {name}\nreplay: {PROGRAM} -p build/clang {name}")
            print(text)
    print(f"{len(sources)} files by {PROGRAM}")
    return 1 if any(results) else 0


if __name__ == "__main__":
    sys.exit(main())
