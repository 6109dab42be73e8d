#include "QosSnmp/core/AllIntfStatusDir.h"

#include <utility>

#include "kel/Assert.h"
#include "kel/MutatorException.h"

namespace Interface {

AllIntfStatusDir::AllIntfStatusDir(Kel::String name) : Entity(std::move(name)) {}

void AllIntfStatusDir::intfStatusIs(const Pellix::IntfId& intfId,
                                    Kel::Ptr<Interface::IntfStatus> intfStatus) {
  Kel::requireArgument(intfStatus, "intfStatus");
  KEL_ASSERT(intfStatus->intfId() == intfId);
  intfStatus_.set(*this, intfId, std::move(intfStatus));
}

}  // namespace Interface
