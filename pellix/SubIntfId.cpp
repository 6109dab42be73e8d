#include "pellix/SubIntfId.h"

#include <string_view>

namespace Pellix {

bool SubIntfId::isSubIntfId(const IntfId& id) noexcept {
  const std::string_view name = id.name().view();
  const std::size_t separator = name.rfind(kNumberSeparator);
  if (separator == std::string_view::npos || separator == 0 || separator + 1 == name.size()) {
    return false;
  }
  return name.find_first_not_of("0123456789", separator + 1) == std::string_view::npos;
}

}  // namespace Pellix
