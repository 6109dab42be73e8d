#include "host/snmp/OidIndexCodec.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "host/snmp/MibIndexCodec.h"

namespace QosSnmpHost {
namespace {

using Codec = OidIndexCodec<OctetStringIndexField<4>, IntegerIndexField<Kel::S32, 1, 9>>;
using Values = Codec::Values;

Oid encoded(const Values& values) {
  Oid out;
  Codec::encode(values, out);
  return out;
}

TEST(OidIndexCodecTest, StringIsWrittenLengthFirstThenOneSubIdPerByte) {
  EXPECT_EQ(encoded({"cm1", 3}), (Oid{3, 'c', 'm', '1', 3}));
  EXPECT_EQ(encoded({"", 1}), (Oid{0, 1}));
  EXPECT_EQ(encoded({std::string("\xff\x00", 2), 9}), (Oid{2, 255, 0, 9}));
}

TEST(OidIndexCodecTest, DecodeReadsBackWhatEncodeWrote) {
  for (const Values& v : {Values{"", 1}, Values{"a", 9}, Values{std::string("\xff\xff\xff\xff", 4), 5}}) {
    EXPECT_EQ(Codec::decode(encoded(v)), v);
  }
}

TEST(OidIndexCodecTest, DecodeRejectsPartialLongOrOutOfRangeSuffixes) {
  EXPECT_FALSE(Codec::decode(Oid{}));
  EXPECT_FALSE(Codec::decode(Oid{2, 'a'}));                         // cut inside the string
  EXPECT_FALSE(Codec::decode(Oid{1, 'a'}));                         // integer missing
  EXPECT_FALSE(Codec::decode(Oid{1, 'a', 3, 0}));                   // one sub-identifier too many
  EXPECT_FALSE(Codec::decode(Oid{5, 'a', 'b', 'c', 'd', 'e', 3}));  // longer than 4 bytes
  EXPECT_FALSE(Codec::decode(Oid{1, 256, 3}));                      // not a byte
  EXPECT_FALSE(Codec::decode(Oid{1, 'a', 0}));                      // below the integer's range
  EXPECT_FALSE(Codec::decode(Oid{1, 'a', 10}));                     // above it
}

TEST(OidIndexCodecTest, ValuesOutsideTheDeclaredRangesAreNotEncodable) {
  EXPECT_TRUE(Codec::encodable({"abcd", 1}));
  EXPECT_FALSE(Codec::encodable({"abcde", 1}));
  EXPECT_FALSE(Codec::encodable({"a", 0}));
  EXPECT_FALSE(Codec::encodable({"a", -1}));
  EXPECT_FALSE(Codec::encodable({"a", 10}));
}

TEST(OidIndexCodecTest, SeekOfAnExactEncodingAsksForTheRowsAfterIt) {
  const auto seek = Codec::seek(Oid{2, 'a', 'b', 4});
  ASSERT_TRUE(seek);
  EXPECT_EQ(seek->values, (Values{"ab", 4}));
  EXPECT_EQ(seek->bound, SeekBound::after);
}

TEST(OidIndexCodecTest, SeekOfATruncatedSuffixStartsAtTheSmallestCompletion) {
  const auto seek = Codec::seek(Oid{3, 'a'});
  ASSERT_TRUE(seek);
  EXPECT_EQ(seek->values, (Values{std::string("a\0\0", 3), 1}));
  EXPECT_EQ(seek->bound, SeekBound::atOrAfter);
}

TEST(OidIndexCodecTest, SeekPastTheLastValueOfAFieldCarriesIntoTheFieldBefore) {
  // Integer above its range: the next string.
  auto seek = Codec::seek(Oid{2, 'a', 'b', 10});
  ASSERT_TRUE(seek);
  EXPECT_EQ(seek->values, (Values{"ac", 1}));
  // A byte above 255 after "a\xff": carry into the length.
  seek = Codec::seek(Oid{3, 'a', 255, 300});
  ASSERT_TRUE(seek);
  EXPECT_EQ(seek->values, (Values{std::string("b\0\0", 3), 1}));
  EXPECT_EQ(seek->bound, SeekBound::atOrAfter);
  // Nothing at all after the largest index.
  EXPECT_FALSE(Codec::seek(Oid{4, 255, 255, 255, 255, 10}));
  EXPECT_FALSE(Codec::seek(Oid{5}));
}

// A brute-force successor: the first of the sorted encodings strictly above
// the suffix.
std::optional<Oid> bruteForceNext(const std::vector<Oid>& sortedOids, const Oid& suffix) {
  const auto it = std::upper_bound(sortedOids.begin(), sortedOids.end(), suffix);
  if (it == sortedOids.end()) {
    return std::nullopt;
  }
  return *it;
}

// Suffixes near and far from the given encodings: themselves, cut short,
// extended, nudged up and down at every position, and random garbage.
std::vector<Oid> probesAround(const std::vector<Oid>& oids, std::mt19937& random) {
  std::vector<Oid> probes{{}, {0}, {0xFFFFFFFF}, {1, 0xFFFFFFFF}};
  for (const Oid& oid : oids) {
    probes.push_back(oid);
    for (std::size_t cut = 0; cut < oid.size(); ++cut) {
      probes.emplace_back(oid.begin(), oid.begin() + static_cast<std::ptrdiff_t>(cut));
    }
    Oid longer = oid;
    longer.push_back(0);
    probes.push_back(longer);
    for (std::size_t i = 0; i < oid.size(); ++i) {
      for (const std::uint32_t delta : {1U, 0xFFFFFFFFU}) {  // +1 and -1, wrapping
        Oid nudged = oid;
        nudged[i] += delta;
        probes.push_back(nudged);
        nudged.resize(i + 1);
        probes.push_back(nudged);
      }
      Oid huge = oid;
      huge[i] = 0xFFFFFFFF;
      probes.push_back(huge);
    }
  }
  std::uniform_int_distribution<std::size_t> length(0, 12);
  std::uniform_int_distribution<int> kind(0, 3);
  for (int i = 0; i < 2000; ++i) {
    Oid garbage(length(random));
    for (auto& subId : garbage) {
      switch (kind(random)) {
        case 0:
          subId = std::uniform_int_distribution<std::uint32_t>(0, 4)(random);
          break;
        case 1:
          subId = std::uniform_int_distribution<std::uint32_t>('a', 'd')(random);
          break;
        case 2:
          subId = std::uniform_int_distribution<std::uint32_t>(250, 260)(random);
          break;
        default:
          subId = random();
          break;
      }
    }
    probes.push_back(garbage);
  }
  return probes;
}

// The encodings of records sorted by the table's order: each decodes back
// to its record, and they rise strictly, so the record order is OID order.
template <typename Index>
std::vector<Oid> checkEncodingsRise(const std::vector<Index>& sorted) {
  using IndexCodec = MibIndexCodec<Index>;
  std::vector<Oid> oids;
  oids.reserve(sorted.size());
  for (const Index& index : sorted) {
    Oid oid;
    IndexCodec::encode(index, oid);
    EXPECT_EQ(IndexCodec::decode(oid), index) << ::testing::PrintToString(oid);
    if (!oids.empty()) {
      EXPECT_LT(oids.back(), oid) << index;
    }
    oids.push_back(oid);
  }
  return oids;
}

// A seek in a sorted table finds, for any suffix, what a brute-force search
// over the encodings finds.
template <typename Index, typename Less>
void checkSeekMatchesBruteForce(const std::vector<Index>& sorted, const std::vector<Oid>& oids,
                                std::mt19937& random) {
  using IndexCodec = MibIndexCodec<Index>;
  const std::map<Index, bool, Less> table = [&sorted] {
    std::map<Index, bool, Less> rows;
    for (const Index& index : sorted) {
      rows.emplace(index, true);
    }
    return rows;
  }();
  for (const Oid& probe : probesAround(oids, random)) {
    std::optional<Oid> actual;
    if (const auto seek = IndexCodec::seek(probe)) {
      const auto it =
          seek->bound == SeekBound::after ? table.upper_bound(seek->index) : table.lower_bound(seek->index);
      if (it != table.end()) {
        actual.emplace();
        IndexCodec::encode(it->first, *actual);
      }
    }
    ASSERT_EQ(actual, bruteForceNext(oids, probe)) << "after " << ::testing::PrintToString(probe);
  }
}

// For one index record type, over the encodable ones of `records`.
template <typename Index, typename Less = std::less<>>
void checkIndexOrderAndSeek(std::vector<Index> records, std::mt19937& random) {
  std::erase_if(records, [](const Index& i) { return !MibIndexCodec<Index>::encodable(i); });
  std::sort(records.begin(), records.end(), Less{});
  records.erase(std::unique(records.begin(), records.end()), records.end());
  ASSERT_GT(records.size(), 10U);
  const std::vector<Oid> oids = checkEncodingsRise(records);
  checkSeekMatchesBruteForce<Index, Less>(records, oids, random);
}

// Names from a small alphabet, so that lengths and bytes tie often; the
// edges (empty, 30 bytes, 0x00 and 0xff bytes, too long) included.
Snmp::String randomName(std::mt19937& random) {
  static const std::string kAlphabet = std::string("ab\xff", 3) + std::string(1, '\0');
  const std::size_t length = std::uniform_int_distribution<std::size_t>(0, 4)(random) == 0
                                 ? std::uniform_int_distribution<std::size_t>(28, 31)(random)
                                 : std::uniform_int_distribution<std::size_t>(0, 3)(random);
  std::string name;
  for (std::size_t i = 0; i < length; ++i) {
    name.push_back(kAlphabet[std::uniform_int_distribution<std::size_t>(0, kAlphabet.size() - 1)(random)]);
  }
  return {name};
}

template <typename T>
T randomOf(std::mt19937& random, std::vector<std::int64_t> choices) {
  return static_cast<T>(choices[std::uniform_int_distribution<std::size_t>(0, choices.size() - 1)(random)]);
}

const std::vector<std::int64_t> kS32Edges = {-2147483648LL, -1, 0, 1, 2, 7, 8, 2147483646, 2147483647};
const std::vector<std::int64_t> kU32Edges = {0, 1, 2, 2147483647, 2147483648LL, 4294967294LL, 4294967295LL};
const std::vector<std::int64_t> kMapTypes = {0, 1, 2, 3};
constexpr int kRecords = 300;

class MibIndexOrderTest : public ::testing::Test {
 protected:
  std::mt19937 random_{20240611};
  Snmp::String name() { return randomName(random_); }
  template <typename T>
  T pick(const std::vector<std::int64_t>& choices) {
    return randomOf<T>(random_, choices);
  }
  template <typename Index, typename Less = std::less<>, typename Make>
  void check(Make make) {
    std::vector<Index> records;
    records.reserve(kRecords);
    for (int i = 0; i < kRecords; ++i) {
      records.push_back(make());
    }
    checkIndexOrderAndSeek<Index, Less>(std::move(records), random_);
  }
};

TEST_F(MibIndexOrderTest, ClassMapTableIndexOrderIsOidOrder) {
  check<QosSnmp::ClassMapTableIndex>(
      [&] { return QosSnmp::ClassMapTableIndex(name(), pick<Qos::MapType>(kMapTypes)); });
}

TEST_F(MibIndexOrderTest, ClassMapMatchTableIndexOrderIsOidOrder) {
  check<QosSnmp::ClassMapMatchTableIndex>([&] {
    return QosSnmp::ClassMapMatchTableIndex(name(), pick<Qos::MapType>(kMapTypes), pick<Kel::U32>(kU32Edges));
  });
}

TEST_F(MibIndexOrderTest, PolicyMapTableIndexOrderIsOidOrder) {
  check<QosSnmp::PolicyMapTableIndex>(
      [&] { return QosSnmp::PolicyMapTableIndex(name(), pick<Qos::MapType>(kMapTypes)); });
}

TEST_F(MibIndexOrderTest, PolicyMapClassTableIndexOrderIsOidOrder) {
  check<QosSnmp::PolicyMapClassTableIndex>([&] {
    return QosSnmp::PolicyMapClassTableIndex(name(), pick<Qos::MapType>(kMapTypes),
                                             pick<Kel::U32>(kU32Edges));
  });
}

TEST_F(MibIndexOrderTest, PolicyMapActionTableIndexOrderIsOidOrder) {
  check<QosSnmp::PolicyMapActionTableIndex>([&] {
    return QosSnmp::PolicyMapActionTableIndex(name(), pick<Kel::S32>(kS32Edges), name(),
                                              pick<Kel::S32>(kS32Edges));
  });
}

TEST_F(MibIndexOrderTest, QosStatsTableIndexOrderIsOidOrder) {
  check<QosSnmp::QosStatsTableIndex>([&] {
    return QosSnmp::QosStatsTableIndex(name(), pick<Kel::S32>(kMapTypes), name(), pick<Kel::S32>(kS32Edges));
  });
}

TEST_F(MibIndexOrderTest, QosPolicerStatsTableIndexOrderIsOidOrder) {
  check<QosSnmp::QosPolicerStatsTableIndex>([&] {
    return QosSnmp::QosPolicerStatsTableIndex(name(), pick<Kel::S32>(kMapTypes), name(),
                                              pick<Kel::S32>(kS32Edges));
  });
}

TEST_F(MibIndexOrderTest, ServicePolicyTableIndexOrderIsOidOrder) {
  check<QosSnmp::ServicePolicyTableIndex>([&] {
    return QosSnmp::ServicePolicyTableIndex(pick<Kel::S32>(kS32Edges), pick<Kel::S32>({-1, 0, 1, 2, 3}));
  });
}

TEST_F(MibIndexOrderTest, EcnCounterTableChipNameOrderIsOidOrder) {
  // The table's own comparator (length first), not the string's byte-wise order.
  check<Snmp::String, QosSnmp::OctetStringIndexLess>([&] { return name(); });
}

TEST_F(MibIndexOrderTest, EcnQueueCounterTableIndexOrderIsOidOrder) {
  check<QosSnmp::EcnQueueCounterTableIndex>([&] {
    return QosSnmp::EcnQueueCounterTableIndex(pick<Kel::S32>(kS32Edges), pick<Kel::U8>({0, 1, 7, 254, 255}));
  });
}

TEST(MibIndexCodecTest, RowsTheMibCannotNameAreNotEncodable) {
  using QosSnmp::ClassMapTableIndex;
  EXPECT_FALSE(MibIndexCodec<ClassMapTableIndex>::encodable({std::string(31, 'x'), Qos::mapQos_}));
  EXPECT_FALSE(MibIndexCodec<ClassMapTableIndex>::encodable({"cm", static_cast<Qos::MapType>(3)}));
  EXPECT_FALSE(MibIndexCodec<QosSnmp::ServicePolicyTableIndex>::encodable({0, Qos::directionInput_}));
  EXPECT_TRUE(MibIndexCodec<QosSnmp::QosPolicerStatsTableIndex>::encodable({"pm", 0, "cm", 0}));
  EXPECT_FALSE(MibIndexCodec<QosSnmp::QosStatsTableIndex>::encodable({"pm", 1, "cm", -1}));
  EXPECT_FALSE(MibIndexCodec<QosSnmp::ClassMapMatchTableIndex>::encodable({"cm", Qos::mapQos_, 0}));
}

}  // namespace
}  // namespace QosSnmpHost
