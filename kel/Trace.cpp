#include "kel/Trace.h"

#include <charconv>
#include <cstdio>
#include <cstdlib>

namespace Kel {
namespace {

constexpr std::string_view kEveryModule = "*";
constexpr U32 kAllLevels = ~U32{0};

// One configuration entry: `module` ("*" for every module) traces exactly
// `levels`.
struct TraceRule {
  std::string module;
  U32 levels;
};

bool covers(const TraceRule& rule, const std::string& module) {
  return rule.module == kEveryModule || rule.module == module;
}

std::string_view trimmed(std::string_view text) {
  const auto first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) {
    return {};
  }
  return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

// `text` in double quotes, for error texts.
std::string quoted(std::string_view text) {
  std::string result;
  result.reserve(text.size() + 2);
  result.append(1, '"').append(text).append(1, '"');
  return result;
}

// Splits `text` at every `separator`; "a;;b" gives "a", "", "b".
std::vector<std::string_view> split(std::string_view text, char separator) {
  std::vector<std::string_view> pieces;
  for (;;) {
    const auto end = text.find(separator);
    pieces.push_back(text.substr(0, end));
    if (end == std::string_view::npos) {
      return pieces;
    }
    text.remove_prefix(end + 1);
  }
}

std::optional<int> levelNumber(std::string_view text) {
  int level = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), level);
  if (text.empty() || error != std::errc() || end != text.data() + text.size() || level < 0 ||
      level >= TraceHandle::kLevelCount) {
    return std::nullopt;
  }
  return level;
}

// The mask of a comma-separated level list, or an error text.
std::optional<std::string> parseLevels(std::string_view list, U32& mask) {
  mask = 0;
  if (trimmed(list).empty()) {
    return std::nullopt;
  }
  for (const std::string_view piece : split(list, ',')) {
    const std::string_view item = trimmed(piece);
    if (item == "*") {
      mask = kAllLevels;
      continue;
    }
    const auto dash = item.find('-');
    const std::optional<int> first = levelNumber(trimmed(item.substr(0, dash)));
    const std::optional<int> last =
        dash == std::string_view::npos ? first : levelNumber(trimmed(item.substr(dash + 1)));
    if (!first || !last) {
      return quoted(item) + " is not a level 0-31, a range of them or *";
    }
    if (*first > *last) {
      return "range " + quoted(item) + " ends before it starts";
    }
    for (int level = *first; level <= *last; ++level) {
      mask |= U32{1} << level;
    }
  }
  return std::nullopt;
}

// Parses configuration text into rules, in order, or returns an error text.
std::optional<std::string> parseConfiguration(std::string_view configuration, std::vector<TraceRule>& rules) {
  rules.clear();
  for (const std::string_view piece : split(configuration, ';')) {
    const std::string_view entry = trimmed(piece);
    if (entry.empty()) {
      continue;
    }
    const auto problem = [entry](const std::string& reason) {
      return "trace entry " + quoted(entry) + ": " + reason;
    };
    const auto slash = entry.find('/');
    if (slash == std::string_view::npos) {
      return problem("expected module/levels");
    }
    const std::string_view module = trimmed(entry.substr(0, slash));
    if (module.empty() || module.find_first_of(" \t,") != std::string_view::npos) {
      return problem(quoted(module) + " is not a module name");
    }
    U32 mask = 0;
    if (auto error = parseLevels(entry.substr(slash + 1), mask)) {
      return problem(*error);
    }
    rules.push_back({std::string(module), mask});
  }
  return std::nullopt;
}

struct TraceRegistry {
  std::mutex mutex;
  std::vector<TraceHandle*> handles;
  // At most one rule per module name: a rule replaces the earlier rules it
  // covers, so the levels of a module are those of the last rule covering
  // it, and repeated configuration does not grow the list.
  std::vector<TraceRule> rules;
  bool environmentRead = false;
};

TraceRegistry& registry() {
  static auto* instance = new TraceRegistry;  // never destroyed: handles unregister during static teardown
  return *instance;
}

U32 configuredLevels(const TraceRegistry& r, const std::string& module) {
  U32 levels = 0;
  for (const TraceRule& rule : r.rules) {
    if (covers(rule, module)) {
      levels = rule.levels;
    }
  }
  return levels;
}

// REQUIRES: r.mutex is held.
void applyLocked(TraceRegistry& r, const std::vector<TraceRule>& rules) {
  for (const TraceRule& rule : rules) {
    std::erase_if(r.rules, [&rule](const TraceRule& old) {
      return rule.module == kEveryModule || old.module == rule.module;
    });
    r.rules.push_back(rule);
    for (TraceHandle* handle : r.handles) {
      if (covers(rule, handle->module())) {
        handle->levelsIs(rule.levels);
      }
    }
  }
}

// REQUIRES: r.mutex is held.
void readEnvironmentOnceLocked(TraceRegistry& r) {
  if (r.environmentRead) {
    return;
  }
  r.environmentRead = true;
  const char* value = std::getenv("KEL_TRACE");
  if (value == nullptr) {
    return;
  }
  std::vector<TraceRule> rules;
  if (auto error = parseConfiguration(value, rules)) {
    std::fprintf(stderr, "KEL_TRACE ignored: %s\n", error->c_str());
    return;
  }
  applyLocked(r, rules);
}

class StderrTraceSink final : public TraceSink {
 public:
  void write(const TraceHandle& handle, int level, const char* file, unsigned line, const char*,
             std::string_view text) override {
    const std::string_view path(file);
    const std::string_view fileName = path.substr(path.rfind('/') + 1);  // npos + 1 is 0
    std::string out;
    out.reserve(handle.module().size() + fileName.size() + text.size() + 24);
    out.append(handle.module()).append("/").append(std::to_string(level)).append(" ");
    out.append(fileName).append(":").append(std::to_string(line)).append(" ");
    out.append(text).append("\n");
    // One call per line, so lines from different threads do not interleave.
    std::fwrite(out.data(), 1, out.size(), stderr);
  }
};

TraceSink& stderrSink() {
  static auto* instance = new StderrTraceSink;  // never destroyed: static destructors may still trace
  return *instance;
}

std::atomic<TraceSink*> currentSink{nullptr};

}  // namespace

TraceHandle::TraceHandle(std::string module) : module_(std::move(module)) {
  TraceRegistry& r = registry();
  const std::lock_guard lock(r.mutex);
  readEnvironmentOnceLocked(r);
  levelsIs(configuredLevels(r, module_));
  r.handles.push_back(this);
}

TraceHandle::~TraceHandle() {
  TraceRegistry& r = registry();
  const std::lock_guard lock(r.mutex);
  std::erase(r.handles, this);
}

std::optional<std::string> traceLevelsIs(const std::string& configuration) {
  std::vector<TraceRule> rules;
  if (auto error = parseConfiguration(configuration, rules)) {
    return error;
  }
  TraceRegistry& r = registry();
  const std::lock_guard lock(r.mutex);
  readEnvironmentOnceLocked(r);
  applyLocked(r, rules);
  return std::nullopt;
}

void traceConfigurationResetForTest() {
  TraceRegistry& r = registry();
  const std::lock_guard lock(r.mutex);
  r.rules.clear();
  r.environmentRead = false;
}

void traceSinkIs(TraceSink* sink) noexcept { currentSink.store(sink, std::memory_order_release); }

TraceSink* traceSink() noexcept {
  TraceSink* sink = currentSink.load(std::memory_order_acquire);
  return sink != nullptr ? sink : &stderrSink();
}

std::unique_ptr<std::ostringstream> TraceHelper::newBuffer() {
  return std::make_unique<std::ostringstream>();
}

void TraceHelper::write() {
  const std::unique_ptr<std::ostringstream> text = std::move(buffer_);
  traceSink()->write(*handle_, level_, file_, line_, function_, text->view());
}

std::ostream& operator<<(std::ostream& out, const CapturedTraceLine& line) {
  return out << line.module << '/' << line.level << " \"" << line.text << '"';
}

CapturingTraceSink::CapturingTraceSink() : previous_(traceSink()) { traceSinkIs(this); }

CapturingTraceSink::~CapturingTraceSink() { traceSinkIs(previous_); }

void CapturingTraceSink::write(const TraceHandle& handle, int level, const char*, unsigned, const char*,
                               std::string_view text) {
  const std::lock_guard lock(mutex_);
  lines_.push_back({handle.module(), level, std::string(text)});
}

std::vector<std::string> CapturingTraceSink::texts() const {
  const std::lock_guard lock(mutex_);
  std::vector<std::string> result;
  result.reserve(lines_.size());
  for (const CapturedTraceLine& line : lines_) {
    result.push_back(line.text);
  }
  return result;
}

void CapturingTraceSink::clear() {
  const std::lock_guard lock(mutex_);
  lines_.clear();
}

}  // namespace Kel
