// The SNMP front end against the real net-snmp tools: the MIB model of a
// switch built by the whole agent, served by the embedded master agent on a
// free loopback port, or as an AgentX subagent of a real snmpd; read with
// snmpwalk, snmpbulkwalk, snmpget and snmpset run as child processes while
// the test thread turns the one event loop.
#include "host/snmp/SnmpFrontEnd.h"

#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <initializer_list>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "QosSnmp/QosSnmpTestSupport.h"
#include "QosSnmp/copp/CoppTestSupport.h"
#include "QosSnmp/core/Action.h"
#include "QosSnmp/core/ClassAction.h"
#include "QosSnmp/core/ClassMapMatch.h"
#include "QosSnmp/core/ClassPriority.h"
#include "QosSnmp/core/Counter.h"
#include "QosSnmp/core/PolicerHwStatus.h"
#include "QosSnmp/core/QosEnums.h"
#include "QosSnmp/core/RootSm.h"
#include "QosSnmp/core/ServicePolicyKey.h"
#include "QosSnmp/servicepolicy/ServicePolicyTestSupport.h"
#include "QosSnmp/stats/HwStatusTestSupport.h"
#include "host/log/Logger.h"
#include "host/snmp/MibReference.h"
#include "host/snmp/PopulatedMib.h"
#include "host/snmp/SnmpToolTestSupport.h"
#include "kel/Make.h"
#include "kel/System.h"

// net-snmp keeps a few blocks of every start past its shutdown (its MIB hash
// table, its certificate containers, and per start of the system group its
// sysORTable entries and one variable of a restarted agent);
// LeakSanitizer builds ignore those, and only those. The sanitizer runtime
// looks this hook up by name.
// NOLINTNEXTLINE(readability-identifier-naming,bugprone-reserved-identifier)
extern "C" const char* __lsan_default_suppressions() {
  return "leak:netsnmp_init_mib_internals\n"
         "leak:netsnmp_container_get_binary_array\n"
         "leak:netsnmp_certs_agent_init\n"
         "leak:init_sysORTable\n"
         "leak:snmp_varlist_add_variable\n";
}

namespace QosSnmpHost {
namespace {

using QosSnmpHostTest::ChildProcess;
using QosSnmpHostTest::freeUdpPort;
using QosSnmpHostTest::ScratchDir;
using QosSnmpHostTest::ToolRun;
using QosSnmpHostTest::turnUntil;
using QosSnmpTest::TestSwitch;
using Lines = std::vector<std::string>;

constexpr const char* kModule = "1.3.6.1.4.1.32473.1";
// Class maps added only to make the tables long enough for walks of many
// requests and bulk responses of many repetitions.
constexpr int kBulkClassMaps = 120;
constexpr std::uint64_t kBigByteCount = 5'000'000'000'123ULL;  // needs both halves of a Counter64

std::string dotted(OidSpan oid) {
  std::string text;
  for (const std::uint32_t subId : oid) {
    text += '.' + std::to_string(subId);
  }
  return text;
}

// How snmpwalk -On prints a value when it knows no MIB module.
std::string toolValue(const SnmpValue& value) {
  switch (value.type) {
    case SnmpValue::Type::integer32:
      return "INTEGER: " + std::to_string(value.integer);
    case SnmpValue::Type::unsigned32:
      return "Gauge32: " + std::to_string(value.number);
    case SnmpValue::Type::counter64:
      return "Counter64: " + std::to_string(value.number);
    case SnmpValue::Type::counter32:
      return "Counter32: " + std::to_string(value.number);
    case SnmpValue::Type::timeTicks: {
      // Less than a day in these tests.
      const std::uint64_t t = value.number;
      char text[64];
      std::snprintf(text, sizeof text, "Timeticks: (%llu) %llu:%02llu:%02llu.%02llu",
                    static_cast<unsigned long long>(t), static_cast<unsigned long long>(t / 360000),
                    static_cast<unsigned long long>(t / 6000 % 60),
                    static_cast<unsigned long long>(t / 100 % 60), static_cast<unsigned long long>(t % 100));
      return text;
    }
    case SnmpValue::Type::octetString:
      break;
  }
  if (value.octets.empty()) {
    return "\"\"";
  }
  for (const char c : value.octets) {
    if (c < ' ' || c > '~' || c == '"') {
      ADD_FAILURE() << "test data must be printable: " << value.octets;
    }
  }
  return "STRING: \"" + value.octets + "\"";
}

std::string toolLine(const VarBind& varBind) {
  return dotted(varBind.oid) + " = " + toolValue(varBind.value);
}

Oid parseDotted(const std::string& text) {
  Oid oid;
  std::istringstream in(text);
  std::string part;
  while (std::getline(in, part, '.')) {
    if (!part.empty()) {
      oid.push_back(static_cast<std::uint32_t>(std::stoul(part)));
    }
  }
  return oid;
}

// The SNMPv3 engine scalars, which the embedded master serves after the
// module (their values change; only their OIDs are compared).
const std::vector<Oid> kEngineScalars = {
    {1, 3, 6, 1, 6, 3, 10, 2, 1, 1, 0},
    {1, 3, 6, 1, 6, 3, 10, 2, 1, 2, 0},
    {1, 3, 6, 1, 6, 3, 10, 2, 1, 3, 0},
    {1, 3, 6, 1, 6, 3, 10, 2, 1, 4, 0},
};

// One varbind of a GETBULK response as the tool prints it: the OID, and
// whether it is endOfMibView.
struct BulkItem {
  Oid oid;  // empty for endOfMibView
  bool end = false;
  friend bool operator==(const BulkItem&, const BulkItem&) = default;
};

std::ostream& operator<<(std::ostream& out, const BulkItem& item) {
  return out << (item.end ? "endOfMibView" : dotted(item.oid));
}

// The module as the view walks it, one snmpwalk -On line per instance.
Lines viewWalk(const MibView& view) {
  Lines lines;
  for (VarBind vb = view.next(MibView::moduleOid()); vb.exception == SnmpException::none;
       vb = view.next(vb.oid)) {
    lines.push_back(toolLine(vb));
  }
  return lines;
}

// The first instance of the view whose value has type `type`.
VarBind firstOfType(const MibView& view, SnmpValue::Type type) {
  for (VarBind vb = view.next(MibView::moduleOid()); vb.exception == SnmpException::none;
       vb = view.next(vb.oid)) {
    if (vb.value.type == type) {
      return vb;
    }
  }
  ADD_FAILURE() << "the view has no value of the type asked for";
  return {};
}

// A realistic switch (after the end-to-end statistics test), plus class
// maps with match rules, in bulk.
class SnmpTestSwitch {
 public:
  SnmpTestSwitch() {
    for (const auto& [name, ifIndex] : std::initializer_list<std::pair<const char*, Kel::S32>>{
             {"Ethernet1", 1}, {"Ethernet2", 2}, {"Port-Channel10", 1000010}}) {
      switch_.interface(name, ifIndex);
    }
    addControlPlanePolicy();
    bigCounter_ = qosPolicy("policy-in", "class-web", {Qos::actionSetDscp_, Qos::actionPolice_},
                            {"Ethernet1", "Ethernet2"});
    bigCounter_->bytesIs(kBigByteCount);
    qosPolicy("policy-lag", "class-bulk", {Qos::actionSetTc_}, {"Port-Channel10"});
    applyPolicies();
    for (int i = 0; i < kBulkClassMaps; ++i) {
      auto cmap = switch_.classMap(Qos::mapQos_, "class-" + std::to_string(1000 + i));
      auto match = Kel::make<Qos::ClassMapMatch>(Qos::matchDscp_);
      match->valueIs(std::to_string(i % 64));
      cmap->matchIs(Qos::matchDscp_, match);
    }
    switch_.qosMibConfig->counterPollPeriodIs(10.0);
    root_ = QosSnmp::rootSmFactory(switch_.qosConfig, switch_.qosStatus, switch_.qosHwStatus,
                                   switch_.qosSliceHwStatusDir, switch_.qosAclSliceHwStatusDir,
                                   switch_.qosMibConfig, switch_.allIntfStatusDir, switch_.qosHwCounter,
                                   switch_.qosMib, switch_.ecnCounterTable);
  }

  const QosSnmp::QosMib& mib() const { return *switch_.qosMib; }
  // The counters of policy-in's class, whose byte count needs 64 bits.
  Qos::Counter& bigCounter() { return *bigCounter_; }

 private:
  void addControlPlanePolicy() {
    auto bgp = QosSnmpTest::staticClassMap("copp-system-bgp", Qos::cpStaticBgp_);
    auto deflt = QosSnmpTest::staticClassMap("copp-system-default", Qos::cpStaticDefault_);
    for (const auto& cmap : {bgp, deflt}) {
      switch_.cmapType(Qos::mapControlPlane_)->cmapIs(cmap->name(), cmap);
    }
    auto copp = switch_.policyMap(Qos::mapControlPlane_, "copp-system-policy");
    copp->classDefaultIs(deflt);
    for (const char* name : {"copp-system-bgp", "copp-system-default"}) {
      QosSnmpTest::addCounters(switch_, "copp-system-policy", name)->packetsIs(1000);
    }
    switch_.qosHwStatus->coppSupportedIs(true);
    auto slice = switch_.slice("FixedSystem");
    auto coppType = QosSnmpTest::addPmapTypeHwStatus(slice, Qos::mapControlPlane_);
    auto coppHw =
        QosSnmpTest::addPmapHwStatus(coppType, Qos::PolicyMapHwStatusKey(1, "copp-system-policy"), 0);
    for (const char* name : {"copp-system-bgp", "copp-system-default"}) {
      QosSnmpTest::addCmapHwStatus(coppHw, name)->programmingStatusIs(Qos::hwStatusProgrammed_);
    }
  }

  Kel::Ptr<Qos::Counter> qosPolicy(const Kel::String& pmapName, const Kel::String& cmapName,
                                   std::initializer_list<Qos::ActionType> actions,
                                   std::initializer_list<const char*> policedOn) {
    auto cmap = switch_.classMap(Qos::mapQos_, cmapName);
    auto match = Kel::make<Qos::ClassMapMatch>(Qos::matchVlan_);
    match->valueIs("10,20-30");
    cmap->matchIs(Qos::matchVlan_, match);
    auto pmap = switch_.policyMap(Qos::mapQos_, pmapName);
    auto classAction = Kel::make<Qos::ClassAction>(cmapName);
    for (const Qos::ActionType type : actions) {
      auto action = Kel::make<Qos::Action>(type);
      action->valueIs(46);
      classAction->policyActionIs(type, action);
    }
    pmap->classActionIs(cmapName, classAction);
    auto prio = Kel::make<Qos::ClassPriority>(1);
    prio->cmapNameIs(cmapName);
    pmap->classPrioIs(1, prio);
    auto counter = Kel::make<Qos::Counter>(cmapName);
    counter->packetsIs(500);
    for (const char* intf : policedOn) {
      auto policer = Kel::make<Qos::PolicerHwStatus>(intf);
      policer->conformedPacketsIs(400);
      counter->policerHwStatusIs(intf, policer);
    }
    pmap->cmapCountersIs(cmapName, counter);
    return counter;
  }

  void applyPolicies() {
    const Qos::ServicePolicyKey in(Qos::mapQos_, Qos::directionInput_, "policy-in");
    const Qos::ServicePolicyKey lag(Qos::mapQos_, Qos::directionOutput_, "policy-lag");
    for (const char* intf : {"Ethernet1", "Ethernet2"}) {
      QosSnmpTest::configuredPolicy(switch_, in)->intfIdsIs(QosSnmpTest::intfId(intf), true);
      QosSnmpTest::appliedPolicy(switch_, in)->intfIdsIs(QosSnmpTest::intfPair(intf), true);
    }
    QosSnmpTest::configuredPolicy(switch_, lag)->intfIdsIs(QosSnmpTest::intfId("Port-Channel10"), true);
    QosSnmpTest::appliedPolicy(switch_, lag);
  }

  TestSwitch switch_;
  Kel::Ptr<Qos::Counter> bigCounter_;
  Kel::Ptr<QosSnmp::RootSm> root_;
};

class SnmpFrontEndTest : public ::testing::Test {
 protected:
  // The tools read no configuration and keep no state outside the scratch
  // directory, and load no MIB module.
  std::vector<std::string> toolEnvironment() const {
    return {"MIBS=", "SNMPCONFPATH=" + dir_.path(), "SNMP_PERSISTENT_DIR=" + (dir_ / "client")};
  }
  ToolRun tool(const std::vector<std::string>& argv, double seconds = 120.0) {
    return QosSnmpHostTest::runTool(loop_, argv, toolEnvironment(), seconds);
  }
  // snmpwalk -v2c of the module at `address`.
  ToolRun walk(const std::string& address, const std::string& command = "snmpwalk",
               const std::vector<std::string>& extra = {}) {
    std::vector<std::string> argv = {command, "-v2c", "-c", "public", "-On", "-t", "3", "-r", "3"};
    argv.insert(argv.end(), extra.begin(), extra.end());
    argv.push_back(address);
    argv.emplace_back(kModule);
    return tool(argv);
  }
  ToolRun get(const std::string& address, const std::vector<std::string>& oids,
              const std::string& community = "public", const std::string& timeout = "3") {
    std::vector<std::string> argv = {"snmpget", "-v2c",  "-c", community, "-On",
                                     "-t",      timeout, "-r", "1",       address};
    argv.insert(argv.end(), oids.begin(), oids.end());
    return tool(argv);
  }

  // Starts the embedded master on a free port; returns its address.
  std::string startMaster(SnmpFrontEndOptions options = {}) {
    options.listen = "udp:127.0.0.1:" + std::to_string(freeUdpPort());
    frontEnd_.start(options);
    return options.listen;
  }

  // The embedded master serves the SNMPv3 engine scalars after the
  // module: the walk leaves the subtree there and ends without an
  // exception line.
  Lines expectedMasterWalk() const { return viewWalk(view_); }

  Kel::ActivityManager loop_{Kel::System::clock()};
  ScratchDir dir_;
  SnmpTestSwitch switch_;
  MibView view_{switch_.mib()};
  SnmpFrontEnd frontEnd_{loop_, view_};
};

TEST_F(SnmpFrontEndTest, TheModelCoversEveryValueTypeAndManyRequests) {
  const Lines lines = viewWalk(view_);
  EXPECT_GT(lines.size(), 500U);
  for (const char* type : {"INTEGER: ", "Gauge32: ", "Counter64: ", "STRING: \""}) {
    EXPECT_TRUE(std::any_of(lines.begin(), lines.end(), [type](const std::string& line) {
      return line.find(type) != std::string::npos;
    })) << type;
  }
  EXPECT_NE(std::find_if(lines.begin(), lines.end(),
                         [](const std::string& line) {
                           return line.ends_with("Counter64: " + std::to_string(kBigByteCount));
                         }),
            lines.end());
}

TEST_F(SnmpFrontEndTest, MasterWalkAnswersEveryInstanceOfTheViewInOrder) {
  const std::string address = startMaster();
  const ToolRun run = walk(address);
  ASSERT_EQ(run.status, 0) << run;
  EXPECT_EQ(run.lines(), expectedMasterWalk());
  EXPECT_GE(frontEnd_.varbindsAnswered(), viewWalk(view_).size());
}

TEST_F(SnmpFrontEndTest, MasterBulkWalkAgreesWithWalk) {
  const std::string address = startMaster();
  const ToolRun bulk = walk(address, "snmpbulkwalk", {"-Cr50"});
  ASSERT_EQ(bulk.status, 0) << bulk;
  const ToolRun plain = walk(address);
  ASSERT_EQ(plain.status, 0) << plain;
  EXPECT_EQ(bulk.lines(), plain.lines());
  EXPECT_EQ(bulk.lines(), expectedMasterWalk());
}

// The GETBULK matrix: non-repeaters 0, 1 and many, max-repetitions 0, 1, 2
// and 2^31-1, with repeaters that reach endOfMibView in the first and in
// later repetitions. The answer must be the successors the view and the
// engine scalars give, cut only where the agent caps a response (100
// varbinds) or where every repeater has ended.
TEST_F(SnmpFrontEndTest, MasterAnswersGetBulkAcrossTheMatrix) {
  const std::string address = startMaster();
  std::vector<Oid> served;
  for (VarBind vb = view_.next(MibView::moduleOid()); vb.exception == SnmpException::none;
       vb = view_.next(vb.oid)) {
    served.push_back(vb.oid);
  }
  ASSERT_GT(served.size(), 200U);
  const Oid lastOfModule = served.back();
  served.insert(served.end(), kEngineScalars.begin(), kEngineScalars.end());
  auto successor = [&served](const BulkItem& item) {
    if (item.end) {
      return item;
    }
    const auto it = std::upper_bound(served.begin(), served.end(), item.oid);
    return it == served.end() ? BulkItem{{}, true} : BulkItem{*it, false};
  };

  const std::vector<Oid> nonRepeaterStarts = {parseDotted(kModule), kEngineScalars.back(), lastOfModule};
  const std::vector<Oid> repeaterStarts = {
      parseDotted(kModule),       // runs on for the whole response
      served[served.size() / 2],  // from the middle of the module
      lastOfModule,               // ends in the fifth repetition
      kEngineScalars.back(),      // ends in the first repetition
  };
  constexpr std::size_t kMaxResponse = 100;
  for (const std::size_t nonRepeaters : {0U, 1U, 3U}) {
    for (const long maxRepetitions : {0L, 1L, 2L, 2147483647L}) {
      std::vector<std::string> argv = {"snmpbulkget",
                                       "-v2c",
                                       "-c",
                                       "public",
                                       "-On",
                                       "-t",
                                       "5",
                                       "-r",
                                       "1",
                                       "-Cn" + std::to_string(nonRepeaters),
                                       "-Cr" + std::to_string(maxRepetitions),
                                       address};
      std::vector<BulkItem> expected;
      for (std::size_t i = 0; i < nonRepeaters; ++i) {
        argv.push_back(dotted(nonRepeaterStarts[i]));
        expected.push_back(successor({nonRepeaterStarts[i], false}));
      }
      std::vector<BulkItem> current;
      for (const Oid& start : repeaterStarts) {
        argv.push_back(dotted(start));
        current.push_back({start, false});
      }
      // The agent caps the repetitions at 100 varbinds (non-repeaters aside).
      const long fit = static_cast<long>(kMaxResponse / repeaterStarts.size());
      std::size_t mustHave = expected.size();
      for (long repetition = 0; repetition < std::min(maxRepetitions, fit); ++repetition) {
        bool allEnded = true;
        for (BulkItem& item : current) {
          item = successor(item);
          expected.push_back(item);
          allEnded = allEnded && item.end;
        }
        if (!allEnded) {
          mustHave = expected.size();
        }
      }
      const std::uint64_t answeredBefore = frontEnd_.varbindsAnswered();
      const ToolRun run = tool(argv);
      const std::string label =
          "-Cn" + std::to_string(nonRepeaters) + " -Cr" + std::to_string(maxRepetitions);
      ASSERT_EQ(run.status, 0) << label << ": " << run;
      std::vector<BulkItem> actual;
      for (const std::string& line : run.lines()) {
        const auto equals = line.find(" = ");
        if (equals == std::string::npos || !line.starts_with(".")) {
          continue;  // a continuation line of a hexadecimal engine ID
        }
        // The agent names an endOfMibView varbind as it likes: only the
        // exception is compared.
        const bool end = line.find("No more variables left in this MIB View") != std::string::npos;
        actual.push_back({end ? Oid{} : parseDotted(line.substr(0, equals)), end});
        const Oid& oid = actual.back().oid;
        if (!actual.back().end && oid.size() > 8 &&
            std::equal(MibView::moduleOid().begin(), MibView::moduleOid().end(), oid.begin())) {
          EXPECT_EQ(line, toolLine(view_.get(oid))) << label;
        }
      }
      ASSERT_LE(actual.size(), expected.size()) << label << ": " << run.out;
      ASSERT_GE(actual.size(), mustHave) << label << ": " << run.out;
      for (std::size_t i = 0; i < actual.size(); ++i) {
        ASSERT_EQ(actual[i], expected[i]) << label << ", varbind " << i << ": " << run.out;
      }
      EXPECT_LE(actual.size(), nonRepeaters + kMaxResponse) << label;
      // Work per request is bounded by the response, not by max-repetitions.
      EXPECT_LE(frontEnd_.varbindsAnswered() - answeredBefore, 2 * kMaxResponse) << label;
    }
  }
}

// SNMPv1: a GET naming a missing instance or a Counter64 answers noSuchName
// with the index of that varbind, and a walk passes over the Counter64
// columns and finishes.
TEST_F(SnmpFrontEndTest, MasterAnswersSnmpV1WithNoSuchNameAndWalksWithoutCounter64) {
  const std::string address = startMaster();
  const VarBind counter = firstOfType(view_, SnmpValue::Type::counter64);
  const VarBind name = firstOfType(view_, SnmpValue::Type::octetString);
  Oid missing = name.oid;
  missing.push_back(7);
  for (const Oid& bad : {missing, counter.oid}) {
    const ToolRun run = tool({"snmpget", "-v1", "-c", "public", "-On", "-t", "3", "-r", "1", "-Cf", address,
                              dotted(name.oid), dotted(bad), dotted(name.oid)});
    EXPECT_NE(run.status, 0) << run;
    const std::string all = run.out + run.err;
    EXPECT_NE(all.find("(noSuchName)"), std::string::npos) << all;
    EXPECT_NE(all.find("Failed object: " + dotted(bad) + "\n"), std::string::npos) << all;
  }

  const ToolRun walkV1 =
      tool({"snmpwalk", "-v1", "-c", "public", "-On", "-t", "3", "-r", "3", address, kModule});
  ASSERT_EQ(walkV1.status, 0) << walkV1;
  Lines expected;
  for (const std::string& line : viewWalk(view_)) {
    if (line.find(" = Counter64: ") == std::string::npos) {
      expected.push_back(line);
    }
  }
  EXPECT_EQ(walkV1.lines(), expected);
  EXPECT_LT(expected.size(), viewWalk(view_).size());
}

// Walk order with no row, one row and many rows in every table, names of
// every length and bytes, and rows the MIB cannot name: snmpwalk (which
// checks that OIDs increase), snmpbulkwalk -Cr10 and -Cr50 all finish,
// print the same, and return exactly the instances of the reference list.
// Strings are printed in hexadecimal (-Ox): names hold any byte.
TEST_F(SnmpFrontEndTest, WalksAgreeWithTheReferenceForNoneOneAndManyRows) {
  auto oidsOf = [](const ToolRun& run) {
    std::vector<Oid> oids;
    for (const std::string& line : run.lines()) {
      const auto equals = line.find(" = ");
      if (line.starts_with(".") && equals != std::string::npos) {
        oids.push_back(parseDotted(line.substr(0, equals)));
      }
    }
    return oids;
  };
  for (const int rows : {0, 1, 3, 300}) {
    const QosSnmpHostTest::PopulatedMib populated(static_cast<unsigned>(rows) + 11, rows);
    const MibView view(populated.mib());
    const std::vector<Oid> expected = QosSnmpHostTest::expectedInstances(populated.mib());
    SnmpFrontEnd frontEnd(loop_, view);
    SnmpFrontEndOptions options;
    options.listen = "udp:127.0.0.1:" + std::to_string(freeUdpPort());
    frontEnd.start(options);
    const ToolRun plain = walk(options.listen, "snmpwalk", {"-Ox"});
    ASSERT_EQ(plain.status, 0) << rows << " rows: " << plain;
    EXPECT_EQ(oidsOf(plain), expected) << rows << " rows";
    for (const char* repetitions : {"-Cr10", "-Cr50"}) {
      const ToolRun bulk = walk(options.listen, "snmpbulkwalk", {"-Ox", repetitions});
      ASSERT_EQ(bulk.status, 0) << rows << " rows, " << repetitions << ": " << bulk;
      EXPECT_EQ(bulk.out, plain.out) << rows << " rows, " << repetitions;
    }
    frontEnd.stop();
  }
}

TEST_F(SnmpFrontEndTest, MasterGetAnswersCellsAndExceptions) {
  const std::string address = startMaster();
  const VarBind counter = firstOfType(view_, SnmpValue::Type::counter64);
  const VarBind name = firstOfType(view_, SnmpValue::Type::octetString);
  const VarBind gauge = firstOfType(view_, SnmpValue::Type::unsigned32);
  Oid missingRow = counter.oid;
  missingRow.push_back(999);
  const std::string notAColumn = std::string(".") + kModule + ".1.99.1.1";
  const std::string outsideTheModule = ".1.3.6.1.2.1.2.1.0";

  const ToolRun run = get(address, {dotted(counter.oid), dotted(name.oid), dotted(gauge.oid),
                                    dotted(missingRow), notAColumn, outsideTheModule});
  ASSERT_EQ(run.status, 0) << run;
  EXPECT_EQ(run.lines(), (Lines{toolLine(counter), toolLine(name), toolLine(gauge),
                                dotted(missingRow) + " = No Such Instance currently exists at this OID",
                                notAColumn + " = No Such Object available on this agent at this OID",
                                outsideTheModule + " = No Such Object available on this agent at this OID"}));
}

TEST_F(SnmpFrontEndTest, MasterReadsCountersWhenAsked) {
  const std::string address = startMaster();
  const Lines before = viewWalk(view_);
  switch_.bigCounter().bytesIs(kBigByteCount + 77);
  const Lines after = viewWalk(view_);
  ASSERT_EQ(before.size(), after.size());
  std::string changed;
  for (std::size_t i = 0; i < after.size(); ++i) {
    if (before[i] != after[i]) {
      changed = after[i];
    }
  }
  ASSERT_NE(changed, "") << "changing a counter changed no instance of the view";
  ASSERT_TRUE(changed.ends_with("Counter64: " + std::to_string(kBigByteCount + 77))) << changed;

  const ToolRun run = get(address, {changed.substr(0, changed.find(" = "))});
  ASSERT_EQ(run.status, 0) << run;
  EXPECT_EQ(run.lines(), Lines{changed});
}

TEST_F(SnmpFrontEndTest, MasterRefusesSetAsNotWritable) {
  const std::string address = startMaster();
  const VarBind integer = firstOfType(view_, SnmpValue::Type::integer32);
  const ToolRun set = tool({"snmpset", "-v2c", "-c", "public", "-On", "-t", "3", "-r", "1", address,
                            dotted(integer.oid), "i", std::to_string(integer.value.integer + 1)});
  EXPECT_NE(set.status, 0) << set;
  EXPECT_NE(set.err.find("Reason: notWritable"), std::string::npos) << set;

  const ToolRun after = get(address, {dotted(integer.oid)});
  ASSERT_EQ(after.status, 0) << after;
  EXPECT_EQ(after.lines(), Lines{toolLine(integer)});
}

TEST_F(SnmpFrontEndTest, MasterAnswersOnlyItsCommunity) {
  SnmpFrontEndOptions options;
  options.community = "s3cret";
  const std::string address = startMaster(options);
  const VarBind counter = firstOfType(view_, SnmpValue::Type::counter64);

  const ToolRun wrong = get(address, {dotted(counter.oid)}, "public", "1");
  EXPECT_NE(wrong.status, 0) << wrong;
  EXPECT_NE(wrong.err.find("Timeout"), std::string::npos) << wrong;

  const ToolRun right = get(address, {dotted(counter.oid)}, "s3cret");
  ASSERT_EQ(right.status, 0) << right;
  EXPECT_EQ(right.lines(), Lines{toolLine(counter)});
}

TEST_F(SnmpFrontEndTest, MasterListensOnlyOnTheGivenAddress) {
  const std::string address = startMaster();
  const VarBind counter = firstOfType(view_, SnmpValue::Type::counter64);
  // 127.0.0.2 reaches this host too, but not a socket bound to 127.0.0.1.
  const std::string otherLoopback = "udp:127.0.0.2:" + address.substr(address.rfind(':') + 1);
  const ToolRun other = get(otherLoopback, {dotted(counter.oid)}, "public", "1");
  EXPECT_NE(other.status, 0) << other;
  EXPECT_NE(other.err.find("Timeout"), std::string::npos) << other;
  const ToolRun same = get(address, {dotted(counter.oid)});
  EXPECT_EQ(same.status, 0) << same;
}

TEST_F(SnmpFrontEndTest, MasterServesSnmpV3UsersWithAuthenticationAndPrivacy) {
  const std::string users = dir_ / "users.conf";
  std::ofstream(users)
      << "# reader\ncreateUser reader SHA-256 readerAuth1 AES readerPriv1\nrouser reader priv\n";
  SnmpFrontEndOptions options;
  options.snmpv3UserFile = users;
  const std::string address = startMaster(options);
  const VarBind counter = firstOfType(view_, SnmpValue::Type::counter64);
  auto v3get = [&](const std::string& user, const std::string& authKey,
                   const std::vector<std::string>& security) {
    std::vector<std::string> argv = {"snmpget", "-v3", "-u", user, "-a", "SHA-256", "-A", authKey};
    argv.insert(argv.end(), security.begin(), security.end());
    argv.insert(argv.end(), {"-On", "-t", "2", "-r", "0", address, dotted(counter.oid)});
    return tool(argv);
  };
  const std::vector<std::string> privacy = {"-l", "authPriv", "-x", "AES", "-X", "readerPriv1"};

  const ToolRun authPriv = v3get("reader", "readerAuth1", privacy);
  ASSERT_EQ(authPriv.status, 0) << authPriv;
  EXPECT_EQ(authPriv.lines(), Lines{toolLine(counter)});

  const ToolRun authOnly = v3get("reader", "readerAuth1", {"-l", "authNoPriv"});
  EXPECT_NE(authOnly.status, 0) << authOnly;
  EXPECT_NE(authOnly.err.find("authorizationError"), std::string::npos) << authOnly;

  const ToolRun wrongAuthKey = v3get("reader", "notTheKey1", privacy);
  EXPECT_NE(wrongAuthKey.status, 0) << wrongAuthKey;
  EXPECT_NE(wrongAuthKey.err.find("Authentication failure"), std::string::npos) << wrongAuthKey;

  // A message it cannot decrypt goes unanswered.
  const ToolRun wrongPrivKey =
      v3get("reader", "readerAuth1", {"-l", "authPriv", "-x", "AES", "-X", "notTheKey1"});
  EXPECT_NE(wrongPrivKey.status, 0) << wrongPrivKey;
  EXPECT_NE(wrongPrivKey.err.find("Timeout"), std::string::npos) << wrongPrivKey;

  const ToolRun stranger = v3get("stranger", "readerAuth1", privacy);
  EXPECT_NE(stranger.status, 0) << stranger;
  EXPECT_NE(stranger.err.find("Unknown user name"), std::string::npos) << stranger;
}

TEST_F(SnmpFrontEndTest, MasterAnswersTheSystemGroup) {
  SnmpFrontEndOptions options;
  options.sysDescr = "qos agent 1.2: a test";
  options.sysContact = "ops team <ops@example.net>";
  options.sysName = "leaf-7";
  options.sysLocation = "hall 2, rack 14";
  const std::string address = startMaster(options);
  const ToolRun run = get(address, {"1.3.6.1.2.1.1.1.0", "1.3.6.1.2.1.1.2.0", "1.3.6.1.2.1.1.4.0",
                                    "1.3.6.1.2.1.1.5.0", "1.3.6.1.2.1.1.6.0"});
  ASSERT_EQ(run.status, 0) << run;
  EXPECT_EQ(run.lines(), (Lines{
                             ".1.3.6.1.2.1.1.1.0 = STRING: \"qos agent 1.2: a test\"",
                             ".1.3.6.1.2.1.1.2.0 = OID: .1.3.6.1.4.1.32473.1.3",
                             ".1.3.6.1.2.1.1.4.0 = STRING: \"ops team <ops@example.net>\"",
                             ".1.3.6.1.2.1.1.5.0 = STRING: \"leaf-7\"",
                             ".1.3.6.1.2.1.1.6.0 = STRING: \"hall 2, rack 14\"",
                         }));
  EXPECT_EQ(dotted(MibView::agentObjectId()), ".1.3.6.1.4.1.32473.1.3");

  // sysUpTime counts hundredths of a second from the start.
  auto upTime = [&] {
    const ToolRun answer =
        tool({"snmpget", "-v2c", "-c", "public", "-On", "-Ot", "-t", "3", address, "1.3.6.1.2.1.1.3.0"});
    EXPECT_EQ(answer.status, 0) << answer;
    const std::string prefix = ".1.3.6.1.2.1.1.3.0 = ";
    const std::string line = answer.lines().empty() ? std::string() : answer.lines().front();
    EXPECT_TRUE(line.starts_with(prefix)) << line;
    return line.starts_with(prefix) ? std::stol(line.substr(prefix.size())) : -1L;
  };
  const long first = upTime();
  QosSnmpHostTest::turnFor(loop_, 0.3);
  const long second = upTime();
  EXPECT_GE(first, 0);
  EXPECT_GE(second - first, 25);
  EXPECT_LT(second, 1000);

  // The module is announced in sysORTable.
  const ToolRun orTable = tool({"snmpwalk", "-v2c", "-c", "public", "-On", address, "1.3.6.1.2.1.1.9.1.2"});
  ASSERT_EQ(orTable.status, 0) << orTable;
  EXPECT_NE(orTable.out.find("OID: .1.3.6.1.4.1.32473.1\n"), std::string::npos) << orTable.out;

  // SETs outside the module are refused by access control.
  const ToolRun set = tool(
      {"snmpset", "-v2c", "-c", "public", "-t", "2", "-r", "0", address, "1.3.6.1.2.1.1.5.0", "s", "other"});
  EXPECT_NE(set.status, 0) << set;
  EXPECT_NE(set.err.find("noAccess"), std::string::npos) << set;
}

TEST_F(SnmpFrontEndTest, MasterKeepsItsEngineIdAcrossRestartsAndCountsBoots) {
  SnmpFrontEndOptions options;
  options.persistentDir = dir_ / "agent-state";
  auto engine = [&](const std::string& address) {
    const ToolRun run = tool({"snmpget", "-v2c", "-c", "public", "-On", "-t", "3", address,
                              "1.3.6.1.6.3.10.2.1.1.0", "1.3.6.1.6.3.10.2.1.2.0"});
    EXPECT_EQ(run.status, 0) << run;
    return run.out;
  };
  auto idOf = [](const std::string& out) { return out.substr(0, out.find(".1.3.6.1.6.3.10.2.1.2.0")); };
  auto bootsOf = [](const std::string& out) { return out.substr(out.find(".1.3.6.1.6.3.10.2.1.2.0")); };

  const std::string first = engine(startMaster(options));
  frontEnd_.stop();
  const std::string second = engine(startMaster(options));
  frontEnd_.stop();
  const std::string third = engine(startMaster(options));
  frontEnd_.stop();
  EXPECT_NE(idOf(first).find("Hex-STRING: 80 00 1F 88"), std::string::npos) << first;
  EXPECT_EQ(idOf(second), idOf(first));
  EXPECT_EQ(idOf(third), idOf(first));
  EXPECT_EQ(bootsOf(first), ".1.3.6.1.6.3.10.2.1.2.0 = INTEGER: 1\n");
  EXPECT_EQ(bootsOf(second), ".1.3.6.1.6.3.10.2.1.2.0 = INTEGER: 2\n");
  EXPECT_EQ(bootsOf(third), ".1.3.6.1.6.3.10.2.1.2.0 = INTEGER: 3\n");

  // Without a persistent directory, every start is a new engine.
  const std::string fresh = engine(startMaster());
  frontEnd_.stop();
  const std::string freshAgain = engine(startMaster());
  EXPECT_NE(idOf(fresh), idOf(first));
  EXPECT_NE(idOf(freshAgain), idOf(fresh));
  EXPECT_EQ(bootsOf(freshAgain), ".1.3.6.1.6.3.10.2.1.2.0 = INTEGER: 1\n");
}

TEST_F(SnmpFrontEndTest, MasterSavesNoUserInItsPersistentDirectory) {
  const std::string users = dir_ / "users.conf";
  std::ofstream(users) << "createUser keeper SHA-256 keeperAuth1 AES keeperPriv1\nrouser keeper priv\n";
  SnmpFrontEndOptions options;
  options.snmpv3UserFile = users;
  options.persistentDir = dir_ / "agent-state";
  startMaster(options);
  frontEnd_.stop();
  std::ifstream in(dir_ / "agent-state/qos-snmp-agent.conf");
  const std::string saved((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  EXPECT_NE(saved.find("oldEngineID 0x"), std::string::npos) << saved;
  EXPECT_EQ(saved.find("keeper"), std::string::npos) << saved;

  // Taken out of the user file, a user has no access at the next start.
  std::ofstream(users) << "createUser other SHA-256 otherAuth12 AES otherPriv12\nrouser other priv\n";
  const std::string address = startMaster(options);
  const ToolRun keeper =
      tool({"snmpget", "-v3", "-u",          "keeper", "-l",  "authPriv", "-a",
            "SHA-256", "-A",  "keeperAuth1", "-x",     "AES", "-X",       "keeperPriv1",
            "-On",     "-t",  "2",           "-r",     "0",   address,    "1.3.6.1.2.1.1.5.0"});
  EXPECT_NE(keeper.status, 0) << keeper;
  EXPECT_NE(keeper.err.find("Unknown user name"), std::string::npos) << keeper;
}

TEST_F(SnmpFrontEndTest, MasterWithoutCommunityServesOnlySnmpV3AuthPriv) {
  const std::string users = dir_ / "users.conf";
  std::ofstream(users) << "createUser reader SHA-256 readerAuth1 AES readerPriv1\nrouser reader priv\n";
  SnmpFrontEndOptions options;
  options.snmpv3UserFile = users;
  options.community.clear();
  const std::string address = startMaster(options);
  const VarBind counter = firstOfType(view_, SnmpValue::Type::counter64);

  for (const char* version : {"-v1", "-v2c"}) {
    const ToolRun run =
        tool({"snmpget", version, "-c", "public", "-On", "-t", "1", "-r", "0", address, dotted(counter.oid)});
    EXPECT_NE(run.status, 0) << run;
    EXPECT_NE(run.err.find("Timeout"), std::string::npos) << run;
  }
  const ToolRun authPriv =
      tool({"snmpget", "-v3", "-u",          "reader", "-l",  "authPriv", "-a",
            "SHA-256", "-A",  "readerAuth1", "-x",     "AES", "-X",       "readerPriv1",
            "-On",     "-t",  "2",           "-r",     "0",   address,    dotted(counter.oid)});
  ASSERT_EQ(authPriv.status, 0) << authPriv;
  EXPECT_EQ(authPriv.lines(), Lines{toolLine(counter)});
  const ToolRun authOnly = tool({"snmpget", "-v3", "-u", "reader", "-l", "authNoPriv", "-a", "SHA-256", "-A",
                                 "readerAuth1", "-On", "-t", "2", "-r", "0", address, dotted(counter.oid)});
  EXPECT_NE(authOnly.status, 0) << authOnly;
}

TEST_F(SnmpFrontEndTest, StartRefusesBadOptionsBeforeTouchingTheLibrary) {
  auto refusal = [this](const SnmpFrontEndOptions& options) {
    try {
      frontEnd_.start(options);
    } catch (const std::runtime_error& error) {
      return std::string(error.what());
    }
    return std::string("started");
  };
  SnmpFrontEndOptions neither;
  EXPECT_EQ(refusal(neither), "SNMP: give either an address to listen on or an AgentX socket, not both");
  SnmpFrontEndOptions both;
  both.listen = "udp:127.0.0.1:1161";
  both.agentxSocket = dir_ / "agentx.sock";
  EXPECT_EQ(refusal(both), "SNMP: give either an address to listen on or an AgentX socket, not both");
  SnmpFrontEndOptions blankCommunity;
  blankCommunity.listen = "udp:127.0.0.1:1161";
  blankCommunity.community = "two words";
  EXPECT_EQ(
      refusal(blankCommunity),
      "SNMP: the community must be 1 to 255 printable characters without blanks, quotes, backslashes or '#'");
  SnmpFrontEndOptions noPing;
  noPing.agentxSocket = dir_ / "agentx.sock";
  noPing.agentxPingIntervalSeconds = 0;
  EXPECT_EQ(refusal(noPing), "SNMP: the AgentX ping interval must be at least 1 second");
  SnmpFrontEndOptions nobody;
  nobody.listen = "udp:127.0.0.1:1161";
  nobody.community.clear();
  EXPECT_EQ(refusal(nobody), "SNMP: without SNMPv1/v2c access, SNMPv3 users are required");
  SnmpFrontEndOptions twoLines;
  twoLines.listen = "udp:127.0.0.1:1161";
  twoLines.sysLocation = "hall 2\nsysname spoofed";
  EXPECT_EQ(refusal(twoLines), "SNMP: system group values must be at most 255 printable characters");
  SnmpFrontEndOptions noUsers;
  noUsers.listen = "udp:127.0.0.1:1161";
  noUsers.snmpv3UserFile = dir_ / "absent.conf";
  EXPECT_EQ(refusal(noUsers), dir_ / "absent.conf" + ": cannot read the SNMPv3 user file");
  EXPECT_FALSE(frontEnd_.started());
}

TEST_F(SnmpFrontEndTest, StartFailsClearlyWhenTheAddressIsTakenAndCanStartAfterwards) {
  const int taken = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof address;
  ASSERT_EQ(::bind(taken, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  ASSERT_EQ(::getsockname(taken, reinterpret_cast<sockaddr*>(&address), &length), 0);
  const std::string takenAddress = "udp:127.0.0.1:" + std::to_string(ntohs(address.sin_port));
  SnmpFrontEndOptions options;
  options.listen = takenAddress;

  try {
    frontEnd_.start(options);
    ADD_FAILURE() << "started on a taken address";
  } catch (const std::runtime_error& error) {
    EXPECT_EQ(std::string(error.what()),
              "SNMP: cannot listen on '" + takenAddress + "': " + std::strerror(EADDRINUSE));
  }
  ::close(taken);
  EXPECT_FALSE(frontEnd_.started());
  EXPECT_EQ(loop_.turnHooks(), 0U);

  const std::string working = startMaster();
  const ToolRun run = walk(working);
  ASSERT_EQ(run.status, 0) << run;
  EXPECT_EQ(run.lines(), expectedMasterWalk());
}

TEST_F(SnmpFrontEndTest, StartRefusesAnInvalidPortWithItsReason) {
  SnmpFrontEndOptions options;
  options.listen = "udp:127.0.0.1:99999";
  try {
    frontEnd_.start(options);
    ADD_FAILURE() << "started on port 99999";
  } catch (const std::runtime_error& error) {
    const std::string text = error.what();
    EXPECT_TRUE(text.starts_with("SNMP: cannot listen on 'udp:127.0.0.1:99999': ")) << text;
    EXPECT_EQ(text.find(std::strerror(EADDRINUSE)), std::string::npos) << text;
  }
  EXPECT_FALSE(frontEnd_.started());
}

TEST_F(SnmpFrontEndTest, MasterLogsTheAddressAndPortItListensOn) {
  std::ostringstream log;
  QosSnmpHost::Logger::streamIsForTest(&log);
  SnmpFrontEndOptions options;
  options.listen = "udp:127.0.0.1:0";  // the system picks the port
  frontEnd_.start(options);
  QosSnmpHost::Logger::streamIsForTest(nullptr);

  ASSERT_EQ(frontEnd_.boundAddresses().size(), 1U) << log.str();
  const std::string bound = frontEnd_.boundAddresses().front();
  ASSERT_TRUE(bound.starts_with("udp:127.0.0.1:")) << bound;
  EXPECT_NE(bound, "udp:127.0.0.1:0");
  EXPECT_NE(log.str().find(" info snmp: listening on " + bound + "\n"), std::string::npos) << log.str();
  const ToolRun run = walk(bound);
  ASSERT_EQ(run.status, 0) << run;
  EXPECT_EQ(run.lines(), expectedMasterWalk());
}

TEST_F(SnmpFrontEndTest, StopClosesTheAgentAndStartServesAgain) {
  const VarBind counter = firstOfType(view_, SnmpValue::Type::counter64);
  const std::string first = startMaster();
  ASSERT_EQ(get(first, {dotted(counter.oid)}).status, 0);
  frontEnd_.stop();
  EXPECT_EQ(loop_.turnHooks(), 0U);
  const ToolRun closed = get(first, {dotted(counter.oid)}, "public", "1");
  EXPECT_NE(closed.status, 0) << closed;

  const std::string second = startMaster();
  const ToolRun run = walk(second);
  ASSERT_EQ(run.status, 0) << run;
  EXPECT_EQ(run.lines(), expectedMasterWalk());
}

TEST_F(SnmpFrontEndTest, OnlyOneFrontEndRunsAtATime) {
  startMaster();
  SnmpFrontEnd other(loop_, view_);
  SnmpFrontEndOptions options;
  options.listen = "udp:127.0.0.1:" + std::to_string(freeUdpPort());
  EXPECT_THROW(other.start(options), std::runtime_error);
  EXPECT_FALSE(other.started());
  EXPECT_TRUE(frontEnd_.started());
}

// A real snmpd as AgentX master, started and stopped by the test, reading
// only its own configuration; its log goes to a file in the scratch
// directory.
class Snmpd {
 public:
  Snmpd(const ScratchDir& dir, std::string agentxAddress)
      : dir_(dir), agentxAddress_(std::move(agentxAddress)) {
    address_ = "udp:127.0.0.1:" + std::to_string(freeUdpPort());
    std::ofstream(dir_ / "snmpd.conf") << "master agentx\n"
                                       << "agentXSocket " << agentxAddress_ << "\n"
                                       << "dontLogTCPWrappersConnects yes\n"
                                       << "rocommunity public 127.0.0.1\n"
                                       << "rwcommunity private 127.0.0.1 " << kModule << "\n";
    ::mkdir((dir_ / "snmpd-state").c_str(), 0700);
  }

  const std::string& address() const { return address_; }

  // Starts it and waits until it answers.
  void start(Kel::ActivityManager& loop, const std::vector<std::string>& toolEnvironment) {
    if (agentxAddress_.starts_with('/')) {
      ::unlink(agentxAddress_.c_str());  // a stale socket from the last run
    }
    process_ = std::make_unique<ChildProcess>(
        loop,
        std::vector<std::string>{"snmpd", "-f", "-Lo", "-C", "-c", dir_ / "snmpd.conf", "-m", "", "-I",
                                 "-smux", address_},
        std::vector<std::string>{"SNMP_PERSISTENT_DIR=" + (dir_ / "snmpd-state"), "MIBS="},
        dir_ / "snmpd.log");
    const bool serving = turnUntil(
        loop,
        [&] {
          return QosSnmpHostTest::runTool(
                     loop,
                     {"snmpget", "-v2c", "-c", "public", "-t", "1", "-r", "0", address_, "1.3.6.1.2.1.1.3.0"},
                     toolEnvironment, 30)
                     .status == 0;
        },
        60);
    ASSERT_TRUE(serving) << "snmpd does not answer; its log:\n" << log();
  }

  void stop(Kel::ActivityManager& loop) {
    if (!process_) {
      return;
    }
    process_->signal(SIGTERM);
    if (!turnUntil(
            loop, [&] { return !process_->running(); }, 30)) {
      ADD_FAILURE() << "snmpd ignored SIGTERM";
    }
    process_.reset();
  }

  std::string log() const {
    std::ifstream in(dir_ / "snmpd.log");
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
  }

 private:
  const ScratchDir& dir_;
  std::string agentxAddress_;
  std::string address_;
  std::unique_ptr<ChildProcess> process_;
};

class SnmpFrontEndAgentxTest : public SnmpFrontEndTest {
 protected:
  ~SnmpFrontEndAgentxTest() override {
    frontEnd_.stop();
    snmpd_.stop(loop_);
  }

  void startSubagent(const std::string& socket) {
    SnmpFrontEndOptions options;
    options.agentxSocket = socket;
    options.agentxPingIntervalSeconds = 1;
    frontEnd_.start(options);
  }

  // Waits until snmpd answers an instance of ours (the subagent has
  // registered); returns how long that took.
  double waitForRegistration(double seconds = 60) {
    const VarBind counter = firstOfType(view_, SnmpValue::Type::counter64);
    const auto start = std::chrono::steady_clock::now();
    const bool registered = turnUntil(
        loop_,
        [&] {
          const ToolRun run = get(snmpd_.address(), {dotted(counter.oid)}, "public", "1");
          return run.status == 0 && run.lines() == Lines{toolLine(counter)};
        },
        seconds);
    EXPECT_TRUE(registered) << "the subagent did not register within " << seconds << " s; snmpd's log:\n"
                            << snmpd_.log();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  }

  void expectWalksThroughSnmpd() {
    const ToolRun plain = walk(snmpd_.address());
    ASSERT_EQ(plain.status, 0) << plain;
    EXPECT_EQ(plain.lines(), viewWalk(view_));
    const ToolRun bulk = walk(snmpd_.address(), "snmpbulkwalk", {"-Cr50"});
    ASSERT_EQ(bulk.status, 0) << bulk;
    EXPECT_EQ(bulk.lines(), plain.lines());
  }

  std::string socket_ = dir_ / "agentx.sock";
  Snmpd snmpd_{dir_, socket_};
};

// Through snmpd, GETBULK of every shape reaches the subagent as GETNEXTs:
// no genErr, and every varbind of the module is the view's.
TEST_F(SnmpFrontEndAgentxTest, SubagentAnswersGetBulkThroughSnmpdWithoutErrors) {
  snmpd_.start(loop_, toolEnvironment());
  startSubagent(socket_);
  waitForRegistration();
  const Lines walked = viewWalk(view_);
  const std::string middle = walked[walked.size() / 2].substr(0, walked[walked.size() / 2].find(" = "));
  const std::string last = walked.back().substr(0, walked.back().find(" = "));
  for (const std::size_t nonRepeaters : {0U, 1U, 3U}) {
    for (const long maxRepetitions : {0L, 1L, 2L, 2147483647L}) {
      const std::string label =
          "-Cn" + std::to_string(nonRepeaters) + " -Cr" + std::to_string(maxRepetitions);
      const ToolRun run = tool({"snmpbulkget", "-v2c", "-c", "public", "-On", "-t", "5", "-r", "1",
                                "-Cn" + std::to_string(nonRepeaters), "-Cr" + std::to_string(maxRepetitions),
                                snmpd_.address(), kModule, middle, last, kModule, middle, last});
      ASSERT_EQ(run.status, 0) << label << ": " << run;
      EXPECT_EQ(run.err.find("genErr"), std::string::npos) << label << ": " << run;
      EXPECT_EQ(run.out.find("Error"), std::string::npos) << label << ": " << run.out;
      std::size_t inModule = 0;
      for (const std::string& line : run.lines()) {
        const std::string oid = line.substr(0, line.find(" = "));
        if (oid.starts_with(std::string(".") + kModule + ".")) {
          EXPECT_EQ(line, toolLine(view_.get(parseDotted(oid)))) << label;
          ++inModule;
        }
      }
      EXPECT_GE(inModule, std::min<std::size_t>(nonRepeaters, 2)) << label << ": " << run.out;
    }
  }
}

TEST_F(SnmpFrontEndAgentxTest, SubagentServesTheWalkThroughSnmpd) {
  snmpd_.start(loop_, toolEnvironment());
  startSubagent(socket_);
  waitForRegistration();
  expectWalksThroughSnmpd();
}

TEST_F(SnmpFrontEndAgentxTest, SubagentAcceptsAUnixPrefixedSocket) {
  snmpd_.start(loop_, toolEnvironment());
  startSubagent("unix:" + socket_);
  waitForRegistration();
  const VarBind name = firstOfType(view_, SnmpValue::Type::octetString);
  const ToolRun run = get(snmpd_.address(), {dotted(name.oid)});
  ASSERT_EQ(run.status, 0) << run;
  EXPECT_EQ(run.lines(), Lines{toolLine(name)});
}

TEST_F(SnmpFrontEndAgentxTest, SubagentRefusesSetAsNotWritable) {
  snmpd_.start(loop_, toolEnvironment());
  startSubagent(socket_);
  waitForRegistration();
  const VarBind integer = firstOfType(view_, SnmpValue::Type::integer32);
  // "private" may write the module's subtree in snmpd's own access rules.
  const ToolRun set = tool({"snmpset", "-v2c", "-c", "private", "-On", "-t", "3", "-r", "1", snmpd_.address(),
                            dotted(integer.oid), "i", "7"});
  EXPECT_NE(set.status, 0) << set;
  EXPECT_NE(set.err.find("Reason: notWritable"), std::string::npos) << set;
}

TEST_F(SnmpFrontEndAgentxTest, SubagentReregistersAfterTheMasterRestarts) {
  snmpd_.start(loop_, toolEnvironment());
  startSubagent(socket_);
  waitForRegistration();

  snmpd_.stop(loop_);
  // The subagent notices the master is gone while the loop turns.
  QosSnmpHostTest::turnFor(loop_, 0.5);
  snmpd_.start(loop_, toolEnvironment());
  const double seconds = waitForRegistration();
  // Ping interval 1 s: back within a few intervals, even on a loaded machine.
  EXPECT_LT(seconds, 15.0);
  RecordProperty("reregistrationSeconds", std::to_string(seconds));
  expectWalksThroughSnmpd();
}

TEST_F(SnmpFrontEndAgentxTest, SubagentStartedBeforeItsMasterConnectsWhenItComes) {
  startSubagent(socket_);
  EXPECT_TRUE(frontEnd_.started());
  QosSnmpHostTest::turnFor(loop_, 1.5);
  snmpd_.start(loop_, toolEnvironment());
  waitForRegistration();
  expectWalksThroughSnmpd();
}

TEST_F(SnmpFrontEndAgentxTest, SubagentLogsWhenItConnectsLosesAndRegainsItsMaster) {
  std::ostringstream log;
  QosSnmpHost::Logger::streamIsForTest(&log);
  const auto logged = [&log](const std::string& text) { return log.str().find(text) != std::string::npos; };
  startSubagent(socket_);
  EXPECT_FALSE(frontEnd_.subagentConnected());
  EXPECT_TRUE(logged(" warning snmp: no AgentX master at " + socket_ + " yet, retrying every 1 s\n"))
      << log.str();
  EXPECT_FALSE(logged("serving"));

  snmpd_.start(loop_, toolEnvironment());
  waitForRegistration();
  EXPECT_TRUE(frontEnd_.subagentConnected());
  EXPECT_TRUE(logged(" info snmp: connected to the AgentX master at " + socket_ + " after ")) << log.str();

  snmpd_.stop(loop_);
  EXPECT_TRUE(turnUntil(
      loop_,
      [&] {
        return logged(" warning snmp: lost the AgentX master at " + socket_ + ", retrying every 1 s\n");
      },
      30))
      << log.str();
  EXPECT_FALSE(frontEnd_.subagentConnected());
  snmpd_.start(loop_, toolEnvironment());
  waitForRegistration();
  EXPECT_TRUE(logged(" info snmp: connected again to the AgentX master at " + socket_ + " after "))
      << log.str();
  QosSnmpHost::Logger::streamIsForTest(nullptr);
}

TEST_F(SnmpFrontEndAgentxTest, SubagentStoppedWhileItsMasterIsAwayStartsAgain) {
  startSubagent(socket_);
  QosSnmpHostTest::turnFor(loop_, 1.5);
  frontEnd_.stop();
  snmpd_.start(loop_, toolEnvironment());
  startSubagent(socket_);
  waitForRegistration();
  expectWalksThroughSnmpd();
}

TEST_F(SnmpFrontEndAgentxTest, SubagentAndMasterTakeTurnsInOneProcess) {
  snmpd_.start(loop_, toolEnvironment());
  startSubagent(socket_);
  waitForRegistration();
  frontEnd_.stop();

  const std::string address = startMaster();
  const ToolRun direct = walk(address);
  ASSERT_EQ(direct.status, 0) << direct;
  EXPECT_EQ(direct.lines(), expectedMasterWalk());
  frontEnd_.stop();

  startSubagent(socket_);
  waitForRegistration();
  expectWalksThroughSnmpd();
}

class SnmpFrontEndAgentxTcpTest : public SnmpFrontEndTest {
 protected:
  ~SnmpFrontEndAgentxTcpTest() override {
    frontEnd_.stop();
    snmpd_.stop(loop_);
  }
  std::string agentx_ = "tcp:127.0.0.1:" + std::to_string(QosSnmpHostTest::freeTcpPort());
  Snmpd snmpd_{dir_, agentx_};
};

TEST_F(SnmpFrontEndAgentxTcpTest, SubagentConnectsOverTcp) {
  snmpd_.start(loop_, toolEnvironment());
  SnmpFrontEndOptions options;
  options.agentxSocket = agentx_;
  options.agentxPingIntervalSeconds = 1;
  frontEnd_.start(options);
  const VarBind counter = firstOfType(view_, SnmpValue::Type::counter64);
  const bool registered = turnUntil(
      loop_,
      [&] {
        const ToolRun run = get(snmpd_.address(), {dotted(counter.oid)}, "public", "1");
        return run.status == 0 && run.lines() == Lines{toolLine(counter)};
      },
      60);
  ASSERT_TRUE(registered) << snmpd_.log();
  const ToolRun run = walk(snmpd_.address());
  ASSERT_EQ(run.status, 0) << run;
  EXPECT_EQ(run.lines(), viewWalk(view_));
}

}  // namespace
}  // namespace QosSnmpHost
