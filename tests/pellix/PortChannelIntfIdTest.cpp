#include "pellix/PortChannelIntfId.h"

#include <gtest/gtest.h>

namespace Pellix {
namespace {

bool isPortChannel(const char* name) {
  return PortChannelIntfId::isPortChannelIntfId(IntfId(Kel::String(name)));
}

TEST(PortChannelIntfIdTest, PrefixAndNumberIsPortChannel) {
  EXPECT_TRUE(isPortChannel("Port-Channel10"));
  EXPECT_TRUE(isPortChannel("Port-Channel1"));
  EXPECT_TRUE(isPortChannel("Port-Channel0"));
  EXPECT_TRUE(isPortChannel("Port-Channel999999"));
}

TEST(PortChannelIntfIdTest, SubInterfaceOfPortChannelIsNot) {
  EXPECT_FALSE(isPortChannel("Port-Channel10.100"));
  EXPECT_FALSE(isPortChannel("Port-Channel10."));
}

TEST(PortChannelIntfIdTest, PrefixWithoutNumberIsNot) {
  EXPECT_FALSE(isPortChannel("Port-Channel"));
  EXPECT_FALSE(isPortChannel("Port-Channel."));
  EXPECT_FALSE(isPortChannel("Port-Channelx"));
}

TEST(PortChannelIntfIdTest, AnythingAfterTheNumberIsNot) {
  EXPECT_FALSE(isPortChannel("Port-Channel10x"));
  EXPECT_FALSE(isPortChannel("Port-Channel10/1"));
  EXPECT_FALSE(isPortChannel("Port-Channel10 "));
  EXPECT_FALSE(isPortChannel("Port-Channel1-2"));
}

TEST(PortChannelIntfIdTest, OtherInterfacesAreNot) {
  EXPECT_FALSE(isPortChannel("Ethernet1"));
  EXPECT_FALSE(isPortChannel("Ethernet1/1.100"));
  EXPECT_FALSE(isPortChannel("Vlan10"));
  EXPECT_FALSE(isPortChannel("XPort-Channel10"));
  EXPECT_FALSE(isPortChannel(" Port-Channel10"));
}

TEST(PortChannelIntfIdTest, PrefixIsCaseSensitive) {
  EXPECT_FALSE(isPortChannel("port-channel10"));
  EXPECT_FALSE(isPortChannel("Port-channel10"));
  EXPECT_FALSE(isPortChannel("PortChannel10"));
}

TEST(PortChannelIntfIdTest, EmptyIdIsNot) {
  EXPECT_FALSE(PortChannelIntfId::isPortChannelIntfId(IntfId()));
  EXPECT_FALSE(isPortChannel("Port"));
}

}  // namespace
}  // namespace Pellix
