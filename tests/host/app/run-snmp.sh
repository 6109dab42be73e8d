#!/bin/bash
# run-snmp.sh PROGRAM: the long-running agent as an operator runs it.
# Starts `qos-snmp-agent run` on the example switch on a free loopback port,
# with its change stream on a FIFO, and checks with the real SNMP tools:
# - snmpwalk (OID order checked) and snmpbulkwalk -Cr50 agree, and every
#   table of the dump has as many rows in the walk as in the dump;
# - snmpget of single cells; snmpset is refused with notWritable;
# - a change line written to the FIFO shows in the next walk (a counter);
# - SIGTERM stops it cleanly (exit status 0).
set -u
program=$1
cd "$(dirname "$0")/../../.." || exit 2
script=run-snmp.sh
. tests/host/agent-script.sh

port=$(free_udp_port)
address=udp:127.0.0.1:$port
export MIBS=
snmp="-v2c -c public -t 5 -r 1 -M +:mib:mib/base -m QOS-SNMP-MIB"

mkfifo "$work/changes"
"$program" run --state examples/leaf-switch.json --changes "$work/changes" --listen "$address" \
  2>"$work/agent.err" &
agent=$!
wait_serving
grep -q 'snmpwalk' "$work/agent.err" || fail "the agent does not say how to walk it"

# Walks: both tools, the whole module, numeric OIDs.
snmpwalk $snmp -On "$address" qosSnmpMIB >"$work/walk" || fail "snmpwalk failed"
snmpbulkwalk $snmp -On -Cr50 "$address" qosSnmpMIB >"$work/bulkwalk" || fail "snmpbulkwalk failed"
[ -s "$work/walk" ] || fail "empty walk"
cmp -s "$work/walk" "$work/bulkwalk" || fail "snmpwalk and snmpbulkwalk differ: $(diff "$work/walk" "$work/bulkwalk" | head)"

# Every table holds as many rows as the dump shows: count the instances of
# each table's first readable column in the walk by name.
"$program" dump --state examples/leaf-switch.json >"$work/dump" || fail "dump failed"
snmpwalk $snmp "$address" qosSnmpMIB >"$work/named" || fail "named snmpwalk failed"
check_rows() {  # check_rows DUMP-TABLE COLUMN
  local expected actual
  expected=$(sed -n "s/^# $1: \([0-9]*\) rows\{0,1\}$/\1/p" "$work/dump")
  actual=$(grep -c "^QOS-SNMP-MIB::$2\." "$work/named")
  [ "$expected" = "$actual" ] || fail "$1: $expected rows in the dump, $actual $2 instances in the walk"
  [ "$actual" -gt 0 ] || fail "$1 is empty"
}
check_rows classMapTable qosClassMapCpType
check_rows classMapMatchTable qosClassMapMatchOption
check_rows policyMapTable qosPolicyMapClasses
check_rows policyMapClassTable qosPolicyMapClassCmapName
check_rows policyMapActionTable qosPolicyMapActionValue
check_rows qosStatsTable qosStatsPackets
check_rows qosPolicerStatsTable qosPolicerStatsConformedPackets
check_rows servicePolicyTable qosServicePolicyPmapName
check_rows ecnCounterTable qosEcnCounterMarkedPackets
check_rows ecnQueueCounterTable qosEcnQueueCounterMarkedPackets

# One cell: the first statistics row's packets, by GET.
cell=$(grep '^QOS-SNMP-MIB::qosStatsPackets\.' "$work/named" | head -1 | cut -d' ' -f1)
snmpget $snmp "$address" "$cell" | grep -q 'Counter64' || fail "snmpget $cell"
snmpget $snmp "$address" "${cell}.99" | grep -q 'No Such Instance' || fail "snmpget of a missing row"

# SET is refused.
name_cell=$(grep '^QOS-SNMP-MIB::qosPolicyMapClassCmapName\.' "$work/named" | head -1 | cut -d' ' -f1)
set_out=$(snmpset $snmp "$address" "$name_cell" s renamed 2>&1) && fail "snmpset succeeded: $set_out"
echo "$set_out" | grep -q 'notWritable' || fail "snmpset: expected notWritable, got: $set_out"

# A change line through the FIFO: policy-in's class-video counters change.
counter=/qosStatus/pmapType/mapQos/pmap/policy-in/cmapCounters/class-video/packets
before=$(snmpwalk $snmp -Oqv "$address" qosStatsPackets | tr '\n' ' ')
echo "{\"op\": \"set\", \"path\": \"$counter\", \"value\": 987654321}" >"$work/changes"
for _ in $(seq 50); do
  after=$(snmpwalk $snmp -Oqv "$address" qosStatsPackets | tr '\n' ' ')
  [ "$after" != "$before" ] && break
  sleep 0.1
done
echo "$after" | grep -q '987654321' || fail "the change line did not show in the walk: $after"

# A malformed line is reported and the agent goes on.
echo '{"op": "set", "path": "/hwStatus/coppSupported", "value": "yes"}' >"$work/changes"
for _ in $(seq 50); do
  grep -q 'expected true or false' "$work/agent.err" && break
  sleep 0.1
done
grep -q 'expected true or false' "$work/agent.err" || fail "the malformed line was not reported"
kill -0 "$agent" || fail "the agent stopped after a malformed line"

kill -TERM "$agent"
wait "$agent"
status=$?
agent=
[ "$status" = 0 ] || fail "exit status $status after SIGTERM"
grep -q 'stopping' "$work/agent.err" || fail "no stop message"
echo "run-snmp.sh: OK ($(wc -l <"$work/walk") varbinds)"
