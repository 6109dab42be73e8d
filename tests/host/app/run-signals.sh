#!/bin/bash
# run-signals.sh PROGRAM: every way out of `qos-snmp-agent run` that can be
# caught leaves nothing behind. For each of SIGTERM, SIGINT and SIGHUP the
# agent is started on the example switch with a ring trace, on a free
# loopback port and with TMPDIR pointing at an empty directory; once it
# serves, the ring trace must be owner-only (0600) and the SNMP front end's
# private directory must exist under TMPDIR; after the signal the agent must
# exit with status 0 and TMPDIR must be empty again.
set -u
program=$1
cd "$(dirname "$0")/../../.." || exit 2
work=$(mktemp -d)
agent=
cleanup() {
  [ -n "$agent" ] && kill -KILL "$agent" 2>/dev/null
  rm -rf "$work"
}
trap cleanup EXIT
fail() {
  echo "run-signals.sh: FAIL: $*" >&2
  [ -f "$work/agent.err" ] && sed 's/^/  agent: /' "$work/agent.err" >&2
  exit 1
}

for signal in TERM INT HUP; do
  port=$(python3 -c 'import socket; s=socket.socket(socket.AF_INET, socket.SOCK_DGRAM); s.bind(("127.0.0.1", 0)); print(s.getsockname()[1])')
  rm -rf "$work/tmp" "$work/agent.ring" "$work/agent.ring.prev"
  mkdir "$work/tmp"
  TMPDIR="$work/tmp" "$program" run --state examples/leaf-switch.json --listen "udp:127.0.0.1:$port" \
    --ring-trace "$work/agent.ring" 2>"$work/agent.err" &
  agent=$!
  for _ in $(seq 100); do
    grep -q 'serving the QoS MIB' "$work/agent.err" 2>/dev/null && break
    kill -0 "$agent" 2>/dev/null || fail "SIG$signal: the agent exited at start"
    sleep 0.1
  done
  grep -q 'serving the QoS MIB' "$work/agent.err" || fail "SIG$signal: the agent does not serve"

  mode=$(stat -c %a "$work/agent.ring")
  [ "$mode" = 600 ] || fail "SIG$signal: the ring trace has mode $mode, not 600"
  made=$(find "$work/tmp" -mindepth 1 -maxdepth 1 | wc -l)
  [ "$made" -eq 1 ] || fail "SIG$signal: expected the front end's one private directory in TMPDIR, found $made entries"

  kill -s "$signal" "$agent"
  status=0
  wait "$agent" || status=$?
  agent=
  [ "$status" -eq 0 ] || fail "SIG$signal: exit status $status, not 0"
  left=$(find "$work/tmp" -mindepth 1)
  [ -z "$left" ] || fail "SIG$signal: left behind in TMPDIR: $left"
  echo "run-signals.sh: SIG$signal: exit status 0, TMPDIR empty, ring trace 0600"
done
echo "run-signals.sh: OK"
