// Pellix::IntfId: the identifier of one interface, by name ("Ethernet1/1",
// "Port-Channel10", "Ethernet1/1.100").
//
// A value type the size of one Kel::String: copies share the name's buffer
// and the hash is the name's, computed once, so an IntfId is cheap as a key
// in hashed and ordered maps. The default IntfId is the empty id (empty
// name).
//
// Equality is equality of the names. Ordering is natural, the order an
// operator expects in a listing: runs of digits compare by their numeric
// value and everything else byte by byte, so "Ethernet2" < "Ethernet10" and
// "Ethernet1/2" < "Ethernet1/10". Names equal under that rule ("Ethernet01"
// and "Ethernet1") are ordered by plain byte comparison, so two ids compare
// equal exactly when their names are equal.
//
//   Pellix::IntfId intf(Kel::String("Ethernet1/1"));
//   std::map<Pellix::IntfId, Counters> byIntf;  // Ethernet1/2 before Ethernet1/10
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

namespace Pellix {

class IntfId {
 public:
  IntfId() noexcept = default;
  explicit IntfId(Kel::String name) noexcept : name_(std::move(name)) {}

  // Makes this the id of the interface called `name`, replacing any name
  // held before.
  void handleInitialized(Kel::String name) noexcept { name_ = std::move(name); }

  const Kel::String& name() const noexcept { return name_; }
  std::string stringValue() const { return name_.stringValue(); }
  bool empty() const noexcept { return name_.empty(); }
  // The name's hash (see Kel::String::hash).
  Kel::U32 hash() const noexcept { return name_.hash(); }

  friend bool operator==(const IntfId& a, const IntfId& b) noexcept { return a.name_ == b.name_; }
  friend std::strong_ordering operator<=>(const IntfId& a, const IntfId& b) noexcept {
    return compareNames(a.name_.view(), b.name_.view());
  }

  // The interface-name order described above, for callers that hold names
  // rather than ids. Equal results only for equal names.
  static std::strong_ordering compareNames(std::string_view a, std::string_view b) noexcept;

 private:
  Kel::String name_;
};

// Prints the name; the empty id prints nothing.
std::ostream& operator<<(std::ostream& out, const IntfId& id);

}  // namespace Pellix

template <>
struct std::hash<Pellix::IntfId> {
  std::size_t operator()(const Pellix::IntfId& id) const noexcept { return id.hash(); }
};
