#include "QosSnmp/core/QosMibConfig.h"

#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "kel/Make.h"
#include "kel/Notifiee.h"
#include "kel/StateMachine.h"

namespace QosSnmp {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

// Records every poll period its reactor hears of.
class PeriodRecorder : public Kel::StateMachine {
 public:
  void handleCounterPollPeriod(double period) { heard_.push_back(period); }
  const std::vector<double>& heard() const { return heard_; }

 private:
  std::vector<double> heard_;
};

class KelQosMibConfig : public Kel::Notifiee<KelQosMibConfig, PeriodRecorder, const QosMibConfig,
                                             QosMibConfig::CounterPollPeriod> {
 public:
  using Notifiee::Notifiee;
  void on(QosMibConfig::CounterPollPeriod /*attr*/) {
    owner().handleCounterPollPeriod(notifier()->counterPollPeriod());
  }
};

class QosMibConfigTest : public ::testing::Test {
 protected:
  const Kel::Ptr<QosMibConfig> config_ = Kel::make<QosMibConfig>();
  const Kel::Ptr<PeriodRecorder> recorder_ = Kel::make<PeriodRecorder>();
  const Kel::Ptr<KelQosMibConfig> reactor_ = Kel::makeReactor<KelQosMibConfig>(recorder_.get(), config_);
};

TEST_F(QosMibConfigTest, DefaultPeriodIsZeroAndEnablesStatistics) {
  EXPECT_EQ(config_->counterPollPeriod(), 0.0);
  EXPECT_TRUE(config_->statisticsEnabled());
  EXPECT_EQ(config_->name(), Kel::String("qosMibConfig"));
}

TEST_F(QosMibConfigTest, ChangingThePeriodNotifies) {
  config_->counterPollPeriodIs(5.0);
  config_->counterPollPeriodIs(kInfinity);
  config_->counterPollPeriodIs(0.0);
  EXPECT_EQ(recorder_->heard(), (std::vector<double>{5.0, kInfinity, 0.0}));
}

TEST_F(QosMibConfigTest, SettingTheSamePeriodNotifiesNobody) {
  config_->counterPollPeriodIs(0.0);
  config_->counterPollPeriodIs(kInfinity);
  config_->counterPollPeriodIs(kInfinity);
  EXPECT_EQ(recorder_->heard(), (std::vector<double>{kInfinity}));
}

TEST_F(QosMibConfigTest, InfinityDisablesStatisticsAndAnyFiniteValueEnablesThem) {
  config_->counterPollPeriodIs(kInfinity);
  EXPECT_EQ(config_->counterPollPeriod(), kInfinity);
  EXPECT_FALSE(config_->statisticsEnabled());
  for (const double period : {0.0, 1e-3, 10.0, std::numeric_limits<double>::max()}) {
    config_->counterPollPeriodIs(period);
    EXPECT_TRUE(config_->statisticsEnabled()) << period;
  }
}

TEST_F(QosMibConfigTest, NotANumberIsABrokenInvariant) {
  EXPECT_DEATH(config_->counterPollPeriodIs(std::numeric_limits<double>::quiet_NaN()), "isnan");
}

}  // namespace
}  // namespace QosSnmp
