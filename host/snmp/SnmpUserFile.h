// QosSnmpHost::SnmpUserFile: the SNMPv3 users of the embedded master agent,
// read from a small text file and checked completely before the SNMP
// library sees any of it.
//
// The file (a subset of the agent configuration language, one directive a
// line; blank lines and lines whose first non-blank character is '#' are
// ignored; words are separated by blanks and contain no blanks, quotes or
// backslashes):
//
//   # user with SHA authentication and AES privacy
//   createUser NAME AUTH-PROTOCOL AUTH-PASSPHRASE PRIV-PROTOCOL PRIV-PASSPHRASE
//   rouser NAME [priv]
//
//   AUTH-PROTOCOL   MD5, SHA, SHA-224, SHA-256, SHA-384 or SHA-512
//   PRIV-PROTOCOL   DES or AES
//   passphrases     at least 8 characters
//
// Every user is authenticated and encrypted: createUser needs both
// passphrases, and rouser grants read access to the agent's subtree for
// authPriv requests only ("priv" is the one level accepted, and the
// default). A rouser line must name a user created earlier in the file, and
// a user created but never granted access is refused too (it could not read
// anything). Names are at most 32 characters.
//
// A mistake is reported as a std::runtime_error "PATH:LINE: what is wrong";
// passphrases never appear in messages.
//
//   const SnmpUserFile users = SnmpUserFile::read("/etc/qos-snmp-agent/users.conf");
//   for (const auto& user : users.users()) { ... }
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace QosSnmpHost {

class SnmpUserFile {
 public:
  struct User {
    std::string name;
    std::string authProtocol;  // as written: "SHA-256"
    std::string authPassphrase;
    std::string privProtocol;  // "AES"
    std::string privPassphrase;
  };

  // Reads and checks the file at `path`; throws std::runtime_error.
  static SnmpUserFile read(const std::string& path);
  // Checks `text`, naming `origin` in messages; throws std::runtime_error.
  static SnmpUserFile parse(std::string_view text, const std::string& origin);

  // The users, in file order, each with read access.
  const std::vector<User>& users() const { return users_; }

 private:
  std::vector<User> users_;
};

}  // namespace QosSnmpHost
