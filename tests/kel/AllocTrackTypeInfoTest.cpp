#include "kel/AllocTrackTypeInfo.h"

#include <gtest/gtest.h>

#include "kel/KeySet.h"
#include "kel/Make.h"
#include "kel/StateMachine.h"

namespace KelTest {

class TrackedSm : public Kel::StateMachine {};

}  // namespace KelTest

namespace {

TEST(AllocTrackTypeInfoTest, LiveCountReturnsToZeroWhenObjectsAreReleased) {
  const Kel::AllocTrackTypeInfo& info = Kel::allocTrackTypeInfo<KelTest::TrackedSm>();
  const Kel::S64 before = info.live();
  {
    const auto a = Kel::make<KelTest::TrackedSm>();
    const auto b = Kel::make<KelTest::TrackedSm>();
    EXPECT_EQ(info.live(), before + 2);
  }
  EXPECT_EQ(info.live(), before);
  EXPECT_GE(info.allocations(), 2);
}

TEST(AllocTrackTypeInfoTest, RecordsAreFoundByDemangledName) {
  const auto sm = Kel::make<KelTest::TrackedSm>();
  EXPECT_EQ(Kel::allocTrackTypeInfo<KelTest::TrackedSm>().name(), "KelTest::TrackedSm");
  EXPECT_EQ(Kel::AllocTrackTypeInfo::liveObjectsOf("KelTest::TrackedSm"), 1);
  bool listed = false;
  for (const Kel::AllocTrackTypeInfo* record : Kel::AllocTrackTypeInfo::all()) {
    listed = listed || record->name() == "KelTest::TrackedSm";
  }
  EXPECT_TRUE(listed);
}

TEST(AllocTrackTypeInfoTest, CollectionNodesAreCounted) {
  Kel::S64 before = 0;
  {
    Kel::KeySet<long> keys;
    keys.is(1);
    before = -1;
    Kel::S64 live = 0;
    for (const Kel::AllocTrackTypeInfo* record : Kel::AllocTrackTypeInfo::all()) {
      if (record->name().find("_Rb_tree_node<long>") != std::string::npos) {
        live += record->live();
      }
    }
    EXPECT_EQ(live, 1);
  }
  Kel::S64 live = 0;
  for (const Kel::AllocTrackTypeInfo* record : Kel::AllocTrackTypeInfo::all()) {
    if (record->name().find("_Rb_tree_node<long>") != std::string::npos) {
      live += record->live();
    }
  }
  EXPECT_EQ(live, 0);
  EXPECT_EQ(before, -1);
}

}  // namespace
