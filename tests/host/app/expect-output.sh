#!/bin/bash
# expect-output.sh EXPECTED PROGRAM ARGS...: runs PROGRAM ARGS from the
# repository root and passes when it exits with status 0 and prints exactly
# EXPECTED on standard output. On a difference it prints the diff; set
# QOS_UPDATE_EXPECTED=1 to rewrite EXPECTED instead (then review the diff in
# git before committing it).
set -u
expected=$1
shift
cd "$(dirname "$0")/../../.." || exit 2
actual=$(mktemp)
trap 'rm -f "$actual"' EXIT
"$@" >"$actual"
status=$?
if [ $status -ne 0 ]; then
  echo "expect-output.sh: $* exited with status $status" >&2
  exit 1
fi
if [ "${QOS_UPDATE_EXPECTED:-0}" = 1 ]; then
  cp "$actual" "$expected"
  exit 0
fi
diff -u "$expected" "$actual"
