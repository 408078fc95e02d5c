#!/bin/bash
# SPDX-License-Identifier: MIT
# Compares the symbols that a shared library exports with the functions of its header.
#   exports_test.sh <nm> <library> <header>
set -euo pipefail
nm=$1
library=$2
header=$3

# Type A is the version node, the one symbol that no header declares.
exported=$("$nm" -D --defined-only "$library" |
  awk '$2 != "A" { sub(/@.*/, "", $3); print $3 }' | sort)
declared=$(sed -n 's/^ORB_API [^(]*[ *]\(orb[A-Za-z0-9]*\)(.*/\1/p' "$header" | sort)

diff --label exported --label declared -u <(echo "$exported") <(echo "$declared")
count=$(wc -l <<<"$declared")
if [ "$count" -ne 80 ]; then
  echo "the header declares $count functions, not 80"
  exit 1
fi
