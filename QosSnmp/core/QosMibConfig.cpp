#include "QosSnmp/core/QosMibConfig.h"

#include <cmath>
#include <limits>

#include "kel/Assert.h"

namespace QosSnmp {

void QosMibConfig::counterPollPeriodIs(double period) {
  KEL_ASSERT(!std::isnan(period));
  counterPollPeriod_.set(*this, period);
}

bool QosMibConfig::statisticsEnabled() const {
  return counterPollPeriod() != std::numeric_limits<double>::infinity();
}

}  // namespace QosSnmp
