#!/bin/bash
# master-restarts.sh PROGRAM [RESTARTS] [PING_SECONDS]: the AgentX subagent
# while its master comes and goes. A long, opt-in run (docs/snmp.md keeps
# its figures); ctest runs it with 4 restarts.
#
# `qos-snmp-agent run --agentx` serves the example switch through a real
# snmpd, following a change stream. RESTARTS times (default 50), while a
# walk through snmpd is under way, snmpd is stopped, with SIGTERM and
# SIGKILL in turn; while it is away a change line is written to the
# stream; then snmpd starts again. Each time:
# - the subagent registers again within PING_SECONDS (default 2) + 1 s of
#   snmpd answering;
# - the walk after equals the first walk apart from counters and times;
# - the change written while snmpd was away shows in that walk;
# - neither side reports a failed or duplicate registration.
# Prints the registration delays' median and maximum.
set -u
program=$1
restarts=${2:-50}
ping=${3:-2}
cd "$(dirname "$0")/../../.." || exit 2
script=master-restarts.sh
. tests/host/agent-script.sh
now() { date +%s.%N; }

port=$(free_udp_port)
address=udp:127.0.0.1:$port
socket=$work/agentx.sock
mkdir -p "$work/snmpd-state" "$work/client/cert_indexes"
cat >"$work/snmpd.conf" <<CONF
master agentx
agentXSocket $socket
dontLogTCPWrappersConnects yes
rocommunity public 127.0.0.1
CONF
export MIBS= SNMPCONFPATH="$work/client" SNMP_PERSISTENT_DIR="$work/client"
snmp="-v2c -c public -On -t 1 -r 0"
module=.1.3.6.1.4.1.32473.1
# A cell of class-video's statistics row in policy-in (qosStatsPackets).
cell=$(snmptranslate -M +:mib:mib/base -m QOS-SNMP-MIB -On \
  'QOS-SNMP-MIB::qosStatsPackets."policy-in".mapQos."class-video".0')

start_snmpd() {
  rm -f "$socket"
  SNMP_PERSISTENT_DIR="$work/snmpd-state" snmpd -f -Lf "$work/snmpd.log" -C -c "$work/snmpd.conf" \
    -m '' -I -smux "$address" &
  snmpd_pid=$!
  for _ in $(seq 200); do
    snmpget $snmp "$address" .1.3.6.1.2.1.1.3.0 >/dev/null 2>&1 && return 0
    sleep 0.05
  done
  fail "snmpd does not answer"
}
# The module through snmpd, counters and times blanked out.
walk_module() {
  snmpwalk -v2c -c public -On -t 5 -r 2 "$address" "$module" >"$1" 2>&1 || return 1
  sed -E 's/= (Counter64|Counter32|Timeticks): .*/= \1/' "$1" >"$1.shape"
}

mkfifo "$work/changes"
start_snmpd
"$program" run --state examples/leaf-switch.json --changes "$work/changes" --agentx "$socket" \
  --agentx-ping-interval "$ping" 2>"$work/agent.err" &
agent=$!
exec 3>"$work/changes"  # held open: the stream never ends
for _ in $(seq 200); do
  snmpget $snmp "$address" "$cell" 2>/dev/null | grep -q Counter64 && break
  sleep 0.05
done
walk_module "$work/first" || fail "first walk"
[ "$(grep -c . "$work/first")" -gt 500 ] || fail "first walk too short"

delays=()
for i in $(seq "$restarts"); do
  signal=TERM
  [ $((i % 2)) = 0 ] && signal=KILL
  # A walk under way when snmpd goes: it may fail, it must not hang.
  timeout 30 snmpwalk $snmp "$address" "$module" >/dev/null 2>&1 &
  walker=$!
  sleep 0.1
  kill -"$signal" "$snmpd_pid"
  wait "$snmpd_pid" 2>/dev/null
  snmpd_pid=
  wait "$walker"
  # A change while the master is away.
  echo "{\"op\": \"set\", \"path\": \"/qosStatus/pmapType/mapQos/pmap/policy-in/cmapCounters/class-video/packets\", \"value\": $((1000 + i))}" >&3
  sleep 0.2
  start_snmpd
  up=$(now)
  registered=
  while [ -z "$registered" ]; do
    snmpget $snmp "$address" "$cell" 2>/dev/null | grep -q "Counter64: $((1000 + i))$" && registered=$(now)
    awk "BEGIN { exit !($(now) - $up > $ping + 5) }" && fail "restart $i ($signal): not registered after $ping + 5 s"
    [ -z "$registered" ] && sleep 0.02
  done
  delay=$(awk "BEGIN { printf \"%.3f\", $registered - $up }")
  delays+=("$delay")
  awk "BEGIN { exit !($delay <= $ping + 1) }" || fail "restart $i ($signal): registered after $delay s"
  walk_module "$work/after" || fail "restart $i ($signal): walk"
  cmp -s "$work/first.shape" "$work/after.shape" ||
    fail "restart $i ($signal): the walk differs: $(diff "$work/first.shape" "$work/after.shape" | head -5)"
  grep -q "^$cell = Counter64: $((1000 + i))$" "$work/after" || fail "restart $i: the change made while snmpd was away is missing"
done
grep -Ei 'duplicate|registration failed|failed to register' "$work/snmpd.log" "$work/agent.err" &&
  fail "a registration failed or was duplicated"
kill -0 "$agent" || fail "the agent stopped"
sorted=$(printf '%s\n' "${delays[@]}" | sort -n)
median=$(echo "$sorted" | sed -n "$(((${#delays[@]} + 1) / 2))p")
max=$(echo "$sorted" | tail -1)
echo "master-restarts.sh: OK: $restarts restarts (SIGTERM and SIGKILL in turn), ping interval $ping s;" \
  "registered again after median $median s, max $max s"
