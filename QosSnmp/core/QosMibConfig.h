// QosMibConfig: the MIB model's configuration, as the agent reads it.
//
// counterPollPeriod is the counter poll period in seconds. Positive
// infinity means counters are never polled: the statistics, policer
// statistics and control-plane statistics rows are removed and not
// written. Any finite value enables them. The default is 0.0 (enabled), and
// a machine that has no configuration entity behaves as if it read 0.0.
// Setting a different period notifies the reactors with CounterPollPeriod;
// setting the same one notifies nobody.
//
//   const Kel::Ptr<QosMibConfig> config = Kel::make<QosMibConfig>();
//   config->counterPollPeriodIs(std::numeric_limits<double>::infinity());  // statistics off
#pragma once

#include <utility>

#include "kel/Attribute.h"
#include "kel/Collection.h"
#include "kel/Entity.h"
#include "kel/String.h"

namespace QosSnmp {

class QosMibConfig : public Kel::Entity {
 public:
  struct CounterPollPeriod : Kel::ScalarAttribute<1> {};

  static constexpr double kDefaultCounterPollPeriod = 0.0;

  explicit QosMibConfig(Kel::String name = "qosMibConfig") : Entity(std::move(name)) {}

  double counterPollPeriod() const { return counterPollPeriod_.get(); }
  // REQUIRES: period is not NaN (it would differ from itself, and so be
  // notified on every write).
  void counterPollPeriodIs(double period);

  // False exactly while the period is positive infinity: the one test the
  // statistics machines make.
  bool statisticsEnabled() const;

 private:
  Kel::Scalar<CounterPollPeriod, double> counterPollPeriod_{kDefaultCounterPollPeriod};
};

}  // namespace QosSnmp
