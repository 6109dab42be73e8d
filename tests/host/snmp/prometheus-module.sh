#!/bin/bash
# prometheus-module.sh PROGRAM: the shipped Prometheus module
# (contrib/prometheus) against the Debian snmp_exporter.
# - The generator, run on generator.yml and the MIB module, writes exactly
#   the shipped snmp.yml.
# - snmp_exporter, with the shipped snmp.yml, scrapes `qos-snmp-agent run`
#   on the example switch on loopback: the statistics and policer counters
#   carry the full class-map and policy-map names (and the interface's
#   name) as labels, and rates and sizes are gauges.
set -u
program=$1
cd "$(dirname "$0")/../../.." || exit 2
work=$(mktemp -d)
agent=
exporter=
cleanup() {
  [ -n "$exporter" ] && kill "$exporter" 2>/dev/null
  [ -n "$agent" ] && kill "$agent" 2>/dev/null
  rm -rf "$work"
}
trap cleanup EXIT
fail() {
  echo "prometheus-module.sh: FAIL: $*" >&2
  for log in agent.err exporter.err; do
    [ -f "$work/$log" ] && sed "s/^/  $log: /" "$work/$log" | tail -20 >&2
  done
  exit 1
}
fetch() {  # fetch URL: the body, or a failure status
  python3 -c "import sys, urllib.request; sys.stdout.write(urllib.request.urlopen(sys.argv[1], timeout=30).read().decode())" "$1" 2>/dev/null
}
free_port() {  # free_port udp|tcp
  python3 -c "import socket, sys; s=socket.socket(socket.AF_INET, socket.SOCK_DGRAM if sys.argv[1] == 'udp' else socket.SOCK_STREAM); s.bind(('127.0.0.1', 0)); print(s.getsockname()[1])" "$1"
}

# The shipped snmp.yml is what the generator makes of the shipped files.
contrib/prometheus/generate "$work/snmp.yml" 2>"$work/generate.err" || fail "the generator failed: $(cat "$work/generate.err")"
[ -s "$work/generate.err" ] && fail "the generator complained: $(cat "$work/generate.err")"
diff -u contrib/prometheus/snmp.yml "$work/snmp.yml" >"$work/diff" ||
  fail "contrib/prometheus/snmp.yml differs from the generator's output (run contrib/prometheus/generate):
$(head -40 "$work/diff")"

agent_port=$(free_port udp)
"$program" run --state examples/leaf-switch.json --listen "udp:127.0.0.1:$agent_port" 2>"$work/agent.err" &
agent=$!
exporter_port=$(free_port tcp)
prometheus-snmp-exporter --config.file=contrib/prometheus/snmp.yml \
  --web.listen-address="127.0.0.1:$exporter_port" 2>"$work/exporter.err" &
exporter=$!
for _ in $(seq 100); do
  grep -q 'serving the QoS MIB' "$work/agent.err" 2>/dev/null &&
    fetch "http://127.0.0.1:$exporter_port/" >/dev/null && break
  kill -0 "$agent" 2>/dev/null || fail "the agent exited at start"
  kill -0 "$exporter" 2>/dev/null || fail "snmp_exporter exited at start"
  sleep 0.1
done

fetch "http://127.0.0.1:$exporter_port/snmp?module=qos_snmp&target=127.0.0.1:$agent_port" >"$work/metrics" ||
  fail "the scrape failed"
expect() {  # expect REGEX WHAT
  local name
  name=$(echo "$1" | sed 's/^\^//; s/[\\{ ].*//')
  grep -Eq "$1" "$work/metrics" || fail "$2: no line matches $1
$(grep -F "$name" "$work/metrics" | head -5)"
}
reject() {  # reject REGEX WHAT
  grep -Eq "$1" "$work/metrics" && fail "$2: $(grep -E "$1" "$work/metrics" | head -3)"
  return 0
}

# Class and policy names as labels of the counters.
expect '^qosStatsPackets\{.*qosStatsCmapFullName="class-video".*qosStatsPmapFullName="policy-in".*\} [0-9]' \
  "statistics counters carry the class and policy names"
# snmp_exporter 0.21 writes enumerated indexes as numbers: mapQos is 1.
expect '^qosStatsPackets\{.*qosStatsPmapType="1".*\}' "map types"
expect '^qosPolicerStatsConformedPackets\{.*qosPolicerStatsCmapFullName="class-video".*qosPolicerStatsIntfName="Ethernet1/1".*qosPolicerStatsPmapFullName="policy-in".*\} [0-9]' \
  "policer counters carry the class, interface and policy names"
expect '^qosServicePolicyPmapName\{.*qosServicePolicyIntfName="Ethernet1/1".*qosServicePolicyPmapFullName="policy-in".*\} 1' \
  "service policies carry the interface and policy names"
expect '^qosEcnCounterMarkedPackets\{.*qosEcnCounterChipFullName="[^"]+".*\} [0-9]' "chip names"
expect '^qosAgentChangesApplied [0-9]' "the agent group"
# Types: counters stay counters, rates and sizes are gauges.
expect '^# TYPE qosStatsPackets counter$' "counters"
expect '^# TYPE qosPolicyMapActionRate gauge$' "QosGauge64 as a gauge"
reject '^# TYPE qosPolicyMapActionRate counter$' "QosGauge64 as a counter"
# The name columns are labels only.
reject '^qosStatsCmapFullName\{' "a name column exported as a metric"
# No scrape errors.
reject '^snmp_scrape_.*error' "scrape errors"
echo "prometheus-module.sh: OK ($(grep -c '^qos' "$work/metrics") samples)"
