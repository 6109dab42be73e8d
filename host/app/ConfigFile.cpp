#include "host/app/ConfigFile.h"

#include <iterator>
#include <sstream>

namespace QosSnmpHost {

namespace {

std::string trimmed(const std::string& text) {
  const std::size_t first = text.find_first_not_of(" \t\r");
  if (first == std::string::npos) {
    return {};
  }
  return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

}  // namespace

ConfigFile::ConfigFile(const CLI::App& program, const CLI::Option& configOption)
    : program_(program), configOption_(configOption) {}

std::string ConfigFile::path() const {
  return configOption_.count() > 0 ? configOption_.results().front() : configOption_.get_default_str();
}

bool ConfigFile::isKey(const CLI::App& command, const std::string& name) {
  for (const CLI::Option* option : command.get_options()) {
    if (!option->get_configurable()) {
      continue;
    }
    for (const std::string& longName : option->get_lnames()) {
      if (longName == name) {
        return true;
      }
    }
  }
  return false;
}

std::vector<CLI::ConfigItem> ConfigFile::from_config(std::istream& input) const {
  const std::vector<CLI::App*> parsed = program_.get_subcommands();
  if (parsed.empty()) {
    return {};  // the missing subcommand is the error to report
  }
  const CLI::App& command = *parsed.front();
  if (configOption_.count() == 0 && command.get_name() != "run") {
    return {};
  }
  std::string text;
  text.resize(kMaxBytes + 1);
  input.read(text.data(), static_cast<std::streamsize>(text.size()));
  text.resize(static_cast<std::size_t>(input.gcount()));
  if (text.size() > kMaxBytes) {
    throw CLI::ConfigError(path() + ": larger than " + std::to_string(kMaxBytes) + " bytes");
  }
  std::istringstream lines(text);
  std::string line;
  for (int number = 1; std::getline(lines, line); ++number) {
    const std::string content = trimmed(line);
    if (content.empty() || content.front() == commentChar) {
      continue;
    }
    const std::string where = path() + ":" + std::to_string(number) + ": ";
    if (content.front() == '[') {
      std::string message = where;
      message.append("sections are not used; write the keys of one subcommand: ").append(content);
      throw CLI::ConfigError(message);
    }
    const std::string key = trimmed(content.substr(0, content.find(valueDelimiter)));
    if (!isKey(command, key)) {
      std::string message = where;
      message.append("unknown key '")
          .append(key)
          .append("' (not an option of ")
          .append(command.get_name())
          .append(")");
      throw CLI::ConfigError(message);
    }
  }
  std::istringstream again(text);
  std::vector<CLI::ConfigItem> items = CLI::ConfigBase::from_config(again);
  for (CLI::ConfigItem& item : items) {
    item.parents.insert(item.parents.begin(), command.get_name());
  }
  return items;
}

}  // namespace QosSnmpHost
