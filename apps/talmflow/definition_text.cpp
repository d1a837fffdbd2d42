#include "definition_text.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string_view>

#include "subcommand.h"
#include "talm_flow/conversion.h"
#include "talm_flow/host/reference_host.h"
#include "talm_flow/in_out.h"
#include "talm_flow/text.h"

namespace talm_flow::program {
namespace {

std::string ReadAll(const std::string& file) {
  if (file == "-") return {std::istreambuf_iterator<char>(std::cin), {}};
  const auto fail = [&](int reason) { throw UserError("cannot read \"" + file + "\": " + std::strerror(reason)); };
  // A folder opens like a file and fails only later, without a reason.
  if (std::filesystem::is_directory(file)) fail(EISDIR);
  errno = 0;
  std::ifstream stream(file, std::ios::binary);
  if (!stream) fail(errno == 0 ? EIO : errno);
  std::string text{std::istreambuf_iterator<char>(stream), {}};
  if (stream.bad()) fail(EIO);
  return text;
}

std::string PlaceOf(const std::string& file, std::size_t line) {
  return (file == "-" ? "standard input" : file) + ":" + std::to_string(line) + ": ";
}

void RequireUtf8(const std::string& file, std::string_view text) {
  std::size_t line = 1;
  while (!text.empty()) {
    const auto length = SequenceSize(text);
    if (length == 0) throw UserError(PlaceOf(file, line) + "the text is not UTF-8");
    if (text.front() == '\n') ++line;
    text.remove_prefix(length);
  }
}

std::string WithCrLf(std::string_view text) {
  std::string result;
  result.reserve(text.size() + text.size() / 16);
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\n' && (i == 0 || text[i - 1] != '\r')) result += '\r';
    result += text[i];
  }
  return result;
}

/// Follows a definition text line by line as its reader does, and stops where the reader would fail half-way.
class LineCheck {
 public:
  explicit LineCheck(const std::string& file) : file_(file) {}

  /// @returns whether more lines count.
  bool Take(const std::string& line) {
    ++line_;
    if (!pure_.IsSeparateLine(line)) return true;
    if (line.starts_with("FlowEnd") && !in_parameters_) return line != "FlowEnd";
    if (in_parameters_) {
      TakeParameter(line);
    } else if (line == "ParameterBegin") {
      in_parameters_ = true;
      begin_ = line_;
    } else {
      TakeAttribute(line);
    }
    return true;
  }

  void End() const {
    if (in_parameters_)
      throw UserError(PlaceOf(file_, begin_) + "the parameters that begin here have no \"ParameterEnd\"");
  }

 private:
  void TakeParameter(const std::string& line) {
    if (line == "ParameterEnd") {
      in_parameters_ = false;
    } else if (!line.starts_with("//") && line.find(':') == std::string::npos) {
      throw UserError(PlaceOf(file_, line_) + "a parameter or \"ParameterEnd\" is expected, not \"" + line + "\"");
    }
  }

  void TakeAttribute(const std::string& line) const {
    for (const std::string_view key : {"FlowNo:", "ParentNo:", "Serial:", "OrderNo:", "Sort:"}) {
      if (line.starts_with(key) && !IsNumeric(std::string_view(line).substr(key.size()))) {
        throw UserError(PlaceOf(file_, line_) + "\"" + std::string(key) + "\" takes a number, not \"" +
                        line.substr(key.size()) + "\"");
      }
    }
  }

  const std::string& file_;
  host::ReferenceHost host_;
  InOut pure_{host_.services()};
  std::size_t line_ = 0;
  std::size_t begin_ = 0;
  bool in_parameters_ = false;
};

void CheckLines(const std::string& file, const std::string& text) {
  LineCheck check(file);
  for (std::size_t begin = 0; begin < text.size();) {
    const auto end = std::min(text.find("\r\n", begin), text.size());
    if (!check.Take(text.substr(begin, end - begin))) break;
    begin = end + 2;
  }
  check.End();
}

}  // namespace

std::string ReadDefinitionUnchecked(const std::string& file) {
  const auto bytes = ReadAll(file);
  std::string_view text = bytes;
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
  RequireUtf8(file, text);
  return WithCrLf(text);
}

std::string ReadDefinition(const std::string& file) {
  auto definition = ReadDefinitionUnchecked(file);
  constexpr std::string_view kVersion = "Ver:Flow_V600\r\n";
  if (definition.starts_with(kVersion)) {
    throw UserError(PlaceOf(file, 1) + "the version line must not come first; put a line \"//\" before it");
  }
  if (definition.find("\r\n" + std::string(kVersion)) == std::string::npos) {
    throw UserError("\"" + file + "\" is no flow definition: it has no line \"Ver:Flow_V600\"");
  }
  CheckLines(file, definition);
  return definition;
}

}  // namespace talm_flow::program
