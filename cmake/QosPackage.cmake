# The Debian package, built by CPack's DEB generator from the configured
# and built tree (scripts/package): `cpack -G DEB` installs the tree into
# its staging directory and packs it; nothing is compiled again.
#
# The package creates the system user qos-snmp-agent (postinst) and ships
# the systemd unit disabled: `systemctl enable --now qos-snmp-agent` starts
# it. Files under /etc are conffiles.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME qos-snmp-agent)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "QoS SNMP agent maintainers <qos-snmp-agent@example.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "QoS SNMP agent of a switch")
set(CPACK_PACKAGE_DESCRIPTION
    "Turns the QoS part of a switch's state (class maps, policy maps, service\n"
    "policies, statistics, control-plane policing, ECN counters) into the tables\n"
    "of the MIB module QOS-SNMP-MIB and serves them over SNMP, as an embedded\n"
    "agent or as an AgentX subagent of the system's snmpd. Ships the MIB module,\n"
    "a systemd unit, a man page and the example switch the default configuration\n"
    "serves.")
string(REPLACE ";" "" CPACK_PACKAGE_DESCRIPTION "${CPACK_PACKAGE_DESCRIPTION}")
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION net)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "adduser")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# dpkg-shlibdeps finds the package's own libraries in the build tree.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS
    ${PROJECT_BINARY_DIR}/kel ${PROJECT_BINARY_DIR}/pellix ${PROJECT_BINARY_DIR}/snmp
    ${PROJECT_BINARY_DIR}/toggles ${PROJECT_BINARY_DIR}/QosSnmp)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_STRIP_FILES ON)
configure_file(${PROJECT_SOURCE_DIR}/packaging/conffiles.in ${PROJECT_BINARY_DIR}/packaging/conffiles @ONLY)
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA
    ${PROJECT_SOURCE_DIR}/packaging/postinst ${PROJECT_SOURCE_DIR}/packaging/prerm
    ${PROJECT_SOURCE_DIR}/packaging/postrm ${PROJECT_BINARY_DIR}/packaging/conffiles)
set(CPACK_OUTPUT_FILE_PREFIX ${PROJECT_BINARY_DIR}/package)
include(CPack)
