// Pellix::PortChannelIntfId: what makes an interface id a port channel.
//
// A port channel is named "Port-Channel" followed by its number: one or more
// decimal digits and nothing after them ("Port-Channel10"). The match is
// case-sensitive, as interface names are. A sub-interface of a port channel
// ("Port-Channel10.100") is not itself a port channel; see SubIntfId.
#pragma once

#include <string_view>

#include "pellix/IntfId.h"

namespace Pellix {

class PortChannelIntfId {
 public:
  static constexpr std::string_view kNamePrefix = "Port-Channel";

  static bool isPortChannelIntfId(const IntfId& id) noexcept;
};

}  // namespace Pellix
