#include "snmp/String.h"

#include <ostream>

namespace Snmp {

std::ostream& operator<<(std::ostream& out, const String& s) { return out << s.view(); }

}  // namespace Snmp
