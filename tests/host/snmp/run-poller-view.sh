#!/bin/bash
# run-poller-view.sh PROGRAM: what `qos-snmp-agent run` shows a poller
# besides the tables, checked with the net-snmp tools on loopback.
# - The system group from the program and its options (sysDescr with the
#   version, sysObjectID under the module's arc, sysName, sysContact,
#   sysLocation).
# - The agent group follows the change stream: a change line applied and a
#   malformed one refused move qosAgentChangesApplied, qosAgentChangesRefused
#   and qosAgentLastChangeTime.
# - Discontinuity times are the time of the change, not of the poll.
# - --snmp-persistent-dir keeps the engine ID across a restart and counts
#   boots; --no-v2c leaves SNMPv3 (authPriv) as the only access.
set -u
program=$1
cd "$(dirname "$0")/../../.." || exit 2
script=run-poller-view.sh
. tests/host/agent-script.sh
port=$(free_udp_port)
address=udp:127.0.0.1:$port
export MIBS= SNMPCONFPATH="$work" SNMP_PERSISTENT_DIR="$work/client"
snmp="-v2c -c public -t 3 -r 1 -M +:mib:mib/base -m QOS-SNMP-MIB"

start() {  # start ARGS...: the agent on $address, waiting until it serves
  : >"$work/agent.err"
  "$program" run --state examples/leaf-switch.json --listen "$address" "$@" 2>"$work/agent.err" &
  agent=$!
  wait_serving
}
stop() {
  kill -TERM "$agent"
  wait "$agent" || fail "exit status $? after SIGTERM"
  agent=
}
value() {  # value OBJECT: the value alone
  snmpget $snmp -Oqvt "$address" "$1" 2>&1
}

mkfifo "$work/changes"
start --changes "$work/changes" --sys-name leaf-7 --sys-contact "noc@example.net" --sys-location "hall 2" \
  --snmp-persistent-dir "$work/state"

descr=$(value 1.3.6.1.2.1.1.1.0)
echo "$descr" | grep -Eq '^"?qos-snmp-agent [0-9]+\.[0-9]+\.[0-9]+' || fail "sysDescr: $descr"
[ "$(snmpget $snmp -On -Oqv "$address" 1.3.6.1.2.1.1.2.0)" = ".1.3.6.1.4.1.32473.1.3" ] || fail "sysObjectID"
[ "$(snmptranslate -M +:mib:mib/base -m QOS-SNMP-MIB -On QOS-SNMP-MIB::qosSnmpAgentId)" = ".1.3.6.1.4.1.32473.1.3" ] ||
  fail "qosSnmpAgentId is not the sysObjectID"
[ "$(value 1.3.6.1.2.1.1.5.0)" = '"leaf-7"' ] || fail "sysName: $(value 1.3.6.1.2.1.1.5.0)"
[ "$(value 1.3.6.1.2.1.1.4.0)" = '"noc@example.net"' ] || fail "sysContact"
[ "$(value 1.3.6.1.2.1.1.6.0)" = '"hall 2"' ] || fail "sysLocation"
snmpget $snmp "$address" 1.3.6.1.2.1.1.3.0 | grep -q 'Timeticks' || fail "sysUpTime"

[ "$(value QOS-SNMP-MIB::qosAgentChangesApplied.0)" = 0 ] || fail "changes applied before any"
[ "$(value QOS-SNMP-MIB::qosAgentLastChangeTime.0)" = 0 ] || fail "last change before any"
echo '{"op": "set", "path": "/qosStatus/pmapType/mapQos/pmap/policy-in/cmapCounters/class-video/packets", "value": 5}' >"$work/changes"
echo '{"op": "set", "path": "/hwStatus/coppSupported", "value": "yes"}' >"$work/changes"
for _ in $(seq 50); do
  [ "$(value QOS-SNMP-MIB::qosAgentChangesRefused.0)" = 1 ] && break
  sleep 0.1
done
[ "$(value QOS-SNMP-MIB::qosAgentChangesApplied.0)" = 1 ] || fail "changes applied: $(value QOS-SNMP-MIB::qosAgentChangesApplied.0)"
[ "$(value QOS-SNMP-MIB::qosAgentChangesRefused.0)" = 1 ] || fail "changes refused: $(value QOS-SNMP-MIB::qosAgentChangesRefused.0)"
last=$(value QOS-SNMP-MIB::qosAgentLastChangeTime.0)
uptime=$(snmpget $snmp -Oqvt "$address" 1.3.6.1.2.1.1.3.0)
[ "$last" -gt 0 ] 2>/dev/null && [ "$last" -le "$uptime" ] || fail "last change time $last, sysUpTime $uptime"

# Discontinuity times are stamped when a row gets new counters, not when a
# poller reads it: rows loaded with the state read 0; a class's counters and
# an interface's ECN queue counters deleted and published again read the
# time of the change (at most the last change's time), however late the poll.
oid_string() {  # oid_string TEXT: the length, then each byte, dotted
  local i out=${#1}
  for ((i = 0; i < ${#1}; i++)); do out="$out.$(printf '%d' "'${1:i:1}")"; done
  echo "$out"
}
stats=.1.3.6.1.4.1.32473.1.1.6.1.12.$(oid_string policy-in).1.$(oid_string class-voice).0
queue=QOS-SNMP-MIB::qosEcnQueueCounterDiscontinuityTime.1.3
[ "$(value $stats)" = 0 ] || fail "loaded statistics row: discontinuity time $(value $stats)"
[ "$(value $queue)" = 0 ] || fail "loaded ECN queue row: discontinuity time $(value $queue)"
counters=/qosStatus/pmapType/mapQos/pmap/policy-in/cmapCounters/class-voice
queues=/ecnCounterTable/intfQueueCounter/Ethernet1~11
printf '%s\n' "{\"op\": \"delete\", \"path\": \"$counters\"}" \
  "{\"op\": \"set\", \"path\": \"$counters\", \"value\": {\"packets\": 1}}" \
  "{\"op\": \"delete\", \"path\": \"$queues\"}" \
  "{\"op\": \"set\", \"path\": \"$queues\", \"value\": {\"queueMarkedPackets\": {\"3\": 2}}}" >"$work/changes"
for _ in $(seq 50); do
  [ "$(value QOS-SNMP-MIB::qosAgentChangesApplied.0)" = 5 ] && break
  sleep 0.1
done
[ "$(value QOS-SNMP-MIB::qosAgentChangesApplied.0)" = 5 ] || fail "counter changes applied: $(value QOS-SNMP-MIB::qosAgentChangesApplied.0)"
last=$(value QOS-SNMP-MIB::qosAgentLastChangeTime.0)
sleep 1.5
uptime=$(snmpget $snmp -Oqvt "$address" 1.3.6.1.2.1.1.3.0)
for row in $stats $queue; do
  at=$(value "$row")
  [ "$at" -gt 0 ] 2>/dev/null && [ "$at" -le "$last" ] && [ $((uptime - at)) -ge 100 ] ||
    fail "$row: discontinuity time $at, last change $last, sysUpTime at the poll $uptime"
done

engine() { snmpget $snmp -Oqv "$address" 1.3.6.1.6.3.10.2.1.1.0 | tr -d ' \n'; }
boots() { value 1.3.6.1.6.3.10.2.1.2.0; }
first_engine=$(engine)
first_boots=$(boots)
stop
start --snmp-persistent-dir "$work/state"
[ "$(engine)" = "$first_engine" ] || fail "engine ID changed across a restart: $first_engine, $(engine)"
[ "$(boots)" = $((first_boots + 1)) ] || fail "snmpEngineBoots $first_boots then $(boots)"
stop

printf 'createUser poller SHA-256 pollerAuth123 AES pollerPriv123\nrouser poller priv\n' >"$work/users"
start --no-v2c --snmpv3-users "$work/users"
snmpget -v2c -c public -t 1 -r 0 "$address" 1.3.6.1.2.1.1.5.0 >/dev/null 2>&1 && fail "SNMPv2c answered with --no-v2c"
snmpget -v1 -c public -t 1 -r 0 "$address" 1.3.6.1.2.1.1.5.0 >/dev/null 2>&1 && fail "SNMPv1 answered with --no-v2c"
snmpget -v3 -l authPriv -u poller -a SHA-256 -A pollerAuth123 -x AES -X pollerPriv123 -t 3 -r 1 "$address" \
  1.3.6.1.2.1.1.5.0 >/dev/null 2>&1 || fail "SNMPv3 authPriv refused with --no-v2c"
snmpget -v3 -l authNoPriv -u poller -a SHA-256 -A pollerAuth123 -t 2 -r 0 "$address" 1.3.6.1.2.1.1.5.0 \
  >/dev/null 2>&1 && fail "SNMPv3 authNoPriv answered"
stop
echo "run-poller-view.sh: OK"
