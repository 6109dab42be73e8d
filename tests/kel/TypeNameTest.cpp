#include "kel/TypeName.h"

#include <map>
#include <string>
#include <typeinfo>

#include <gtest/gtest.h>

#include "kel/Make.h"
#include "kel/PtrInterface.h"
#include "kel/StateMachine.h"

namespace TypeNameTest {

struct PlainIndex {};

template <typename T>
struct Outer {
  struct Inner {};
};

class SampleSm : public Kel::StateMachine {};

template <typename A, typename B>
class PairSm : public Kel::StateMachine {};

}  // namespace TypeNameTest

namespace {

TEST(TypeNameTest, DemangledNameKeepsItsNamespaces) {
  EXPECT_EQ(Kel::demangledTypeName(typeid(TypeNameTest::PlainIndex)), "TypeNameTest::PlainIndex");
  EXPECT_EQ(Kel::demangledTypeName(typeid(int)), "int");
}

TEST(TypeNameTest, UnqualifiedNameDropsTheTypesOwnScopesOnly) {
  EXPECT_EQ(Kel::unqualifiedTypeName(typeid(TypeNameTest::PlainIndex)), "PlainIndex");
  EXPECT_EQ(Kel::unqualifiedTypeName(typeid(TypeNameTest::Outer<int>::Inner)), "Inner");
  EXPECT_EQ(Kel::unqualifiedTypeName(typeid(std::map<int, TypeNameTest::PlainIndex>)),
            "map<int, TypeNameTest::PlainIndex, std::less<int>, "
            "std::allocator<std::pair<int const, TypeNameTest::PlainIndex> > >");
  EXPECT_EQ(Kel::unqualifiedTypeName(typeid(long)), "long");
}

TEST(TypeNameTest, MadeTypeNameIsTheTypeMakeWasAskedFor) {
  const auto sm = Kel::make<TypeNameTest::SampleSm>();
  const Kel::PtrInterface& object = *sm;
  EXPECT_NE(Kel::demangledTypeName(typeid(object)), "TypeNameTest::SampleSm");
  EXPECT_EQ(Kel::madeTypeName(typeid(object)), "TypeNameTest::SampleSm");
  // Template arguments with commas of their own stay whole.
  const auto pair = Kel::make<TypeNameTest::PairSm<std::map<int, int>, TypeNameTest::PlainIndex>>();
  const Kel::PtrInterface& pairObject = *pair;
  EXPECT_EQ(
      Kel::madeTypeName(typeid(pairObject)),
      "TypeNameTest::PairSm<std::map<int, int, std::less<int>, std::allocator<std::pair<int const, int> > "
      ">, TypeNameTest::PlainIndex>");
}

TEST(TypeNameTest, MadeTypeNameOfAnyOtherTypeIsItsDemangledName) {
  EXPECT_EQ(Kel::madeTypeName(typeid(TypeNameTest::Outer<int>::Inner)), "TypeNameTest::Outer<int>::Inner");
}

}  // namespace
