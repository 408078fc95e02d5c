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

# The floors read bytes, the others arrays: what they add up agrees among their likes only.
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

DOUBLE_GROWTH = (
    SCALAR,
    Subject("double-10x1", "80 B"),
    Subject("double-100x1", "800 B"),
    Subject("double-10x100", "8 kB"),
    DOUBLE_100,
    Subject("double-100x1000", "800 kB"),
    DOUBLE_1000,
    DOUBLE_2500,
)
CELL_GROWTH = tuple(
    Subject(f"cell-{count}x1", f"{count:,} cells") for count in (1, 10, 100, 1000, 10000)
) + (CELLS,)
CONTEXT_GROWTH = (DOUBLE_100,) + tuple(
    Subject(DOUBLE_100.workload, f"{threads} contexts", threads=threads)
    for threads in (2, 4, 8, 16, 32, 64)
)

# Each subject has twice the cells, or twice the fields, of the one before it.
DOUBLINGS = (
    tuple(
        Subject(f"cell-{count}x1", f"{count:,} cells") for count in (12500, 25000, 50000)
    )
    + (CELLS,),
    (
        Subject("struct-10000x5", "10,000×5"),
        STRUCT,
        Subject("struct-10000x20", "10,000×20"),
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
QUICK_EFFORT = Effort(rounds=15)
