// Snmp::String: the MIB model's string, the type of the names and
// descriptions handed to table rows.
//
// A thin value type over Kel::String, kept distinct so that a row's text
// attributes cannot be mixed up with the framework's own strings by
// accident: it converts from Kel::String, C strings and string views, and
// gives its Kel::String back with kelString(). Copies share one buffer.
// Equality, byte-wise ordering and the hash are those of the characters,
// exactly as for Kel::String.
//
//   Snmp::String rowName = "copp-system-policy";
//   std::unordered_set<Snmp::String> names{rowName};
#pragma once

#include <compare>
#include <cstddef>
#include <functional>
#include <iosfwd>
#include <string>
#include <string_view>
#include <utility>

#include "kel/String.h"
#include "kel/Types.h"

namespace Snmp {

class String {
 public:
  String() noexcept = default;
  String(Kel::String chars) noexcept : chars_(std::move(chars)) {}  // NOLINT(google-explicit-constructor)
  String(const char* chars) : chars_(chars) {}                      // NOLINT(google-explicit-constructor)
  String(std::string_view chars) : chars_(chars) {}                 // NOLINT(google-explicit-constructor)
  String(const std::string& chars) : chars_(chars) {}               // NOLINT(google-explicit-constructor)

  const Kel::String& kelString() const noexcept { return chars_; }
  std::string_view view() const noexcept { return chars_.view(); }
  std::string stringValue() const { return chars_.stringValue(); }
  const char* data() const noexcept { return chars_.data(); }
  std::size_t size() const noexcept { return chars_.size(); }
  bool empty() const noexcept { return chars_.empty(); }
  Kel::U32 hash() const noexcept { return chars_.hash(); }

  friend bool operator==(const String& a, const String& b) noexcept { return a.chars_ == b.chars_; }
  friend std::strong_ordering operator<=>(const String& a, const String& b) noexcept {
    return a.chars_ <=> b.chars_;
  }

 private:
  Kel::String chars_;
};

std::ostream& operator<<(std::ostream& out, const String& s);

}  // namespace Snmp

template <>
struct std::hash<Snmp::String> {
  std::size_t operator()(const Snmp::String& s) const noexcept { return s.hash(); }
};
