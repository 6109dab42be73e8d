#include "kel/NotifieeList.h"

#include "kel/Assert.h"
#include "kel/NotifieeBase.h"

namespace Kel {

NotifieeList::~NotifieeList() {
  // Reactors hold their notifier, so a list dies only once it is empty.
  KEL_ASSERT(size() == 0);
}

void NotifieeList::add(NotifieeBase* notifiee) {
  notifiee->slot_ = slots_.size();
  slots_.push_back(notifiee);
}

void NotifieeList::remove(NotifieeBase* notifiee) {
  KEL_ASSERT(notifiee->slot_ < slots_.size() && slots_[notifiee->slot_] == notifiee);
  slots_[notifiee->slot_] = nullptr;
  ++holes_;
  compactIfWorthIt();
}

void NotifieeList::compactIfWorthIt() {
  // Compacting during a visit would move reactors under the running loop.
  if (visiting_ != 0 || holes_ * 2 < slots_.size()) {
    return;
  }
  std::size_t kept = 0;
  for (NotifieeBase* notifiee : slots_) {
    if (notifiee != nullptr) {
      notifiee->slot_ = kept;
      slots_[kept++] = notifiee;
    }
  }
  slots_.resize(kept);
  holes_ = 0;
}

void NotifieeList::visit(AttributeId attributeId, const void* key) {
  ++visiting_;
  const std::size_t end = slots_.size();
  for (std::size_t i = 0; i < end; ++i) {
    NotifieeBase* notifiee = slots_[i];
    if (notifiee == nullptr || !notifiee->deliverable()) {
      continue;
    }
    // Objects without a reference yet (an owner still under construction)
    // are not held: releasing the hold would destroy them.
    PtrInterface* owner = notifiee->ownerObject();
    const Ptr<PtrInterface> holdNotifiee(notifiee->references() > 0 ? notifiee : nullptr);
    const Ptr<PtrInterface> holdOwner(owner != nullptr && owner->references() > 0 ? owner : nullptr);
    notifiee->onAttribute(attributeId, key);
  }
  --visiting_;
  compactIfWorthIt();
}

}  // namespace Kel
