// What the switch state tests share: a small but complete switch document,
// and a recorder that logs every notification of the entities it watches.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "host/state/SwitchState.h"
#include "kel/Make.h"
#include "kel/NotifieeBase.h"
#include "kel/Ptr.h"

namespace QosSnmpHostTest {

// One switch with something in every root: a QoS policy map with a default
// class, a control-plane class map, a slice, an interface with an index.
inline nlohmann::json exampleDocument() {
  return nlohmann::json::parse(R"({
    "qosConfig": {"servicePolicyConfig": {"mapQos directionInput pm1": {"intfIds": {"Ethernet1": true}}}},
    "qosStatus": {
      "cmapType": {
        "mapQos": {"cmap": {"c1": {"match": {"matchDscp": {"value": "46"}}}, "c2": {}}},
        "0": {"cmap": {"copp-bgp": {"cpStaticType": "cpStaticBgp"}}}
      },
      "pmapType": {
        "mapQos": {"pmap": {"pm1": {
          "classAction": {"c1": {"policyAction": {
            "actionSetDscp": {"value": 10},
            "actionPolice": {"rate": 1000, "rateUnit": "rateUnitKbps", "burstSize": 64000}}}},
          "classPrio": {"1": {"cmapName": "c1"}},
          "classDefault": "c2",
          "defaultClassAction": {"name": "class-default", "policyAction": {"actionSetCos": {"value": 3}}},
          "cmapCounters": {"c1": {"packets": 5, "policerHwStatus": {"Ethernet1": {"conformedPackets": 4}}}}
        }}}
      },
      "servicePolicyStatus": {
        "mapQos directionInput pm1": {"intfIds": {"Ethernet1": true, "Ethernet1 Ethernet1.100": true}}
      }
    },
    "hwStatus": {"coppSupported": true, "numEcnQueues": 8},
    "sliceHwStatus": {"Linecard1": {
      "pmapTypeHwStatus": {"mapQos": {"pmap": {"directionInput pm1": {
        "pmapKind": 1, "cmap": {"c1": {"programmingStatus": "hwStatusProgrammed", "packets": 7}}}}}},
      "cpStaticClassHwStatus": {"cpStaticBgp": {"hwRank": 3}},
      "ecnIntfCounterHwStatus": {"Ethernet1": {"programmingStatus": "hwStatusProgrammed"}}
    }},
    "aclSliceHwStatus": {"Acl1": {}},
    "mibConfig": {"counterPollPeriod": 10},
    "intfStatus": {"Ethernet1": {"snmpIfIndex": 1, "operStatus": "intfOperUp"}, "Ethernet1.100": {}},
    "hwCounter": {"sliceHwCounter": {"Linecard1": {"perChipCount": {"chip0": {"ecnMarkedPackets": 2}}}}},
    "ecnCounterTable": {"intfQueueCounter": {
      "Ethernet1": {"queueMarkedPackets": {"0": 5}, "queueMarkedBytes": {"0": 500}}}}
  })");
}

inline QosSnmpHost::SwitchState loadExample() {
  auto loaded = QosSnmpHost::SwitchState::load(exampleDocument(), "switch.json");
  if (!loaded) {
    ADD_FAILURE() << loaded.error().text();
    return std::move(QosSnmpHost::SwitchState::load(nlohmann::json::object()).value());
  }
  return std::move(loaded.value());
}

// Logs "<path> #<attribute id>" for every notification of the entity it
// watches, `path` being the entity's path when the recorder was attached.
class NotificationRecorder : public Kel::NotifieeBase {
 public:
  NotificationRecorder(std::vector<std::string>* log, std::string path, Kel::Ptr<const Kel::Entity> entity)
      : NotifieeBase(nullptr), log_(log), path_(std::move(path)) {
    notifierEntityIs(std::move(entity));
  }

  void onAttribute(Kel::AttributeId attributeId, const void* /*key*/) override {
    log_->push_back(path_ + " #" + std::to_string(attributeId));
  }

 private:
  std::vector<std::string>* log_;
  std::string path_;
};

// Recorders on every live entity of a state, and their common log.
class StateWatch {
 public:
  explicit StateWatch(const QosSnmpHost::SwitchState& state) {
    for (const auto& path : state.entityPaths()) {
      auto recorder = Kel::make<NotificationRecorder>(&log_, path, state.entityAt(path));
      recorder->hasNotificationActiveIs(true);
      recorders_.push_back(std::move(recorder));
    }
  }

  const std::vector<std::string>& log() const { return log_; }
  void clear() { log_.clear(); }

 private:
  std::vector<std::string> log_;
  std::vector<Kel::Ptr<NotificationRecorder>> recorders_;
};

inline std::string note(const std::string& path, Kel::AttributeId attributeId) {
  return path + " #" + std::to_string(attributeId);
}

}  // namespace QosSnmpHostTest
