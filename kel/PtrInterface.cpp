#include "kel/PtrInterface.h"

namespace Kel {

bool threadSafePointers = false;

}  // namespace Kel
