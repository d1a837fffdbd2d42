#include "support/recording_connection.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <map>
#include <mutex>
#include <stdexcept>
#include <string>

#include "adapters/sql_text.h"
#include "talm_flow/error.h"

namespace talm_flow::test {
namespace {

void AppendJsonText(std::string& out, std::string_view text) {
  constexpr char kHex[] = "0123456789abcdef";
  out += '"';
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') {
      out.append(1, '\\').append(1, c);
    } else if (byte < ' ') {
      out.append("\\u00").append(1, kHex[byte >> 4]).append(1, kHex[byte & 15]);
    } else {
      out += c;
    }
  }
  out += '"';
}

std::string CurrentTest() {
  const auto* const test = testing::UnitTest::GetInstance()->current_test_info();
  return test == nullptr ? std::string() : std::string(test->test_suite_name()) + "." + test->name();
}

/// The text without its literals; a text that no adapter would take stands for itself.
std::string ShapeOf(std::string_view text) {
  adapters::ScannedText scanned;
  try {
    scanned.Scan(text);
  } catch (const DatabaseError&) {
    return std::string(text);
  }
  return scanned.unterminated ? std::string(text) : scanned.shape;
}

/// The file of this process.
class Recording {
 public:
  explicit Recording(const char* file) : file_(file) {
    if (!file_) throw std::runtime_error(std::string("cannot write ") + file);
  }

  void Add(std::string_view operation, std::string_view text, bool ran) {
    const std::lock_guard lock(mutex_);
    const std::string shape = ShapeOf(text);
    const auto [known, is_new] = ran_.try_emplace(std::string(operation) + '\n' + shape, ran);
    if (!is_new && (known->second || !ran)) return;
    known->second = ran;
    std::string line = "{\"place\":";
    AppendJsonText(line, CurrentTest());
    line += ",\"operation\":";
    AppendJsonText(line, operation);
    line.append(",\"ran\":").append(ran ? "true" : "false").append(",\"shape\":");
    AppendJsonText(line, shape);
    line += ",\"text\":";
    AppendJsonText(line, text);
    WriteLine(line);
  }

  void Expect(std::string_view operation) {
    const std::lock_guard lock(mutex_);
    std::string line = "{\"expected\":";
    AppendJsonText(line, operation);
    WriteLine(line);
  }

 private:
  void WriteLine(const std::string& line) { file_ << line << "}" << std::endl; }

  std::ofstream file_;
  std::mutex mutex_;
  std::map<std::string, bool> ran_;  ///< by operation and shape, whether the database ever took it
};

/// Null when nothing is to be written.
Recording* TheRecording() {
  static const std::unique_ptr<Recording> recording = [] {
    const char* const file = std::getenv("TALM_FLOW_STATEMENTS");
    return file == nullptr ? nullptr : std::make_unique<Recording>(file);
  }();
  return recording.get();
}

/// Runs a statement and writes down how it went.
template <typename Run>
std::unique_ptr<RowSet> Recorded(std::string_view operation, std::string_view text, const Run& run) {
  Recording* const recording = TheRecording();
  if (recording == nullptr) return run();
  try {
    auto rows = run();
    recording->Add(operation, text, true);
    return rows;
  } catch (const DatabaseError&) {
    recording->Add(operation, text, false);
    throw;
  }
}

}  // namespace

std::unique_ptr<RowSet> RecordingConnection::Execute(std::string_view statement) {
  return Recorded(operation_, statement, [&] { return inner_.Execute(statement); });
}

std::unique_ptr<RowSet> RecordingConnection::Open(std::string_view query) {
  return Recorded(operation_, query, [&] { return inner_.Open(query); });
}

void ExpectStatementsOf(std::string_view operation) {
  if (Recording* const recording = TheRecording()) recording->Expect(operation);
}

}  // namespace talm_flow::test
