# SPDX-License-Identifier: MIT
"""What is measured, and what is hoped for."""
from dataclasses import dataclass


@dataclass(frozen=True)
class Contender:
    key: str  # bench_client_<key>
    title: str
    server: str  # bench_server_<server>
    colour: str


LIBRARY = "library"
BASE = "f1"
CONTENDERS = (
    Contender("f0", "F0 (bare TCP)", "ready", "#c4c4c4"),
    Contender("f1", "F1 (bare libcurl)", "ready", "#606060"),
    Contender("f1_kept", "F1, memory kept", "ready", "#8f8f8f"),
    Contender(LIBRARY, "this library", "ready", "#d1495b"),
    Contender("grpc", "gRPC", "grpc", "#0072b2"),
    Contender("capnp", "Cap'n Proto", "capnp", "#009e73"),
    Contender("thrift", "Thrift", "thrift", "#e69f00"),
    Contender("json", "JSON over HTTP", "json", "#9467bd"),
)
QUICK_CONTENDERS = (BASE, LIBRARY, "grpc")

# The floors read bytes, the others arrays: each agrees with its likes only.
FLOORS = ("f0", "f1", "f1_kept")


@dataclass(frozen=True)
class Subject:
    """One workload under one condition."""

    workload: str
    title: str
    threads: int = 1
    one_core: bool = False

    @property
    def key(self):
        condition = f"-{self.threads}-contexts" if self.threads > 1 else ""
        return self.workload + condition + ("-one-core" if self.one_core else "")


SCALAR = Subject("double-1x1", "1×1 double")
SCALAR_ONE_CORE = Subject("double-1x1", "1×1 double, one core", one_core=True)
DOUBLE_100 = Subject("double-100x100", "doubles 100×100")
DOUBLE_1000 = Subject("double-1000x1000", "doubles 1000×1000")
DOUBLE_2500 = Subject("double-2500x2500", "doubles 2500×2500")
UINT16 = Subject("uint16-2000x2000", "uint16 2000×2000")
CHAR = Subject("char-1x1000000", "char 1,000,000")
CELLS = Subject("cell-100000x1", "100,000 cells")
STRUCT = Subject("struct-10000x10", "struct 10,000×10")

WORKLOADS = (
    SCALAR,
    SCALAR_ONE_CORE,
    DOUBLE_100,
    DOUBLE_1000,
    DOUBLE_2500,
    UINT16,
    CHAR,
    CELLS,
    STRUCT,
    Subject("first-1000x1000", "8 MB in, a scalar out"),
    Subject("complex-500x1000", "complex 500×1000"),
    Subject("sparse-10000x10000", "sparse, 500,000 stored"),
)

@dataclass(frozen=True)
class Growth:
    """How the cost grows with one quantity."""

    name: str
    title: str
    subtitle: str
    metric: str
    points: tuple[tuple[int, str, Subject], ...]  # quantity, label, what is measured


def double_point(m, n, label):
    return 8 * m * n, label, Subject(f"double-{m}x{n}", f"doubles {m}×{n}")


def cell_point(count):
    return count, f"{count:,}", Subject(f"cell-{count}x1", f"{count:,} cells")


def context_point(count):
    return count, str(count), Subject("double-100x100", f"{count} contexts", count)


GROWTHS = (
    Growth(
        "growth-doubles",
        "Doubles: client CPU per call",
        "By the bytes of the matrix; lower is better",
        "cpu_ns",
        (
            double_point(1, 1, "8 B"),
            double_point(10, 1, "80 B"),
            double_point(100, 1, "800 B"),
            double_point(10, 100, "8 kB"),
            double_point(100, 100, "80 kB"),
            double_point(100, 1000, "800 kB"),
            double_point(1000, 1000, "8 MB"),
            double_point(2500, 2500, "50 MB"),
        ),
    ),
    Growth(
        "growth-cells",
        "Cells: client CPU per call",
        "By the number of cells, each a 1×1 double; lower is better",
        "cpu_ns",
        tuple(cell_point(10**power) for power in range(6)),
    ),
    Growth(
        "growth-contexts",
        "Contexts: calls per second, doubles 100×100",
        "By the number of contexts, each on a thread of its own; higher is better",
        "calls_per_second",
        tuple(context_point(2**power) for power in range(7)),
    ),
)

# Each subject has twice the cells, or twice the fields, of the one before it. They take
# turns with each other.
DOUBLINGS = (
    tuple(cell_point(count)[2] for count in (12500, 25000, 50000, 100000)),
    tuple(
        Subject(f"struct-10000x{fields}", f"10,000×{fields} struct")
        for fields in (5, 10, 20)
    ),
)


@dataclass(frozen=True)
class Goal:
    """The library's client CPU per call as a ratio, and the memory that a call adds."""

    subject: Subject
    to_f1: float
    to_grpc: float | None = None
    grpc_subject: Subject | None = None  # where another condition counts
    f1_aim: float | None = None
    grpc_aim: float | None = None
    payloads: float | None = None
    megabytes: float | None = None
    megabytes_aim: float | None = None


GOALS = (
    Goal(SCALAR, 1.10, 0.5, grpc_subject=SCALAR_ONE_CORE),
    Goal(DOUBLE_100, 1.1, 0.7),
    Goal(DOUBLE_1000, 1.25, 0.85, payloads=2),
    Goal(DOUBLE_2500, 1.0, 0.65, payloads=2),
    Goal(UINT16, 2.5, 0.4, payloads=3),
    Goal(CHAR, 2.2),
    Goal(CELLS, 16, 0.6, f1_aim=3.5, grpc_aim=0.15, megabytes=50, megabytes_aim=12),
    Goal(STRUCT, 16, 0.6, f1_aim=3.5, grpc_aim=0.15, megabytes=50, megabytes_aim=12),
)


@dataclass(frozen=True)
class Effort:
    """How long to measure one contender with one subject."""

    rounds: int
    round_sec: float = 0.1
    budget_sec: float = 6.0
    fewest_rounds: int = 3


WORKLOAD_EFFORT = Effort(rounds=21)
GROWTH_EFFORT = Effort(rounds=9)
DOUBLING_EFFORT = Effort(rounds=31)
QUICK_EFFORT = Effort(rounds=15)
