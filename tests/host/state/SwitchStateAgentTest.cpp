// The switch state driving a real agent: an agent that heard a change stream
// ends with the MIB model of an agent built over the resulting document.
// (The stream avoids what the agent deliberately remembers: match indexes
// already handed out, and an in-place change of an interface's index, which
// the interface's own entity notifies and the directory does not.)
#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "QosSnmp/QosSnmpTestSupport.h"
#include "QosSnmp/core/QosMib.h"
#include "QosSnmp/core/RootSm.h"
#include "host/state/SwitchState.h"
#include "kel/Make.h"

namespace {

using nlohmann::json;
using QosSnmpHost::SwitchState;

// A switch the agent accepts: the control-plane policy is published.
json agentSwitch() {
  return json::parse(R"({
    "qosStatus": {
      "cmapType": {
        "mapQos": {"cmap": {"voice": {"match": {"matchDscp": {"value": "46"}}}, "class-default": {}}},
        "mapControlPlane": {"cmap": {"copp-bgp": {"cpStaticType": "cpStaticBgp"}}}
      },
      "pmapType": {
        "mapQos": {"pmap": {"pm-in": {
          "classAction": {"voice": {"policyAction": {"actionSetDscp": {"value": 46}}}},
          "classPrio": {"1": {"cmapName": "voice"}},
          "classDefault": "class-default",
          "defaultClassAction": {"name": "class-default", "policyAction": {"actionSetCos": {"value": 1}}}
        }}},
        "mapControlPlane": {"pmap": {"copp-system-policy": {}}}
      },
      "servicePolicyStatus": {"mapQos directionInput pm-in": {"intfIds": {"Ethernet1": true}}}
    },
    "qosConfig": {"servicePolicyConfig": {"mapQos directionInput pm-in": {"intfIds": {"Ethernet1": true}}}},
    "sliceHwStatus": {"Linecard1": {}},
    "intfStatus": {"Ethernet1": {"snmpIfIndex": 1}, "Ethernet2": {}}
  })");
}

struct Agent {
  explicit Agent(const SwitchState& state)
      : root(QosSnmp::rootSmFactory(state.qosConfig(), state.qosStatus(), state.hwStatus(),
                                    state.sliceHwStatusDir(), state.aclSliceHwStatusDir(), state.mibConfig(),
                                    state.allIntfStatusDir(), state.hwCounter(), mib,
                                    state.ecnCounterTable())) {}

  Kel::Ptr<QosSnmp::QosMib> mib = Kel::make<QosSnmp::QosMib>("qosMib");
  Kel::Ptr<QosSnmp::RootSm> root;
};

TEST(SwitchStateAgentTest, AgentFedTheStreamMatchesAnAgentBuiltOverTheResult) {
  auto loaded = SwitchState::load(agentSwitch(), "switch.json");
  ASSERT_TRUE(loaded) << loaded.error().text();
  SwitchState& state = loaded.value();
  const Agent live(state);
  const std::vector<std::string> lines = {
      R"({"op": "set", "path": "/qosStatus/cmapType/mapQos/cmap/video", "value": {"match": {"matchDscp": {"value": "34"}}}})",
      R"({"op": "set", "path": "/qosStatus/cmapType/mapQos/cmap/voice/match/matchEcn", "value": {"value": "1"}})",
      R"({"op": "set", "path": "/qosStatus/pmapType/mapQos/pmap/pm-in/classAction/video", "value": {"policyAction": {"actionPolice": {"rate": 10}}}})",
      R"({"op": "set", "path": "/qosStatus/pmapType/mapQos/pmap/pm-in/classPrio/2", "value": {"cmapName": "video"}})",
      R"({"op": "set", "path": "/qosStatus/pmapType/mapQos/pmap/pm-in/defaultClassAction", "value": "voice"})",
      R"({"op": "delete", "path": "/qosStatus/cmapType/mapQos/cmap/voice/match/matchEcn"})",
      R"({"op": "set", "path": "/intfStatus/Ethernet3", "value": {"snmpIfIndex": 3}})",
      R"({"op": "set", "path": "/qosStatus/servicePolicyStatus/mapQos directionInput pm-in/intfIds/Ethernet3", "value": true})",
      R"({"op": "set", "path": "/qosStatus/pmapType/mapQos/pmap/pm-out", "value": {"classAction": {"video": {}}, "classPrio": {"5": {"cmapName": "video"}}}})",
      R"({"op": "delete", "path": "/qosStatus/pmapType/mapQos/pmap/pm-in/classAction/video"})",
      R"({"op": "set", "path": "/qosStatus/pmapType/mapQos/pmap/pm-in/classDefault", "value": "video"})",
      R"({"op": "delete", "path": "/qosStatus/pmapType/mapQos/pmap/pm-out"})",
      R"({"op": "set", "path": "/qosStatus/cmapType/mapQos", "value": {"cmap": {"video": {}, "voice": {}, "class-default": {}}}})",
  };
  int number = 0;
  for (const auto& line : lines) {
    SCOPED_TRACE(line);
    const auto change = state.apply(line, {"changes.jsonl", ++number});
    ASSERT_TRUE(change) << change.error().text();
    auto rebuilt = SwitchState::load(state.document(), "rebuilt");
    ASSERT_TRUE(rebuilt) << rebuilt.error().text();
    const Agent fresh(rebuilt.value());
    EXPECT_EQ(QosSnmpTest::mibRows(*live.mib), QosSnmpTest::mibRows(*fresh.mib));
  }
  const auto rows = QosSnmpTest::mibRows(*live.mib);
  for (const auto* row :
       {"intfIdToifIndex Ethernet3 3", "servicePolicyTable (3, 1) pm-in mapQos/directionInput/pm-in",
        "policyMapClassTable (pm-in, 1, 3072) pm-in video"}) {
    EXPECT_NE(std::find(rows.begin(), rows.end(), row), rows.end()) << row;
  }
}

}  // namespace
