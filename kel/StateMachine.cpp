#include "kel/StateMachine.h"

namespace Kel {

void StateMachine::close() {
  hasNotificationActiveIs(false);
  if (!closed_) {
    closed_ = true;
    doClose();
  }
}

void StateMachine::onLastReference() noexcept {
  close();
  delete this;
}

}  // namespace Kel
