// QosSnmpHost::MibView: the MIB model (QosSnmp::QosMib) seen as the SNMP
// objects of QOS-SNMP-MIB (mib/QOS-SNMP-MIB.txt), for the SNMP front end.
//
// Object identifiers are plain sequences of 32-bit sub-identifiers, so the
// view is usable and testable without the SNMP library. Every instance lives
// under qosSnmpObjects (1.3.6.1.4.1.32473.1.1):
//
//   <table>.1.<column>.<index>
//
// where <index> encodes the row's index record field by field, in declared
// order: an integer as one sub-identifier, a string as its length followed by
// one sub-identifier per byte (not IMPLIED). The index records' ordering is
// exactly the order of these encodings, so OID order is row order.
//
// get() answers one instance; next() the first instance whose OID is
// strictly greater, walking a table column by column, then the next table.
// Both look rows up in the model's sorted tables (find / lower bound): the
// cost does not grow with the number of rows. Values are read from the
// entities a row references at the time of the query, so counters are live.
// A referenced entity that is null reads as the empty string or 0.
//
// A walk asks next() for the instance it was just given: the view keeps
// that instance's place (a cursor) and steps from it without decoding the
// OID. A table's first pass of a walk records its rows in order (one
// iterator per row, kept for the next walks while the table neither gains
// nor loses a row), and the later passes step through that record and
// prefetch the rows ahead. Every answer is the one a fresh view would give.
//
// Beside the shortened names of the indexes, tables carry the full names
// (class map, policy map, chip; at most 255 bytes, longer ones cut) and the
// interface's name beside an ifIndex index, looked up in the model's
// interface map (a reverse lookup the view caches; with a MibAgentStatus
// it is rebuilt only after the model changed). Tables whose rows carry
// counters have a discontinuity column: the row's counter stamp (see
// QosMib), the TimeStamp at which the row last got different counters, as
// the model recorded it at that moment; 0 when that was at load. A counter
// restarts from zero only with new counters, so two polls that read
// different discontinuity times straddle a restart, and two that read the
// same do not, however long nobody polled between the restart and the next
// poll. The view keeps no counter state of its own.
//
// After the tables, qosAgent (qosSnmpObjects 11) holds the agent's
// scalars, read from the MibAgentStatus given to the constructor (all 0
// without one).
//
// Rows whose index cannot be written as the MIB declares it (a negative
// integer, a name longer than 30 bytes, an integer outside the column's
// range) are not served: get() answers noSuchInstance and next() passes
// over them.
//
// Thread rules: the view holds a reference to the model and reads it on the
// caller's thread; call it only from the thread that writes the model (the
// reactor thread). The model must outlive the view.
//
//   MibView view(mib);
//   VarBind vb = view.next(MibView::objectsOid());   // first instance
//   while (vb.exception == SnmpException::none) {
//     std::cout << MibView::render(vb) << '\n';      // qosClassMapCpType.3.99.109.49.1 = 1
//     view.next(vb.oid, vb);                         // reuses vb's storage
//   }
#pragma once

#include <cstdint>
#include <iosfwd>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace QosSnmp {
class QosMib;
}

namespace QosSnmpHost {

struct MibAgentStatus;

using Oid = std::vector<std::uint32_t>;
using OidSpan = std::span<const std::uint32_t>;

// One SNMP value. integer32 carries INTEGER enumerations and Integer32;
// unsigned32 carries Unsigned32 (the same encoding as Gauge32); counter32
// Counter32; timeTicks TimeTicks (TimeStamp); counter64 the Counter64
// counters; octetString DisplayString text.
struct SnmpValue {
  enum class Type { integer32, unsigned32, counter64, octetString, counter32, timeTicks };

  Type type = Type::integer32;
  std::int32_t integer = 0;  // integer32
  std::uint64_t number = 0;  // unsigned32 (fits 32 bits) and counter64
  std::string octets;        // octetString

  static SnmpValue integer32Is(std::int32_t value);
  static SnmpValue unsigned32Is(std::uint32_t value);
  static SnmpValue counter64Is(std::uint64_t value);
  static SnmpValue octetStringIs(std::string value);
  static SnmpValue counter32Is(std::uint32_t value);
  static SnmpValue timeTicksIs(std::uint32_t value);

  friend bool operator==(const SnmpValue&, const SnmpValue&) = default;
};

// The value as the render() line writes it: a number, or a quoted string.
std::ostream& operator<<(std::ostream& out, const SnmpValue& value);

// The SNMP exceptions a variable binding can carry instead of a value.
enum class SnmpException {
  none,            // value holds the answer
  noSuchObject,    // get(): no readable column at that OID
  noSuchInstance,  // get(): a readable column, but no such row
  endOfMibView,    // next(): nothing after the OID in this module
};

// A variable binding: the OID answered (for next(), the instance found; for
// get(), the OID asked) and its value or exception.
struct VarBind {
  Oid oid;
  SnmpException exception = SnmpException::none;
  SnmpValue value;
};

// What the MIB declares, for documentation and for the front end's
// registration: every column (index columns included, accessible == false)
// with its sub-identifier under the entry.
struct MibColumnInfo {
  std::string_view name;
  std::uint32_t subId;
  SnmpValue::Type type;
  bool accessible;
};

struct MibTableInfo {
  std::string_view name;       // "qosClassMapTable"
  std::string_view entryName;  // "qosClassMapEntry"
  std::uint32_t subId;         // the table's arc under qosSnmpObjects
  std::span<const MibColumnInfo> columns;
};

// A scalar of the agent group: its instance is <group>.<subId>.0.
struct MibScalarInfo {
  std::string_view name;
  std::uint32_t subId;
  SnmpValue::Type type;
};

struct MibWalkCursor;

class MibView {
 public:
  // `status` may be null (the agent group reads 0); it must outlive the view.
  explicit MibView(const QosSnmp::QosMib& mib, const MibAgentStatus* status = nullptr);
  ~MibView();
  MibView(const MibView&) = delete;
  MibView& operator=(const MibView&) = delete;

  // qosSnmpMIB, the module identity: 1.3.6.1.4.1.32473.1.
  static OidSpan moduleOid() noexcept;
  // qosSnmpObjects, the subtree holding every table: 1.3.6.1.4.1.32473.1.1.
  static OidSpan objectsOid() noexcept;
  // qosSnmpAgentId, the agent's sysObjectID: 1.3.6.1.4.1.32473.1.3.
  static OidSpan agentObjectId() noexcept;
  // The ten tables in OID order.
  static std::span<const MibTableInfo> tables() noexcept;
  // qosAgent, the agent group: 1.3.6.1.4.1.32473.1.1.11, and its scalars.
  static OidSpan agentGroupOid() noexcept;
  static std::span<const MibScalarInfo> agentScalars() noexcept;

  // The instance at oid, or noSuchObject (oid names no readable column of
  // this module) or noSuchInstance (a readable column, but no such row).
  VarBind get(OidSpan oid) const;
  // The first instance of this module whose OID is strictly greater than
  // oid, or endOfMibView. Any oid is accepted: before the module, inside it
  // (whole, partial, malformed index) or after it.
  VarBind next(OidSpan oid) const;
  // The same answers written into `into`, whose OID and text storage is
  // reused: a caller that keeps one VarBind across queries (the SNMP front
  // end, once per varbind) allocates nothing once that storage has grown.
  // Every field of `into` is overwritten. oid may view into.oid itself
  // (view.next(vb.oid, vb) steps a walk).
  void get(OidSpan oid, VarBind& into) const;
  void next(OidSpan oid, VarBind& into) const;

  // "qosClassMapCpType.3.99.109.49.1": the column's name and the index
  // sub-identifiers; an OID that names no column is written dotted.
  static std::string oidName(OidSpan oid);
  // "qosClassMapCpType.3.99.109.49.1 = 0"; an exception as its name.
  static std::string render(const VarBind& varBind);

  // What the view keeps between queries (defined in MibView.cpp).
  struct State;

  // While one lives, its holder promises that the model does not change:
  // the view may then reuse what it looked up in the model for one answer
  // in the next ones (an interface's ECN counters, read for each of its
  // queues' rows). The SNMP front end holds one while it reads requests.
  // Holds may nest; the view must outlive them. Nothing is reused once the
  // last one is gone.
  class ModelUnchanged {
   public:
    explicit ModelUnchanged(const MibView& view) noexcept;
    ~ModelUnchanged();
    ModelUnchanged(const ModelUnchanged&) = delete;
    ModelUnchanged& operator=(const ModelUnchanged&) = delete;

   private:
    State& state_;
  };

 private:
  MibWalkCursor& cursor() const;

  const QosSnmp::QosMib& mib_;
  std::unique_ptr<State> state_;  // caches, written by const queries
  // The last instance next() answered: a walk's next GETNEXT asks for
  // exactly that OID, which then needs no decoding (see MibView.cpp).
  mutable std::shared_ptr<MibWalkCursor> cursor_;
};

}  // namespace QosSnmpHost
