#include "bench/soak/ChurnSoak.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <set>
#include <sstream>

#include "bench/gen/ChurnStream.h"
#include "bench/gen/SwitchGenerator.h"
#include "bench/gen/SwitchLayout.h"
#include "host/app/AgentHost.h"
#include "host/dump/MibDump.h"
#include "host/state/SwitchState.h"
#include "kel/AllocTrackTypeInfo.h"
#include "kel/System.h"

namespace QosSnmpBench {

namespace {

// Both agents' rows, by table; the interfaces by the ifIndex each holds now;
// the final state document.
struct Rows {
  std::map<std::string, std::vector<std::string>> soaked;
  std::map<std::string, std::vector<std::string>> fresh;
  std::map<std::string, std::string> interfaceOf;
  const nlohmann::json& document;
};

// A stated behaviour of the agent that makes a soaked agent's rows differ
// from a fresh one's: which rows it covers, and where it is stated.
struct Explanation {
  std::string name;
  std::string statedIn;
  std::function<bool(const ChurnSoak::Difference&, const Rows&)> covers;
};

// The fields of a row's index: "table (a, b, c) ..." -> {a, b, c}.
std::vector<std::string> indexOf(const std::string& row) {
  std::vector<std::string> fields;
  const std::size_t open = row.find(" (");
  const std::size_t close = row.find(") ", open);
  if (open == std::string::npos || close == std::string::npos) {
    return fields;
  }
  std::string field;
  std::istringstream in(row.substr(open + 2, close - open - 2));
  while (std::getline(in, field, ',')) {
    fields.push_back(field.substr(field.find_first_not_of(' ')));
  }
  return fields;
}

// The value of "name=value" in a row's arguments.
std::string argumentOf(const std::string& row, const std::string& name) {
  const std::size_t at = row.find(" " + name + "=");
  if (at == std::string::npos) {
    return "";
  }
  const std::size_t start = at + name.size() + 2;
  return row.substr(start, row.find(' ', start) - start);
}

// A row held under an ifIndex that no interface holds any more.
bool underOldIfIndex(const ChurnSoak::Difference& difference, const Rows& rows, std::size_t field) {
  const std::vector<std::string> index = indexOf(difference.row);
  return difference.soakedOnly && index.size() > field && rows.interfaceOf.count(index[field]) == 0;
}

// A fresh agent's row under an interface's current ifIndex that the soaked
// agent holds, with the same arguments, under an old one.
bool movedFromOldIfIndex(const ChurnSoak::Difference& difference, const Rows& rows, std::size_t field) {
  if (difference.soakedOnly) {
    return false;
  }
  const std::vector<std::string> index = indexOf(difference.row);
  const auto table = rows.soaked.find(difference.table);
  if (index.size() <= field || table == rows.soaked.end()) {
    return false;
  }
  const std::string arguments = difference.row.substr(difference.row.find(") ") + 1);
  return std::any_of(table->second.begin(), table->second.end(), [&](const std::string& row) {
    std::vector<std::string> other = indexOf(row);
    if (other.size() != index.size() || rows.interfaceOf.count(other[field]) != 0 ||
        row.substr(row.find(") ") + 1) != arguments) {
      return false;
    }
    other[field] = index[field];
    return other == index;
  });
}

// A fresh agent's service-policy row of a port channel whose pair the final
// status no longer holds, under a policy the status still holds.
bool portChannelStatusWithdrawn(const ChurnSoak::Difference& difference, const Rows& rows) {
  const std::vector<std::string> index = indexOf(difference.row);
  if (difference.soakedOnly || index.empty() || rows.interfaceOf.count(index[0]) == 0) {
    return false;
  }
  const std::string& intf = rows.interfaceOf.at(index[0]);
  std::string key = argumentOf(difference.row, "servicePolicyKey");
  std::replace(key.begin(), key.end(), '/', ' ');
  if (intf.rfind("Port-Channel", 0) != 0) {
    return false;
  }
  const nlohmann::json* at = &rows.document;
  for (const std::string& step :
       {std::string("qosStatus"), std::string("servicePolicyStatus"), key, std::string("intfIds")}) {
    const auto member = at->is_object() ? at->find(step) : at->end();
    if (member == at->end()) {
      return false;
    }
    at = &*member;
  }
  return !at->contains(intf);
}

const std::vector<Explanation>& explanationList() {
  static const std::vector<Explanation> kList = {
      {"service-policy rows kept under an interface's old ifIndex",
       "QosSnmp/core/AllIntfStatusDirSm.h: a present interface with a non-negative index is re-added on "
       "every "
       "notification; only its removal from the directory deletes its rows",
       [](const ChurnSoak::Difference& difference, const Rows& rows) {
         return difference.table == "servicePolicyTable" && underOldIfIndex(difference, rows, 0);
       }},
      {"ECN queue rows kept under an interface's old ifIndex",
       "QosSnmp/core/AllIntfStatusDirSm.h (as above); QosSnmp/ecn/EcnQueueCounterTableSm.h: rows are deleted "
       "by ifIndex only when the root is told the interface lost it",
       [](const ChurnSoak::Difference& difference, const Rows& rows) {
         return difference.table == "ecnQueueCounterTable" && underOldIfIndex(difference, rows, 0);
       }},
      {"policer rows kept under an interface's old ifIndex",
       "QosSnmp/stats/QosStatusCmapPolicerStatsTableSm.h: the ifIndex is read when a row is written or "
       "removed, "
       "so a row written before its interface got its ifIndex stays under the old index until doClose()",
       [](const ChurnSoak::Difference& difference, const Rows& rows) {
         return difference.table == "qosPolicerStatsTable" &&
                (underOldIfIndex(difference, rows, 3) || movedFromOldIfIndex(difference, rows, 3));
       }},
      {"port-channel service-policy rows removed with their status pair",
       "QosSnmp/servicepolicy/ServicePolicyTableSm.h: the status side adds or removes the row of every pair "
       "it "
       "is told of; a port channel's row comes from the configuration, judged only when the configuration "
       "(or the interface's ifIndex) is notified, while the status holds the policy",
       [](const ChurnSoak::Difference& difference, const Rows& rows) {
         return difference.table == "servicePolicyTable" && portChannelStatusWithdrawn(difference, rows);
       }},
      {"match rows numbered by the class map's history",
       "QosSnmp/policy/MatchSm.h: match indexes are counted, not allocated: a re-notified option gets a "
       "fresh "
       "index and its old row stays until doClose(); a later addition can get the index of a row still "
       "present",
       [](const ChurnSoak::Difference& difference, const Rows& rows) {
         if (difference.table != "classMapMatchTable") {
           return false;
         }
         const std::vector<std::string> index = indexOf(difference.row);
         const std::string option = argumentOf(difference.row, "classMapMatch");
         if (index.size() != 3) {
           return false;
         }
         if (difference.soakedOnly && option == "(deleted)") {
           return true;
         }
         // The same option of the same class map, held by the other agent
         // under another index.
         const auto& other = difference.soakedOnly ? rows.fresh : rows.soaked;
         const auto table = other.find(difference.table);
         if (table == other.end()) {
           return false;
         }
         return std::any_of(table->second.begin(), table->second.end(), [&](const std::string& row) {
           const std::vector<std::string> otherIndex = indexOf(row);
           return otherIndex.size() == 3 && otherIndex[0] == index[0] && otherIndex[1] == index[1] &&
                  otherIndex[2] != index[2] && argumentOf(row, "classMapMatch") == option;
         });
       }},
  };
  return kList;
}

// Rows per table and entries per map, from MibDump's text (headers left
// out).
std::map<std::string, std::vector<std::string>> rowsByTable(const std::string& text) {
  std::map<std::string, std::vector<std::string>> rows;
  std::istringstream in(text);
  std::string line;
  while (std::getline(in, line)) {
    if (line.empty() || line[0] == '#') {
      continue;
    }
    const std::string table = line.substr(0, line.find(' '));
    rows[table].push_back(line);
  }
  for (auto& [table, lines] : rows) {
    std::sort(lines.begin(), lines.end());
  }
  return rows;
}

}  // namespace

std::vector<std::pair<std::string, std::string>> ChurnSoak::explanations() {
  std::vector<std::pair<std::string, std::string>> names;
  for (const Explanation& explanation : explanationList()) {
    names.emplace_back(explanation.name, explanation.statedIn);
  }
  return names;
}

void ChurnSoak::compare(const std::string& soaked, const std::string& fresh, const nlohmann::json& document,
                        Result& result) {
  Rows rows{rowsByTable(soaked), rowsByTable(fresh), {}, document};
  // "intfIdToifIndex Ethernet1/1 -> 1"
  std::istringstream map(fresh);
  std::string line;
  while (std::getline(map, line)) {
    if (line.rfind("intfIdToifIndex ", 0) == 0) {
      const std::size_t arrow = line.find(" -> ");
      rows.interfaceOf[line.substr(arrow + 4)] = line.substr(16, arrow - 16);
    }
  }
  std::vector<Difference> differences;
  std::vector<std::string> tables;
  tables.reserve(rows.soaked.size() + rows.fresh.size());
  for (const auto& [table, lines] : rows.soaked) {
    tables.push_back(table);
  }
  for (const auto& [table, lines] : rows.fresh) {
    tables.push_back(table);
  }
  std::sort(tables.begin(), tables.end());
  tables.erase(std::unique(tables.begin(), tables.end()), tables.end());
  static const std::vector<std::string> kNone;
  for (const std::string& table : tables) {
    const auto& one = rows.soaked.count(table) != 0 ? rows.soaked.at(table) : kNone;
    const auto& other = rows.fresh.count(table) != 0 ? rows.fresh.at(table) : kNone;
    std::vector<std::string> onlySoaked;
    std::vector<std::string> onlyFresh;
    std::set_difference(one.begin(), one.end(), other.begin(), other.end(), std::back_inserter(onlySoaked));
    std::set_difference(other.begin(), other.end(), one.begin(), one.end(), std::back_inserter(onlyFresh));
    for (std::string& row : onlySoaked) {
      differences.push_back({table, std::move(row), true});
    }
    for (std::string& row : onlyFresh) {
      differences.push_back({table, std::move(row), false});
    }
  }
  for (Difference& difference : differences) {
    const auto explanation =
        std::find_if(explanationList().begin(), explanationList().end(),
                     [&](const Explanation& candidate) { return candidate.covers(difference, rows); });
    if (explanation == explanationList().end()) {
      result.unexplained.push_back(std::move(difference));
    } else {
      result.explained[explanation->name].push_back(std::move(difference));
    }
  }
}

ChurnSoak::Result ChurnSoak::run(QosSnmp::RootSmFactory& factory, std::ostream* progress) const {
  Result result;
  const SwitchLayout layout(params_);
  auto time = std::make_unique<Kel::VirtualTime>();
  auto loaded = QosSnmpHost::SwitchState::loadText(SwitchGenerator(layout).stateText(), "generated.json");
  if (!loaded) {
    result.refusal = loaded.error().text();
    return result;
  }
  auto soaked = std::make_unique<QosSnmpHost::AgentHost>(std::move(loaded.value()), true);
  if (auto refused = soaked->build(factory)) {
    result.refusal = refused->text();
    return result;
  }
  ChurnStream stream(layout, ChurnStream::Kind::mix, seed_);
  for (std::size_t number = 1; number <= changes_; ++number) {
    const std::string line = stream.next();
    const auto change = soaked->apply(line, {"mix.jsonl", static_cast<int>(number)});
    if (!change) {
      result.refusal = change.error().text() + "\n  line: " + line;
      return result;
    }
    ++result.applied;
    if (progress != nullptr && changes_ >= 10 && number % (changes_ / 10) == 0) {
      *progress << "soak: " << number << " of " << changes_ << " changes applied, "
                << soaked->mib().rowCount() << " rows\n";
    }
  }

  auto fresh = QosSnmpHost::SwitchState::load(soaked->state().document(), "soaked.json");
  if (!fresh) {
    result.refusal = "the soaked state does not load again: " + fresh.error().text();
    return result;
  }
  auto rebuilt = std::make_unique<QosSnmpHost::AgentHost>(std::move(fresh.value()), true);
  if (auto refused = rebuilt->build(factory)) {
    result.refusal = "the soaked state is refused on a fresh build: " + refused->text();
    return result;
  }
  result.soakedRows = soaked->mib().rowCount();
  result.freshRows = rebuilt->mib().rowCount();
  compare(QosSnmpHost::MibDump(soaked->pathOf()).text(soaked->mib()),
          QosSnmpHost::MibDump(rebuilt->pathOf()).text(rebuilt->mib()), soaked->state().document(), result);
  for (const Kel::AllocTrackTypeInfo* record : Kel::AllocTrackTypeInfo::all()) {
    result.liveBeforeTeardown += record->live();
  }
  soaked->release();
  rebuilt->release();
  soaked.reset();
  rebuilt.reset();
  time.reset();
  for (const Kel::AllocTrackTypeInfo* record : Kel::AllocTrackTypeInfo::all()) {
    if (record->live() != 0) {
      result.aliveAfterTeardown.emplace_back(record->name(), record->live());
    }
  }
  return result;
}

}  // namespace QosSnmpBench
