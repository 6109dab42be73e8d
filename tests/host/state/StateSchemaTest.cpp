#include "host/state/StateSchema.h"

#include <cctype>
#include <fstream>
#include <optional>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "host/state/SwitchState.h"

namespace {

using nlohmann::json;
using QosSnmpHost::Attr;
using QosSnmpHost::EntityType;

// A file of the repository, found from its root as the build gives it.
std::string repositoryFile(const std::string& relative) {
  return std::string(QOS_SOURCE_DIR) + "/" + relative;
}

std::string readFile(const std::string& path) {
  std::ifstream in(path);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

// The fenced blocks of `language` in a Markdown text.
std::vector<std::string> fencedBlocks(const std::string& markdown, const std::string& language) {
  std::vector<std::string> blocks;
  const std::string open = "```" + language + "\n";
  for (auto at = markdown.find(open); at != std::string::npos; at = markdown.find(open, at)) {
    at += open.size();
    const auto end = markdown.find("```", at);
    blocks.push_back(markdown.substr(at, end - at));
    at = end;
  }
  return blocks;
}

class StateSchemaTest : public ::testing::Test {
 protected:
  const json& resolved(const json& node) const {
    if (node.contains("$ref")) {
      const std::string ref = node["$ref"];
      return schema_.at("$defs").at(ref.substr(std::string("#/$defs/").size()));
    }
    return node;
  }

  // Checks that the JSON Schema definition `def` describes `type` with the
  // same attributes, defaults and member types.
  void expectSameShape(const EntityType& type, const json& def, const std::string& where) {
    SCOPED_TRACE(where);
    if (type.flat) {
      expectSameShape(*type.attrs.front().member, resolved(def.at("additionalProperties")), where + "/*");
      return;
    }
    std::set<std::string> names;
    for (const auto& [name, property] : def.at("properties").items()) {
      names.insert(name);
    }
    std::set<std::string> attrs;
    if (type.named) {
      attrs.insert("name");
    }
    for (const auto& attr : type.attrs) {
      attrs.insert(attr.name);
    }
    EXPECT_EQ(names, attrs);
    EXPECT_EQ(def.at("additionalProperties"), false);
    for (const auto& attr : type.attrs) {
      if (!def.at("properties").contains(attr.name)) {
        continue;
      }
      const json& property = def.at("properties").at(attr.name);
      if (attr.kind == Attr::Kind::scalar && !attr.defaultIsOwnerKey) {
        EXPECT_EQ(property.at("default"), attr.defaultValue) << attr.name;
      }
      if (attr.kind == Attr::Kind::entities) {
        expectSameShape(*attr.member, resolved(property.at("additionalProperties")),
                        where + "/" + attr.name + "/*");
      }
      if (attr.kind == Attr::Kind::entityOrReference) {
        expectSameShape(*attr.member, resolved(property.at("anyOf").back()), where + "/" + attr.name);
      }
    }
  }

  json schema_ = json::parse(readFile(repositoryFile("docs/state-format.schema.json")));
};

TEST_F(StateSchemaTest, SchemaFileIsADraft2020JsonSchema) {
  EXPECT_EQ(schema_.at("$schema"), "https://json-schema.org/draft/2020-12/schema");
  EXPECT_EQ(schema_.at("additionalProperties"), false);
  EXPECT_TRUE(schema_.at("$defs").contains("Change"));
}

TEST_F(StateSchemaTest, SchemaFileDescribesEveryAttributeOfEveryEntity) {
  const auto& roots = QosSnmpHost::stateSchema().roots;
  ASSERT_EQ(schema_.at("properties").size(), roots.size());
  for (const auto& root : roots) {
    expectSameShape(*root.type, resolved(schema_.at("properties").at(root.name)), "/" + root.name);
  }
}

TEST_F(StateSchemaTest, DocumentedExampleLoadsAndItsChangeStreamApplies) {
  const std::string markdown = readFile(repositoryFile("docs/state-format.md"));
  const auto documents = fencedBlocks(markdown, "json");
  const auto streams = fencedBlocks(markdown, "jsonl");
  ASSERT_EQ(documents.size(), 1U);
  ASSERT_EQ(streams.size(), 1U);
  auto loaded = QosSnmpHost::SwitchState::loadText(documents.front(), "state-format.md");
  ASSERT_TRUE(loaded) << loaded.error().text();
  std::istringstream lines(streams.front());
  std::string line;
  int number = 0;
  while (std::getline(lines, line)) {
    const auto change = loaded->apply(line, {"state-format.md", ++number});
    EXPECT_TRUE(change) << change.error().text();
  }
  EXPECT_EQ(number, 8);
  EXPECT_FALSE(loaded->qosStatus()->cmapType(Qos::mapQos_)->cmap("class-default"));
  EXPECT_EQ(loaded->qosStatus()->pmapType(Qos::mapQos_)->pmap("pm-in")->cmapCounters("voice")->packets(),
            40U);
}

TEST_F(StateSchemaTest, KeysAreCanonicalisedByTheirType) {
  const EntityType& status = *QosSnmpHost::stateSchema().root("qosStatus")->type;
  const Attr& cmapType = *status.attr("cmapType");
  const Attr& servicePolicies = *status.attr("servicePolicyStatus");
  const QosSnmpHost::JsonPointer at("/qosStatus/cmapType/x");
  EXPECT_EQ(QosSnmpHost::canonicalKey(cmapType, "1", at), "mapQos");
  EXPECT_EQ(QosSnmpHost::canonicalKey(cmapType, "mapPbr", at), "mapPbr");
  EXPECT_EQ(QosSnmpHost::canonicalKey(cmapType, "42", at), "42");
  EXPECT_EQ(QosSnmpHost::canonicalKey(servicePolicies, "1 2 pm out", at), "mapQos directionOutput pm out");
  EXPECT_THROW(QosSnmpHost::canonicalKey(cmapType, "-1", at), QosSnmpHost::SchemaError);
  EXPECT_THROW(QosSnmpHost::canonicalKey(servicePolicies, "mapQos directionInput ", at),
               QosSnmpHost::SchemaError);
  const Attr& prio = *status.attr("pmapType")->member->attrs.front().member->attr("classPrio");
  EXPECT_EQ(QosSnmpHost::canonicalKey(prio, "007", at), "7");
  EXPECT_THROW(QosSnmpHost::canonicalKey(prio, "4294967296", at), QosSnmpHost::SchemaError);
}

TEST_F(StateSchemaTest, CanonicalisingInPlaceMovesRenamedMembersAndFillsDefaults) {
  const EntityType& status = *QosSnmpHost::stateSchema().root("qosStatus")->type;
  json value =
      json::parse(R"({"pmapType": {"1": {"pmap": {"p": {"classPrio": {"007": {"cmapName": "c"}}}}}}})");
  QosSnmpHost::canonicalizeEntity(status, value, QosSnmpHost::JsonPointer("/qosStatus"), "", "");
  EXPECT_EQ(value,
            QosSnmpHost::canonicalEntity(status, json::parse(R"({"pmapType": {"mapQos": {"pmap": {"p": {
                                                  "classPrio": {"7": {"cmapName": "c"}}}}}}})"),
                                         QosSnmpHost::JsonPointer("/qosStatus"), "", ""));
  EXPECT_FALSE(value.at("pmapType").contains("1"));
  EXPECT_EQ(value.at("pmapType").at("mapQos").at("pmap").at("p").at("classPrio").at("7").at("cmapName"), "c");
  EXPECT_EQ(value.at("pmapType").at("mapQos").at("pmap").at("p").at("type"), "mapQos") << "a default";
  EXPECT_TRUE(value.at("cmapType").empty()) << "an absent collection";
}

TEST_F(StateSchemaTest, TwoMembersWithOneCanonicalKeyAreRefusedAtTheLaterOne) {
  const EntityType& status = *QosSnmpHost::stateSchema().root("qosStatus")->type;
  const Attr& pmapType = *status.attr("pmapType");
  const Attr& prio = *pmapType.member->attrs.front().member->attr("classPrio");
  const QosSnmpHost::JsonPointer at("/p/classPrio");
  for (const char* written : {R"({"007": {}, "7": {}})", R"({"07": {}, "007": {}})"}) {
    json value = json::parse(written);
    try {
      QosSnmpHost::canonicalizeAttr(prio, value, at, "p", "mapQos");
      FAIL() << written;
    } catch (const QosSnmpHost::SchemaError& error) {
      // Members are read in the order of their keys as written.
      const std::string later = std::string(written).find(R"("7")") != std::string::npos ? "7" : "07";
      EXPECT_EQ(error.path.to_string(), "/p/classPrio/" + later) << written;
      std::string message = "duplicate member: \"" + later;
      message += R"(" and "007" are both "7")";
      EXPECT_EQ(error.message, message) << written;
    }
  }
}

TEST_F(StateSchemaTest, AMemberRenamedToAKeyWrittenBeforeItIsRefusedToo) {
  // A key form whose canonical key sorts before the key as written (no
  // form of the schema does so today): upper case.
  Attr upper;
  upper.name = "upper";
  upper.kind = Attr::Kind::values;
  upper.keyExpected = "a key";
  upper.keyCanonical = [](std::string_view raw) -> std::optional<std::string> {
    std::string key(raw);
    for (char& c : key) {
      c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    }
    return key;
  };
  upper.valueExpected = [] { return std::string("anything"); };
  upper.valueCanonical = [](const json& value) -> std::optional<json> { return value; };
  json value = json::parse(R"({"A": 1, "a": 2})");
  try {
    QosSnmpHost::canonicalizeAttr(upper, value, QosSnmpHost::JsonPointer("/upper"), "", "");
    FAIL() << "two members both \"A\"";
  } catch (const QosSnmpHost::SchemaError& error) {
    EXPECT_EQ(error.path.to_string(), "/upper/a");
    EXPECT_EQ(error.message, R"(duplicate member: "a" and "A" are both "A")");
  }
  json renamed = json::parse(R"({"b": 1, "C": 2})");
  QosSnmpHost::canonicalizeAttr(upper, renamed, QosSnmpHost::JsonPointer("/upper"), "", "");
  EXPECT_EQ(renamed, json::parse(R"({"B": 1, "C": 2})"));
}

TEST_F(StateSchemaTest, CanonicalisingADocumentCountsTheEntitiesItsStateHolds) {
  json document = json::parse(readFile(repositoryFile("examples/leaf-switch.json")));
  std::size_t entities = 0;
  for (const auto& root : QosSnmpHost::stateSchema().roots) {
    json& value = document.emplace(root.name, json::object()).first.value();
    QosSnmpHost::canonicalizeEntity(*root.type, value, QosSnmpHost::JsonPointer() / root.name, "", "",
                                    &entities);
  }
  const auto loaded = QosSnmpHost::SwitchState::loadFile(repositoryFile("examples/leaf-switch.json"));
  ASSERT_TRUE(loaded) << loaded.error().text();
  EXPECT_EQ(entities, loaded->entityPaths().size());
  EXPECT_GT(entities, 100U);
}

}  // namespace
