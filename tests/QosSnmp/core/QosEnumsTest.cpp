#include "QosSnmp/core/QosEnums.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "InputModelTestSupport.h"

namespace Qos {
namespace {

using QosInputTest::printed;

// The numbers the QoS processes publish.
static_assert(mapControlPlane_ == 0 && mapQos_ == 1 && mapPbr_ == 2);
static_assert(classMapCpStatic_ == 0 && classMapCpDynamic_ == 1);
static_assert(cpStaticInvalid_ == 0 && cpStaticDrop_ == 18 && cpStaticDefault_ == 19);
static_assert(matchInvalid_ == 0 && matchIpAccessGroup_ == 1 && matchMplsTrafficClass_ == 8);
static_assert(actionSetShape_ == 0 && actionSetBandwidth_ == 1 && actionSetCos_ == 2 && actionSetDscp_ == 3);
static_assert(actionSetTc_ == 4 && actionSetDropPrecedence_ == 5 && actionPolice_ == 6 && actionCount_ == 7);
static_assert(directionInvalid_ == 0 && directionInput_ == 1 && directionOutput_ == 2);
static_assert(matchConditionAny_ == 0 && matchConditionAll_ == 1);
static_assert(hwStatusUnknown_ == 0 && hwStatusProgrammed_ == 1 && hwStatusNotProgrammed_ == 2);
static_assert(hwStatusError_ == 3);
static_assert(rateUnitBps_ == 0 && rateUnitKbps_ == 1 && rateUnitMbps_ == 2 && rateUnitGbps_ == 3);
static_assert(rateUnitPps_ == 4 && rateUnitPercent_ == 5);

// Every name of an enumeration, in the order of its values 0, 1, 2, ...
template <typename E>
std::vector<std::string> printedValues(Kel::U32 count) {
  std::vector<std::string> names;
  for (Kel::U32 value = 0; value < count; ++value) {
    names.push_back(printed(static_cast<E>(value)));
  }
  return names;
}

TEST(QosEnumsTest, MapTypePrintsItsNames) {
  EXPECT_EQ(printedValues<MapType>(3), (std::vector<std::string>{"mapControlPlane", "mapQos", "mapPbr"}));
}

TEST(QosEnumsTest, ClassMapCpTypePrintsItsNames) {
  EXPECT_EQ(printedValues<ClassMapCpType>(2),
            (std::vector<std::string>{"classMapCpStatic", "classMapCpDynamic"}));
}

TEST(QosEnumsTest, ClassMapCpStaticTypePrintsEveryStaticClass) {
  EXPECT_EQ(printedValues<ClassMapCpStaticType>(20),
            (std::vector<std::string>{"cpStaticInvalid",     "cpStaticBpdu",
                                      "cpStaticLacp",        "cpStaticLldp",
                                      "cpStaticArp",         "cpStaticArpResolver",
                                      "cpStaticIpBroadcast", "cpStaticIpMcast",
                                      "cpStaticL3Ttl1",      "cpStaticL3DestinationMiss",
                                      "cpStaticBgp",         "cpStaticOspfIsis",
                                      "cpStaticIgmp",        "cpStaticPim",
                                      "cpStaticVrrp",        "cpStaticSflow",
                                      "cpStaticAclLog",      "cpStaticLinkLocal",
                                      "cpStaticDrop",        "cpStaticDefault"}));
  EXPECT_EQ(printed(cpStaticBgp_), "cpStaticBgp");
}

TEST(QosEnumsTest, ClassMapMatchOptionPrintsItsNames) {
  EXPECT_EQ(printedValues<ClassMapMatchOption>(9),
            (std::vector<std::string>{"matchInvalid", "matchIpAccessGroup", "matchIpv6AccessGroup",
                                      "matchMacAccessGroup", "matchVlan", "matchCos", "matchDscp", "matchEcn",
                                      "matchMplsTrafficClass"}));
}

TEST(QosEnumsTest, ActionTypePrintsItsNames) {
  EXPECT_EQ(
      printedValues<ActionType>(8),
      (std::vector<std::string>{"actionSetShape", "actionSetBandwidth", "actionSetCos", "actionSetDscp",
                                "actionSetTc", "actionSetDropPrecedence", "actionPolice", "actionCount"}));
}

TEST(QosEnumsTest, PolicyMapDirectionPrintsItsNames) {
  EXPECT_EQ(printedValues<PolicyMapDirection>(3),
            (std::vector<std::string>{"directionInvalid", "directionInput", "directionOutput"}));
}

TEST(QosEnumsTest, MatchConditionPrintsItsNames) {
  EXPECT_EQ(printedValues<MatchCondition>(2),
            (std::vector<std::string>{"matchConditionAny", "matchConditionAll"}));
}

TEST(QosEnumsTest, HwProgrammingStatusPrintsItsNames) {
  EXPECT_EQ(printedValues<HwProgrammingStatus>(4),
            (std::vector<std::string>{"hwStatusUnknown", "hwStatusProgrammed", "hwStatusNotProgrammed",
                                      "hwStatusError"}));
}

TEST(QosEnumsTest, RateUnitPrintsItsNames) {
  EXPECT_EQ(printedValues<RateUnit>(6),
            (std::vector<std::string>{"rateUnitBps", "rateUnitKbps", "rateUnitMbps", "rateUnitGbps",
                                      "rateUnitPps", "rateUnitPercent"}));
}

TEST(QosEnumsTest, ValueWithoutEnumeratorPrintsAsItsNumber) {
  EXPECT_EQ(printed(static_cast<MapType>(3)), "3");
  EXPECT_EQ(printed(static_cast<ClassMapCpType>(2)), "2");
  EXPECT_EQ(printed(static_cast<ClassMapCpStaticType>(20)), "20");
  EXPECT_EQ(printed(static_cast<ClassMapMatchOption>(9)), "9");
  EXPECT_EQ(printed(static_cast<ActionType>(8)), "8");
  EXPECT_EQ(printed(static_cast<PolicyMapDirection>(3)), "3");
  EXPECT_EQ(printed(static_cast<MatchCondition>(2)), "2");
  EXPECT_EQ(printed(static_cast<HwProgrammingStatus>(4)), "4");
  EXPECT_EQ(printed(static_cast<RateUnit>(4000000000U)), "4000000000");
}

TEST(QosEnumsTest, EnumNameIsThePrintedNameAndNullWithoutEnumerator) {
  EXPECT_STREQ(enumName(mapPbr_), "mapPbr");
  EXPECT_STREQ(enumName(cpStaticDefault_), "cpStaticDefault");
  EXPECT_STREQ(enumName(actionPolice_), "actionPolice");
  EXPECT_EQ(enumName(static_cast<MapType>(3)), nullptr);
  EXPECT_EQ(enumName(static_cast<ClassMapCpStaticType>(20)), nullptr);
}

template <typename E>
void expectEveryNameReadsBack(Kel::U32 count) {
  for (Kel::U32 value = 0; value < count; ++value) {
    const E e = static_cast<E>(value);
    EXPECT_EQ(enumFromName<E>(enumName(e)), e) << value;
  }
}

TEST(QosEnumsTest, EnumFromNameReadsEveryPrintedNameBack) {
  expectEveryNameReadsBack<MapType>(3);
  expectEveryNameReadsBack<ClassMapCpType>(2);
  expectEveryNameReadsBack<ClassMapCpStaticType>(20);
  expectEveryNameReadsBack<ClassMapMatchOption>(9);
  expectEveryNameReadsBack<ActionType>(8);
  expectEveryNameReadsBack<PolicyMapDirection>(3);
  expectEveryNameReadsBack<MatchCondition>(2);
  expectEveryNameReadsBack<HwProgrammingStatus>(4);
  expectEveryNameReadsBack<RateUnit>(6);
}

TEST(QosEnumsTest, EnumFromNameRefusesOtherSpellings) {
  EXPECT_EQ(enumFromName<MapType>("mapQos_"), std::nullopt);
  EXPECT_EQ(enumFromName<MapType>("MapQos"), std::nullopt);
  EXPECT_EQ(enumFromName<MapType>("1"), std::nullopt);
  EXPECT_EQ(enumFromName<MapType>(""), std::nullopt);
  // A name of another enumeration is not one of this one's.
  EXPECT_EQ(enumFromName<MapType>("directionInput"), std::nullopt);
}

}  // namespace
}  // namespace Qos
