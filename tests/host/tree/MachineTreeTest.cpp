#include "host/tree/MachineTree.h"

#include <map>
#include <optional>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "QosSnmp/QosSnmpTestSupport.h"
#include "QosSnmp/copp/CoppTestSupport.h"
#include "QosSnmp/core/Counter.h"
#include "QosSnmp/core/PolicerHwStatus.h"
#include "QosSnmp/core/RootSm.h"
#include "QosSnmp/core/ServicePolicyKey.h"
#include "QosSnmp/policy/PolicyMapTestSupport.h"
#include "QosSnmp/policy/PolicyTestSupport.h"
#include "QosSnmp/servicepolicy/ServicePolicyTestSupport.h"
#include "QosSnmp/stats/HwStatusTestSupport.h"
#include "kel/Make.h"
#include "kel/StateMachine.h"

namespace {

using QosSnmpTest::TestSwitch;

class MachineTreeTest : public ::testing::Test {
 protected:
  Kel::Ptr<QosSnmp::RootSm> makeRoot() {
    return QosSnmp::rootSmFactory(switch_.qosConfig, switch_.qosStatus, switch_.qosHwStatus,
                                  switch_.qosSliceHwStatusDir, switch_.qosAclSliceHwStatusDir,
                                  switch_.qosMibConfig, switch_.allIntfStatusDir, switch_.qosHwCounter,
                                  switch_.qosMib, switch_.ecnCounterTable);
  }

  // A small switch: the control-plane policy with one static class, one QoS
  // class map with two match rules, one QoS policy map applied to one
  // interface, one slice.
  void buildSmallSwitch() {
    auto cmaps = switch_.cmapType(Qos::mapControlPlane_);
    cmaps->cmapIs("copp-system-bgp", QosSnmpTest::staticClassMap("copp-system-bgp", Qos::cpStaticBgp_));
    QosSnmpTest::coppSystemPolicy(switch_);

    auto voice = switch_.classMap(Qos::mapQos_, "cm-voice");
    QosSnmpTest::matchRule(*voice, Qos::matchDscp_, "46");
    QosSnmpTest::matchRule(*voice, Qos::matchCos_, "5");
    auto pmap = switch_.policyMap(Qos::mapQos_, "pm-in");
    QosSnmpTest::addClassAction(pmap, "cm-voice", {Qos::actionSetDscp_});
    QosSnmpTest::addClassPrio(pmap, 1, "cm-voice");

    switch_.interface("Ethernet1", 1);
    const Qos::ServicePolicyKey in(Qos::mapQos_, Qos::directionInput_, "pm-in");
    QosSnmpTest::configuredPolicy(switch_, in)->intfIdsIs(QosSnmpTest::intfId("Ethernet1"), true);
    QosSnmpTest::appliedPolicy(switch_, in)->intfIdsIs(QosSnmpTest::intfPair("Ethernet1"), true);

    switch_.qosHwStatus->coppSupportedIs(true);
    slice_ = switch_.slice("FixedSystem");
    QosSnmpTest::hwClass(*slice_, Qos::cpStaticBgp_, 10);
    QosSnmpTest::hwClass(*slice_, Qos::cpStaticDefault_, 0);
  }

  // Counters for the QoS policy's class, policed on Ethernet1, polled every
  // ten seconds.
  void addStatistics() {
    switch_.qosMibConfig->counterPollPeriodIs(10.0);
    auto counter = Kel::make<Qos::Counter>("cm-voice");
    counter->packetsIs(5);
    counter->policerHwStatusIs("Ethernet1", Kel::make<Qos::PolicerHwStatus>("Ethernet1"));
    TestSwitch::mutableOf(switch_.pmapType(Qos::mapQos_)->pmap("pm-in"))->cmapCountersIs("cm-voice", counter);
  }

  // The slice's hardware status of the control-plane policy's static class,
  // whose counters the status publishes first.
  void addHardwareStatistics() {
    QosSnmpTest::addCounters(switch_, "copp-system-policy", "copp-system-bgp")->packetsIs(7);
    auto coppType = QosSnmpTest::addPmapTypeHwStatus(slice_, Qos::mapControlPlane_);
    auto copp = QosSnmpTest::addPmapHwStatus(coppType, Qos::PolicyMapHwStatusKey(1, "copp-system-policy"), 0);
    QosSnmpTest::addCmapHwStatus(copp, "copp-system-bgp")->programmingStatusIs(Qos::hwStatusProgrammed_);
  }

  TestSwitch switch_;
  Kel::Ptr<Qos::SliceHwStatus> slice_;
};

// The tree of buildSmallSwitch() with addStatistics(): the root's children
// in the order it declares them, keyed children in key order.
const std::string kSmallSwitchText =
    "QosSnmp::RootSm\n"
    "  [mapControlPlane] QosSnmp::ClassMapTableSm\n"
    "    [copp-system-bgp] QosSnmp::MatchSm  rows: ClassMapMatchTableIndex 0\n"
    "  [mapQos] QosSnmp::ClassMapTableSm\n"
    "    [cm-voice] QosSnmp::MatchSm  rows: ClassMapMatchTableIndex 2\n"
    "  [mapControlPlane] QosSnmp::PolicyMapTablesSm  rows: PolicyMapTableIndex 1\n"
    "    [copp-system-policy] QosSnmp::ClassActionSm  rows: PolicyMapClassTableIndex 0\n"
    "  [mapQos] QosSnmp::PolicyMapTablesSm  rows: PolicyMapTableIndex 1\n"
    "    [pm-in] QosSnmp::ClassActionSm  rows: PolicyMapClassTableIndex 0\n"
    "      [cm-voice] QosSnmp::PolicyActionSm  rows: PolicyMapActionTableIndex 1\n"
    "      [1] QosSnmp::ClassPrioSm\n"
    "  QosSnmp::ServicePolicyTableSm  rows: ServicePolicyTableIndex 1\n"
    "  QosSnmp::AllIntfStatusDirSm\n"
    "  QosSnmp::CoppStatsTableSm  rows: QosStatsTableIndex 1\n"
    "    [cm-voice] QosSnmp::QosStatusCmapPolicerStatsTableSm  rows: QosPolicerStatsTableIndex 1\n"
    "  QosSnmp::QosStatsTableSm\n"
    "  QosSnmp::CoppStaticSm  rows: ClassMapTableIndex 1, PolicyMapClassTableIndex 2\n"
    "  QosSnmp::EcnCounterTableSm\n"
    "  QosSnmp::EcnQueueCounterTableSm\n"
    "    [FixedSystem] QosSnmp::EcnQueueCounterTableSliceSm\n"
    "machines 20, rows 11\n";

TEST_F(MachineTreeTest, TextListsEveryMachineWithItsKeyTypeAndRows) {
  buildSmallSwitch();
  addStatistics();
  const auto root = makeRoot();
  const Kel::StateMachine& machine = *root;
  EXPECT_EQ(QosSnmpHost::MachineTree(machine).text(), kSmallSwitchText);
}

TEST_F(MachineTreeTest, TextFollowsTheLiveTree) {
  buildSmallSwitch();
  addStatistics();
  const auto root = makeRoot();
  auto video = switch_.classMap(Qos::mapQos_, "cm-video");
  QosSnmpTest::matchRule(*video, Qos::matchVlan_, "10");
  const std::string withVideo = QosSnmpHost::MachineTree(*root).text();
  EXPECT_NE(withVideo.find("  [mapQos] QosSnmp::ClassMapTableSm\n"
                           "    [cm-video] QosSnmp::MatchSm  rows: ClassMapMatchTableIndex 1\n"
                           "    [cm-voice] QosSnmp::MatchSm  rows: ClassMapMatchTableIndex 2\n"),
            std::string::npos)
      << withVideo;
  EXPECT_TRUE(withVideo.ends_with("machines 21, rows 12\n")) << withVideo;

  switch_.cmapType(Qos::mapQos_)->cmapDel("cm-video");
  EXPECT_EQ(QosSnmpHost::MachineTree(*root).text(), kSmallSwitchText);
}

struct DotShape {
  std::size_t nodes = 0;
  std::size_t edges = 0;
};

// Small matchers over the rest of a line: each consumes what it matches
// from the front of `rest` and says whether it matched.
bool consumeLiteral(std::string_view& rest, std::string_view literal) {
  if (!rest.starts_with(literal)) {
    return false;
  }
  rest.remove_prefix(literal.size());
  return true;
}

// One or more decimal digits; nullopt when there is none.
std::optional<std::string> consumeNumber(std::string_view& rest) {
  std::size_t digits = 0;
  while (digits < rest.size() && rest[digits] >= '0' && rest[digits] <= '9') {
    ++digits;
  }
  if (digits == 0) {
    return std::nullopt;
  }
  std::string number(rest.substr(0, digits));
  rest.remove_prefix(digits);
  return number;
}

// A quoted dot string: escaped characters and no bare quote or line break.
bool consumeQuoted(std::string_view& rest) {
  if (!consumeLiteral(rest, "\"")) {
    return false;
  }
  for (std::size_t i = 0; i < rest.size(); ++i) {
    if (rest[i] == '\n') {
      return false;
    }
    if (rest[i] == '\\') {
      if (++i == rest.size() || rest[i] == '\n') {
        return false;
      }
    } else if (rest[i] == '"') {
      rest.remove_prefix(i + 1);
      return true;
    }
  }
  return false;
}

// `  label="...";`
bool isLabelLine(std::string_view rest) {
  return consumeLiteral(rest, "  label=") && consumeQuoted(rest) && rest == ";";
}

// `  n<id> [label="..."];` or `  n<id> [label="...", style=dashed];`: the id.
std::optional<std::string> nodeId(std::string_view rest) {
  if (!consumeLiteral(rest, "  n")) {
    return std::nullopt;
  }
  std::optional<std::string> id = consumeNumber(rest);
  if (!id || !consumeLiteral(rest, " [label=") || !consumeQuoted(rest)) {
    return std::nullopt;
  }
  consumeLiteral(rest, ", style=dashed");
  return rest == "];" ? id : std::nullopt;
}

// `  n<from> -> n<to>;`: the two ids.
std::optional<std::pair<std::string, std::string>> edgeIds(std::string_view rest) {
  if (!consumeLiteral(rest, "  n")) {
    return std::nullopt;
  }
  std::optional<std::string> from = consumeNumber(rest);
  if (!from || !consumeLiteral(rest, " -> n")) {
    return std::nullopt;
  }
  std::optional<std::string> to = consumeNumber(rest);
  if (!to || rest != ";") {
    return std::nullopt;
  }
  return std::pair{*from, *to};
}

// The three lines before the nodes: the graph, its totals, the node style.
void checkDotHeader(std::istream& in) {
  std::string line;
  std::getline(in, line);
  EXPECT_EQ(line, "digraph machines {");
  std::getline(in, line);
  EXPECT_TRUE(isLabelLine(line)) << line;
  std::getline(in, line);
  EXPECT_EQ(line, "  node [shape=box];");
}

// Every line of `dot` after the header is a node with a quoted, escaped
// label or an edge between two nodes defined before it, and the graph closes
// on the last line; returns the number of nodes and edges.
DotShape checkDot(const std::string& dot) {
  std::istringstream in(dot);
  checkDotHeader(in);
  DotShape shape;
  std::set<std::string> defined;
  std::string line;
  while (std::getline(in, line) && line != "}") {
    if (const std::optional<std::string> node = nodeId(line)) {
      EXPECT_TRUE(defined.insert(*node).second) << line;
      ++shape.nodes;
    } else if (const auto edge = edgeIds(line)) {
      EXPECT_TRUE(defined.contains(edge->first) && defined.contains(edge->second)) << line;
      ++shape.edges;
    } else {
      ADD_FAILURE() << "not a node or an edge: " << line;
    }
  }
  EXPECT_EQ(line, "}");
  EXPECT_FALSE(std::getline(in, line)) << "after the graph: " << line;
  return shape;
}

TEST_F(MachineTreeTest, DotHasANodePerMachineAndAnEdgeFromEachOwnerToEachChild) {
  buildSmallSwitch();
  addStatistics();
  const auto root = makeRoot();
  const QosSnmpHost::MachineTree tree(*root);
  const std::string dot = tree.dot();
  const DotShape shape = checkDot(dot);
  EXPECT_EQ(shape.nodes, 20U);
  EXPECT_EQ(shape.edges, 19U);
  EXPECT_NE(dot.find("  label=\"machines 20, rows 11\";\n"), std::string::npos);
  EXPECT_NE(dot.find("  n0 [label=\"QosSnmp::RootSm\"];\n"), std::string::npos);
  // The policy-map machine of map type 1 is the root's seventh node; its
  // class, action and priority machines follow it.
  EXPECT_NE(
      dot.find("  n7 [label=\"[mapQos] QosSnmp::PolicyMapTablesSm\\nrows: PolicyMapTableIndex 1\"];\n"
               "  n8 [label=\"[pm-in] QosSnmp::ClassActionSm\\nrows: PolicyMapClassTableIndex 0\"];\n"
               "  n9 [label=\"[cm-voice] QosSnmp::PolicyActionSm\\nrows: PolicyMapActionTableIndex 1\"];\n"
               "  n8 -> n9;\n"
               "  n10 [label=\"[1] QosSnmp::ClassPrioSm\"];\n"
               "  n8 -> n10;\n"
               "  n7 -> n8;\n"
               "  n0 -> n7;\n"),
      std::string::npos)
      << dot;
}

TEST_F(MachineTreeTest, DotEscapesQuotesAndBackslashesInKeys) {
  buildSmallSwitch();
  auto odd = switch_.classMap(Qos::mapQos_, R"(cm-"odd"\name)");
  QosSnmpTest::matchRule(*odd, Qos::matchDscp_, "8");
  const auto root = makeRoot();
  const QosSnmpHost::MachineTree tree(*root);
  EXPECT_NE(tree.text().find(R"(    [cm-"odd"\name] QosSnmp::MatchSm  rows: ClassMapMatchTableIndex 1)"),
            std::string::npos)
      << tree.text();
  const std::string dot = tree.dot();
  EXPECT_NE(dot.find(R"([label="[cm-\"odd\"\\name] QosSnmp::MatchSm\nrows: ClassMapMatchTableIndex 1"])"),
            std::string::npos)
      << dot;
  EXPECT_EQ(checkDot(dot).nodes, tree.machines());
}

// The rows of each MIB table, by the label of the key sets that record them.
std::map<std::string, std::size_t> mibRowsByLabel(const QosSnmp::QosMib& mib) {
  return {
      {"ClassMapTableIndex", mib.classMapTable().size()},
      {"ClassMapMatchTableIndex", mib.classMapMatchTable().size()},
      {"PolicyMapTableIndex", mib.policyMapTable().size()},
      {"PolicyMapClassTableIndex", mib.policyMapClassTable().size()},
      {"PolicyMapActionTableIndex", mib.policyMapActionTable().size()},
      {"QosStatsTableIndex", mib.qosStatsTable().size()},
      {"QosPolicerStatsTableIndex", mib.qosPolicerStatsTable().size()},
      {"ServicePolicyTableIndex", mib.servicePolicyTable().size()},
  };
}

TEST_F(MachineTreeTest, RowsOfTheTreeAreTheRowsOfTheTablesThatKeySetsRecord) {
  buildSmallSwitch();
  addStatistics();
  addHardwareStatistics();
  const auto root = makeRoot();
  const QosSnmpHost::MachineTree tree(*root);
  const auto treeRows = tree.tree().rowsByLabel();
  const auto mibRows = mibRowsByLabel(*switch_.qosMib);

  // Every row of these tables is recorded in exactly one key set.
  for (const char* label : {"ClassMapMatchTableIndex", "PolicyMapTableIndex", "PolicyMapActionTableIndex",
                            "QosStatsTableIndex", "QosPolicerStatsTableIndex", "ServicePolicyTableIndex"}) {
    ASSERT_GT(mibRows.at(label), 0U) << label;
    EXPECT_EQ(treeRows.at(label), mibRows.at(label)) << label;
  }
  // A class map's own row (written by its match machine) and a class
  // priority's row (written by its priority machine) are kept in a plain
  // index, one per machine, not in a key set: here cm-voice's class-map row
  // and pm-in's class at priority 1. The key sets hold the control-plane
  // machine's static class rows.
  EXPECT_EQ(treeRows.at("ClassMapTableIndex"), mibRows.at("ClassMapTableIndex") - 1);
  EXPECT_EQ(treeRows.at("PolicyMapClassTableIndex"), mibRows.at("PolicyMapClassTableIndex") - 1);
  // The ECN tables have no key sets; this switch has no ECN rows either.
  EXPECT_TRUE(switch_.qosMib->ecnCounterTable().empty());
  EXPECT_TRUE(switch_.qosMib->ecnQueueCounterTable().empty());

  std::size_t sum = 0;
  for (const auto& [label, rows] : treeRows) {
    sum += rows;
  }
  EXPECT_EQ(tree.rows(), sum);
  EXPECT_EQ(tree.rows(), 14U);
}

}  // namespace
