#!/usr/bin/env bash
# Fails when a C++ file of ours differs from what clang-format (.clang-format) would make of it.
set -euo pipefail
cd "$(dirname "$0")/.."
git ls-files -z 'src/*.cpp' 'src/*.h' 'tests/*.cpp' 'tests/*.h' 'bench/*.cpp' 'bench/*.h' 'fuzz/*.cpp' 'lang/*.cpp' |
  xargs -0 clang-format --dry-run --Werror
