#include "QosSnmp/core/UniqueId.h"

#include "snmp/HashShortenedIdentifier.h"

namespace QosSnmp {

Snmp::String uniqueId(const Kel::String& name) {
  return Snmp::HashShortenedIdentifier().generateHashShortenedIdentifier(name, kUniqueIdMaxLength);
}

}  // namespace QosSnmp
