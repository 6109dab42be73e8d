// Root: an entity that holds the agent's root state machine, for hosts that
// keep the agent inside the state database.
//
// rootSmIs(ten inputs) keeps the machine when it was built from the same ten
// entities (identity; null equal to null) and otherwise builds a new one,
// replaces the old one, tells the Root's reactors (attribute RootSmAttr) and
// switches the new machine on. rootSmDel() empties the attribute, tells the
// reactors, switches the removed machine off and hands it to the caller.
#pragma once

#include "QosSnmp/core/RootSm.h"
#include "kel/Attribute.h"
#include "kel/Entity.h"
#include "kel/Ptr.h"
#include "kel/String.h"

namespace QosSnmp {

class Root : public Kel::Entity {
 public:
  struct RootSmAttr : Kel::ScalarAttribute<1> {};

  explicit Root(Kel::String name) : Entity(std::move(name)) {}

  const Kel::Ptr<RootSm>& rootSm() const { return rootSm_; }

  Kel::Ptr<RootSm> rootSmIs(const Kel::Ptr<const Qos::Config>& qosConfig,
                            const Kel::Ptr<const Qos::Status>& qosStatus,
                            const Kel::Ptr<const Qos::HwStatus>& qosHwStatus,
                            const Kel::Ptr<const Kel::Dir>& qosSliceHwStatusDir,
                            const Kel::Ptr<const Kel::Dir>& qosAclSliceHwStatusDir,
                            const Kel::Ptr<const QosMibConfig>& qosMibConfig,
                            const Kel::Ptr<const Interface::AllIntfStatusDir>& allIntfStatusDir,
                            const Kel::Ptr<const Qos::HwCounter>& qosHwCounter,
                            const Kel::Ptr<QosMib>& qosMib,
                            const Kel::Ptr<const Qos::EcnCounterTable>& ecnCounterTable);
  Kel::Ptr<RootSm> rootSmDel();

 private:
  Kel::Ptr<RootSm> rootSm_;
};

}  // namespace QosSnmp
