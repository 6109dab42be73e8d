#include "host/snmp/SnmpUserFile.h"

#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

namespace QosSnmpHost {
namespace {

// The message parse() refuses `text` with, or "accepted".
std::string refusal(const std::string& text) {
  try {
    SnmpUserFile::parse(text, "users.conf");
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return "accepted";
}

TEST(SnmpUserFileTest, ReadsUsersWithCommentsAndBlankLines) {
  const SnmpUserFile file = SnmpUserFile::parse(
      "# operators\n"
      "\n"
      "createUser alice SHA-256 alicePass1 AES alicePriv1\n"
      "  createUser bob MD5 bobPass12 DES bobPriv12   \n"
      "rouser alice priv\n"
      "rouser bob\n",
      "users.conf");
  ASSERT_EQ(file.users().size(), 2U);
  const SnmpUserFile::User& alice = file.users()[0];
  EXPECT_EQ(alice.name, "alice");
  EXPECT_EQ(alice.authProtocol, "SHA-256");
  EXPECT_EQ(alice.authPassphrase, "alicePass1");
  EXPECT_EQ(alice.privProtocol, "AES");
  EXPECT_EQ(alice.privPassphrase, "alicePriv1");
  EXPECT_EQ(file.users()[1].name, "bob");
  EXPECT_EQ(file.users()[1].privProtocol, "DES");
}

TEST(SnmpUserFileTest, EmptyFileHasNoUsers) {
  EXPECT_TRUE(SnmpUserFile::parse("# none\n", "x").users().empty());
}

TEST(SnmpUserFileTest, RefusesEachMistakeNamingItsLine) {
  EXPECT_EQ(refusal("rwuser alice\n"), "users.conf:1: unknown directive 'rwuser' (createUser or rouser)");
  EXPECT_EQ(
      refusal("\ncreateUser alice SHA alicePass1\n"),
      "users.conf:2: createUser takes NAME AUTH-PROTOCOL AUTH-PASSPHRASE PRIV-PROTOCOL PRIV-PASSPHRASE (3 "
      "words given)");
  EXPECT_EQ(
      refusal("createUser alice SHA1 alicePass1 AES alicePriv1\n"),
      "users.conf:1: unknown authentication protocol 'SHA1' (one of MD5, SHA, SHA-224, SHA-256, SHA-384, "
      "SHA-512)");
  EXPECT_EQ(refusal("createUser alice SHA alicePass1 3DES alicePriv1\n"),
            "users.conf:1: unknown privacy protocol '3DES' (one of DES, AES)");
  EXPECT_EQ(refusal("createUser alice SHA short AES alicePriv1\n"),
            "users.conf:1: the passphrases of user 'alice' must have at least 8 characters");
  EXPECT_EQ(refusal("createUser alice SHA \"alicePass1 AES alicePriv1\n"),
            "users.conf:1: quotes and backslashes are not accepted in createUser lines");
  EXPECT_EQ(refusal("createUser " + std::string(33, 'u') + " SHA alicePass1 AES alicePriv1\n"),
            "users.conf:1: user name '" + std::string(33, 'u') + "' is longer than 32 characters");
  EXPECT_EQ(refusal("createUser alice SHA alicePass1 AES alicePriv1\ncreateUser alice SHA otherPass1 AES "
                    "otherPriv1\n"),
            "users.conf:2: user 'alice' is created twice");
}

TEST(SnmpUserFileTest, RefusesAccessBelowPrivacyOrForUnknownUsers) {
  EXPECT_EQ(refusal("createUser alice SHA alicePass1 AES alicePriv1\nrouser alice auth\n"),
            "users.conf:2: rouser level 'auth': only 'priv' (authenticated and encrypted) is accepted");
  EXPECT_EQ(refusal("rouser alice priv\ncreateUser alice SHA alicePass1 AES alicePriv1\n"),
            "users.conf:1: rouser names user 'alice', which no earlier createUser line creates");
  EXPECT_EQ(refusal("createUser alice SHA alicePass1 AES alicePriv1\nrouser alice priv extra\n"),
            "users.conf:2: rouser takes NAME [priv]");
}

TEST(SnmpUserFileTest, RefusesAUserWithoutAccess) {
  EXPECT_EQ(refusal("createUser alice SHA alicePass1 AES alicePriv1\n"),
            "users.conf:1: user 'alice' has no rouser line");
}

TEST(SnmpUserFileTest, MessagesNeverShowPassphrases) {
  const std::string message = refusal("createUser alice SHA secretPass AES secretPriv extra\n");
  EXPECT_EQ(message.find("secret"), std::string::npos) << message;
}

TEST(SnmpUserFileTest, ReadRefusesAnUnreadableFile) {
  try {
    SnmpUserFile::read("/nonexistent/users.conf");
    ADD_FAILURE() << "read an absent file";
  } catch (const std::runtime_error& error) {
    EXPECT_EQ(std::string(error.what()), "/nonexistent/users.conf: cannot read the SNMPv3 user file");
  }
}

}  // namespace
}  // namespace QosSnmpHost
