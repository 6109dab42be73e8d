#include "toggles/JsonToggleStore.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <system_error>
#include <utility>

#include <nlohmann/json.hpp>

namespace Kel {
namespace {

std::string directoryOrEnvironment(std::string directory) {
  if (!directory.empty()) {
    return directory;
  }
  const char* fromEnvironment = std::getenv(JsonToggleStore::kDirectoryVariable);
  return fromEnvironment == nullptr ? std::string() : std::string(fromEnvironment);
}

// One line per problem, built whole so that lines from several threads do
// not interleave.
void reportProblem(const std::string& path, const std::string& problem) {
  std::ostringstream line;
  line << "toggles: ignoring " << path << ": " << problem << '\n';
  std::cerr << line.str() << std::flush;
}

}  // namespace

JsonToggleStore::JsonToggleStore(std::string directory)
    : directory_(directoryOrEnvironment(std::move(directory))) {}

std::optional<bool> JsonToggleStore::toggleState(const std::string& name, const std::string& file) {
  if (directory_.empty() || file.empty()) {
    return std::nullopt;
  }
  const std::string path = directory_ + "/" + file;
  std::ifstream in(path);
  if (!in) {
    std::error_code error;
    if (std::filesystem::exists(path, error)) {
      reportProblem(path, "cannot be read");
    }
    return std::nullopt;
  }
  const nlohmann::json toggles = nlohmann::json::parse(in, nullptr, /*allow_exceptions=*/false);
  if (toggles.is_discarded()) {
    reportProblem(path, "not valid JSON");
    return std::nullopt;
  }
  if (!toggles.is_object()) {
    reportProblem(path, "not a JSON object of toggle names to booleans");
    return std::nullopt;
  }
  const auto toggle = toggles.find(name);
  if (toggle == toggles.end()) {
    return std::nullopt;
  }
  if (!toggle->is_boolean()) {
    reportProblem(path, "toggle '" + name + "' is not a boolean");
    return std::nullopt;
  }
  return toggle->get<bool>();
}

}  // namespace Kel
