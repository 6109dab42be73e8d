// uniqueId: the one way a configuration name (class map, policy map, chip)
// becomes the name field of a MIB index or the displayed name of a row.
//
// The result is the hash-shortened identifier of the name, at most
// kUniqueIdMaxLength characters: shorter names are returned unchanged,
// longer ones are cut and given the name's hash (see
// Snmp::HashShortenedIdentifier). It depends on the name alone, so a row
// added under uniqueId(name) is found again under uniqueId(name). A
// shortened name is never compared with a raw one.
//
// Two long names may in principle shorten to the same identifier (their
// 32-bit hashes collide); the MIB model then keeps the row written last.
//
//   const ClassMapTableIndex index(uniqueId(classMapStatus->name()), classMapStatus->type());
#pragma once

#include <cstddef>

#include "kel/String.h"
#include "snmp/String.h"

namespace QosSnmp {

inline constexpr std::size_t kUniqueIdMaxLength = 30;

Snmp::String uniqueId(const Kel::String& name);

}  // namespace QosSnmp
