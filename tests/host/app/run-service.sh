#!/bin/bash
# run-service.sh PROGRAM: the program as a service runs it, from its
# configuration file, with signals, logging and exit statuses:
# - every log line of run carries a UTC time stamp with milliseconds, a
#   level and a component; --listen with port 0 logs the port it took;
# - SIGTERM and SIGINT stop it with exit status 0 and leave no temporary
#   file behind;
# - SIGHUP re-reads the configuration file: a new community serves on the
#   same port at once and the old one no longer does; the log level
#   changes; an option that cannot change while running is named as not
#   applied; a file that no longer parses is refused and the agent goes
#   on serving;
# - --log syslog writes nothing to standard error;
# - exit statuses: 0 --version, 64 usage errors (an unknown configuration
#   key names its file and line), 1 a port in use (with the reason), 2 a
#   refused state; --help documents them.
set -u
program=$1
cd "$(dirname "$0")/../../.." || exit 2
script=run-service.sh
. tests/host/agent-script.sh
export MIBS=
# The agent's temporary directories go here, to be counted.
export TMPDIR=$work/tmp
mkdir -p "$TMPDIR"
stamp='[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}\.[0-9]{3}Z (debug|info|notice|warning|error) [a-z-]+: '

wait_for() {  # wait_for PATTERN: until the agent logged PATTERN
  for _ in $(seq 100); do
    grep -Eq "$1" "$work/agent.err" 2>/dev/null && return 0
    kill -0 "$agent" 2>/dev/null || fail "the agent exited while waiting for: $1"
    sleep 0.1
  done
  fail "never logged: $1"
}
start() {  # start ARGS...: runs the agent in the background
  : >"$work/agent.err"
  "$program" "$@" 2>"$work/agent.err" &
  agent=$!
}
stop_with() {  # stop_with SIGNAL: sends it, expects exit status 0 and no temporary file
  kill -"$1" "$agent"
  wait "$agent"
  local status=$?
  agent=
  [ "$status" = 0 ] || fail "exit status $status after SIG$1"
  grep -Eq "info main: stopping on SIG$1\$" "$work/agent.err" || fail "no stop line for SIG$1"
  grep -Eq "info main: stopped\$" "$work/agent.err" || fail "no stopped line after SIG$1"
  [ -z "$(ls -A "$TMPDIR")" ] || fail "left behind after SIG$1: $(ls -A "$TMPDIR")"
}
port_of() { sed -En 's/.* info snmp: listening on udp:127\.0\.0\.1:([0-9]+)$/\1/p' "$work/agent.err" | head -1; }
get() {  # get COMMUNITY PORT: the module's first instance, by GETNEXT
  snmpgetnext -v2c -c "$1" -t 1 -r 0 -On "udp:127.0.0.1:$2" .1.3.6.1.4.1.32473.1 2>&1
}

# SIGTERM, from a configuration file, with a port the system chooses.
cat >"$work/agent.conf" <<CONF
# the example switch, a port the system chooses
state = examples/leaf-switch.json
listen = udp:127.0.0.1:0
community = public
CONF
start run --config "$work/agent.conf"
wait_for 'info snmp: listening on udp:127\.0\.0\.1:[0-9]+$'
port=$(port_of)
[ -n "$port" ] && [ "$port" != 0 ] || fail "no port in the listening line"
wait_for "info main: serving the QoS MIB on udp:127\.0\.0\.1:$port "
get public "$port" | grep -q '^.1.3.6.1.4.1.32473.1.1' || fail "not served on port $port: $(get public "$port")"

# SIGHUP: new community and log level, a change that needs a restart.
cat >"$work/agent.conf" <<CONF
state = examples/leaf-switch.json
listen = udp:127.0.0.1:0
changes = $work/absent.jsonl
community = secret
log-level = debug
CONF
kill -HUP "$agent"
wait_for 'info main: SIGHUP: SNMP agent restarted with community secret$'
grep -Eq 'info main: SIGHUP: logging to stderr from level debug$' "$work/agent.err" || fail "log level not applied"
grep -Eq "warning main: SIGHUP: changes changed from '' to '$work/absent.jsonl'; not applied until the next start\$" \
  "$work/agent.err" || fail "the unapplied change is not named"
get secret "$port" | grep -q '^.1.3.6.1.4.1.32473.1.1' || fail "new community not served on port $port"
get public "$port" | grep -q 'Timeout' || fail "old community still served: $(get public "$port")"
[ "$(ls -A "$TMPDIR" | wc -l)" = 1 ] || fail "temporary directories after SIGHUP: $(ls -A "$TMPDIR")"

# SIGHUP with a file that no longer parses: refused, still serving.
echo 'bogus = 1' >>"$work/agent.conf"
kill -HUP "$agent"
wait_for "error config: SIGHUP: configuration not applied, the running one stays: $work/agent.conf:6: unknown key 'bogus'"
get secret "$port" | grep -q '^.1.3.6.1.4.1.32473.1.1' || fail "not serving after a refused SIGHUP"

stop_with TERM
bad=$(grep -Ev "^$stamp" "$work/agent.err")
[ -z "$bad" ] || fail "log lines without time stamp, level and component: $bad"

# SIGINT, options on the command line.
start run --state examples/leaf-switch.json --listen udp:127.0.0.1:0
wait_for 'info main: serving the QoS MIB'
stop_with INT

# A subagent without its master says so, and not that it serves.
start run --state examples/leaf-switch.json --agentx "$work/no-master.sock" --agentx-ping-interval 1
wait_for "warning snmp: no AgentX master at $work/no-master.sock yet, retrying every 1 s\$"
wait_for "info main: serving the QoS MIB as an AgentX subagent of $work/no-master.sock once connected\$"
stop_with TERM

# --log syslog: nothing on standard error.
start run --state examples/leaf-switch.json --listen udp:127.0.0.1:0 --log syslog
sleep 1
kill -TERM "$agent"
wait "$agent" || fail "exit status $? with --log syslog"
agent=
[ ! -s "$work/agent.err" ] || fail "--log syslog wrote to standard error"

# Exit statuses.
expect_status() {  # expect_status STATUS PATTERN ARGS...: exit status and a line of standard error
  local status=$1 pattern=$2
  shift 2
  "$program" "$@" >"$work/out" 2>"$work/err"
  local actual=$?
  [ "$actual" = "$status" ] || fail "$*: exit status $actual, expected $status: $(cat "$work/err")"
  grep -Eq -e "$pattern" "$work/err" "$work/out" || fail "$*: no '$pattern' in: $(cat "$work/err" "$work/out")"
}
expect_status 0 '^qos-snmp-agent [0-9]+\.[0-9]+\.[0-9]+' --version
expect_status 64 'A subcommand is required' 
expect_status 64 'The following argument was not expected: --bogus|bogus' check --state examples/leaf-switch.json --bogus
expect_status 64 '--listen excludes --agentx' run --state x --listen a --agentx b
printf 'state = examples/leaf-switch.json\n\n# comment\nlisten-on = udp:127.0.0.1:1161\n' >"$work/bad.conf"
expect_status 64 "^qos-snmp-agent: $work/bad.conf:4: unknown key 'listen-on'" run --config "$work/bad.conf"
expect_status 64 "$work/absent.conf" run --config "$work/absent.conf"
printf 'state = examples/leaf-switch.json\n' >"$work/good.conf"
expect_status 0 'OK' check --config "$work/good.conf"
expect_status 2 'cannot read' check --state "$work/absent.json"
python3 -c 'import socket,time,sys; s=socket.socket(socket.AF_INET, socket.SOCK_DGRAM); s.bind(("127.0.0.1", 0)); print(s.getsockname()[1], flush=True); time.sleep(30)' >"$work/taken" &
holder=$!
for _ in $(seq 50); do [ -s "$work/taken" ] && break; sleep 0.1; done
taken=$(cat "$work/taken")
expect_status 1 "cannot listen on 'udp:127\.0\.0\.1:$taken': Address already in use" \
  run --state examples/leaf-switch.json --listen "udp:127.0.0.1:$taken"
kill "$holder"
expect_status 1 "cannot listen on 'udp:127\.0\.0\.1:99999': " run --state examples/leaf-switch.json --listen udp:127.0.0.1:99999
"$program" --help >"$work/help"
for line in '0 +success' '1 +could not start' '2 +input refused' '64 +usage error'; do
  grep -Eq "^ +$line" "$work/help" || fail "--help does not document exit status: $line"
done
[ -z "$(ls -A "$TMPDIR")" ] || fail "left behind: $(ls -A "$TMPDIR")"
echo "run-service.sh: OK"
