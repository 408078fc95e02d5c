# SPDX-License-Identifier: MIT
"""A private copy of the tree in which mutants are built and tried."""
import concurrent.futures
import dataclasses
import filecmp
import json
import os
import pathlib
import shutil
import signal
import subprocess
import threading
import time

COPIED = [
    "CMakeLists.txt", "CMakePresets.json", "README.md", "cmake", "examples", "include",
    "proto", "src", "tests", "tools",
]  # fmt: skip
CONFIGURE = [
    "-DCMAKE_BUILD_TYPE=",
    "-DCMAKE_CXX_FLAGS=-O0 -g0",
    "-DCMAKE_EXE_LINKER_FLAGS=-fuse-ld=lld",
    "-DCMAKE_SHARED_LINKER_FLAGS=-fuse-ld=lld",
    "-DORB_BUILD_TESTS=ON",
]
LIBRARY = "qxorbclient"
# Programs that use the shared library see a mutant as soon as it is linked; the unit
# programs are linked for each mutant.
CLIENTS, UNITS = ("array_", "transport_"), ("unit_",)
WITHOUT_PROGRAM = {"array_exports"}
LINK_SECONDS = 2
# Enough sequences of random calls to notice most mutants.
ENVIRONMENT = {"ORB_MODEL_SEQUENCES": "300", "CCACHE_DISABLE": "1"}
# Which tests look at a folder most closely.
NEAREST = {
    "array": ("array_", "transport_re", "unit_"),
    "http": ("transport_", "unit_http"),
    "runtime": ("transport_", "unit_runtime", "unit_call", "unit_result"),
}
MEMORY_KIB = 8 << 20


@dataclasses.dataclass
class Outcome:
    """What became of a mutant."""

    text: str
    counts: bool = True
    survived: bool = False


def _mirror(source, target):
    """Copies what differs, so that the build sees no change where there is none."""
    if source.is_dir():
        target.mkdir(parents=True, exist_ok=True)
        names = {path.name for path in source.iterdir()} - {"__pycache__"}
        for path in target.iterdir():
            if path.name not in names:
                shutil.rmtree(path) if path.is_dir() else path.unlink()
        for name in names:
            _mirror(source / name, target / name)
    elif not target.exists() or not filecmp.cmp(source, target, shallow=False):
        target.parent.mkdir(parents=True, exist_ok=True)
        shutil.copy(source, target)


def _check(command, environment):
    process = subprocess.run(
        command,
        env={**os.environ, **environment},
        stdout=subprocess.PIPE,
        stderr=subprocess.STDOUT,
        text=True,
    )
    if process.returncode != 0:
        raise RuntimeError(f"{' '.join(map(str, command))}\n{process.stdout}")


def _is_green(command, seconds, environment):
    limited = ["bash", "-c", f'ulimit -v {MEMORY_KIB} -c 0; exec "$@"', "-", *command]
    process = subprocess.Popen(
        limited,
        env={**os.environ, **environment},
        stdin=subprocess.DEVNULL,
        stdout=subprocess.DEVNULL,
        stderr=subprocess.DEVNULL,
        start_new_session=True,
    )
    try:
        return process.wait(timeout=seconds) == 0
    except subprocess.TimeoutExpired:
        return False
    finally:
        # Also what it left running.
        try:
            os.killpg(process.pid, signal.SIGKILL)
        except ProcessLookupError:
            pass
        process.wait()


@dataclasses.dataclass
class Test:
    name: str
    command: list
    environment: dict

    def is_unit(self):
        return self.name.startswith(UNITS)


class History:
    """How long each test takes, and which mutants it has killed: kept between rounds."""

    def __init__(self, path):
        self._path = path
        self._kills = json.loads(path.read_text()) if path.exists() else {}
        self._lock = threading.Lock()
        self.seconds = {}

    def killed(self, mutant, test):
        key = f"{mutant.file} {test.name}"
        with self._lock:
            self._kills[key] = self._kills.get(key, 0) + 1
            self._path.write_text(json.dumps(self._kills, indent=1) + "\n")

    def rank(self, mutant, test):
        """Lower for what is more likely to kill the mutant, and sooner."""
        kills = self._kills.get(f"{mutant.file} {test.name}", 0)
        stem, folder = pathlib.Path(mutant.file).stem, pathlib.Path(mutant.file).parts[1]
        is_near = test.name.startswith(NEAREST[folder])
        seconds = self.seconds[test.name] + (LINK_SECONDS if test.is_unit() else 0)
        return -kills, stem not in test.name, not is_near, seconds


class Object:
    """An object file without mutants, which is put back instead of compiled again."""

    def __init__(self, path):
        self._path = path
        self._contents = path.read_bytes()
        self._time = path.stat().st_mtime_ns

    def is_changed(self):
        return self._is_touched() and self._path.read_bytes() != self._contents

    def put_back(self):
        if not self._is_touched():
            return
        # Later than what ninja noted when it compiled the mutant, it would not count.
        if self._path.exists():
            self._time = self._path.stat().st_mtime_ns
        self._path.write_bytes(self._contents)
        os.utime(self._path, ns=(self._time, self._time))

    def _is_touched(self):
        return not self._path.exists() or self._path.stat().st_mtime_ns != self._time


class Bench:
    """One copy of the tree with its build folder and its tests."""

    def __init__(self, root, folder, history):
        self._tree = folder / "tree"
        self._build = folder / "build"
        self._history = history
        for name in COPIED:
            _mirror(root / name, self._tree / name)
        # The second copy finds in the cache what the first one compiled.
        cached = {"CCACHE_BASEDIR": str(folder), "CCACHE_NOHASHDIR": "1"}
        configure = ["cmake", "-G", "Ninja", "-S", self._tree, "-B", self._build]
        if shutil.which("ccache"):
            configure.append("-DCMAKE_CXX_COMPILER_LAUNCHER=ccache")
        _check([*configure, *CONFIGURE], cached)
        names = {test["name"] for test in self._listed()} - WITHOUT_PROGRAM
        _check(["ninja", "-C", self._build, LIBRARY, *sorted(names)], cached)
        self.tests = [self._test(listed) for listed in self._listed()]
        self._objects = {path: Object(path) for path in self._build.rglob("*.cpp.o")}

    def _listed(self):
        command = ["ctest", "--test-dir", self._build, "--show-only=json-v1"]
        output = subprocess.run(command, check=True, capture_output=True).stdout
        tests = json.loads(output)["tests"]
        return [test for test in tests if test["name"].startswith(CLIENTS + UNITS)]

    @staticmethod
    def _test(listed):
        properties = {one["name"]: one["value"] for one in listed["properties"]}
        own = dict(line.split("=", 1) for line in properties.get("ENVIRONMENT", []))
        return Test(listed["name"], listed["command"], {**own, **ENVIRONMENT})

    def measure(self, tests):
        for test in tests:
            start = time.monotonic()
            if not _is_green(test.command, 120, test.environment):
                raise RuntimeError(f"{test.name} is red without any mutant")
            self._history.seconds[test.name] = time.monotonic() - start

    def judge(self, mutant):
        path = self._tree / mutant.file
        text, times = path.read_text(), path.stat()
        path.write_text(mutant.apply(text))
        linked = [self._build / "src" / f"lib{LIBRARY}.so"]
        try:
            if not self._builds(LIBRARY):
                return Outcome("does not compile", counts=False)
            if not any(self._objects[path].is_changed() for path in self._library()):
                return Outcome("same object", counts=False)
            return self._try(mutant, linked)
        finally:
            path.write_text(text)
            os.utime(path, ns=(times.st_atime_ns, times.st_mtime_ns))
            for one in self._objects.values():
                one.put_back()
            for program in linked:
                program.unlink(missing_ok=True)

    def _library(self):
        folder = self._build / "src" / "CMakeFiles" / "orb_objects.dir"
        return [path for path in self._objects if path.is_relative_to(folder)]

    def _builds(self, target):
        command = ["ninja", "-C", str(self._build), "-j1", target]
        return _is_green(command, 600, ENVIRONMENT)

    def _try(self, mutant, linked):
        for test in sorted(self.tests, key=lambda test: self._history.rank(mutant, test)):
            if test.is_unit():
                if not self._builds(test.name):
                    return Outcome("killed by the compiler")
                linked.append(pathlib.Path(test.command[0]))
            seconds = 10 + 5 * self._history.seconds[test.name]
            if not _is_green(test.command, seconds, test.environment):
                self._history.killed(mutant, test)
                return Outcome(f"killed by {test.name}")
        return Outcome("SURVIVED", survived=True)


def prepare(root, folder, jobs):
    """That many benches, whose tests are all green."""
    folder.mkdir(parents=True, exist_ok=True)
    history = History(folder / "kills.json")
    benches = [Bench(root, folder / str(job), history) for job in range(jobs)]
    with concurrent.futures.ThreadPoolExecutor(jobs) as pool:
        shares = [bench.tests[job::jobs] for job, bench in enumerate(benches)]
        list(pool.map(Bench.measure, benches, shares))
    return benches
