#!/bin/bash
# walk-order.sh PROGRAM STATE...: walk order as pollers meet it, for each
# switch state document (the example switch in ctest; the switch
# generator's presets by hand, see docs/snmp.md). `qos-snmp-agent run`
# serves the state on loopback, and
# - snmpwalk (which checks that OIDs increase), snmpbulkwalk -Cr10 and
#   snmpbulkwalk -Cr50 exit 0 and print the same;
# - every table holds exactly as many rows in the walk as `dump` shows
#   (none included).
# Prints the number of varbinds and the walks' durations per state, and
# the rows and varbinds of each table.
set -u
program=$1
shift
root="$(cd "$(dirname "$0")/../../.." && pwd)"
script=walk-order.sh
. "$root/tests/host/agent-script.sh"
export MIBS= SNMPCONFPATH="$work" SNMP_PERSISTENT_DIR="$work/client"
mkdir -p "$work/client/cert_indexes"
snmp="-v2c -c public -t 10 -r 2 -M +:$root/mib:$root/mib/base -m QOS-SNMP-MIB -On"
# Each table of the dump and its first readable column.
tables="classMapTable:1.1.3 classMapMatchTable:2.1.4 policyMapTable:3.1.3 policyMapClassTable:4.1.4
policyMapActionTable:5.1.5 qosStatsTable:6.1.5 qosPolicerStatsTable:7.1.5 servicePolicyTable:8.1.3
ecnCounterTable:9.1.2 ecnQueueCounterTable:10.1.3"
module=.1.3.6.1.4.1.32473.1

for state in "$@"; do
  port=$(free_udp_port)
  address=udp:127.0.0.1:$port
  "$program" dump --state "$state" >"$work/dump" || fail "$state: dump failed"
  "$program" run --state "$state" --listen "$address" 2>"$work/agent.err" &
  agent=$!
  for _ in $(seq 600); do
    grep -q 'serving the QoS MIB' "$work/agent.err" 2>/dev/null && break
    kill -0 "$agent" 2>/dev/null || fail "$state: the agent exited at start"
    sleep 0.1
  done
  times=""
  for tool in "snmpwalk" "snmpbulkwalk -Cr10" "snmpbulkwalk -Cr50"; do
    start=$(date +%s.%N)
    $tool $snmp "$address" "$module" >"$work/out" 2>"$work/tool.err" ||
      fail "$state: $tool exited $?: $(head -3 "$work/tool.err")"
    [ -s "$work/tool.err" ] && fail "$state: $tool: $(head -3 "$work/tool.err")"
    times="$times $tool $(awk "BEGIN { printf \"%.2f\", $(date +%s.%N) - $start }") s;"
    # Counters and times move between walks; the rest must be the same.
    sed -E 's/= (Counter64|Counter32|Timeticks): .*/= \1/' "$work/out" >"$work/$(echo "$tool" | tr -d ' -')"
  done
  cmp -s "$work/snmpwalk" "$work/snmpbulkwalkCr10" || fail "$state: snmpwalk and snmpbulkwalk -Cr10 differ"
  cmp -s "$work/snmpwalk" "$work/snmpbulkwalkCr50" || fail "$state: snmpwalk and snmpbulkwalk -Cr50 differ"
  perTable=""
  for entry in $tables; do
    table=${entry%%:*}
    column=${entry#*:}
    expected=$(sed -n "s/^# $table: \([0-9]*\) rows\{0,1\}$/\1/p" "$work/dump")
    actual=$(grep -c "^$module\.1\.$column\." "$work/snmpwalk")
    [ "$expected" = "$actual" ] || fail "$state: $table: $expected rows in the dump, $actual in the walk"
    perTable="$perTable $table $actual rows $(grep -c "^$module\.1\.${column%%.*}\." "$work/snmpwalk") varbinds;"
  done
  kill "$agent"
  wait "$agent"
  agent=
  echo "walk-order.sh: $state: OK, $(grep -c '^\.' "$work/snmpwalk") varbinds;$times"
  echo "walk-order.sh: $state:$perTable"
done
