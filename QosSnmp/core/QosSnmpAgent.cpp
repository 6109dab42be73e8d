#include "QosSnmp/core/QosSnmpAgent.h"

#include <iostream>

#include "QosSnmp/core/RootSm.h"
#include "kel/ModuleRegistry.h"

namespace QosSnmp {

namespace {

const std::ios_base::Init kStreamLibrary;

bool registerModule() {
  Kel::ModuleRegistry& registry = Kel::ModuleRegistry::instance();
  const bool registered = registry.moduleIs({"QosSnmp",
                                             {
                                                 "QosSnmp::Root",
                                                 "QosSnmp::RootSm",
                                                 "QosSnmp::AllIntfStatusDirSm",
                                                 "QosSnmp::ClassMapTableSm",
                                                 "QosSnmp::MatchSm",
                                                 "QosSnmp::PolicyMapTablesSm",
                                                 "QosSnmp::ClassActionSm",
                                                 "QosSnmp::ClassPrioSm",
                                                 "QosSnmp::PolicyActionSm",
                                                 "QosSnmp::ServicePolicyTableSm",
                                                 "QosSnmp::QosStatsTableSm",
                                                 "QosSnmp::HwStatusPmapSm",
                                                 "QosSnmp::HwStatusCmapSm",
                                                 "QosSnmp::AclHwStatusPmapSm",
                                                 "QosSnmp::AclHwStatusCmapSm",
                                                 "QosSnmp::QosStatusCmapPolicerStatsTableSm",
                                                 "QosSnmp::CoppStaticSm",
                                                 "QosSnmp::CoppStatsTableSm",
                                                 "QosSnmp::EcnCounterTableSm",
                                                 "QosSnmp::EcnQueueCounterTableSm",
                                                 "QosSnmp::EcnQueueCounterTableSliceSm",
                                             }});
  registry.entryPointIs<RootSmFactory>("QosSnmp::rootSmFactory", &rootSmFactory);
  return registered;
}

Kel::U32 initialDefaultClassPriority() { return 3072; }

Pellix::IntfId initialDefaultIntfId() {
  Pellix::IntfId intf;
  intf.handleInitialized(Kel::String());
  return intf;
}

}  // namespace

// Dynamic initialisation runs in this order within this file.
const Kel::String kNamespacePrefix("ns-");
const bool kModuleRegistered = registerModule();
const Kel::U32 kDefaultClassPriority = initialDefaultClassPriority();
const Pellix::IntfId kDefaultIntfId = initialDefaultIntfId();

}  // namespace QosSnmp
