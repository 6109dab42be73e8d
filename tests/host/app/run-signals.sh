#!/bin/bash
# run-signals.sh PROGRAM: every way out of `qos-snmp-agent run` that can be
# caught leaves nothing behind. The agent is started on the example switch
# with a ring trace, on a free loopback port and with TMPDIR pointing at an
# empty directory; once it serves, the ring trace must be owner-only (0600)
# and the SNMP front end's private directory must exist under TMPDIR. For
# SIGTERM and SIGINT the agent must then exit with status 0 and TMPDIR must
# be empty again. SIGHUP re-reads the configuration: the agent must go on
# serving with still one private directory, then stop as above on SIGTERM.
set -u
program=$1
cd "$(dirname "$0")/../../.." || exit 2
script=run-signals.sh
. tests/host/agent-script.sh

for signal in TERM INT HUP; do
  port=$(free_udp_port)
  rm -rf "$work/tmp" "$work/agent.ring" "$work/agent.ring.prev"
  mkdir "$work/tmp"
  TMPDIR="$work/tmp" "$program" run --state examples/leaf-switch.json --listen "udp:127.0.0.1:$port" \
    --ring-trace "$work/agent.ring" 2>"$work/agent.err" &
  agent=$!
  wait_serving "SIG$signal: the agent"

  mode=$(stat -c %a "$work/agent.ring")
  [ "$mode" = 600 ] || fail "SIG$signal: the ring trace has mode $mode, not 600"
  made=$(find "$work/tmp" -mindepth 1 -maxdepth 1 | wc -l)
  [ "$made" -eq 1 ] || fail "SIG$signal: expected the front end's one private directory in TMPDIR, found $made entries"

  kill -s "$signal" "$agent"
  if [ "$signal" = HUP ]; then
    for _ in $(seq 100); do
      grep -q 'SIGHUP' "$work/agent.err" 2>/dev/null && break
      sleep 0.1
    done
    grep -q 'SIGHUP' "$work/agent.err" || fail "SIGHUP: not reported"
    kill -0 "$agent" 2>/dev/null || fail "SIGHUP: the agent stopped"
    made=$(find "$work/tmp" -mindepth 1 -maxdepth 1 | wc -l)
    [ "$made" -eq 1 ] || fail "SIGHUP: expected one private directory in TMPDIR after the re-read, found $made"
    kill -s TERM "$agent"
  fi
  status=0
  wait "$agent" || status=$?
  agent=
  [ "$status" -eq 0 ] || fail "SIG$signal: exit status $status, not 0"
  left=$(find "$work/tmp" -mindepth 1)
  [ -z "$left" ] || fail "SIG$signal: left behind in TMPDIR: $left"
  echo "run-signals.sh: SIG$signal: exit status 0, TMPDIR empty, ring trace 0600"
done
echo "run-signals.sh: OK"
