#include "QosSnmp/core/Action.h"

#include "QosSnmp/core/QosKeyUtil.h"

namespace Qos {

Action::Action(ActionType actionType) : Entity(keyText(actionType)), actionType_(actionType) {}

}  // namespace Qos
