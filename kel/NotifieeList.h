// NotifieeList: the reactors that watch one entity.
//
// visit(attributeId, key) calls every deliverable reactor once, in the order
// the reactors were added. Delivery survives the list changing under it:
// - a reactor removed during a visit gets no further call (its slot is
//   cleared at once, the list is compacted only when no visit is running);
// - a reactor added during a visit does not receive the notification in
//   flight (the visit stops at the size the list had when it began);
// - visits may nest (a handler changing the entity it is told about).
// Adding and removing cost O(1) amortised, whatever the number of reactors.
#pragma once

#include <cstddef>
#include <vector>

#include "kel/Types.h"

namespace Kel {

class NotifieeBase;

class NotifieeList {
 public:
  NotifieeList() = default;
  NotifieeList(const NotifieeList&) = delete;
  NotifieeList& operator=(const NotifieeList&) = delete;
  ~NotifieeList();

  void visit(AttributeId attributeId, const void* key = nullptr);

  // Reactors currently attached.
  std::size_t size() const { return slots_.size() - holes_; }
  bool empty() const { return size() == 0; }

 private:
  friend class NotifieeBase;

  void add(NotifieeBase* notifiee);
  void remove(NotifieeBase* notifiee);
  void compactIfWorthIt();

  std::vector<NotifieeBase*> slots_;
  std::size_t holes_ = 0;
  U32 visiting_ = 0;
};

}  // namespace Kel
