# SPDX-License-Identifier: MIT
"""Instruction counts of fixed scenarios, under callgrind."""
import json
import pathlib
import re
import subprocess
import tempfile

ALLOWED_RISE = 0.05
KEPT = pathlib.Path(__file__).resolve().parent.parent / "instructions.json"


def count_one(program, scenario, folder):
    output = pathlib.Path(folder) / scenario
    subprocess.run(
        [
            "valgrind",
            "--quiet",
            "--tool=callgrind",
            "--instr-atstart=no",
            f"--callgrind-out-file={output}",
            program,
            scenario,
        ],
        check=True,
    )
    return int(re.search(r"^totals: (\d+)", output.read_text(), re.MULTILINE).group(1))


def count(build_dir):
    """Instructions by scenario."""
    program = str(build_dir / "bench" / "micro" / "bench_scenarios")
    names = subprocess.run([program], check=True, capture_output=True, text=True).stdout
    with tempfile.TemporaryDirectory() as folder:
        return {name: count_one(program, name, folder) for name in names.split()}


def kept():
    return json.loads(KEPT.read_text()) if KEPT.exists() else {}


def keep(counted):
    KEPT.write_text(json.dumps(counted, indent=2) + "\n")


def rises(counted, before):
    """The scenarios that grew too much, and those without a count to compare with."""
    return [
        name
        for name, count_now in counted.items()
        if name not in before or count_now > before[name] * (1 + ALLOWED_RISE)
    ]
