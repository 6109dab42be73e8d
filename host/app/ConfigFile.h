// ConfigFile: how qos-snmp-agent reads a configuration file, as CLI11's
// configuration reader of the program.
//
// The format is CLI11's: one "key = value" per line, the key being a long
// option of the subcommand being run without its dashes ("state =
// /var/lib/switch/state.json", "community = public"), "#" starting a
// comment. CLI11 fills only options the command line left unset, so the
// command line overrides the file. The file given with --config is read for
// any subcommand; the default file only for run.
//
// On top of CLI11's reading it refuses, naming the file and the line:
//   - a key that is no long option of the subcommand (CLI11 alone would say
//     "INI was not able to parse KEY" without saying where);
//   - a [section] line (the file configures one subcommand);
//   - a file larger than kMaxBytes.
// Refusals are CLI::ConfigError, a parse error like any other usage error.
//
// The keys known are the subcommand's long options when the file is read,
// so an option added to a subcommand is a valid key without further ado.
//
//   CLI::Option* config = app.set_config("--config", ConfigFile::kDefaultPath, "...");
//   app.config_formatter(std::make_shared<ConfigFile>(app, *config));
#pragma once

#include <istream>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

namespace QosSnmpHost {

class ConfigFile : public CLI::ConfigBase {
 public:
  static constexpr const char* kDefaultPath = "/etc/qos-snmp-agent/qos-snmp-agent.conf";
  static constexpr std::size_t kMaxBytes = std::size_t{64} * 1024;

  // `program` (the top-level app) and `configOption` (its option naming the
  // file) must outlive this reader.
  ConfigFile(const CLI::App& program, const CLI::Option& configOption);

  std::vector<CLI::ConfigItem> from_config(std::istream& input) const override;

 private:
  std::string path() const;
  static bool isKey(const CLI::App& command, const std::string& name);

  const CLI::App& program_;
  const CLI::Option& configOption_;
};

}  // namespace QosSnmpHost
