# Runs one check of QOS-SNMP-MIB (see CMakeLists.txt) and fails on any
# complaint. Arguments: MIB_DIR, SMILINT, SNMPTRANSLATE, CHECK (lint|load).
set(module ${MIB_DIR}/QOS-SNMP-MIB.txt)

function(run_quietly)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  set(rc ${rc} PARENT_SCOPE)
  set(out "${out}" PARENT_SCOPE)
  set(err "${err}" PARENT_SCOPE)
endfunction()

if(CHECK STREQUAL "lint")
  # smilint exits 0 whatever it reports: any line it prints is a failure.
  set(ENV{SMIPATH} ":${MIB_DIR}/base")
  run_quietly(${SMILINT} -l 6 -s ${module})
  if(NOT rc EQUAL 0 OR NOT "${out}${err}" STREQUAL "")
    message(FATAL_ERROR "smilint -l 6 -s QOS-SNMP-MIB.txt (exit ${rc}):\n${out}${err}")
  endif()
elseif(CHECK STREQUAL "load")
  # Only this module (-m), found after the default directories (-M +...).
  set(snmp_args -M +${MIB_DIR}:${MIB_DIR}/base -m QOS-SNMP-MIB)
  # The module's tree, by the module-qualified name and by the bare name
  # (which snmptranslate looks up anywhere in the tree only with -IR).
  run_quietly(${SNMPTRANSLATE} ${snmp_args} -Tp QOS-SNMP-MIB::qosSnmpMIB)
  if(NOT rc EQUAL 0 OR NOT "${err}" STREQUAL "" OR NOT out MATCHES "qosEcnQueueCounterEnabled"
     OR NOT out MATCHES "qosSnmpAgentId")
    message(FATAL_ERROR "snmptranslate -Tp QOS-SNMP-MIB::qosSnmpMIB (exit ${rc}):\n${err}${out}")
  endif()
  set(qualified "${out}")
  run_quietly(${SNMPTRANSLATE} ${snmp_args} -Tp -IR qosSnmpMIB)
  if(NOT rc EQUAL 0 OR NOT "${err}" STREQUAL "" OR NOT out STREQUAL qualified)
    message(FATAL_ERROR "snmptranslate -Tp -IR qosSnmpMIB (exit ${rc}):\n${err}${out}")
  endif()
  run_quietly(${SNMPTRANSLATE} ${snmp_args} -On QOS-SNMP-MIB::qosSnmpObjects
              QOS-SNMP-MIB::qosClassMapCpType QOS-SNMP-MIB::qosEcnQueueCounterEnabled
              QOS-SNMP-MIB::qosSnmpAgentId)
  string(REGEX REPLACE "\n+" "\n" out "${out}")  # it separates answers with blank lines
  string(CONCAT expected ".1.3.6.1.4.1.32473.1.1\n.1.3.6.1.4.1.32473.1.1.1.1.3\n"
         ".1.3.6.1.4.1.32473.1.1.10.1.7\n.1.3.6.1.4.1.32473.1.3\n")
  if(NOT rc EQUAL 0 OR NOT "${err}" STREQUAL "" OR NOT out STREQUAL expected)
    message(FATAL_ERROR "snmptranslate -On (exit ${rc}):\n${err}${out}\nexpected:\n${expected}")
  endif()
else()
  message(FATAL_ERROR "CHECK must be lint or load, not '${CHECK}'")
endif()
