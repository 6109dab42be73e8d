// The program's version, as sysDescr and --version report it.
#pragma once

#include <string_view>

namespace QosSnmpHost {

inline constexpr std::string_view kAgentVersion = "0.2.0";

// sysDescr of the embedded master: the program, its version, what it is.
inline constexpr std::string_view kAgentDescription = "qos-snmp-agent 0.2.0: the QoS SNMP agent of a switch";

}  // namespace QosSnmpHost
