// What the invariant guard's tests share: a small switch the agent accepts,
// the agent built in-process over a switch state (with the guard, or without
// it to show what the guard prevents), and change lines.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "QosSnmp/core/QosMib.h"
#include "QosSnmp/core/RootSm.h"
#include "QosSnmp/core/Toggles.h"
#include "host/state/InvariantGuard.h"
#include "host/state/SwitchState.h"
#include "kel/Make.h"

namespace QosSnmpHostTest {

// A switch the agent runs on: the control-plane policy map with its default
// class and the counters of its one hardware class, static control-plane
// class maps for BGP and the default class (both reported by the slice), a
// QoS policy map with a class, a priority and its own default class action.
inline nlohmann::json guardedSwitch() {
  return nlohmann::json::parse(R"({
    "qosStatus": {
      "cmapType": {
        "mapControlPlane": {"cmap": {
          "copp-system-bgp": {"cpStaticType": "cpStaticBgp"},
          "copp-system-default": {"cpStaticType": "cpStaticDefault"},
          "copp-acl": {"cpType": "classMapCpDynamic"}
        }},
        "mapQos": {"cmap": {"c1": {}, "c2": {}}}
      },
      "pmapType": {
        "mapControlPlane": {"pmap": {"copp-system-policy": {
          "classDefault": "copp-system-default",
          "cmapCounters": {"copp-acl": {"packets": 1}}
        }}},
        "mapQos": {"pmap": {"pm1": {
          "classAction": {"c1": {"policyAction": {"actionSetDscp": {"value": 10}}}},
          "classPrio": {"1": {"cmapName": "c1"}},
          "classDefault": "c2",
          "defaultClassAction": {"name": "class-default", "policyAction": {"actionSetCos": {"value": 3}}}
        }}}
      }
    },
    "hwStatus": {"coppSupported": true},
    "sliceHwStatus": {"slice0": {
      "cpStaticClassHwStatus": {"cpStaticBgp": {"hwRank": 3}, "cpStaticDefault": {"hwRank": 1}},
      "pmapTypeHwStatus": {"mapControlPlane": {"pmap": {
        "directionInput copp-system-policy": {"cmap": {"copp-acl": {"packets": 7}}}
      }}}
    }},
    "mibConfig": {"counterPollPeriod": 10}
  })");
}

// A "set" change line.
inline std::string set(const std::string& path, const nlohmann::json& value) {
  return nlohmann::json{{"op", "set"}, {"path", path}, {"value", value}}.dump();
}

// A "delete" change line.
inline std::string del(const std::string& path) {
  return nlohmann::json{{"op", "delete"}, {"path", path}}.dump();
}

// The agent's machines over a switch state loaded from a document, with the
// invariant guard in front of them or without it.
class AgentOverSwitch {
 public:
  enum class Guard { on, off };

  // Loads `document`, asks the guard (if on) about the build, and builds the
  // agent unless the guard refused it.
  explicit AgentOverSwitch(const nlohmann::json& document, Guard guard = Guard::on)
      : mib_(Kel::make<QosSnmp::QosMib>()) {
    auto loaded = QosSnmpHost::SwitchState::load(document, "switch.json");
    if (!loaded) {
      ADD_FAILURE() << loaded.error().text();
      return;
    }
    state_.emplace(std::move(loaded.value()));
    if (guard == Guard::on) {
      guard_ = std::make_unique<QosSnmpHost::InvariantGuard>(
          *mib_, QosSnmp::toggleQosSnmpPolicerStatsTableEnabled());
      state_->guardIs(guard_.get());
      if (const auto refused = state_->checkBuild()) {
        buildRefusal_ = messageOf(refused->text());
        return;
      }
    }
    root_ = QosSnmp::rootSmFactory(state_->qosConfig(), state_->qosStatus(), state_->hwStatus(),
                                   state_->sliceHwStatusDir(), state_->aclSliceHwStatusDir(),
                                   state_->mibConfig(), state_->allIntfStatusDir(), state_->hwCounter(), mib_,
                                   state_->ecnCounterTable());
    state_->buildApplied();
  }

  AgentOverSwitch(const AgentOverSwitch&) = delete;
  AgentOverSwitch& operator=(const AgentOverSwitch&) = delete;

  bool built() const { return static_cast<bool>(root_); }
  // The guard's message when it refused the build; empty otherwise.
  const std::string& buildRefusal() const { return buildRefusal_; }

  // Applies one change line: empty when applied, else the guard's message
  // (the error text after "refused: "), or the whole error text.
  std::string change(const std::string& line) {
    auto applied = state_->apply(line, {"changes.jsonl", ++line_});
    return applied ? std::string() : messageOf(applied.error().text());
  }

  const QosSnmp::QosMib& mib() const { return *mib_; }
  const QosSnmpHost::InvariantGuard& guard() const { return *guard_; }
  const nlohmann::json& document() const { return state_->document(); }

 private:
  static std::string messageOf(const std::string& text) {
    static const std::string kRefused = "refused: ";
    const auto at = text.find(kRefused);
    return at == std::string::npos ? text : text.substr(at + kRefused.size());
  }

  Kel::Ptr<QosSnmp::QosMib> mib_;
  std::optional<QosSnmpHost::SwitchState> state_;
  std::unique_ptr<QosSnmpHost::InvariantGuard> guard_;
  Kel::Ptr<QosSnmp::RootSm> root_;
  std::string buildRefusal_;
  int line_ = 0;
};

// The document `base` with `patch` merged in (RFC 7396: null removes).
inline nlohmann::json patched(nlohmann::json base, const nlohmann::json& patch) {
  base.merge_patch(patch);
  return base;
}

}  // namespace QosSnmpHostTest
