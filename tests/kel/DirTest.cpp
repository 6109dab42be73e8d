#include "kel/Dir.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "KelTestEntities.h"

namespace {

using KelTest::Gadget;
using KelTest::Recorder;
using Texts = std::vector<std::string>;

class OtherEntity : public Kel::Entity {
 public:
  using Entity::Entity;
};

class DirReactor : public Kel::Notifiee<DirReactor, Recorder, const Kel::Dir, Kel::Dir::Entry> {
 public:
  using Notifiee::Notifiee;
  void on(Kel::Dir::Entry /*attr*/, const Kel::String& name) {
    owner().record("entry " + name.stringValue());
  }
};

TEST(DirTest, EntityPtrFindsAChildByName) {
  const auto dir = Kel::make<Kel::Dir>("slices");
  const auto slice = Kel::make<Gadget>("FixedSystem");
  dir->entityIs("FixedSystem", slice);
  EXPECT_EQ(dir->entityPtr("FixedSystem"), slice);
  EXPECT_FALSE(dir->entityPtr("Linecard3"));
}

TEST(DirTest, DowncastToAnotherTypeReadsAsAbsent) {
  const auto dir = Kel::make<Kel::Dir>("slices");
  dir->entityIs("odd", Kel::make<OtherEntity>("odd"));
  EXPECT_FALSE(Kel::ptrCast<const Gadget>(dir->entityPtr("odd")));
  EXPECT_TRUE(Kel::ptrCast<const OtherEntity>(dir->entityPtr("odd")));
}

TEST(DirTest, IteratesChildrenInNameOrder) {
  const auto dir = Kel::make<Kel::Dir>("slices");
  for (const char* name : {"Linecard4", "FixedSystem", "Linecard3"}) {
    dir->entityIs(name, Kel::make<Gadget>(name));
  }
  Texts names;
  for (const auto& [name, entity] : dir->entityPtrIteratorConst()) {
    names.push_back(name.stringValue());
    EXPECT_EQ(entity->name(), name);
  }
  EXPECT_EQ(names, (Texts{"FixedSystem", "Linecard3", "Linecard4"}));
}

TEST(DirTest, AddingAndRemovingAChildNotifiesWithItsName) {
  Texts log;
  const auto owner = Kel::make<Recorder>(&log);
  const auto dir = Kel::make<Kel::Dir>("slices");
  const auto reactor = Kel::makeReactor<DirReactor>(owner.get(), Kel::Ptr<const Kel::Dir>(dir));
  dir->entityIs("FixedSystem", Kel::make<Gadget>("FixedSystem"));
  dir->entityDel("FixedSystem");
  dir->entityDel("FixedSystem");
  EXPECT_EQ(log, (Texts{"entry FixedSystem", "entry FixedSystem"}));
}

}  // namespace
