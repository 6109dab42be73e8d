# Shared set-up of the shell tests that run qos-snmp-agent (sourced from
# the repository's top directory, not run): a private work directory
# removed at the end, the agent (and a snmpd the script records in
# `snmpd_pid`) stopped on every way out, fail() that prints their last
# output, and free_udp_port.
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
