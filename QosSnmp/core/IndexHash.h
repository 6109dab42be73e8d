// What every MIB index record shares: its hash mixing (IndexHash) and the
// SNMP index order of a string field (compareOctetStringIndex).
//
// The hash. Starting from h = 0, every field in the record's hash order
// feeds its bytes; each byte b does
//   h += b;  h += h << 10;  h ^= h >> 6;
// and finish() closes with
//   h += h << 3;  h ^= h >> 11;  h += h << 15;
// all in unsigned 32-bit arithmetic. A 32-bit integer or enumeration feeds
// its four bytes, least significant first; an 8-bit field its one byte; a
// string the four bytes of its 32-bit character hash (Snmp::String::hash,
// FNV-1a). Names in index records are not interned, so the characters'
// hash stands in for a handle and the record hash agrees with equality.
//
//   U32 QosStatsTableIndex::hash() const {
//     IndexHash h;
//     h.add(cmapName_);
//     h.add(pmapName_);
//     h.add(type_);
//     h.add(qualifier_);
//     return h.finish();
//   }
//
// Only exactly typed fields are accepted: a field of another integer type
// must say how many bytes it contributes (addByte for 8 bits), so a narrow
// field can never be widened to four bytes by accident.
//
// The order. An index field of type OCTET STRING (not IMPLIED) is encoded
// in the instance identifier with its length first, so in SNMP order a
// shorter string sorts before a longer one whatever its characters, and
// strings of equal length compare byte by byte as unsigned values.
#pragma once

#include <compare>
#include <type_traits>

#include "kel/Types.h"
#include "snmp/String.h"

namespace QosSnmp {

class IndexHash {
 public:
  void add(Kel::U32 value) noexcept {
    for (int shift = 0; shift < 32; shift += 8) {
      addByte(static_cast<Kel::U8>(value >> shift));
    }
  }
  void add(Kel::S32 value) noexcept { add(static_cast<Kel::U32>(value)); }
  void add(const Snmp::String& value) noexcept { add(value.hash()); }
  template <typename E>
  requires std::is_enum_v<E>
  void add(E value) noexcept {
    static_assert(sizeof(E) == sizeof(Kel::U32), "an enumeration field feeds four bytes");
    add(static_cast<Kel::U32>(value));
  }
  // Any other type: say how many bytes it contributes.
  template <typename T>
  void add(T value) = delete;

  void addByte(Kel::U8 byte) noexcept {
    h_ += byte;
    h_ += h_ << 10U;
    h_ ^= h_ >> 6U;
  }

  Kel::U32 finish() const noexcept {
    Kel::U32 h = h_;
    h += h << 3U;
    h ^= h >> 11U;
    h += h << 15U;
    return h;
  }

 private:
  Kel::U32 h_ = 0;
};

// SNMP index order of two OCTET STRING index fields: length first, then
// bytes.
inline std::strong_ordering compareOctetStringIndex(const Snmp::String& a, const Snmp::String& b) noexcept {
  if (const auto bySize = a.size() <=> b.size(); std::is_neq(bySize)) {
    return bySize;
  }
  // char_traits<char> compares as unsigned char, as the OID sub-identifiers do.
  return a.view().compare(b.view()) <=> 0;
}

// compareOctetStringIndex as a comparator, for maps keyed by a bare name.
struct OctetStringIndexLess {
  bool operator()(const Snmp::String& a, const Snmp::String& b) const noexcept {
    return std::is_lt(compareOctetStringIndex(a, b));
  }
};

}  // namespace QosSnmp
