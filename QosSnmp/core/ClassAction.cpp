#include "QosSnmp/core/ClassAction.h"

#include <utility>

#include "kel/Assert.h"
#include "kel/MutatorException.h"

namespace Qos {

ClassAction::ClassAction(Kel::String name) : Entity(std::move(name)) {}

void ClassAction::policyActionIs(ActionType actionType, Kel::Ptr<Action> action) {
  Kel::requireArgument(action, "action");
  KEL_ASSERT(action->actionType() == actionType);
  policyAction_.set(*this, actionType, std::move(action));
}

}  // namespace Qos
