// Kel::JsonToggleStore: a ToggleStore reading toggle files written in JSON.
//
// The toggles of file F live in <directory>/F, a JSON object that maps each
// toggle name to its state, a JSON boolean:
//
//   { "QosEcnStats": true, "QosCoppPolicer": false }
//
// Nothing else is a state: a toggle whose value is not a boolean (a string
// "true", a number, an object) has no configured state.
//
// Answers:
//   - the toggle's boolean when the file is readable and holds it;
//   - nullopt, silently, when the file does not exist, the toggle is not in
//     it, the file name is empty or the store has no directory;
//   - nullopt, with one line on stderr naming the file (and the toggle when
//     its value is the problem), when the file cannot be read, is not a JSON
//     object, or the toggle's value is not a boolean.
//
// The directory is given to the constructor; an empty one means the value of
// the environment variable KEL_TOGGLE_DIR at construction (no variable: no
// directory). The file is read on every query, so edits take effect on the
// next query. Safe to query from several threads.
#pragma once

#include <optional>
#include <string>

#include "kel/ToggleStore.h"

namespace Kel {

class JsonToggleStore : public ToggleStore {
 public:
  static constexpr const char* kDirectoryVariable = "KEL_TOGGLE_DIR";

  explicit JsonToggleStore(std::string directory);

  // The directory the files are read from; empty when there is none.
  const std::string& directory() const { return directory_; }

  std::optional<bool> toggleState(const std::string& name, const std::string& file) override;

 private:
  std::string directory_;
};

}  // namespace Kel
