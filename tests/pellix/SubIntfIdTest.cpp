#include "pellix/SubIntfId.h"

#include <gtest/gtest.h>

namespace Pellix {
namespace {

bool isSubIntf(const char* name) { return SubIntfId::isSubIntfId(IntfId(Kel::String(name))); }

TEST(SubIntfIdTest, DottedNumberSuffixIsSubInterface) {
  EXPECT_TRUE(isSubIntf("Ethernet1/1.100"));
  EXPECT_TRUE(isSubIntf("Ethernet1.1"));
  EXPECT_TRUE(isSubIntf("Port-Channel10.5"));
  EXPECT_TRUE(isSubIntf("Ethernet1/1.0"));
  EXPECT_TRUE(isSubIntf("Ethernet1/1.4094"));
  EXPECT_TRUE(isSubIntf("x.1"));
}

TEST(SubIntfIdTest, OnlyTheLastDotCounts) {
  EXPECT_TRUE(isSubIntf("Ethernet1/1.2.3"));
  EXPECT_FALSE(isSubIntf("Ethernet1/1.2.x"));
  EXPECT_FALSE(isSubIntf("Ethernet1.5/1"));
}

TEST(SubIntfIdTest, ParentInterfacesAreNot) {
  EXPECT_FALSE(isSubIntf("Ethernet1/1"));
  EXPECT_FALSE(isSubIntf("Ethernet1"));
  EXPECT_FALSE(isSubIntf("Port-Channel10"));
}

TEST(SubIntfIdTest, DotWithoutNumberIsNot) {
  EXPECT_FALSE(isSubIntf("Ethernet1."));
  EXPECT_FALSE(isSubIntf("Ethernet1.x"));
  EXPECT_FALSE(isSubIntf("Ethernet1.10x"));
  EXPECT_FALSE(isSubIntf("Ethernet1.1 "));
  EXPECT_FALSE(isSubIntf("Ethernet1.-1"));
}

TEST(SubIntfIdTest, NumberWithoutParentIsNot) {
  EXPECT_FALSE(isSubIntf(".5"));
  EXPECT_FALSE(isSubIntf("."));
}

TEST(SubIntfIdTest, EmptyIdIsNot) { EXPECT_FALSE(SubIntfId::isSubIntfId(IntfId())); }

}  // namespace
}  // namespace Pellix
