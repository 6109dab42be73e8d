# Install rules of everything but the program (host/CMakeLists.txt):
#
#   bin/qos-snmp-agent                            the program, RPATH $ORIGIN/../lib/<arch>/qos-snmp-agent
#   lib/<arch>/qos-snmp-agent/                    the plug-in and the project's shared libraries
#   share/snmp/mibs/QOS-SNMP-MIB.txt              where net-snmp and libsmi look by default
#   share/qos-snmp-agent/mibs/                    the three SMIv2 base modules it imports, in a
#                                                 directory no other package searches, so they
#                                                 never shadow full copies of those modules
#   share/man/man8/qos-snmp-agent.8.gz            from the program's --help-all (help2man)
#   share/doc/qos-snmp-agent/                     README, docs, the example switch, changelog, copyright
#   /etc/qos-snmp-agent/qos-snmp-agent.conf       the commented default configuration
#   /lib/systemd/system/qos-snmp-agent.service    the unit (prefix /usr; else PREFIX/lib/systemd/system)
set(qos_doc_dir ${CMAKE_INSTALL_DATADIR}/doc/qos-snmp-agent)
set(QOS_INSTALL_BASE_MIBDIR ${CMAKE_INSTALL_DATADIR}/qos-snmp-agent/mibs)
set(QOS_INSTALL_FULL_BASE_MIBDIR ${CMAKE_INSTALL_PREFIX}/${QOS_INSTALL_BASE_MIBDIR})
set(QOS_INSTALL_FULL_MIBDIR ${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_DATADIR}/snmp/mibs)
set(QOS_INSTALL_FULL_DOCDIR ${CMAKE_INSTALL_PREFIX}/${qos_doc_dir})
set(QOS_INSTALL_FULL_CONFIG ${CMAKE_INSTALL_FULL_SYSCONFDIR}/qos-snmp-agent/qos-snmp-agent.conf)
if(CMAKE_INSTALL_PREFIX STREQUAL "/usr")
  set(qos_unit_dir /lib/systemd/system)
else()
  set(qos_unit_dir ${CMAKE_INSTALL_PREFIX}/lib/systemd/system)
endif()

# The libraries find each other and the model library from where they are.
set(qos_installed_libraries kel pellix snmpnames toggles qossnmpmodel QosSnmpAgent)
set_target_properties(${qos_installed_libraries} PROPERTIES INSTALL_RPATH "$ORIGIN")

# Hardening of what is installed, as Debian's build flags would give it:
# full RELRO with immediate binding, and fortified C library calls where
# the compiler can check buffer sizes (not with the sanitizers, which
# replace those calls themselves). Source paths (assertion messages, debug
# information) are written relative to the repository, so no installed file
# names the tree it was built in.
foreach(target ${qos_installed_libraries} qos-snmp-agent qoshostapp qoshostlog qoshoststate qoshostdump
               qoshosttree qoshostsnmp qossnmpagentobjects)
  if(TARGET ${target})
    get_target_property(type ${target} TYPE)
    if(NOT type MATCHES "STATIC_LIBRARY|OBJECT_LIBRARY")
      target_link_options(${target} PRIVATE -Wl,-z,relro,-z,now)
    endif()
    if(NOT QOS_SANITIZE)
      target_compile_definitions(${target} PRIVATE _FORTIFY_SOURCE=2)
    endif()
    target_compile_options(${target} PRIVATE -ffile-prefix-map=${PROJECT_SOURCE_DIR}/=)
  endif()
endforeach()
install(TARGETS ${qos_installed_libraries} LIBRARY DESTINATION ${QOS_INSTALL_PLUGINDIR})

install(FILES mib/QOS-SNMP-MIB.txt DESTINATION ${CMAKE_INSTALL_DATADIR}/snmp/mibs)
install(FILES mib/base/SNMPv2-SMI.txt mib/base/SNMPv2-TC.txt mib/base/SNMPv2-CONF.txt
        DESTINATION ${QOS_INSTALL_BASE_MIBDIR})

install(FILES README.md docs/development.md docs/error-policy.md docs/ring-trace.md docs/state-format.md
              docs/state-format.schema.json docs/state-machines.md
        DESTINATION ${qos_doc_dir})
install(FILES examples/leaf-switch.json examples/leaf-switch-changes.jsonl DESTINATION ${qos_doc_dir}/examples)

# Files with the installed paths written in.
set(qos_generated ${PROJECT_BINARY_DIR}/packaging)
configure_file(packaging/qos-snmp-agent.service.in ${qos_generated}/qos-snmp-agent.service @ONLY)
configure_file(packaging/qos-snmp-agent.conf.in ${qos_generated}/qos-snmp-agent.conf @ONLY)
configure_file(packaging/qos-snmp-agent.8.include.in ${qos_generated}/qos-snmp-agent.8.include @ONLY)
configure_file(packaging/changelog.Debian.in ${qos_generated}/changelog.Debian @ONLY)
install(FILES ${qos_generated}/qos-snmp-agent.service DESTINATION ${qos_unit_dir})
install(FILES ${qos_generated}/qos-snmp-agent.conf DESTINATION ${CMAKE_INSTALL_FULL_SYSCONFDIR}/qos-snmp-agent)
install(FILES packaging/copyright DESTINATION ${qos_doc_dir})
install(FILES packaging/lintian-overrides DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides
        RENAME qos-snmp-agent)

# The man page: the program's own --help-all and --version, with the
# sections help cannot hold (files, signals, MIB directories).
find_program(HELP2MAN help2man REQUIRED)
find_program(GZIP gzip REQUIRED)
set(qos_man ${qos_generated}/qos-snmp-agent.8)
add_custom_command(
  OUTPUT ${qos_man}.gz ${qos_generated}/changelog.Debian.gz
  COMMAND ${HELP2MAN} --no-info --section=8 --help-option=--help-all --version-option=--version
          --name=QoS\ SNMP\ agent\ of\ a\ switch --include=${qos_generated}/qos-snmp-agent.8.include
          --output=${qos_man} $<TARGET_FILE:qos-snmp-agent>
  COMMAND ${GZIP} -9nf ${qos_man}
  COMMAND ${GZIP} -9nc ${qos_generated}/changelog.Debian > ${qos_generated}/changelog.Debian.gz
  DEPENDS qos-snmp-agent ${qos_generated}/qos-snmp-agent.8.include ${qos_generated}/changelog.Debian
  COMMENT "Writing the man page qos-snmp-agent(8)")
add_custom_target(qos-man-page ALL DEPENDS ${qos_man}.gz)
install(FILES ${qos_man}.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man8)
install(FILES ${qos_generated}/changelog.Debian.gz DESTINATION ${qos_doc_dir})
