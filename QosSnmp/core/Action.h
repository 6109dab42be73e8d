// Qos::Action: one action of a class: a value to set (DSCP, CoS, traffic class, drop precedence), or the
// parameters of a policer, shaper or bandwidth guarantee. Attributes an action's kind does not use read as
// 0.
//
// Keyed by its kind, given at construction and never changed; the entity's name is the kind's printed form.
//
// Every attribute below notifies as Kel::Scalar and Kel::Collection describe: a change of value, or a member
// added, replaced or deleted (with its key); setting the value an attribute has notifies nobody.
#pragma once

#include "QosSnmp/core/QosEnums.h"
#include "kel/Attribute.h"
#include "kel/Collection.h"
#include "kel/Entity.h"
#include "kel/String.h"
#include "kel/Types.h"

namespace Qos {

class Action : public Kel::Entity {
 public:
  struct Value : Kel::ScalarAttribute<1> {};
  struct Rate : Kel::ScalarAttribute<2> {};
  struct RateUnit : Kel::ScalarAttribute<3> {};
  struct BurstSize : Kel::ScalarAttribute<4> {};
  struct PeakRate : Kel::ScalarAttribute<5> {};
  struct PeakBurstSize : Kel::ScalarAttribute<6> {};

  explicit Action(ActionType actionType);

  ActionType actionType() const { return actionType_; }

  // The DSCP, CoS, traffic class or drop precedence the action sets.
  Kel::U32 value() const { return value_.get(); }
  void valueIs(Kel::U32 value) { value_.set(*this, value); }

  // The committed rate, in rateUnit.
  Kel::U64 rate() const { return rate_.get(); }
  void rateIs(Kel::U64 rate) { rate_.set(*this, rate); }

  // The unit of rate and peakRate.
  Qos::RateUnit rateUnit() const { return rateUnit_.get(); }
  void rateUnitIs(Qos::RateUnit rateUnit) { rateUnit_.set(*this, rateUnit); }

  // The committed burst, in bytes.
  Kel::U64 burstSize() const { return burstSize_.get(); }
  void burstSizeIs(Kel::U64 burstSize) { burstSize_.set(*this, burstSize); }

  // The peak rate of a two-rate policer, in rateUnit.
  Kel::U64 peakRate() const { return peakRate_.get(); }
  void peakRateIs(Kel::U64 peakRate) { peakRate_.set(*this, peakRate); }

  // The peak burst, in bytes.
  Kel::U64 peakBurstSize() const { return peakBurstSize_.get(); }
  void peakBurstSizeIs(Kel::U64 peakBurstSize) { peakBurstSize_.set(*this, peakBurstSize); }

 private:
  const ActionType actionType_;
  Kel::Scalar<Value, Kel::U32> value_;
  Kel::Scalar<Rate, Kel::U64> rate_;
  Kel::Scalar<RateUnit, Qos::RateUnit> rateUnit_;
  Kel::Scalar<BurstSize, Kel::U64> burstSize_;
  Kel::Scalar<PeakRate, Kel::U64> peakRate_;
  Kel::Scalar<PeakBurstSize, Kel::U64> peakBurstSize_;
};

}  // namespace Qos
