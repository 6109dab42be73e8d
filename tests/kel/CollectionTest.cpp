#include "kel/Collection.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "KelTestEntities.h"

namespace {

using KelTest::Gadget;
using KelTest::GadgetReactor;
using KelTest::Recorder;
using Texts = std::vector<std::string>;

class CollectionTest : public ::testing::Test {
 protected:
  Texts log_;
  Kel::Ptr<Recorder> owner_ = Kel::make<Recorder>(&log_);
  Kel::Ptr<Gadget> gadget_ = Kel::make<Gadget>("g");
};

TEST_F(CollectionTest, IteratesInKeyOrder) {
  for (const int port : {5, 1, 9, 3}) {
    gadget_->portIs(port, true);
  }
  std::vector<int> keys;
  for (const auto& [port, up] : gadget_->port()) {
    keys.push_back(port);
  }
  EXPECT_EQ(keys, (std::vector<int>{1, 3, 5, 9}));
}

TEST_F(CollectionTest, MissingKeyReadsAsDefault) {
  EXPECT_FALSE(gadget_->part("absent"));
  EXPECT_FALSE(gadget_->port().get(4));
  EXPECT_EQ(gadget_->port().find(4), nullptr);
}

TEST_F(CollectionTest, DeleteAllNotifiesEachKeyInOrder) {
  gadget_->partIs("b", Kel::make<Gadget>("b"));
  gadget_->partIs("a", Kel::make<Gadget>("a"));
  const auto reactor = Kel::makeReactor<GadgetReactor>(owner_.get(), gadget_, std::string("r"));
  gadget_->partDelAll();
  EXPECT_EQ(log_, (Texts{"r:part a", "r:part b"}));
  EXPECT_TRUE(gadget_->part().empty());
}

TEST_F(CollectionTest, DeletingAnAbsentKeyNotifiesNobody) {
  const auto reactor = Kel::makeReactor<GadgetReactor>(owner_.get(), gadget_, std::string("r"));
  EXPECT_FALSE(gadget_->portDel(3));
  EXPECT_TRUE(log_.empty());
}

TEST_F(CollectionTest, ReplacingAMemberNotifiesOnce) {
  const auto reactor = Kel::makeReactor<GadgetReactor>(owner_.get(), gadget_, std::string("r"));
  const auto wheel = Kel::make<Gadget>("wheel");
  gadget_->partIs("x", wheel);
  gadget_->partIs("x", wheel);
  gadget_->partIs("x", Kel::make<Gadget>("wheel2"));
  EXPECT_EQ(log_, (Texts{"r:part x", "r:part x"}));
}

TEST_F(CollectionTest, MemberMayBeDeletedOnceTheIteratorPassedIt) {
  for (int port = 0; port < 10; ++port) {
    gadget_->portIs(port, true);
  }
  std::vector<int> seen;
  gadget_->port().forEachKey([&](int port) {
    seen.push_back(port);
    gadget_->portDel(port);
  });
  EXPECT_EQ(seen.size(), 10U);
  EXPECT_TRUE(gadget_->port().empty());

  for (int port = 0; port < 10; ++port) {
    gadget_->portIs(port, true);
  }
  seen.clear();
  for (auto it = gadget_->port().begin(); it != gadget_->port().end();) {
    const int port = it->first;
    ++it;
    seen.push_back(port);
    if (port > 0) {
      gadget_->portDel(port - 1);  // a member the iterator passed
    }
  }
  EXPECT_EQ(seen.size(), 10U);
  EXPECT_EQ(gadget_->port().size(), 1U);
}

TEST_F(CollectionTest, ReactorOfTheRemovedChildStillAttachedWhileParentIsTold) {
  const auto child = Kel::make<Gadget>("child");
  gadget_->partIs("child", child);
  Texts childLog;
  const auto childOwner = Kel::make<Recorder>(&childLog);
  const auto childReactor = Kel::makeReactor<GadgetReactor>(childOwner.get(), child, std::string("c"));
  const auto parentReactor = Kel::makeReactor<GadgetReactor>(owner_.get(), gadget_, std::string("p"));
  gadget_->partDel("child");
  EXPECT_EQ(log_, Texts{"p:part child"});
  EXPECT_EQ(child->references(), 2);  // the test and the child's reactor
}

TEST_F(CollectionTest, MemberChangedInPlaceIsReportedAsItsKey) {
  const auto wheel = Kel::make<Gadget>("wheel");
  gadget_->partIs("wheel", wheel);
  const auto reactor = Kel::makeReactor<GadgetReactor>(owner_.get(), gadget_, std::string("r"));
  wheel->colorIs(2);
  Kel::notifyMemberChanged<Gadget::Part>(*gadget_, Kel::String("wheel"));
  EXPECT_EQ(log_, Texts{"r:part wheel"});
}

}  // namespace
