# shellcheck shell=bash
# SPDX-License-Identifier: MIT
# The Debian packages that the scripts need, and how they come onto the machine.
# shellcheck disable=SC2034  # the scripts that source this file choose among the lists

build_packages=(
  g++ cmake ninja-build pkg-config protobuf-compiler libprotobuf-dev libcurl4-openssl-dev
  libboost-dev libcpp-httplib-dev libeigen3-dev
)
test_packages=(
  libgtest-dev libgmock-dev libssl-dev openssl python3 python3-protobuf nginx-light haproxy
)
coverage_packages=(gcovr)
checker_packages=(clang-14 clang-tidy-14 cppcheck)
torture_packages=(libclang-rt-14-dev lld valgrind)

isInstalled() {
  [[ $(dpkg-query -W -f '${db:Status-Status}' "$1" 2>/dev/null) == installed ]]
}

# A subshell, whose trap sees that the policy does not stay behind.
aptInstall() (
  export DEBIAN_FRONTEND=noninteractive
  # What installs a service asks this program; 101 keeps nginx and haproxy from starting.
  policy=/usr/sbin/policy-rc.d
  if [[ ! -e $policy ]]; then
    trap 'rm -f "$policy"' EXIT
    printf '#!/bin/sh\nexit 101\n' >"$policy"
    chmod +x "$policy"
  fi
  apt-get update && apt-get install -y --no-install-recommends "$@"
)

# Installs those of the given packages that are missing; only root can.
requirePackages() {
  local package missing=()
  for package in "$@"; do
    isInstalled "$package" || missing+=("$package")
  done
  ((${#missing[@]})) || return 0
  if ((EUID != 0)); then
    echo "Some packages are missing. As root, install them first:" >&2
    echo "  apt-get install --no-install-recommends ${missing[*]}" >&2
    exit 1
  fi
  step "Installing ${#missing[@]} packages" aptInstall "${missing[@]}"
}
