// Kel::ToggleStore: where feature toggles get their configured state.
//
// A toggle is named, and lives in a file named by its owner (one file per
// feature area). A store answers the configured state of one toggle, or
// nullopt when it has none (no such file, no such toggle, or one it cannot
// read); the caller then keeps its built-in default. Stores may be asked
// from any thread.
#pragma once

#include <optional>
#include <string>

namespace Kel {

class ToggleStore {
 public:
  virtual ~ToggleStore() = default;

  virtual std::optional<bool> toggleState(const std::string& name, const std::string& file) = 0;
};

}  // namespace Kel
