# SPDX-License-Identifier: MIT
"""What the tests reach, by folder, from gcovr's JSON; fails below the goals."""
import collections
import json
import pathlib
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
GOALS = {"functions": 1.0, "lines": 1.0, "branches": 0.98}


class Count:
    def __init__(self):
        self.reached = self.all = 0

    def add(self, is_reached):
        self.reached += is_reached
        self.all += 1

    @property
    def share(self):
        return self.reached / self.all if self.all else 0.0

    def __str__(self):
        return f"{self.reached:5} of {self.all:5} {100 * self.share:5.1f} %"


def counts_of(file):
    """(what, line, whether it is reached) of all there is to reach."""
    # A template is one function, however many types it is made for.
    functions = collections.defaultdict(int)
    for function in file["functions"]:
        functions[function["lineno"]] += function["execution_count"]
    for line, executions in functions.items():
        yield "functions", line, executions > 0
    for line in file["lines"]:
        if line.get("gcovr/noncode"):
            continue
        yield "lines", line["line_number"], line["count"] > 0
        # Every call that may throw would count as a branch of its own. gcovr can leave
        # them out as well, but not those of inline functions that one file never calls.
        for branch in [one for one in line["branches"] if not one["throw"]]:
            yield "branches", line["line_number"], branch["count"] > 0


def text_at(name, line):
    return (ROOT / name).read_text().splitlines()[line - 1].strip()


def main():
    folders = collections.defaultdict(lambda: {what: Count() for what in GOALS})
    missing = collections.Counter()
    for file in json.loads(pathlib.Path(sys.argv[1]).read_text())["files"]:
        name = file["file"]
        for what, line, is_reached in counts_of(file):
            folders["src"][what].add(is_reached)
            folders["/".join(name.split("/")[:2])][what].add(is_reached)
            if not is_reached:
                missing[name, line, what] += 1
    for (name, line, what), times in sorted(missing.items()):
        print(f"{name}:{line}: {times} {what} not reached: {text_at(name, line)}")
    print(f"\n{'':12}", *(f"{what:>22}" for what in GOALS))
    for folder, counts in sorted(folders.items()):
        print(f"{folder:12}", *(f"{counts[what]!s:>22}" for what in GOALS))
    whole = folders["src"]
    below = [what for what, goal in GOALS.items() if whole[what].share < goal]
    for what in below:
        print(f"finding: {whole[what].share:.2%} of {what}, not {GOALS[what]:.0%}")
    shares = ", ".join(f"{whole[what].share:.1%} of {what}" for what in GOALS)
    print(f"reached: {shares}; {len(below)} findings")
    return 1 if below else 0


if __name__ == "__main__":
    sys.exit(main())
