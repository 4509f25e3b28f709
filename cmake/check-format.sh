#!/usr/bin/env bash
# Checks the format of all tracked files by clang-format, and that no line is longer than 120 columns. Exempt are rows
# of tables and output in Markdown, and pages that tools write.
set -euo pipefail
cd "$(dirname "$0")/.."
failed=0

git ls-files -z '*.cpp' '*.h' '*.c' |
    xargs -0 -P "$(nproc)" -n 32 clang-format --dry-run -Werror || failed=1

long=$(git ls-files -z '*.cpp' '*.h' '*.c' '*.def' '*.inc' '*.py' '*.sh' '*.mjs' '*.cjs' '*.sql' '*.cmake' \
    '*CMakeLists.txt' '*.md' Makefile .ci/run ':!Docs/Items.md' ':!Docs/Facts.md' |
    LC_ALL=C.UTF-8 xargs -0 grep -nE '^.{121,}' |
    grep -vE '\.md:[0-9]+:(\||    )' || true)
if [ -n "$long" ]; then
    echo "$long" >&2
    failed=1
fi
exit $failed
