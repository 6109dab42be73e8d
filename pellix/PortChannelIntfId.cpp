#include "pellix/PortChannelIntfId.h"

#include <algorithm>

namespace Pellix {

bool PortChannelIntfId::isPortChannelIntfId(const IntfId& id) noexcept {
  std::string_view name = id.name().view();
  if (!name.starts_with(kNamePrefix)) {
    return false;
  }
  name.remove_prefix(kNamePrefix.size());
  return !name.empty() && std::all_of(name.begin(), name.end(), [](char c) { return c >= '0' && c <= '9'; });
}

}  // namespace Pellix
