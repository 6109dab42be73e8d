// What the policy-map machines' tests share: builders for a policy map's
// classes (class actions, priorities, default class), the MIB rows of one
// table, and a trace sink that snapshots the MIB model at every trace line,
// so that a test can tell in which order rows were written and removed.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "QosSnmp/QosSnmpTestSupport.h"
#include "QosSnmp/core/Action.h"
#include "QosSnmp/core/ClassAction.h"
#include "QosSnmp/core/ClassPriority.h"
#include "QosSnmp/core/PolicyMapStatus.h"
#include "QosSnmp/core/QosEnums.h"
#include "QosSnmp/core/QosMib.h"
#include "kel/Make.h"
#include "kel/Trace.h"

namespace QosSnmpTest {

// A class action for `cmapName` holding one action of each of `types`.
inline Kel::Ptr<Qos::ClassAction> classActionOf(const Kel::String& cmapName,
                                                std::initializer_list<Qos::ActionType> types) {
  auto classAction = Kel::make<Qos::ClassAction>(cmapName);
  for (const Qos::ActionType type : types) {
    classAction->policyActionIs(type, Kel::make<Qos::Action>(type));
  }
  return classAction;
}

// Gives `pmap` a class action for `cmapName` with `types`.
inline Kel::Ptr<Qos::ClassAction> addClassAction(const Kel::Ptr<Qos::PolicyMapStatus>& pmap,
                                                 const Kel::String& cmapName,
                                                 std::initializer_list<Qos::ActionType> types) {
  auto classAction = classActionOf(cmapName, types);
  pmap->classActionIs(cmapName, classAction);
  return classAction;
}

// Gives `pmap` a class at priority `prio` naming `cmapName`.
inline Kel::Ptr<Qos::ClassPriority> addClassPrio(const Kel::Ptr<Qos::PolicyMapStatus>& pmap, Kel::U32 prio,
                                                 const Kel::String& cmapName) {
  auto classPrio = Kel::make<Qos::ClassPriority>(prio);
  classPrio->cmapNameIs(cmapName);
  pmap->classPrioIs(prio, classPrio);
  return classPrio;
}

// The rows of `mibRows(mib)` whose text starts with `table` and a blank.
inline std::vector<std::string> tableRows(const QosSnmp::QosMib& mib, std::string_view table) {
  std::vector<std::string> rows;
  for (std::string& row : mibRows(mib)) {
    if (row.size() > table.size() && row.compare(0, table.size(), table) == 0 && row[table.size()] == ' ') {
      rows.push_back(std::move(row));
    }
  }
  return rows;
}

// While it lives: every level of the agent's trace enabled, and every line
// kept as "<level> <text>" together with the MIB model's rows at the moment
// the line was written.
class MibTimeline : public Kel::TraceSink {
 public:
  explicit MibTimeline(const QosSnmp::QosMib& mib) : mib_(mib), previous_(Kel::traceSink()) {
    Kel::traceLevelsIs("QosSnmp/0-9");
    Kel::traceSinkIs(this);
  }
  ~MibTimeline() override {
    Kel::traceSinkIs(previous_);
    Kel::traceLevelsIs("QosSnmp/");
  }
  MibTimeline(const MibTimeline&) = delete;
  MibTimeline& operator=(const MibTimeline&) = delete;

  void write(const Kel::TraceHandle& /*handle*/, int level, const char* /*file*/, unsigned /*line*/,
             const char* /*function*/, std::string_view text) override {
    moments_.push_back({std::to_string(level) + ' ' + std::string(text), mibRows(mib_)});
  }

  std::vector<std::string> lines() const {
    std::vector<std::string> texts;
    texts.reserve(moments_.size());
    for (const Moment& moment : moments_) {
      texts.push_back(moment.line);
    }
    return texts;
  }

  // The MIB rows when the `occurrence`-th line equal to `line` (from 1) was
  // written; empty, with a test failure, when there is no such line.
  std::vector<std::string> rowsAt(const std::string& line, int occurrence = 1) const {
    for (const Moment& moment : moments_) {
      if (moment.line == line && --occurrence == 0) {
        return moment.rows;
      }
    }
    ADD_FAILURE() << "no trace line \"" << line << "\"";
    return {};
  }

 private:
  struct Moment {
    std::string line;
    std::vector<std::string> rows;
  };

  const QosSnmp::QosMib& mib_;
  Kel::TraceSink* const previous_;
  std::vector<Moment> moments_;
};

}  // namespace QosSnmpTest
