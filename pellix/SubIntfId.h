// Pellix::SubIntfId: what makes an interface id a sub-interface.
//
// A sub-interface is named after its parent interface, then '.', then its
// number: one or more decimal digits ending the name ("Ethernet1/1.100",
// "Port-Channel10.5"). The parent part must not be empty (".5" is not a
// sub-interface) and is not checked any further: only the last '.' counts,
// so "Ethernet1/1.2.3" is read as sub-interface 3 of "Ethernet1/1.2".
#pragma once

#include "pellix/IntfId.h"

namespace Pellix {

class SubIntfId {
 public:
  static constexpr char kNumberSeparator = '.';

  static bool isSubIntfId(const IntfId& id) noexcept;
};

}  // namespace Pellix
