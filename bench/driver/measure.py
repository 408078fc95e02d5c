# SPDX-License-Identifier: MIT
"""Runs client and server programs and collects what the clients measure."""
import contextlib
import json
import os
import subprocess

from driver import plan

MEMORY_CALLS = 3
MOST_CALLS = 5000  # in a round


class Program:
    """A program that answers lines with lines and ends with its standard input."""

    def __init__(self, argv, one_core):
        self._argv = argv
        core = {min(os.sched_getaffinity(0))}
        self._process = subprocess.Popen(
            argv,
            stdin=subprocess.PIPE,
            stdout=subprocess.PIPE,
            text=True,
            preexec_fn=(lambda: os.sched_setaffinity(0, core)) if one_core else None,
        )

    def __enter__(self):
        return self

    def __exit__(self, *_):
        # A program that failed has closed its end.
        with contextlib.suppress(BrokenPipeError):
            self._process.stdin.close()
        self._process.wait()

    def read(self):
        line = self._process.stdout.readline()
        if not line:
            raise RuntimeError(f"{' '.join(self._argv)} ended before its answer")
        return line

    def ask(self, command):
        self._process.stdin.write(command + "\n")
        self._process.stdin.flush()
        return json.loads(self.read())


class Runner:
    """One contender with one subject."""

    def __init__(self, client, subject, effort):
        self._client = client
        self._subject = subject
        self._effort = effort
        self.payload_bytes = json.loads(client.read())["payload_bytes"]
        self.peak_added_bytes = client.ask(f"memory {MEMORY_CALLS}")["peak_added_bytes"]
        self.rounds = {"call": [], "read": []}
        self._calls = {}
        self._most_rounds = {}

    def calibrate(self, mode):
        # A tiny call is not timed well alone; a slow one is not made in vain.
        time_sec = self._client.ask(f"{mode} 3")["time_ns"] / 1e9
        calls = max(1, min(MOST_CALLS, int(self._effort.round_sec / time_sec)))
        self._calls[mode] = max(1, calls // self._subject.threads)
        affordable = int(self._effort.budget_sec / (time_sec * calls))
        self._most_rounds[mode] = max(
            self._effort.fewest_rounds, min(self._effort.rounds, affordable)
        )

    def run_round(self, mode):
        if len(self.rounds[mode]) < self._most_rounds[mode]:
            self.rounds[mode].append(self._client.ask(f"{mode} {self._calls[mode]}"))


def check_answers(subject, runners):
    """What contenders read from the same answer must be the same."""
    for likes in (plan.FLOORS, set(runners) - set(plan.FLOORS)):
        sums = {
            key: runner.rounds["read"][0]["checksum"]
            for key, runner in runners.items()
            if key in likes
        }
        if len(set(sums.values())) > 1:
            raise RuntimeError(f"{subject.title}: contenders read different data: {sums}")


class Bench:
    """The programs of one build."""

    def __init__(self, build_dir):
        self._programs = build_dir / "bench"

    def contenders(self):
        """Those whose packages were there when the build was configured."""
        return [
            contender
            for contender in plan.CONTENDERS
            if (self._programs / f"bench_client_{contender.key}").exists()
        ]

    def measure(self, subject, contenders, effort, modes):
        """Gives a Runner per contender, by key. Contenders take turns round by round, so
        that whatever else the machine does falls on all of them."""
        with contextlib.ExitStack() as programs:
            ports = {
                server: self._serve(server, subject.one_core, programs)
                for server in {contender.server for contender in contenders}
            }
            runners = {}
            for contender in contenders:
                port = ports[contender.server]
                client = self._start(contender, subject, port, programs)
                runners[contender.key] = Runner(client, subject, effort)
            for mode in modes:
                take_turns(list(runners.values()), mode, effort.rounds)
            if "read" in modes:
                check_answers(subject, runners)
            return runners

    def measure_series(self, subjects, contenders, effort):
        """Gives the Runners of all subjects per contender, by key. All take turns round
        by round."""
        with contextlib.ExitStack() as programs:
            series = {}
            for contender in contenders:
                ports = self._serve(contender.server, False, programs)
                series[contender.key] = [
                    Runner(self._start(contender, one, ports, programs), one, effort)
                    for one in subjects
                ]
            runners = [runner for one in series.values() for runner in one]
            take_turns(runners, "call", effort.rounds)
            return series

    def _serve(self, server, one_core, programs):
        """Starts a server and gives its ports."""
        argv = [str(self._programs / f"bench_server_{server}")]
        return programs.enter_context(Program(argv, one_core)).read().split()

    def _start(self, contender, subject, ports, programs):
        argv = [
            str(self._programs / f"bench_client_{contender.key}"),
            subject.workload,
            str(subject.threads),
            *ports,
        ]
        return programs.enter_context(Program(argv, subject.one_core))


def take_turns(runners, mode, rounds):
    for runner in runners:
        runner.calibrate(mode)
    for turn in range(rounds):
        first = turn % len(runners)
        for runner in runners[first:] + runners[:first]:
            runner.run_round(mode)
