# Shared set-up of the shell tests that run qos-snmp-agent (sourced from
# the repository's top directory, not run): a private work directory
# removed at the end, the agent (and a snmpd the script records in
# `snmpd_pid`) stopped on every way out, fail() that prints their last
# output, free_udp_port and wait_serving.
#
#   script=run-snmp.sh
#   . tests/host/agent-script.sh
#   agent=$!            # the agent's PID, once started
#   fail "the walk differs"
work=$(mktemp -d)
agent=
snmpd_pid=
cleanup() {
  [ -n "$snmpd_pid" ] && { kill -KILL "$snmpd_pid"; wait "$snmpd_pid"; } 2>/dev/null
  [ -n "$agent" ] && { kill "$agent"; wait "$agent"; } 2>/dev/null
  rm -rf "$work"
}
trap cleanup EXIT
fail() {
  echo "$script: FAIL: $*" >&2
  [ -f "$work/agent.err" ] && tail -40 "$work/agent.err" | sed 's/^/  agent: /' >&2
  [ -f "$work/snmpd.log" ] && tail -20 "$work/snmpd.log" | sed 's/^/  snmpd: /' >&2
  exit 1
}
# A UDP port on the loopback that nothing is bound to now.
free_udp_port() {
  python3 -c 'import socket; s=socket.socket(socket.AF_INET, socket.SOCK_DGRAM); s.bind(("127.0.0.1", 0)); print(s.getsockname()[1])'
}
# Waits up to 10 s for the agent ($agent, logging to $work/agent.err) to
# say it serves; fails, naming `what`, if it exits first or never does.
wait_serving() {
  local what=${1:-the agent}
  for _ in $(seq 100); do
    grep -q 'serving the QoS MIB' "$work/agent.err" 2>/dev/null && return 0
    kill -0 "$agent" 2>/dev/null || fail "$what exited at start"
    sleep 0.1
  done
  fail "$what does not serve"
}
