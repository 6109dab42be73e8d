// qos-walk-bench: SNMP walk cost of our MIB view against a plain net-snmp
// handler over a sorted array, in one process and one run.
//
// Loads a switch state (--state) and builds the agent over it, serves its
// MIB view with SnmpFrontEnd as an embedded master on a loopback port, and
// registers beside it, under the module's arc 99, a plain handler that
// answers GET with a binary search and GETNEXT with an upper bound over a
// sorted array of as many instances as a walk of our objects returns (five
// columns: Integer32, a 10-byte OCTET STRING, three Counter64; index an
// Integer32 and a string, like our tables). Then it walks each subtree with
// `snmpbulkwalk -Cr50` in turn (--walks times each, interleaved) while the
// process serves, and reports for each: varbinds per walk, this process's
// CPU per varbind (getrusage, the process does nothing else meanwhile) and
// varbinds per second of wall time, with the ratios ours/theirs.
//
//   qos-walk-bench --state examples/leaf-switch.json --walks 20
#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>
#include <net-snmp/agent/net-snmp-agent-includes.h>

#include "bench/GuardedMain.h"
#include "host/app/AgentHost.h"
#include "host/app/PluginLoader.h"
#include "host/snmp/MibView.h"
#include "host/snmp/SnmpFrontEnd.h"
#include "host/state/SwitchState.h"
#include "kel/ActivityManager.h"
#include "kel/Clock.h"
#include "kel/System.h"

extern char** environ;

namespace {

using QosSnmpHost::MibView;

// The plain handler's rows, in OID order, and the values it answers.
class SortedTable {
 public:
  SortedTable(std::vector<oid> base, std::size_t instances) : base_(std::move(base)) {
    const std::size_t rows = (instances + kColumns - 1) / kColumns;
    for (std::size_t column = 1; column <= kColumns; ++column) {
      for (std::size_t row = 1; row <= rows && oids_.size() < instances; ++row) {
        std::vector<oid> name = base_;
        name.insert(name.end(), {1, 1, column, row, kNameLength});
        const std::string rowName = nameOf(row);
        name.insert(name.end(), rowName.begin(), rowName.end());
        oids_.push_back(std::move(name));
      }
    }
    std::sort(oids_.begin(), oids_.end(), [](const std::vector<oid>& a, const std::vector<oid>& b) {
      return snmp_oid_compare(a.data(), a.size(), b.data(), b.size()) < 0;
    });
  }

  const std::vector<oid>& base() const { return base_; }
  std::size_t answered() const { return answered_; }

  static int handle(netsnmp_mib_handler* handler, netsnmp_handler_registration* /*registration*/,
                    netsnmp_agent_request_info* requestInfo, netsnmp_request_info* requests) {
    auto* table = static_cast<SortedTable*>(handler->myvoid);
    for (netsnmp_request_info* request = requests; request != nullptr; request = request->next) {
      if (request->processed != 0) {
        continue;
      }
      netsnmp_variable_list* varBind = request->requestvb;
      ++table->answered_;
      const auto less = [](const std::vector<oid>& entry, const netsnmp_variable_list* vb) {
        return snmp_oid_compare(entry.data(), entry.size(), vb->name, vb->name_length) < 0;
      };
      auto it = std::lower_bound(table->oids_.begin(), table->oids_.end(), varBind, less);
      if (requestInfo->mode == MODE_GET) {
        if (it == table->oids_.end() ||
            snmp_oid_compare(it->data(), it->size(), varBind->name, varBind->name_length) != 0) {
          netsnmp_set_request_error(requestInfo, request, SNMP_NOSUCHINSTANCE);
          continue;
        }
      } else {
        if (it != table->oids_.end() &&
            snmp_oid_compare(it->data(), it->size(), varBind->name, varBind->name_length) == 0) {
          ++it;
        }
        if (it == table->oids_.end()) {
          continue;
        }
        snmp_set_var_objid(varBind, it->data(), it->size());
      }
      table->setValue(varBind, *it);
    }
    return SNMP_ERR_NOERROR;
  }

 private:
  static constexpr std::size_t kColumns = 5;
  static constexpr std::size_t kNameLength = 10;

  static std::string nameOf(std::size_t row) {
    std::string name = "row" + std::to_string(row);
    name.resize(kNameLength, 'x');
    return name;
  }

  void setValue(netsnmp_variable_list* varBind, const std::vector<oid>& name) const {
    const std::size_t column = name[base_.size() + 2];
    const std::size_t row = name[base_.size() + 3];
    if (column == 1) {
      const long value = static_cast<long>(row);
      snmp_set_var_typed_value(varBind, ASN_INTEGER, &value, sizeof value);
    } else if (column == 2) {
      const std::string text = nameOf(row);
      snmp_set_var_typed_value(varBind, ASN_OCTET_STR, text.data(), text.size());
    } else {
      const std::uint64_t value = row * 1000003U + column;
      counter64 c64{};
      c64.high = static_cast<u_long>(value >> 32U);
      c64.low = static_cast<u_long>(value & 0xFFFFFFFFU);
      snmp_set_var_typed_value(varBind, ASN_COUNTER64, &c64, sizeof c64);
    }
  }

  std::vector<oid> base_;
  std::vector<std::vector<oid>> oids_;
  std::size_t answered_ = 0;
};

double processCpuSeconds() {
  rusage usage{};
  ::getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
         static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

struct Walk {
  std::size_t varbinds = 0;
  double cpuSeconds = 0.0;
  double wallSeconds = 0.0;
};

std::string dotted(const std::vector<oid>& name) {
  std::string text;
  for (const oid subId : name) {
    text += '.' + std::to_string(subId);
  }
  return text;
}

// Runs snmpbulkwalk -Cr50 of `subtree` as a child while the loop serves;
// returns the walk's figures (varbinds: lines of its output).
Walk walk(Kel::ActivityManager& loop, const std::string& address, const std::vector<oid>& subtree,
          const std::string& output) {
  const std::string subtreeText = dotted(subtree);
  std::vector<std::string> argv = {"snmpbulkwalk", "-v2c", "-c",  "public", "-t",    "5",
                                   "-r",           "1",    "-On", "-Cr50",  address, subtreeText};
  std::vector<char*> args;
  args.reserve(argv.size() + 1);
  for (std::string& arg : argv) {
    args.push_back(arg.data());
  }
  args.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, output.c_str(), O_WRONLY | O_CREAT | O_TRUNC,
                                   0600);
  ::setenv("MIBS", "", 1);
  Walk result;
  const double cpuBefore = processCpuSeconds();
  const auto wallBefore = std::chrono::steady_clock::now();
  pid_t child = -1;
  if (posix_spawnp(&child, "snmpbulkwalk", &actions, nullptr, args.data(), environ) != 0) {
    std::cerr << "qos-walk-bench: cannot start snmpbulkwalk\n";
    std::exit(1);
  }
  posix_spawn_file_actions_destroy(&actions);
  const int exitFd = static_cast<int>(::syscall(SYS_pidfd_open, child, 0));
  bool exited = false;
  loop.fdReadableIs(exitFd, [&] { exited = true; });
  while (!exited) {
    loop.runOnce(Kel::Clock::kNever);
  }
  loop.fdDel(exitFd);
  ::close(exitFd);
  int status = 0;
  ::waitpid(child, &status, 0);
  result.wallSeconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - wallBefore).count();
  result.cpuSeconds = processCpuSeconds() - cpuBefore;
  if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
    std::cerr << "qos-walk-bench: snmpbulkwalk of " << subtreeText << " failed\n";
    std::exit(1);
  }
  std::ifstream in(output);
  std::string line;
  while (std::getline(in, line)) {
    ++result.varbinds;
  }
  return result;
}

struct Totals {
  std::size_t varbinds = 0;
  double cpuSeconds = 0.0;
  double wallSeconds = 0.0;
  void add(const Walk& w) {
    varbinds += w.varbinds;
    cpuSeconds += w.cpuSeconds;
    wallSeconds += w.wallSeconds;
  }
  double cpuPerVarbindUs() const { return cpuSeconds * 1e6 / static_cast<double>(varbinds); }
  double varbindsPerSecond() const { return static_cast<double>(varbinds) / wallSeconds; }
};

// The two servers' figures over every walk after the first.
struct Comparison {
  Totals ours;
  Totals plain;
};

// Registers the plain handler beside our objects, over as many instances
// as a first walk of ours returns, then walks each subtree `walks` times,
// interleaved. Nothing when the handler cannot be registered.
std::optional<Comparison> compareWalks(Kel::ActivityManager& loop, const std::string& address, int walks,
                                       const std::string& output) {
  const std::vector<oid> ours(MibView::objectsOid().begin(), MibView::objectsOid().end());
  const Walk first = walk(loop, address, ours, output);

  std::vector<oid> plainBase(MibView::moduleOid().begin(), MibView::moduleOid().end());
  plainBase.push_back(99);
  SortedTable table(plainBase, first.varbinds);
  netsnmp_handler_registration* registration = netsnmp_create_handler_registration(
      "qosWalkBenchPlain", &SortedTable::handle, plainBase.data(), plainBase.size(), HANDLER_CAN_RONLY);
  registration->handler->myvoid = &table;
  if (netsnmp_register_handler(registration) != MIB_REGISTERED_OK) {
    std::cerr << "qos-walk-bench: cannot register the plain handler\n";
    return std::nullopt;
  }

  Comparison comparison;
  for (int i = 0; i < walks; ++i) {
    comparison.ours.add(walk(loop, address, ours, output));
    comparison.plain.add(walk(loop, address, plainBase, output));
  }
  netsnmp_unregister_handler(registration);
  return comparison;
}

void printComparison(const Comparison& comparison, int walks) {
  const Totals& ours = comparison.ours;
  const Totals& plain = comparison.plain;
  std::printf("%-28s %12s %16s %16s\n", "server", "varbinds", "CPU us/varbind", "varbinds/s");
  std::printf("%-28s %12zu %16.3f %16.0f\n", "MIB view (SnmpFrontEnd)", ours.varbinds / walks,
              ours.cpuPerVarbindUs(), ours.varbindsPerSecond());
  std::printf("%-28s %12zu %16.3f %16.0f\n", "plain sorted-array handler", plain.varbinds / walks,
              plain.cpuPerVarbindUs(), plain.varbindsPerSecond());
  std::printf(
      "ratios ours/plain: CPU per varbind %.2fx (target <= 1.0x), throughput %.2fx (target >= 1.0x)\n",
      ours.cpuPerVarbindUs() / plain.cpuPerVarbindUs(), ours.varbindsPerSecond() / plain.varbindsPerSecond());
}

int runProgram(int argc, char** argv) {
  CLI::App app{"SNMP walk cost of the MIB view against a plain sorted-array handler, in one run"};
  std::string state;
  int walks = 10;
  int port = 0;
  app.add_option("--state", state, "switch state document")->required();
  app.add_option("--walks", walks, "walks of each subtree")->check(CLI::Range(1, 100000));
  app.add_option("--port", port, "loopback UDP port (default: a free one)");
  CLI11_PARSE(app, argc, argv);

  std::string error;
  QosSnmp::RootSmFactory* factory =
      QosSnmpHost::PluginLoader::load(QosSnmpHost::PluginLoader::defaultPath(), error);
  if (factory == nullptr) {
    std::cerr << "qos-walk-bench: " << error << '\n';
    return 1;
  }
  QosSnmpHost::Result<QosSnmpHost::SwitchState> loaded = QosSnmpHost::SwitchState::loadFile(state);
  if (!loaded) {
    std::cerr << loaded.error().text() << '\n';
    return 1;
  }
  QosSnmpHost::AgentHost host(std::move(loaded.value()), true);
  if (std::optional<QosSnmpHost::LoadError> refused = host.build(*factory)) {
    std::cerr << refused->text() << '\n';
    return 1;
  }

  if (port == 0) {
    port = 20000 + static_cast<int>(::getpid() % 20000);
  }
  const std::string address = "udp:127.0.0.1:" + std::to_string(port);
  Kel::ActivityManager loop(Kel::System::clock());
  const MibView view(host.mib());
  QosSnmpHost::SnmpFrontEnd snmp(loop, view);
  QosSnmpHost::SnmpFrontEndOptions options;
  options.listen = address;
  try {
    snmp.start(options);
  } catch (const std::exception& e) {
    std::cerr << "qos-walk-bench: " << e.what() << '\n';
    return 1;
  }

  const std::string output = "/tmp/qos-walk-bench." + std::to_string(::getpid()) + ".out";
  const std::optional<Comparison> comparison = compareWalks(loop, address, walks, output);
  if (!comparison) {
    return 1;
  }
  snmp.stop();
  std::remove(output.c_str());
  host.release();
  printComparison(*comparison, walks);
  return 0;
}

}  // namespace

int main(int argc, char** argv) { return Bench::guardedMain("qos-walk-bench", runProgram, argc, argv); }
