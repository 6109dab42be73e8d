#include "QosSnmp/copp/CoppClassMaps.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "QosSnmp/QosSnmpTestSupport.h"
#include "QosSnmp/copp/CoppTestSupport.h"
#include "kel/Make.h"
#include "kel/Trace.h"

namespace {

using QosSnmpTest::AgentTrace;
using QosSnmpTest::pointerText;
using QosSnmpTest::staticClassMap;
using QosSnmpTest::staticCoppTrace;
using Texts = std::vector<std::string>;

TEST(IsStaticCoppClassMapTest, StaticControlPlaneClassMapIsStatic) {
  const auto cmap = staticClassMap("copp-system-bgp", Qos::cpStaticBgp_);
  const AgentTrace trace;
  EXPECT_TRUE(QosSnmp::isStaticCoppClassMap(Qos::mapControlPlane_, cmap));
  EXPECT_EQ(trace.lines(),
            (Texts{
                "8 isStaticCoppClassMap( type:mapControlPlane, cmapConfig:" + pointerText(cmap.get()),
                "8 isStaticCoppClassMap( cpType: classMapCpStatic )",
            }));
}

TEST(IsStaticCoppClassMapTest, NullClassMapIsNotStatic) {
  const AgentTrace trace;
  EXPECT_FALSE(QosSnmp::isStaticCoppClassMap(Qos::mapControlPlane_, nullptr));
  EXPECT_EQ(trace.lines(),
            (Texts{
                "8 isStaticCoppClassMap( type:mapControlPlane, cmapConfig:" + pointerText(nullptr),
                "8 isStaticCoppClassMap(): It is not a static copp ClassMap",
            }));
}

TEST(IsStaticCoppClassMapTest, OtherMapTypesAreNotStaticWhateverTheClassMap) {
  const auto cmap = staticClassMap("copp-system-bgp", Qos::cpStaticBgp_);
  const AgentTrace trace;
  EXPECT_FALSE(QosSnmp::isStaticCoppClassMap(Qos::mapQos_, cmap));
  EXPECT_FALSE(QosSnmp::isStaticCoppClassMap(Qos::mapPbr_, cmap));
  EXPECT_FALSE(QosSnmp::isStaticCoppClassMap(static_cast<Qos::MapType>(7), nullptr));
  EXPECT_EQ(trace.lines(), QosSnmpTest::concat(staticCoppTrace("mapQos", cmap.get(), false),
                                               {staticCoppTrace("mapPbr", cmap.get(), false),
                                                staticCoppTrace("7", nullptr, false)}));
}

TEST(IsStaticCoppClassMapTest, DynamicControlPlaneClassMapIsNotStatic) {
  const auto cmap = staticClassMap("acl-telnet", Qos::cpStaticInvalid_);
  cmap->cpTypeIs(Qos::classMapCpDynamic_);
  const AgentTrace trace;
  EXPECT_FALSE(QosSnmp::isStaticCoppClassMap(Qos::mapControlPlane_, cmap));
  EXPECT_EQ(trace.lines(), staticCoppTrace("mapControlPlane", cmap.get(), false));
}

TEST(IsStaticCoppClassMapTest, UnknownCpTypeIsNotStatic) {
  const auto cmap = staticClassMap("copp-system-future", Qos::cpStaticInvalid_);
  cmap->cpTypeIs(static_cast<Qos::ClassMapCpType>(5));
  EXPECT_FALSE(QosSnmp::isStaticCoppClassMap(Qos::mapControlPlane_, cmap));
}

TEST(IsStaticCoppClassMapTest, TheGivenMapTypeDecidesNotTheClassMapsOwn) {
  // A class map whose own type is mapQos, asked about as a control-plane one.
  const auto cmap = staticClassMap("class-voice", Qos::cpStaticInvalid_);
  cmap->typeIs(Qos::mapQos_);
  const AgentTrace trace;
  EXPECT_TRUE(QosSnmp::isStaticCoppClassMap(Qos::mapControlPlane_, cmap));
  EXPECT_EQ(trace.lines(), staticCoppTrace("mapControlPlane", cmap.get(), true));
}

TEST(IsStaticCoppClassMapTest, StaticTypeDoesNotMatter) {
  EXPECT_TRUE(
      QosSnmp::isStaticCoppClassMap(Qos::mapControlPlane_, staticClassMap("a", Qos::cpStaticInvalid_)));
  EXPECT_TRUE(QosSnmp::isStaticCoppClassMap(Qos::mapControlPlane_, staticClassMap("b", Qos::cpStaticDrop_)));
  EXPECT_TRUE(
      QosSnmp::isStaticCoppClassMap(Qos::mapControlPlane_, staticClassMap("c", Qos::cpStaticDefault_)));
}

TEST(IsStaticCoppClassMapTest, TracesOnlyAtLevelEight) {
  const Kel::CapturingTraceSink sink;
  Kel::traceLevelsIs("QosSnmp/0-7,9");
  const auto cmap = staticClassMap("copp-system-bgp", Qos::cpStaticBgp_);
  EXPECT_TRUE(QosSnmp::isStaticCoppClassMap(Qos::mapControlPlane_, cmap));
  EXPECT_FALSE(QosSnmp::isStaticCoppClassMap(Qos::mapQos_, cmap));
  Kel::traceLevelsIs("QosSnmp/");
  EXPECT_TRUE(sink.lines().empty());
}

TEST(IsCoppDropClassMapTest, DropClassIsRecognised) {
  EXPECT_TRUE(QosSnmp::isCoppDropClassMap("copp-system-drop"));
}

TEST(IsCoppDropClassMapTest, OnlyTheWholeNameInItsOwnCaseIsRecognised) {
  EXPECT_FALSE(QosSnmp::isCoppDropClassMap("copp-system-drop "));
  EXPECT_FALSE(QosSnmp::isCoppDropClassMap(" copp-system-drop"));
  EXPECT_FALSE(QosSnmp::isCoppDropClassMap("COPP-SYSTEM-DROP"));
  EXPECT_FALSE(QosSnmp::isCoppDropClassMap("Copp-system-drop"));
  EXPECT_FALSE(QosSnmp::isCoppDropClassMap("copp-system-dro"));
  EXPECT_FALSE(QosSnmp::isCoppDropClassMap("copp-system-drops"));
  EXPECT_FALSE(QosSnmp::isCoppDropClassMap(Kel::String("copp-system-drop\0x", 18)));
  EXPECT_FALSE(QosSnmp::isCoppDropClassMap(""));
  EXPECT_FALSE(QosSnmp::isCoppDropClassMap("copp-system-policy"));
}

TEST(IsCoppDropClassMapTest, DoesNotTrace) {
  const AgentTrace trace;
  QosSnmp::isCoppDropClassMap("copp-system-drop");
  QosSnmp::isCoppDropClassMap("class-voice");
  EXPECT_TRUE(trace.lines().empty());
}

}  // namespace
