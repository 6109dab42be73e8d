#include "kel/StateMachineTree.h"

#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "KelTestEntities.h"
#include "kel/AllocTrackTypeInfo.h"
#include "kel/Child.h"
#include "kel/ChildMap.h"
#include "kel/KeySet.h"
#include "kel/Make.h"
#include "kel/MemberList.h"
#include "kel/Notifiee.h"
#include "kel/PtrInterface.h"
#include "kel/StateMachine.h"
#include "kel/String.h"

// Named (not anonymous) so that type names read as they do in the agent.
namespace TreeTest {

using KelTest::Gadget;

struct RowIndex {
  int value;
  bool operator<(const RowIndex& other) const { return value < other.value; }
};

struct ExtraIndex {
  int value;
  bool operator<(const ExtraIndex& other) const { return value < other.value; }
};

// A key without operator<<.
struct Slot {
  int value;
  bool operator<(const Slot& other) const { return value < other.value; }
};

// Owns `rows` rows from its initial scan.
class LeafSm : public Kel::StateMachine {
 public:
  explicit LeafSm(int rows) : rows_(rows) { handleInitialized(); }
  auto arguments() const { return std::make_tuple(rows_); }

  void handleInitialized() {
    initializedIs(true);
    for (int i = 0; i < rows_; ++i) {
      rowKey_.is({i});
    }
  }
  void rowIs(int row) { rowKey_.is({row}); }

 private:
  int rows_;
  Kel::KeySet<RowIndex> rowKey_;
};

// Builds its leaves, and their leaves' rows, from inside its own
// construction: the nested case.
class BranchSm : public Kel::StateMachine {
 public:
  explicit BranchSm(std::vector<std::string> leaves) : leaves_(std::move(leaves)) { handleInitialized(); }
  auto arguments() const { return std::make_tuple(leaves_); }

  void handleInitialized() {
    initializedIs(true);
    extraKey_.is({7});
    for (std::size_t i = 0; i < leaves_.size(); ++i) {
      leafSm_.is(leaves_[i], static_cast<int>(i) + 1);
    }
    spareSm_.is(0);
    // Neither a local nor a member's heap node is one of this machine's
    // members.
    Kel::KeySet<RowIndex> scratch;
    scratch.is({1});
    scratchKeys_[0].is({1});
  }

  Kel::ChildMap<Kel::String, LeafSm>& leafSm() { return leafSm_; }
  Kel::Child<LeafSm>& spareSm() { return spareSm_; }

 private:
  std::vector<std::string> leaves_;
  Kel::KeySet<ExtraIndex> extraKey_;
  Kel::ChildMap<Kel::String, LeafSm> leafSm_;
  Kel::Child<LeafSm> spareSm_;
  std::map<int, Kel::KeySet<RowIndex>> scratchKeys_;
};

// A reactor child that keeps rows of its own.
class RowReactor : public Kel::Notifiee<RowReactor, Kel::StateMachine, const Gadget, Gadget::Color> {
 public:
  RowReactor(Kel::StateMachine* owner, const Kel::Ptr<const Gadget>& gadget) : Notifiee(owner, gadget) {
    rowKey_.is({1});
    rowKey_.is({2});
  }
  auto arguments() const { return std::make_tuple(&owner(), notifierPtr()); }
  void on(Gadget::Color /*attr*/) {}

 private:
  Kel::KeySet<RowIndex> rowKey_;
};

// A reactor child with nothing to show.
class QuietReactor : public Kel::Notifiee<QuietReactor, Kel::StateMachine, const Gadget, Gadget::Color> {
 public:
  using Notifiee::Notifiee;
  auto arguments() const { return std::make_tuple(&owner(), notifierPtr()); }
  void on(Gadget::Color /*attr*/) {}
};

// A reactor child that holds a machine: shown for the machine below it.
class HolderReactor : public Kel::Notifiee<HolderReactor, Kel::StateMachine, const Gadget, Gadget::Color> {
 public:
  HolderReactor(Kel::StateMachine* owner, const Kel::Ptr<const Gadget>& gadget) : Notifiee(owner, gadget) {
    leafSm_.is(2);
  }
  auto arguments() const { return std::make_tuple(&owner(), notifierPtr()); }
  void on(Gadget::Color /*attr*/) {}

 private:
  Kel::Child<LeafSm> leafSm_;
};

class ReactorOwnerSm : public Kel::StateMachine {
 public:
  explicit ReactorOwnerSm(const Kel::Ptr<const Gadget>& gadget) {
    rowReactor_.is(Slot{2}, this, gadget);
    quietReactor_.is(1, this, gadget);
    holderReactor_.is(this, gadget);
  }

 private:
  Kel::ChildMap<Slot, RowReactor> rowReactor_;
  Kel::ChildMap<int, QuietReactor> quietReactor_;
  Kel::Child<HolderReactor> holderReactor_;
};

// Members that come and go while the machine lives.
class ChangingSm : public Kel::StateMachine {
 public:
  ChangingSm() { lateKey_.emplace(); }
  void optionalKeysDel() {
    middleKey_.reset();
    lateKey_.reset();
  }

 private:
  Kel::KeySet<RowIndex> firstKey_;
  std::optional<Kel::KeySet<ExtraIndex>> middleKey_{std::in_place};
  Kel::KeySet<RowIndex> lastKey_;
  std::optional<Kel::KeySet<Slot>> lateKey_;
};

// Throws from its constructor once its members exist.
class FailingSm : public Kel::StateMachine {
 public:
  FailingSm() { throw std::runtime_error("no"); }

 private:
  Kel::KeySet<RowIndex> rowKey_;
};

}  // namespace TreeTest

namespace {

using TreeTest::BranchSm;
using TreeTest::LeafSm;
using Texts = std::vector<std::string>;

// One text per member: "keySet <label> <rows>" or
// "child [<key>] <type> machine|reactor".
Texts membersOf(const Kel::MemberList& members) {
  struct Lister final : Kel::MemberList::Visitor {
    void onChild(const Kel::MemberList::ChildView& child) override {
      texts.push_back("child [" + child.key.value_or("-") + "] " + *child.type + ' ' +
                      (child.machine != nullptr ? "machine" : "reactor"));
    }
    void onKeySet(std::string_view label, std::size_t rows) override {
      texts.push_back("keySet " + std::string(label) + ' ' + std::to_string(rows));
    }
    Texts texts;
  } lister;
  members.visit(lister);
  return lister.texts;
}

const Kel::MemberList& membersOfChild(const Kel::MemberList& members, const std::string& key) {
  const Kel::MemberList* found = nullptr;
  members.forEachChild([&](const Kel::MemberList::ChildView& child) {
    if (child.key.value_or("-") == key) {
      found = child.members;
    }
  });
  EXPECT_NE(found, nullptr) << key;
  return *found;
}

// The tree as "<depth> [<key>] <type> <label>=<rows>..." texts, in order.
void flatten(const Kel::StateMachineTree::Node& node, int depth, Texts& texts) {
  std::string text = std::to_string(depth) + " [" + node.key.value_or("-") + "] " + node.type +
                     (node.machine ? "" : " reactor");
  for (const auto& keySet : node.keySets) {
    text += ' ' + keySet.label + '=' + std::to_string(keySet.rows);
  }
  texts.push_back(text);
  for (const auto& child : node.children) {
    flatten(child, depth + 1, texts);
  }
}

Texts flatten(const Kel::StateMachineTree& tree) {
  Texts texts;
  flatten(tree.root(), 0, texts);
  return texts;
}

// What introspection costs: 8 bytes per machine, 16 per member.
static_assert(sizeof(Kel::StateMachine) <= sizeof(Kel::PtrInterface) + 8);
static_assert(sizeof(Kel::KeySet<int>) <= sizeof(Kel::KeySet<int>::Set) + 16);
static_assert(sizeof(Kel::ChildMap<int, LeafSm>) <= sizeof(Kel::ChildMap<int, LeafSm>::Map) + 16);
static_assert(sizeof(Kel::Child<LeafSm>) <= sizeof(Kel::Ptr<LeafSm>) + 16);

TEST(StateMachineTreeTest, MachineListsItsMembersInDeclarationOrderAndChildrenInKeyOrder) {
  const auto branch = Kel::make<BranchSm>(Texts{"b", "a"});
  EXPECT_EQ(membersOf(branch->members()), (Texts{
                                              "keySet ExtraIndex 1",
                                              "child [a] TreeTest::LeafSm machine",
                                              "child [b] TreeTest::LeafSm machine",
                                              "child [-] TreeTest::LeafSm machine",
                                          }));
}

TEST(StateMachineTreeTest, MachinesBuiltDuringTheirOwnersConstructionKeepTheirOwnMembers) {
  const auto branch = Kel::make<BranchSm>(Texts{"b", "a"});
  // "b" is the first leaf built (1 row), "a" the second (2 rows); each leaf's
  // key set is its own, none went to the branch under construction.
  EXPECT_EQ(membersOf(membersOfChild(branch->members(), "b")), Texts{"keySet RowIndex 1"});
  EXPECT_EQ(membersOf(membersOfChild(branch->members(), "a")), Texts{"keySet RowIndex 2"});
  EXPECT_EQ(membersOf(membersOfChild(branch->members(), "-")), Texts{"keySet RowIndex 0"});
}

TEST(StateMachineTreeTest, KeySetsShowTheirLiveRowCount) {
  const auto leaf = Kel::make<LeafSm>(2);
  leaf->rowIs(5);
  leaf->rowIs(5);
  EXPECT_EQ(membersOf(leaf->members()), Texts{"keySet RowIndex 3"});
}

TEST(StateMachineTreeTest, ChildrenMadeAfterConstructionAreListed) {
  const auto branch = Kel::make<BranchSm>(Texts{});
  branch->leafSm().is("late", 4);
  EXPECT_EQ(membersOf(branch->members()), (Texts{
                                              "keySet ExtraIndex 1",
                                              "child [late] TreeTest::LeafSm machine",
                                              "child [-] TreeTest::LeafSm machine",
                                          }));
  EXPECT_EQ(membersOf(membersOfChild(branch->members(), "late")), Texts{"keySet RowIndex 4"});
}

TEST(StateMachineTreeTest, DeletedChildrenAreNoLongerListed) {
  const auto branch = Kel::make<BranchSm>(Texts{"a", "b"});
  branch->leafSm().del("a");
  branch->spareSm().del();
  EXPECT_EQ(membersOf(branch->members()), (Texts{
                                              "keySet ExtraIndex 1",
                                              "child [b] TreeTest::LeafSm machine",
                                          }));
  branch->leafSm().delAll();
  EXPECT_EQ(membersOf(branch->members()), Texts{"keySet ExtraIndex 1"});
}

TEST(StateMachineTreeTest, MembersAreListedInConstructionOrderAndLeaveWhenDestroyed) {
  const auto machine = Kel::make<TreeTest::ChangingSm>();
  EXPECT_EQ(membersOf(machine->members()),
            (Texts{"keySet RowIndex 0", "keySet ExtraIndex 0", "keySet RowIndex 0", "keySet Slot 0"}));
  machine->optionalKeysDel();
  EXPECT_EQ(membersOf(machine->members()), (Texts{"keySet RowIndex 0", "keySet RowIndex 0"}));
}

TEST(StateMachineTreeTest, MembersOutsideAMachineBuiltByMakeBelongToNoList) {
  TreeTest::LeafSm onTheStack(3);
  EXPECT_TRUE(onTheStack.members().empty());
  Kel::ChildMap<int, LeafSm> standalone;
  standalone.is(1, 1);
  EXPECT_EQ(membersOf(standalone.find(1)->members()), Texts{"keySet RowIndex 1"});
}

TEST(StateMachineTreeTest, ConstructorThatThrowsLeavesLaterMachinesListingTheirOwnMembers) {
  EXPECT_THROW(Kel::make<TreeTest::FailingSm>(), std::runtime_error);
  const auto leaf = Kel::make<LeafSm>(1);
  EXPECT_EQ(membersOf(leaf->members()), Texts{"keySet RowIndex 1"});
  TreeTest::LeafSm onTheStack(1);
  EXPECT_TRUE(onTheStack.members().empty());
}

TEST(StateMachineTreeTest, ReactorChildrenListTheirOwnMembers) {
  const auto gadget = Kel::make<KelTest::Gadget>("g");
  const auto owner = Kel::make<TreeTest::ReactorOwnerSm>(Kel::Ptr<const KelTest::Gadget>(gadget));
  EXPECT_EQ(membersOf(owner->members()), (Texts{
                                             "child [#0] TreeTest::RowReactor reactor",
                                             "child [1] TreeTest::QuietReactor reactor",
                                             "child [-] TreeTest::HolderReactor reactor",
                                         }));
  EXPECT_EQ(membersOf(membersOfChild(owner->members(), "#0")), Texts{"keySet RowIndex 2"});
  EXPECT_TRUE(membersOfChild(owner->members(), "1").empty());
  EXPECT_EQ(membersOf(membersOfChild(owner->members(), "-")), Texts{"child [-] TreeTest::LeafSm machine"});
  // Reactor children still count against their own type.
  EXPECT_EQ(Kel::AllocTrackTypeInfo::liveObjectsOf("TreeTest::RowReactor"), 1);
}

TEST(StateMachineTreeTest, TreeShowsMachinesAndTheReactorsThatOwnRowsOrMachines) {
  const auto gadget = Kel::make<KelTest::Gadget>("g");
  const auto owner = Kel::make<TreeTest::ReactorOwnerSm>(Kel::Ptr<const KelTest::Gadget>(gadget));
  const Kel::StateMachineTree tree(*owner);
  EXPECT_EQ(flatten(tree), (Texts{
                               "0 [-] TreeTest::ReactorOwnerSm",
                               "1 [#0] TreeTest::RowReactor reactor RowIndex=2",
                               "1 [-] TreeTest::HolderReactor reactor",
                               "2 [-] TreeTest::LeafSm RowIndex=2",
                           }));
  EXPECT_EQ(tree.machines(), 2U);
  EXPECT_EQ(tree.rows(), 4U);
}

TEST(StateMachineTreeTest, TreeCountsMachinesAndRowsUnderTheRoot) {
  const auto branch = Kel::make<BranchSm>(Texts{"b", "a", "c"});
  const Kel::StateMachineTree tree(*branch);
  EXPECT_EQ(flatten(tree), (Texts{
                               "0 [-] TreeTest::BranchSm ExtraIndex=1",
                               "1 [a] TreeTest::LeafSm RowIndex=2",
                               "1 [b] TreeTest::LeafSm RowIndex=1",
                               "1 [c] TreeTest::LeafSm RowIndex=3",
                               "1 [-] TreeTest::LeafSm RowIndex=0",
                           }));
  EXPECT_EQ(tree.machines(), 5U);
  EXPECT_EQ(tree.rows(), 7U);
  EXPECT_EQ(tree.rowsByLabel(), (std::map<std::string, std::size_t>{{"ExtraIndex", 1}, {"RowIndex", 6}}));
  EXPECT_EQ(tree.root().ownRows(), 1U);
}

TEST(StateMachineTreeTest, RootOnTheStackShowsItsDynamicTypeAndNothingBelow) {
  TreeTest::LeafSm onTheStack(2);
  const Kel::StateMachineTree tree(onTheStack);
  EXPECT_EQ(flatten(tree), Texts{"0 [-] TreeTest::LeafSm"});
  EXPECT_EQ(tree.rows(), 0U);
}

}  // namespace
