// Arbitrary OIDs into the MIB view's GET and GETNEXT over a populated model
// (tests/host/snmp/PopulatedMib.h). The input is read as 32-bit
// sub-identifiers, little-endian, at most 128 of them. Besides the
// sanitizers' checks: GETNEXT answers an OID strictly greater than the
// one asked, or endOfMibView, and GET of that answer gives the same value.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "host/snmp/MibReference.h"
#include "host/snmp/MibView.h"
#include "host/snmp/PopulatedMib.h"

namespace {

const QosSnmpHostTest::PopulatedMib& populated() {
  static const QosSnmpHostTest::PopulatedMib kMib(2026, 200);
  return kMib;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using QosSnmpHost::SnmpException;
  static const QosSnmpHost::MibView kView(populated().mib());
  QosSnmpHost::Oid oid;
  for (std::size_t at = 0; at + 4 <= size && oid.size() < 128; at += 4) {
    std::uint32_t subId = 0;
    std::memcpy(&subId, data + at, 4);
    oid.push_back(subId);
  }
  // Short inputs land inside the module's objects more often.
  if (size % 4 == 1) {
    oid.insert(oid.begin(), QosSnmpHostTest::kObjects.begin(), QosSnmpHostTest::kObjects.end());
    oid.resize(std::min<std::size_t>(oid.size(), 128));
  }
  const QosSnmpHost::VarBind got = kView.get(oid);
  if (got.oid != oid) {
    std::abort();
  }
  const QosSnmpHost::VarBind next = kView.next(oid);
  if (next.exception == SnmpException::none) {
    if (!(oid < next.oid)) {
      std::abort();
    }
    const QosSnmpHost::VarBind again = kView.get(next.oid);
    if (again.exception != SnmpException::none || !(again.value == next.value)) {
      std::abort();
    }
  } else if (next.exception != SnmpException::endOfMibView) {
    std::abort();
  }
  return 0;
}
