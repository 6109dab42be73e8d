# Script tests of the SNMP layer against outside tools, included by
# tests/host/CMakeLists.txt.
#   PrometheusModule   contrib/prometheus: the Debian generator writes the
#                      shipped snmp.yml, and snmp_exporter scrapes the
#                      example agent with it (class and policy names as
#                      labels of the counters).
#   RunPollerView      `run` as a poller sees it: the system group from the
#                      options, the agent group following the change
#                      stream, the engine ID kept across a restart,
#                      --no-v2c.
#   WalkOrderExample   snmpwalk, snmpbulkwalk -Cr10 and -Cr50 agree on the
#                      example switch, and on the smallest valid document
#                      (every table empty), and show every table's rows as
#                      dump does (walk-order.sh takes any state documents,
#                      the switch generator's presets among them).
#   MasterRestarts     snmpd restarted 4 times under the AgentX subagent
#                      (the 50-restart run is opt-in, see docs/snmp.md).
if(TARGET qos-snmp-agent)
  add_test(NAME PrometheusModule COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/snmp/prometheus-module.sh
                                         $<TARGET_FILE:qos-snmp-agent>)
  set_tests_properties(PrometheusModule PROPERTIES TIMEOUT 120)
  add_test(NAME RunPollerView COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/snmp/run-poller-view.sh
                                      $<TARGET_FILE:qos-snmp-agent>)
  set_tests_properties(RunPollerView PROPERTIES TIMEOUT 120)
  add_test(NAME WalkOrderExample COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/snmp/walk-order.sh
                                         $<TARGET_FILE:qos-snmp-agent> ${PROJECT_SOURCE_DIR}/examples/leaf-switch.json
                                         ${CMAKE_CURRENT_SOURCE_DIR}/snmp/walk-order-no-rows.json)
  set_tests_properties(WalkOrderExample PROPERTIES TIMEOUT 120)
  add_test(NAME MasterRestarts COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/snmp/master-restarts.sh
                                       $<TARGET_FILE:qos-snmp-agent> 4 2)
  set_tests_properties(MasterRestarts PROPERTIES TIMEOUT 180)
endif()
