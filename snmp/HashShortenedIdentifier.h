// Snmp::HashShortenedIdentifier: fits a name into a length-limited MIB
// identifier without losing its identity.
//
// Names of at most maxLength characters are returned unchanged. A longer
// name becomes its first (maxLength - 9) characters, then '-', then the
// 32-bit FNV-1a hash of the whole name as 8 lowercase hexadecimal digits, so
// the result is exactly maxLength characters long and two long names that
// share the kept prefix still differ (unless their hashes collide, which the
// 32-bit hash makes unlikely but possible). The result depends on the name
// and maxLength alone.
//
// Small limits keep the length exact: with maxLength 10 the result keeps one
// character of the name. Below that the separator is dropped: maxLength 9
// gives the name's first character and the 8 digits, maxLength 8 the digits
// alone, and smaller limits the first maxLength digits ("" for 0). The fewer
// digits kept, the likelier two names collide.
//
// Lengths count bytes: a name in UTF-8 may be cut inside a character.
//
//   Snmp::String id = Snmp::HashShortenedIdentifier().generateHashShortenedIdentifier(name, 30);
#pragma once

#include <cstddef>

#include "kel/String.h"
#include "snmp/String.h"

namespace Snmp {

class HashShortenedIdentifier {
 public:
  static constexpr char kSeparator = '-';
  static constexpr std::size_t kHashDigits = 8;
  // Characters the separator and the hash take at the end of a shortened name.
  static constexpr std::size_t kSuffixLength = 1 + kHashDigits;

  String generateHashShortenedIdentifier(const Kel::String& name, std::size_t maxLength) const;
};

}  // namespace Snmp
