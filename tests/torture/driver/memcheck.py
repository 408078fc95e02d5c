# SPDX-License-Identifier: MIT
"""The client tests under valgrind."""
import json
import subprocess

from driver import tasks

OPTIONS = (
    "valgrind", "--quiet", "--error-exitcode=99", "--leak-check=full",
    "--show-leak-kinds=definite", "--errors-for-leak-kinds=definite", "--fair-sched=yes",
)  # fmt: skip
PROGRAMS = ("array_", "transport_", "servers_")
# A shell script, a program without the library, and one that replaces operator new, as
# valgrind does.
LEFT_OUT = {"array_exports", "transport_server", "array_memory"}
# The others take a minute on one core, and these several more.
ONLY_BY_NIGHT = (
    "array_nesting", "servers_", "transport_framing", "transport_length",
    "transport_received", "transport_reply", "transport_status", "transport_timeout",
)  # fmt: skip
ENVIRONMENT = {"ORB_MODEL_SEQUENCES": "200"}


def listed_tests(build):
    command = ["ctest", "--test-dir", build, "--show-only=json-v1"]
    output = subprocess.run(command, check=True, stdout=subprocess.PIPE).stdout
    return [test for test in json.loads(output)["tests"] if "command" in test]


def tasks_of(build, tier):
    found = []
    for test in listed_tests(build):
        name = test["name"]
        if not name.startswith(PROGRAMS) or name in LEFT_OUT:
            continue
        if name.startswith(ONLY_BY_NIGHT) and not tier.night:
            continue
        found.append(
            tasks.Task(
                f"9-{name}",
                (*OPTIONS, *test["command"]),
                tasks.read_tests,
                environment=ENVIRONMENT,
                limit=tier.limit,
            )
        )
    assert found, "no test looks like one of a client"
    return found
