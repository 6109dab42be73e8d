// Child<Sm>: a state machine's single child, as an attribute.
//
//   Kel::Child<ServicePolicyTableSm> servicePolicyTableSm_;
//   servicePolicyTableSm_.is(qosConfig, qosStatus, qosMib);
//
// is(args...) returns the existing child when it was built from the same
// arguments (Sm::arguments(), see StateMachine); otherwise it builds the new
// child first (its constructor runs its initial scan), switches it on, and
// only then closes and releases the old one. del() closes and releases.
// As a member of a machine, it shows its child to the machine's MemberList.
#pragma once

#include <optional>
#include <tuple>
#include <utility>

#include "kel/ChildMember.h"
#include "kel/MemberList.h"
#include "kel/Ptr.h"

namespace Kel {

template <typename Sm>
class Child : private MemberList::Member {
 public:
  Child() = default;
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;
  ~Child() override { del(); }

  Sm* get() const { return sm_.get(); }
  Sm* operator->() const { return sm_.get(); }
  explicit operator bool() const { return static_cast<bool>(sm_); }
  const Ptr<Sm>& ptr() const { return sm_; }

  template <typename... Args>
  Sm* is(Args&&... args) {
    if (sm_ && sm_->arguments() == std::tie(args...)) {
      return sm_.get();
    }
    Ptr<Sm> fresh = detail::makeChild<Sm>(std::forward<Args>(args)...);
    fresh->hasNotificationActiveIs(true);
    const Ptr<Sm> old = std::exchange(sm_, std::move(fresh));
    if (old) {
      old->close();
    }
    return sm_.get();
  }

  void del() {
    if (const Ptr<Sm> old = std::exchange(sm_, nullptr)) {
      old->close();
    }
  }

 private:
  void describe(MemberList::Visitor& visitor) const override {
    if (sm_) {
      visitor.onChild(detail::childView(*sm_, std::nullopt));
    }
  }

  Ptr<Sm> sm_;
};

}  // namespace Kel
