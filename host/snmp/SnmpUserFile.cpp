#include "host/snmp/SnmpUserFile.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <set>
#include <sstream>
#include <stdexcept>

namespace QosSnmpHost {

namespace {

constexpr std::size_t kMaxNameLength = 32;
constexpr std::size_t kMinPassphraseLength = 8;
constexpr std::array<std::string_view, 6> kAuthProtocols = {"MD5",     "SHA",     "SHA-224",
                                                            "SHA-256", "SHA-384", "SHA-512"};
constexpr std::array<std::string_view, 2> kPrivProtocols = {"DES", "AES"};

// Quotes and backslashes have meanings of their own in the SNMP library's
// configuration language.
bool hasQuoting(const std::string& word) { return word.find_first_of("\"'\\") != std::string::npos; }

std::vector<std::string> wordsOf(std::string_view line) {
  std::vector<std::string> words;
  std::istringstream in{std::string(line)};
  for (std::string word; in >> word;) {
    words.push_back(word);
  }
  return words;
}

template <std::size_t N>
std::string listOf(const std::array<std::string_view, N>& names) {
  std::string list;
  for (const std::string_view name : names) {
    list += (list.empty() ? "" : ", ");
    list += name;
  }
  return list;
}

template <std::size_t N>
bool isOneOf(const std::string& word, const std::array<std::string_view, N>& names) {
  return std::find(names.begin(), names.end(), word) != names.end();
}

// Throws "origin:line: message".
class LineError {
 public:
  LineError(const std::string& origin, std::size_t line)
      : where_(origin + ':' + std::to_string(line) + ": ") {}
  [[noreturn]] void operator()(const std::string& message) const {
    throw std::runtime_error(where_ + message);
  }

 private:
  std::string where_;
};

void checkName(const std::string& name, const LineError& fail) {
  if (name.size() > kMaxNameLength) {
    fail("user name '" + name + "' is longer than " + std::to_string(kMaxNameLength) + " characters");
  }
}

SnmpUserFile::User createUserOf(const std::vector<std::string>& words, const LineError& fail) {
  if (words.size() != 6) {
    fail("createUser takes NAME AUTH-PROTOCOL AUTH-PASSPHRASE PRIV-PROTOCOL PRIV-PASSPHRASE (" +
         std::to_string(words.size() - 1) + " words given)");
  }
  SnmpUserFile::User user{words[1], words[2], words[3], words[4], words[5]};
  checkName(user.name, fail);
  if (!isOneOf(user.authProtocol, kAuthProtocols)) {
    fail("unknown authentication protocol '" + user.authProtocol + "' (one of " + listOf(kAuthProtocols) +
         ")");
  }
  if (!isOneOf(user.privProtocol, kPrivProtocols)) {
    fail("unknown privacy protocol '" + user.privProtocol + "' (one of " + listOf(kPrivProtocols) + ")");
  }
  for (const std::string& word : words) {
    if (hasQuoting(word)) {
      fail("quotes and backslashes are not accepted in createUser lines");
    }
  }
  if (user.authPassphrase.size() < kMinPassphraseLength ||
      user.privPassphrase.size() < kMinPassphraseLength) {
    fail("the passphrases of user '" + user.name + "' must have at least " +
         std::to_string(kMinPassphraseLength) + " characters");
  }
  return user;
}

}  // namespace

SnmpUserFile SnmpUserFile::read(const std::string& path) {
  std::ifstream in(path);
  if (!in) {
    throw std::runtime_error(path + ": cannot read the SNMPv3 user file");
  }
  std::ostringstream text;
  text << in.rdbuf();
  return parse(text.str(), path);
}

SnmpUserFile SnmpUserFile::parse(std::string_view text, const std::string& origin) {
  SnmpUserFile file;
  std::set<std::string> granted;
  std::size_t lineNumber = 0;
  std::vector<std::size_t> createdAt;  // line of each user's createUser
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::vector<std::string> words = wordsOf(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
    ++lineNumber;
    if (words.empty() || words.front().front() == '#') {
      continue;
    }
    const LineError fail(origin, lineNumber);
    const std::string& directive = words.front();
    auto known = [&file](const std::string& name) {
      return std::any_of(file.users_.begin(), file.users_.end(),
                         [&](const User& u) { return u.name == name; });
    };
    if (directive == "createUser") {
      User user = createUserOf(words, fail);
      if (known(user.name)) {
        fail("user '" + user.name + "' is created twice");
      }
      file.users_.push_back(std::move(user));
      createdAt.push_back(lineNumber);
    } else if (directive == "rouser") {
      if (words.size() < 2 || words.size() > 3) {
        fail("rouser takes NAME [priv]");
      }
      if (words.size() == 3 && words[2] != "priv") {
        fail("rouser level '" + words[2] + "': only 'priv' (authenticated and encrypted) is accepted");
      }
      if (!known(words[1])) {
        fail("rouser names user '" + words[1] + "', which no earlier createUser line creates");
      }
      granted.insert(words[1]);
    } else {
      fail("unknown directive '" + directive + "' (createUser or rouser)");
    }
  }
  for (std::size_t i = 0; i < file.users_.size(); ++i) {
    if (granted.count(file.users_[i].name) == 0) {
      LineError(origin, createdAt[i])("user '" + file.users_[i].name + "' has no rouser line");
    }
  }
  return file;
}

}  // namespace QosSnmpHost
