# SPDX-License-Identifier: MIT
"""What the library promises, and the programs that try each promise."""
import dataclasses
import pathlib

from driver import memcheck, tasks

ROOT = pathlib.Path(__file__).resolve().parents[3]
BUILD = ROOT / "build"
# A check that takes longer than this hangs.
COMMIT_LIMIT_SECONDS = 1800
NIGHT_LIMIT_SECONDS = 4 * 3600

# Their shares of the executions, so that none takes more than twice as long as another.
FUZZERS = {
    "fuzz_result": (0.05, 1024),
    "fuzz_result_messages": (0.015, 512),
    "fuzz_response": (0.50, 512),
    "fuzz_utf16": (0.435, 64),
}
FUZZER_OPTIONS = (
    "-entropic=0",  # choosing inputs would take longer than running them
    "-rss_limit_mb=2048",
    "-malloc_limit_mb=256",
    "-timeout=20",
    "-print_final_stats=1",
    "-verbosity=1",
)
# A second of the model, when only the time is given.
SEQUENCES_PER_SECOND = 600


@dataclasses.dataclass(frozen=True)
class Tier:
    """How much to do: the counts of a commit or of a night, or what fits into a time."""

    name: str
    counts: dict
    seed: int
    seconds: dict = dataclasses.field(default_factory=dict)  # promise -> of one lane

    @property
    def night(self):
        return self.name == "night"

    @property
    def limit(self):
        if self.seconds:
            return 0  # as long as the user said
        return NIGHT_LIMIT_SECONDS if self.night else COMMIT_LIMIT_SECONDS

    def asked(self, promise, unit):
        if promise in self.seconds:
            return f"{self.seconds[promise]} s"
        return f"{self.counts[promise]:,} {unit}"


# Those that can go on for ever, by the number of their promise.
COMMIT_COUNTS = {
    1: 5_000_000, 2: 50_000, 5: 34_000, 6: 10_000, 7: 200, 8: 100_000, 12: 50,
}  # fmt: skip
NIGHT_COUNTS = {
    1: 100_000_000, 2: 2_000_000, 5: 300_000, 6: 1_000_000, 7: 20_000, 8: 10_000_000,
    12: 300,
}  # fmt: skip
# Their shares of a time that the user gives.
WEIGHTS = {1: 8, 2: 4, 5: 3, 6: 3, 7: 2, 8: 2, 12: 4}
WIDE = {7, 12}
# What the others take of the two lanes, in seconds, at a commit and by night.
FIXED_SECONDS = {"commit": 250, "night": 1100}


@dataclasses.dataclass(frozen=True)
class Promise:
    number: int
    text: str
    builds: tuple  # (preset, target) pairs
    asked: object  # Tier -> str
    tasks: object  # Tier -> [Task]
    summary: object  # [Reached] -> str
    # What looks at each source, or compiles it, and keeps the result: until it has been
    # done, the first time takes minutes.
    prepare: tuple = ()


def of_run(promise, preset, folder, wide=False, items_per_count=1):
    """One program of ours that counts."""

    def make(tier):
        count = tier.counts[promise]
        command = [program(preset, folder), "--count", count, "--seed", tier.seed]
        if promise in tier.seconds:
            command += ["--seconds", tier.seconds[promise]]
        least = 0 if promise in tier.seconds else count * items_per_count
        return [
            tasks.Task(
                f"{promise}-{folder}", tuple(command), tasks.read_run,
                wide=wide, least=least, limit=tier.limit,
            )
        ]  # fmt: skip

    return make


def program(preset, folder, name=None):
    return BUILD / preset / "tests" / "torture" / folder / (name or f"torture_{folder}")


def only_text(all_reached):
    return "; ".join(reached.text for reached in all_reached)


def sum_of(unit):
    return lambda all_reached: f"{sum(one.done for one in all_reached):,} {unit}"


def fuzz(tier):
    found = []
    for name, (share, longest) in FUZZERS.items():
        kept = BUILD / "torture" / "corpus" / name
        kept.mkdir(parents=True, exist_ok=True)
        runs = int(tier.counts[1] * share)
        command = [program("fuzz", "fuzz", name), f"-seed={tier.seed}"]
        command += [f"-max_len={longest}", *FUZZER_OPTIONS]
        if 1 in tier.seconds:
            command.append(f"-max_total_time={max(1, tier.seconds[1] // len(FUZZERS))}")
        else:
            command.append(f"-runs={runs}")
        command.append(f"-artifact_prefix={BUILD}/torture/{name}-")
        committed = ROOT / "tests" / "torture" / "fuzz" / "corpus" / name
        command += [kept] + ([committed] if committed.exists() else [])
        found.append(
            tasks.Task(
                f"1-{name}", tuple(command), tasks.read_fuzzer,
                least=0 if 1 in tier.seconds else runs, limit=tier.limit,
            )
        )  # fmt: skip
    return found


def model(tier):
    total = tier.counts[2]
    if 2 in tier.seconds:
        total = tier.seconds[2] * SEQUENCES_PER_SECOND
    # AddressSanitizer sees more in four times the time.
    sanitized = total // 4 if tier.night else total
    return [
        tasks.Task(
            f"2-array_model-{build}",
            (BUILD / build / "tests" / "client" / "model" / "array_model",),
            tasks.read_model,
            environment={
                "ORB_MODEL_SEED": str(seed), "ORB_MODEL_SEQUENCES": str(sequences),
            },
            least=sequences,
            limit=tier.limit,
        )
        for build, seed, sequences in (
            ("asan", tier.seed, sanitized),
            ("torture", tier.seed + sanitized, total - sanitized),
        )
        if sequences
    ]  # fmt: skip


def allocations(tier):
    names = ["allocations", "allocations_tls"] if tier.night else ["allocations"]
    return [
        tasks.Task(
            f"3-{name}", (program("torture", "allocations", f"torture_{name}"),),
            tasks.read_run, least=1, limit=tier.limit,
        )
        for name in names
    ]  # fmt: skip


def syscalls(tier):
    # Eight ways of calling, each with an error and with one byte; by night all errors.
    count = 8 * (9 if tier.night else 2)
    command = (program("asan", "syscalls"), "--count", count)
    return [
        tasks.Task("4-syscalls", command, tasks.read_run, limit=tier.limit, least=count)
    ]


def ceilings(tier):
    return [
        tasks.Task(
            f"10-{name}", (program("torture", "ceilings", name),),
            tasks.read_run, least=1, limit=tier.limit,
        )
        for name in ("ceilings_memory", "ceilings_stack")
    ]  # fmt: skip


def script(promise, tier, name, *arguments, least=1):
    command = (ROOT / "scripts" / name, *arguments)
    return tasks.Task(
        f"{promise}-{name}", command, tasks.read_run,
        wide=True, least=least, limit=tier.limit,
    )  # fmt: skip


def mutation(tier):
    count = tier.counts[12]
    arguments = ["--count", count, "--seed", tier.seed]
    if 12 in tier.seconds:
        arguments += ["--seconds", tier.seconds[12]]
    least = 1 if 12 in tier.seconds else count
    return [script(12, tier, "mutate", *arguments, least=least)]


PROMISES = [
    Promise(
        1,
        "Fuzzing of replies, of header lines and of UTF-16: nothing is found",
        (("fuzz", "fuzzers"),),
        lambda tier: tier.asked(1, "executions"),
        fuzz,
        sum_of("executions"),
    ),
    Promise(
        2,
        "Random sequences of calls do what the model does",
        (("asan", "array_model"), ("torture", "array_model")),
        lambda tier: tier.asked(2, "sequences"),
        model,
        sum_of("sequences"),
    ),
    Promise(
        3,
        "Every allocation fails, once and from there on; calls keep to the header",
        (("torture", "tests/torture/allocations/all"),),
        lambda tier: "HTTP and TLS, all k" if tier.night else "HTTP, all k",
        allocations,
        only_text,
    ),
    Promise(
        4,
        "Every system call of a call fails or is short",
        (("asan", "tests/torture/syscalls/all"),),
        lambda tier: f"{8 if tier.night else 1} errno each, and one byte",
        syscalls,
        only_text,
    ),
    Promise(
        5,
        "Replies of every shape are cut, dripped and damaged",
        (("asan", "torture_replies"),),
        lambda tier: tier.asked(5, "replies"),
        of_run(5, "asan", "replies"),
        only_text,
    ),
    Promise(
        6,
        "Calls through a proxy that delays, cuts and resets",
        (("asan", "torture_proxy"),),
        lambda tier: tier.asked(6, "calls"),
        of_run(6, "asan", "proxy"),
        only_text,
    ),
    Promise(
        7,
        "64 threads share what may be shared, under ThreadSanitizer",
        (("tsan", "torture_threads"),),
        lambda tier: tier.asked(7, "calls per thread"),
        of_run(7, "tsan", "threads", wide=True, items_per_count=64),
        only_text,
    ),
    Promise(
        8,
        "Memory, descriptors and blocks stay what they are over many calls",
        (("torture", "torture_soak"),),
        lambda tier: tier.asked(8, "calls"),
        of_run(8, "torture", "soak"),
        only_text,
    ),
    Promise(
        9,
        "Valgrind finds no error and no lost byte in the client tests",
        (("torture", "tests/client/all"),),
        lambda tier: "all client tests" if tier.night else "a subset",
        lambda tier: memcheck.tasks_of(BUILD / "torture", tier),
        lambda every: f"{len(every)} programs, {sum(one.done for one in every):,} tests",
    ),
    Promise(
        10,
        "Peak memory per byte received, and 128 KiB of stack, are enough for any reply",
        (("torture", "tests/torture/ceilings/all"),),
        lambda tier: "all shapes",
        ceilings,
        only_text,
    ),
    Promise(
        11,
        "Tests reach all functions and lines and 98 % of the branches",
        (("coverage", "all"),),
        lambda tier: "all tests",
        lambda tier: [script(11, tier, "coverage")],
        only_text,
    ),
    Promise(
        12,
        "Of one-token changes, 95 % turn a test red",
        (),
        lambda tier: tier.asked(12, "mutants"),
        mutation,
        only_text,
        prepare=(ROOT / "scripts" / "mutate", "--prepare"),
    ),
    Promise(
        13,
        "Two compilers, clang-tidy and cppcheck have nothing to say; hardened, tests pass",
        (("clang", "all"), ("torture", "all")),
        lambda tier: "all sources",
        lambda tier: [script(13, tier, "check-static")],
        only_text,
        prepare=(ROOT / "scripts" / "lib" / "tidy.py",),
    ),
]


def timed(minutes, chosen, seed):
    """A tier that fills the given time with what can go on for ever."""
    basis = "night" if minutes >= 60 else "commit"
    fixed = FIXED_SECONDS[basis] if any(one not in WEIGHTS for one in chosen) else 0
    lanes_seconds = max(0, minutes * 60 * 2 - fixed)
    growing = {one: WEIGHTS[one] for one in chosen if one in WEIGHTS}
    seconds = {}
    for one, weight in growing.items():
        share = lanes_seconds * weight / sum(growing.values())
        alone = share / 2 if one in WIDE else share
        seconds[one] = int(min(minutes * 60, max(10, alone)))
    # Each call through the proxy has a place in a log that is made at once.
    endless = {one: 10**12 for one in NIGHT_COUNTS} | {6: 10**7}
    return Tier(basis, endless, seed, seconds)
