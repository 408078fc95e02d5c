# SPDX-License-Identifier: MIT
"""Programs that check a promise, and what their output says."""
import dataclasses
import os
import re
import signal
import subprocess
import threading
import time

TAIL_LINES = 15
# Where a block was allocated is told in full by a replay; here it would take a tenth of
# the time.
ENVIRONMENT = {"ASAN_OPTIONS": "malloc_context_size=2"}


@dataclasses.dataclass
class Reached:
    """What one program has done: how many items, in its own words, and what it found."""

    done: int
    text: str
    findings: list


@dataclasses.dataclass(frozen=True)
class Task:
    """One program to run. A wide one keeps all cores busy and is run alone."""

    name: str
    command: tuple
    read: object  # (output, exit code) -> Reached
    environment: dict = dataclasses.field(default_factory=dict)
    wide: bool = False
    least: int = 0  # fewer items than these are a finding
    limit: int = 0  # seconds after which it hangs


@dataclasses.dataclass
class Outcome:
    task: Task
    reached: Reached
    seconds: float


def number(text):
    return int(text.replace(",", ""))


def tail(output):
    return "\n".join(output.splitlines()[-TAIL_LINES:])


def read_run(output, code):
    """Programs of ours: `finding:`, `replay:` and at last `reached: ...; 0 findings`."""
    findings = re.findall(r"^finding: .*(?:\nreplay: .*)?", output, re.MULTILINE)
    last = re.findall(r"^reached: (.*); [\d,]+ findings?$", output, re.MULTILINE)
    if not last:
        # One that crashes says before it dies how to see it again.
        findings.append(f"finding: ended early, exit code {code}\n{tail(output)}")
        return Reached(0, "ended early", findings)
    if code != 0 and not findings:
        findings.append(f"finding: exit code {code}\n{tail(output)}")
    first = re.search(r"[\d,]*\d", last[-1])
    return Reached(number(first.group()) if first else 0, last[-1], findings)


def read_fuzzer(output, code):
    executions = re.findall(r"^stat::number_of_executed_units: (\d+)", output, re.MULTILINE)
    done = int(executions[-1]) if executions else 0
    findings = []
    if code != 0:
        program = re.findall(r"^running: (\S+)", output, re.MULTILINE)
        written = r"^artifact_prefix.*Test unit written to (\S+)"
        inputs = re.findall(written, output, re.MULTILINE)
        summary = re.findall(r"^SUMMARY: (.*)", output, re.MULTILINE)
        what = summary[-1] if summary else tail(output)
        replays = [f"replay: {program[0]} {name}" for name in inputs]
        findings = ["\n".join([f"finding: {what}", *replays])]
    return Reached(done, f"{done:,} executions", findings)


def read_tests(output, code):
    """GoogleTest, with or without valgrind around it."""
    passed = re.findall(r"^\[  PASSED  \] (\d+) tests?", output, re.MULTILINE)
    done = sum(map(int, passed))
    findings = [] if code == 0 else [f"finding: exit code {code}\n{tail(output)}"]
    return Reached(done, f"{done:,} tests", findings)


def read_model(output, code):
    sequences = re.search(r"^sequences: (\d+)", output, re.MULTILINE)
    reached = read_tests(output, code)
    seed = re.search(r"ORB_MODEL_SEED=\d+(?= fails)", output)
    program = re.search(r"^running: (\S+)", output, re.MULTILINE)
    if seed:
        replay = f"replay: ORB_MODEL_SEQUENCES=1 {seed.group()} {program.group(1)}"
        reached.findings[0] += f"\n{replay}"
    done = int(sequences.group(1)) if sequences else 0
    return Reached(done, f"{done:,} sequences", reached.findings)


class Runner:
    """Runs tasks, keeps their output, and shows findings when they are printed."""

    def __init__(self, folder):
        self._folder = folder
        self._lock = threading.Lock()
        self._processes = set()

    def say(self, text):
        with self._lock:
            print(text, flush=True)

    def prepare(self, name, command, limit):
        """Before the clock starts, minutes the first time; what is wrong will be seen by
        the task."""
        ready = Reached(0, "ready", [])
        self.run(Task(f"{name}-beforehand", command, lambda *_: ready, limit=limit))

    def run(self, task):
        self.say(f"  {task.name} ...")
        start = time.monotonic()
        process = subprocess.Popen(
            list(map(str, task.command)),
            env={**os.environ, **ENVIRONMENT, **task.environment},
            stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT,
            text=True,
            errors="replace",
            start_new_session=True,
        )
        self._processes.add(process)
        hung = threading.Event()
        watchdog = threading.Timer(task.limit, self._end, [process, hung])
        if task.limit:
            watchdog.start()
        output = self._collect(task, process)
        code = process.wait()
        watchdog.cancel()
        self._processes.discard(process)
        self._end(process)  # what it left behind
        reached = task.read(output, code)
        if hung.is_set():
            reached.findings = [
                f"finding: still running after {task.limit} s\n{tail(output)}"
            ]
        elif reached.done < task.least and not reached.findings:
            reached.findings.append(f"finding: {task.least:,} were asked for")
        outcome = Outcome(task, reached, time.monotonic() - start)
        found = f"; {len(reached.findings)} FINDINGS" if reached.findings else ""
        self.say(f"  {task.name}: {reached.text}, {outcome.seconds:.0f} s{found}")
        for finding in reached.findings:
            self.say(finding)
        return outcome

    def stop(self):
        for process in list(self._processes):
            self._end(process)

    def _collect(self, task, process):
        head = f"running: {' '.join(map(str, task.command))}\n"
        lines = [head]
        with open(self._folder / f"{task.name}.log", "w") as log:
            log.write(head)
            for line in process.stdout:
                log.write(line)
                lines.append(line)
        return "".join(lines)

    @staticmethod
    def _end(process, hung=None):
        if hung:
            hung.set()
        try:
            os.killpg(process.pid, signal.SIGKILL)
        except ProcessLookupError:
            pass
