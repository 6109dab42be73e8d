// What the control-plane tests share (and the policy tests, whose class
// maps may be static control-plane class maps): the control-plane policy
// and its static classes built on a TestSwitch, the trace lines of the
// static class-map test, and the pattern of a failed assertion's report.
#pragma once

#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "QosSnmp/QosSnmpTestSupport.h"
#include "QosSnmp/core/ClassMapStatus.h"
#include "QosSnmp/core/CpStaticClassHwStatus.h"
#include "QosSnmp/core/PolicyMapStatus.h"
#include "QosSnmp/core/QosEnums.h"
#include "QosSnmp/core/SliceHwStatus.h"
#include "kel/Make.h"
#include "kel/Ptr.h"
#include "kel/String.h"
#include "kel/Types.h"

namespace QosSnmpTest {

// A regular expression matching, exactly, the C library's report of the
// failed assertion `expression` in `function` of the source file `file`:
//   <file>:<line>: <function>: Assertion `<expression>' failed.
inline std::string assertionFailure(std::string_view file, std::string_view function,
                                    std::string_view expression) {
  auto escaped = [](std::string_view text) {
    std::string out;
    for (const char c : text) {
      if (std::string_view(".[]()*+?{}|^$\\").find(c) != std::string_view::npos) {
        out += '\\';
      }
      out += c;
    }
    return out;
  };
  return escaped(file) + ":[0-9]+: " + escaped(function) + ": Assertion `" + escaped(expression) + "' failed";
}

// How a trace line prints an entity pointer.
inline std::string pointerText(const void* pointer) {
  std::ostringstream out;
  out << pointer;
  return out.str();
}

// The level-8 lines of isStaticCoppClassMap(type, cmapConfig) with its
// answer, each as "8 <text>" (see AgentTrace).
inline std::vector<std::string> staticCoppTrace(const std::string& type, const void* cmapConfig, bool answer,
                                                const std::string& cpType = "classMapCpStatic") {
  std::vector<std::string> lines{"8 isStaticCoppClassMap( type:" + type +
                                 ", cmapConfig:" + pointerText(cmapConfig)};
  if (answer) {
    lines.emplace_back("8 isStaticCoppClassMap( cpType: " + cpType + " )");
  } else {
    lines.emplace_back("8 isStaticCoppClassMap(): It is not a static copp ClassMap");
  }
  return lines;
}

// `first` followed by each of `more`.
inline std::vector<std::string> concat(std::vector<std::string> first,
                                       const std::vector<std::vector<std::string>>& more) {
  for (const auto& lines : more) {
    first.insert(first.end(), lines.begin(), lines.end());
  }
  return first;
}

// A static control-plane class map of static type `cpStaticType`, not yet
// in any collection.
inline Kel::Ptr<Qos::ClassMapStatus> staticClassMap(const Kel::String& name,
                                                    Qos::ClassMapCpStaticType cpStaticType) {
  auto cmap = Kel::make<Qos::ClassMapStatus>(name);
  cmap->typeIs(Qos::mapControlPlane_);
  cmap->cpTypeIs(Qos::classMapCpStatic_);
  cmap->cpStaticTypeIs(cpStaticType);
  return cmap;
}

// The control-plane policy map "copp-system-policy" with its default class
// "copp-system-default" (static type 19), published under the control-plane
// map type.
inline Kel::Ptr<Qos::PolicyMapStatus> coppSystemPolicy(TestSwitch& testSwitch) {
  auto pmap = testSwitch.policyMap(Qos::mapControlPlane_, "copp-system-policy");
  pmap->classDefaultIs(staticClassMap("copp-system-default", Qos::cpStaticDefault_));
  return pmap;
}

// The hardware's status of static class `cpStaticType` on `slice`, with
// rank `hwRank`.
inline Kel::Ptr<Qos::CpStaticClassHwStatus> hwClass(Qos::SliceHwStatus& slice,
                                                    Qos::ClassMapCpStaticType cpStaticType, Kel::U8 hwRank) {
  auto status = Kel::make<Qos::CpStaticClassHwStatus>(cpStaticType);
  status->hwRankIs(hwRank);
  slice.cpStaticClassHwStatusIs(cpStaticType, status);
  return status;
}

}  // namespace QosSnmpTest
