#include "kel/ModuleRegistry.h"

#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace Kel {
namespace {

int addOne(int value) { return value + 1; }
int addTwo(int value) { return value + 2; }
long addOneLong(long value) { return value + 1; }
void noArguments() {}

// "M<number>", or "M<first>.<second>".
std::string moduleName(int first, int second = -1) {
  std::string name("M");
  name += std::to_string(first);
  if (second >= 0) {
    name += '.';
    name += std::to_string(second);
  }
  return name;
}

TEST(ModuleRegistryTest, RegisteredModuleIsFoundByName) {
  ModuleRegistry registry;
  EXPECT_TRUE(registry.moduleIs({"QosSnmp", {"QosSnmp::Status", "QosSnmp::MatchSm"}}));
  const ModuleTypeTable* table = registry.module("QosSnmp");
  ASSERT_NE(table, nullptr);
  EXPECT_EQ(table->module, "QosSnmp");
  EXPECT_EQ(table->types, (std::vector<std::string>{"QosSnmp::Status", "QosSnmp::MatchSm"}));
}

TEST(ModuleRegistryTest, UnknownModuleIsNull) {
  ModuleRegistry registry;
  EXPECT_EQ(registry.module("QosSnmp"), nullptr);
  registry.moduleIs({"QosSnmp", {}});
  EXPECT_EQ(registry.module("Qos"), nullptr);
  EXPECT_EQ(registry.module("qossnmp"), nullptr);
  EXPECT_EQ(registry.module(""), nullptr);
}

TEST(ModuleRegistryTest, DuplicateModuleRegistrationIsNoOp) {
  ModuleRegistry registry;
  EXPECT_TRUE(registry.moduleIs({"QosSnmp", {"QosSnmp::Status"}}));
  const ModuleTypeTable* first = registry.module("QosSnmp");
  EXPECT_FALSE(registry.moduleIs({"QosSnmp", {"Other::Type"}}));
  EXPECT_EQ(registry.module("QosSnmp"), first);
  EXPECT_EQ(first->types, (std::vector<std::string>{"QosSnmp::Status"}));
  EXPECT_EQ(registry.modules(), (std::vector<std::string>{"QosSnmp"}));
}

TEST(ModuleRegistryTest, TablesStayPutAsModulesArrive) {
  ModuleRegistry registry;
  registry.moduleIs({"M50", {"M50::T"}});
  const ModuleTypeTable* table = registry.module("M50");
  for (int i = 0; i < 100; ++i) {
    registry.moduleIs({moduleName(i), {}});
  }
  EXPECT_EQ(registry.module("M50"), table);
  EXPECT_EQ(table->types, (std::vector<std::string>{"M50::T"}));
}

TEST(ModuleRegistryTest, ModulesListedByName) {
  ModuleRegistry registry;
  EXPECT_TRUE(registry.modules().empty());
  registry.moduleIs({"Snmp", {}});
  registry.moduleIs({"Kel", {}});
  registry.moduleIs({"QosSnmp", {}});
  EXPECT_EQ(registry.modules(), (std::vector<std::string>{"Kel", "QosSnmp", "Snmp"}));
}

TEST(ModuleRegistryTest, EntryPointCallableWithRegisteredType) {
  ModuleRegistry registry;
  EXPECT_TRUE(registry.entryPointIs<int(int)>("QosSnmp::addOne", &addOne));
  EXPECT_TRUE(registry.entryPointIs("QosSnmp::noArguments", &noArguments));  // type deduced
  auto* found = registry.entryPoint<int(int)>("QosSnmp::addOne");
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(found, &addOne);
  EXPECT_EQ(found(41), 42);
  EXPECT_EQ(registry.entryPoint<void()>("QosSnmp::noArguments"), &noArguments);
}

TEST(ModuleRegistryTest, EntryPointOfOtherTypeIsNull) {
  ModuleRegistry registry;
  registry.entryPointIs<int(int)>("QosSnmp::addOne", &addOne);
  EXPECT_EQ(registry.entryPoint<long(long)>("QosSnmp::addOne"), nullptr);
  EXPECT_EQ(registry.entryPoint<int(long)>("QosSnmp::addOne"), nullptr);
  EXPECT_EQ(registry.entryPoint<int(int, int)>("QosSnmp::addOne"), nullptr);
  EXPECT_EQ(registry.entryPoint<void()>("QosSnmp::addOne"), nullptr);
  EXPECT_EQ(registry.entryPoint<int(int) noexcept>("QosSnmp::addOne"), nullptr);
  EXPECT_EQ(registry.entryPoint<int(int)>("QosSnmp::addOne"), &addOne);
}

TEST(ModuleRegistryTest, UnknownEntryPointIsNull) {
  ModuleRegistry registry;
  EXPECT_EQ(registry.entryPoint<int(int)>("QosSnmp::addOne"), nullptr);
  registry.entryPointIs<int(int)>("QosSnmp::addOne", &addOne);
  EXPECT_EQ(registry.entryPoint<int(int)>("QosSnmp::addTwo"), nullptr);
}

TEST(ModuleRegistryTest, DuplicateEntryPointKeepsTheFirst) {
  ModuleRegistry registry;
  EXPECT_TRUE(registry.entryPointIs<int(int)>("QosSnmp::add", &addOne));
  EXPECT_FALSE(registry.entryPointIs<int(int)>("QosSnmp::add", &addTwo));
  EXPECT_FALSE(registry.entryPointIs<long(long)>("QosSnmp::add", &addOneLong));
  EXPECT_EQ(registry.entryPoint<int(int)>("QosSnmp::add"), &addOne);
  EXPECT_EQ(registry.entryPoint<long(long)>("QosSnmp::add"), nullptr);
}

TEST(ModuleRegistryTest, ModulesAndEntryPointsHaveSeparateNames) {
  ModuleRegistry registry;
  EXPECT_TRUE(registry.moduleIs({"QosSnmp", {}}));
  EXPECT_TRUE(registry.entryPointIs<int(int)>("QosSnmp", &addOne));
  EXPECT_NE(registry.module("QosSnmp"), nullptr);
  EXPECT_EQ(registry.entryPoint<int(int)>("QosSnmp"), &addOne);
}

TEST(ModuleRegistryTest, InstanceIsProcessWide) {
  ModuleRegistry& registry = ModuleRegistry::instance();
  EXPECT_EQ(&registry, &ModuleRegistry::instance());
  registry.moduleIs({"ModuleRegistryTest::InstanceIsProcessWide", {"T"}});
  EXPECT_NE(ModuleRegistry::instance().module("ModuleRegistryTest::InstanceIsProcessWide"), nullptr);
}

TEST(ModuleRegistryTest, ConcurrentRegistrationsAllLand) {
  ModuleRegistry registry;
  constexpr int kThreads = 8;
  constexpr int kModulesPerThread = 50;
  std::vector<std::thread> threads;
  threads.reserve(kThreads);
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&registry, t] {
      for (int i = 0; i < kModulesPerThread; ++i) {
        const std::string name = moduleName(t, i);
        registry.moduleIs({name, {name + "::Type"}});
        registry.moduleIs({"Shared", {}});
        registry.entryPointIs<int(int)>(name, &addOne);
        EXPECT_NE(registry.module(name), nullptr);
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(registry.modules().size(), static_cast<std::size_t>(kThreads * kModulesPerThread + 1));
  EXPECT_EQ(registry.entryPoint<int(int)>("M7.49"), &addOne);
}

}  // namespace
}  // namespace Kel
