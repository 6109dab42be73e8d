#include "kel/NotifieeBase.h"

#include "kel/Entity.h"

namespace Kel {

NotifieeBase::~NotifieeBase() { notifierEntityIs(nullptr); }

void NotifieeBase::notifierEntityIs(Ptr<const Entity> notifier) {
  if (notifier == notifier_) {
    return;
  }
  if (notifier_) {
    notifier_->notifieeList().remove(this);
  }
  notifier_ = std::move(notifier);
  if (notifier_) {
    notifier_->notifieeList().add(this);
  }
}

void NotifieeBase::close() {
  hasNotificationActiveIs(false);
  if (!closed_) {
    closed_ = true;
    doClose();
  }
}

}  // namespace Kel
