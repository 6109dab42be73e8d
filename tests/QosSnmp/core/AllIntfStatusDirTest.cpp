#include "QosSnmp/core/AllIntfStatusDir.h"

#include <gtest/gtest.h>

#include "InputModelTestSupport.h"
#include "QosSnmp/core/IntfStatus.h"
#include "kel/Make.h"
#include "kel/Notifiee.h"

namespace Interface {
namespace {

using QosInputTest::printed;
using QosInputTest::Recorder;
using QosInputTest::Texts;

class AllIntfStatusDirReactor : public Kel::Notifiee<AllIntfStatusDirReactor, Recorder,
                                                     const AllIntfStatusDir, AllIntfStatusDir::IntfStatus> {
 public:
  using Notifiee::Notifiee;
  void on(AllIntfStatusDir::IntfStatus /*attr*/, const Pellix::IntfId& intf) {
    owner().record("intfStatus", intf);
  }
};

class IntfStatusReactor
    : public Kel::Notifiee<IntfStatusReactor, Recorder, const IntfStatus, IntfStatus::SnmpIfIndex,
                           IntfStatus::OperStatus, IntfStatus::Description> {
 public:
  using Notifiee::Notifiee;
  void on(IntfStatus::SnmpIfIndex /*attr*/) { owner().record("snmpIfIndex"); }
  void on(IntfStatus::OperStatus /*attr*/) { owner().record("operStatus"); }
  void on(IntfStatus::Description /*attr*/) { owner().record("description"); }
};

Pellix::IntfId intf(const char* name) { return Pellix::IntfId(Kel::String(name)); }

Kel::Ptr<IntfStatus> intfStatus(const char* name) { return Kel::make<IntfStatus>(intf(name)); }

class AllIntfStatusDirTest : public ::testing::Test {
 protected:
  Kel::Ptr<AllIntfStatusDir> dir_ = Kel::make<AllIntfStatusDir>("allIntfStatus");
  Kel::Ptr<Recorder> recorder_ = Kel::make<Recorder>();
};

TEST_F(AllIntfStatusDirTest, InterfacesIterateInNaturalOrder) {
  for (const char* name :
       {"Port-Channel10", "Ethernet10", "Ethernet2", "Ethernet1/10", "Ethernet1/2", "Port-Channel9"}) {
    dir_->intfStatusIs(intf(name), intfStatus(name));
  }
  Texts order;
  for (const auto& [id, status] : dir_->intfStatus()) {
    EXPECT_EQ(status->intfId(), id);
    order.push_back(printed(id));
  }
  EXPECT_EQ(order, (Texts{"Ethernet1/2", "Ethernet1/10", "Ethernet2", "Ethernet10", "Port-Channel9",
                          "Port-Channel10"}));
}

TEST_F(AllIntfStatusDirTest, MembersAreNotifiedWithTheirInterface) {
  const auto reactor = Kel::makeReactor<AllIntfStatusDirReactor>(recorder_.get(), dir_);
  dir_->intfStatusIs(intf("Ethernet1"), intfStatus("Ethernet1"));
  dir_->intfStatusIs(intf("Ethernet1"), intfStatus("Ethernet1"));
  dir_->intfStatusDel(intf("Ethernet1"));
  EXPECT_FALSE(dir_->intfStatus(intf("Ethernet1")));
  EXPECT_EQ(recorder_->log(),
            (Texts{"intfStatus Ethernet1", "intfStatus Ethernet1", "intfStatus Ethernet1"}));
}

TEST_F(AllIntfStatusDirTest, MissingInterfaceReadsAsNull) {
  dir_->intfStatusIs(intf("Ethernet1"), intfStatus("Ethernet1"));
  EXPECT_FALSE(dir_->intfStatus(intf("Ethernet2")));
  EXPECT_FALSE(dir_->intfStatus(Pellix::IntfId()));
}

TEST(IntfStatusTest, NewStatusHasNoIndexYet) {
  const auto status = intfStatus("Ethernet1");
  EXPECT_EQ(status->intfId(), intf("Ethernet1"));
  EXPECT_EQ(status->name(), Kel::String("Ethernet1"));
  EXPECT_EQ(status->snmpIfIndex(), IntfStatus::kIfIndexNone);
  EXPECT_EQ(status->snmpIfIndex(), -1);
  EXPECT_EQ(IntfStatus::kIfIndexNever, -2);
  EXPECT_EQ(status->operStatus(), intfOperUnknown_);
  EXPECT_TRUE(status->description().empty());
}

TEST(IntfStatusTest, ScalarChangesAreNotifiedAndUnchangedOnesAreNot) {
  const auto recorder = Kel::make<Recorder>();
  const auto status = intfStatus("Ethernet1");
  const auto reactor = Kel::makeReactor<IntfStatusReactor>(recorder.get(), status);
  status->snmpIfIndexIs(IntfStatus::kIfIndexNone);
  status->snmpIfIndexIs(1001);
  status->snmpIfIndexIs(1001);
  status->operStatusIs(intfOperUp_);
  status->operStatusIs(intfOperUp_);
  status->descriptionIs("uplink");
  status->descriptionIs("uplink");
  EXPECT_EQ(status->snmpIfIndex(), 1001);
  EXPECT_EQ(status->operStatus(), intfOperUp_);
  EXPECT_EQ(status->description(), Kel::String("uplink"));
  EXPECT_EQ(recorder->log(), (Texts{"snmpIfIndex", "operStatus", "description"}));
}

TEST(IntfStatusTest, OperStatusPrintsItsNameOrItsNumber) {
  EXPECT_EQ(printed(intfOperUnknown_), "intfOperUnknown");
  EXPECT_EQ(printed(intfOperUp_), "intfOperUp");
  EXPECT_EQ(printed(intfOperDown_), "intfOperDown");
  EXPECT_EQ(printed(intfOperNotPresent_), "intfOperNotPresent");
  EXPECT_EQ(printed(static_cast<IntfOperStatus>(4)), "4");
}

}  // namespace
}  // namespace Interface
