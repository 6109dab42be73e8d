// The agent module's start-up values, set when the library is loaded.
//
// Start-up, in this order: the standard streams are initialised; the
// module's name-space prefix "ns-" is built; the module's type table and its
// entry point "QosSnmp::rootSmFactory" are registered with the framework's
// module registry; the default-class priority is set to 3072; the default
// interface id (the empty id) is built.
#pragma once

#include "kel/String.h"
#include "kel/Types.h"
#include "pellix/IntfId.h"

namespace QosSnmp {

// Kept for the life of the library; not otherwise used.
extern const Kel::String kNamespacePrefix;
// Whether this load registered the module (false: it was registered before).
extern const bool kModuleRegistered;
// The priority of every policy map's default class.
extern const Kel::U32 kDefaultClassPriority;
// The framework's default interface id: the empty id.
extern const Pellix::IntfId kDefaultIntfId;

}  // namespace QosSnmp
