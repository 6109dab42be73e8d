#!/usr/bin/env bash
# Generates the small switch and one change stream of every kind with
# qos-switch-gen, and has qos-snmp-agent check accept each, with the row
# count the generator predicts.
#   check-generated.sh QOS_SWITCH_GEN QOS_SNMP_AGENT
set -euo pipefail
gen="$1"
agent="$2"
dir="$(mktemp -d)"
trap 'rm -rf "$dir"' EXIT

streams=()
for kind in counters match-rule class-added service-policy if-index poll-period mix; do
  streams+=(--changes "$kind=$dir/$kind.jsonl")
done
"$gen" --preset small --state "$dir/small.json" --count 1000 "${streams[@]}" --rows >"$dir/rows"
expected="$(awk '$1 == "total" { print $2 }' "$dir/rows")"

out="$("$agent" check --state "$dir/small.json")"
echo "$out"
if [[ "$out" != *"($expected rows)"* ]]; then
  echo "check-generated: expected $expected rows" >&2
  exit 1
fi
for kind in counters match-rule class-added service-policy if-index poll-period mix; do
  "$agent" check --state "$dir/small.json" --changes "$dir/$kind.jsonl"
done
