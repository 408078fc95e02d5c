# shellcheck shell=bash
# SPDX-License-Identifier: MIT
# The steps that the scripts share. The current folder is the top of the checkout.

# For a script without arguments: given any, it says what it does, and ends.
takesNoArguments() {
  (($# == 0)) && return
  sed -n '3,/^[^#]/s/^# //p' "scripts/$(basename "$0")"
  exit 64
}

# Runs a command whose output is of interest only when it fails.
step() {
  local title=$1 start=$SECONDS output status
  shift
  printf '%s ... ' "$title"
  # Where a failure is asked for, a function would go on behind a command that fails.
  set +e
  output=$(set -e && "$@" 2>&1)
  status=$?
  set -e
  if ((status != 0)); then
    echo failed
    echo "$output" >&2
    exit 1
  fi
  echo "done ($((SECONDS - start)) s)"
}

# Builds everything that a preset builds, or only the targets named after it.
buildPreset() {
  local preset=$1 title=build/$1 targets=()
  shift
  (($# == 0)) || targets=(--target "$@") title+=": $*"
  if command -v ccache >/dev/null; then
    export CMAKE_C_COMPILER_LAUNCHER=ccache CMAKE_CXX_COMPILER_LAUNCHER=ccache
  fi
  step "Configuring build/$preset" cmake --preset "$preset"
  step "Building $title (minutes the first time)" cmake --build --preset "$preset" \
    "${targets[@]}"
}

# The programs talk to servers on this machine, also where others are reached through a
# proxy. Packages come through the proxy: this is for afterwards.
leaveProxies() {
  unset http_proxy https_proxy HTTPS_PROXY all_proxy ALL_PROXY
}
