#include "host/file_system.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <filesystem>
#include <system_error>
#include <utility>

#include "host/encoding.h"
#include "host/machine_file.h"
#include "talm_flow/error.h"
#include "talm_flow/text.h"

namespace talm_flow::host {
namespace {

[[noreturn]] void Fail(std::string_view file_name, std::string_view reason) {
  std::string message = "the file \"";
  message += file_name;
  message += "\": ";
  message += reason;
  throw FileError(message);
}

[[noreturn]] void FailWithErrno(std::string_view file_name, int error) {
  Fail(file_name, std::generic_category().message(error));
}

// A name as the machine takes it. One with a NUL inside would be taken for another, shorter name.
std::filesystem::path MachineName(std::string_view file_name) {
  if (file_name.find('\0') != std::string_view::npos) Fail(file_name, "its name holds a NUL character");
  return MachinePath(file_name);
}

// Whether nobody may write the file. The machine lets it be deleted all the same, but then it was hardly meant to go.
bool IsProtected(const std::filesystem::path& machine_name) {
  using std::filesystem::perms;
  std::error_code error;
  const auto status = std::filesystem::symlink_status(machine_name, error);
  return std::filesystem::exists(status) &&
         (status.permissions() & (perms::owner_write | perms::group_write | perms::others_write)) == perms::none;
}

std::string_view EncodingName(TextEncoding encoding) { return encoding == TextEncoding::kUtf8 ? "UTF-8" : "GB18030"; }

std::string HexText(std::string_view prefix, unsigned number, std::size_t width) {
  std::array<char, 8> digits{};
  const char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), number, 16).ptr;
  const auto count = static_cast<std::size_t>(end - digits.data());
  std::string text(prefix);
  if (count < width) text.append(width - count, '0');
  return text + UpperCase(std::string_view(digits.data(), count));
}

// A character with its number: some cannot be seen, and not every font has every one.
std::string ShownCharacter(std::string_view character) {
  if (character.size() == 1) return HexText("the byte 0x", static_cast<unsigned char>(character[0]), 2);
  return HexText("the character U+", CodePointOf(character), 4) + " (" + std::string(character) + ")";
}

std::string EncodeOrFail(TextEncoding encoding, std::string_view file_name, std::string_view text) {
  EncodingResult result = Encode(encoding, text);
  if (!result.available) {
    Fail(file_name, "this machine does not know the encoding " + std::string(EncodingName(encoding)));
  }
  if (result.taken < text.size()) {
    const std::size_t position = CharacterCount(text.substr(0, result.taken)) + 1;
    Fail(file_name, std::string(EncodingName(encoding)) + " cannot hold " +
                        ShownCharacter(FirstCharacters(text.substr(result.taken), 1)) + " at character " +
                        std::to_string(position) + " of the text");
  }
  return std::move(result.bytes);
}

class FileStream : public TextStream {
 public:
  FileStream(std::string_view file_name, TextEncoding encoding)
      : name_(file_name), encoding_(encoding), file_(OpenForWriting(MachineName(file_name))) {
    if (!file_) FailWithErrno(name_, errno);
  }

  void WriteLine(std::string_view text) override {
    if (!file_) Fail(name_, "it is closed");
    const std::string bytes = EncodeOrFail(encoding_, name_, text) + "\r\n";
    if (std::fwrite(bytes.data(), 1, bytes.size(), file_.get()) != bytes.size()) FailWithErrno(name_, errno);
  }

  void Close() override {
    if (!file_) return;
    // What is still buffered may fail to be written as late as here.
    if (std::fclose(file_.release()) != 0) FailWithErrno(name_, errno);
  }

 private:
  struct Closer {
    void operator()(std::FILE* file) const { (void)std::fclose(file); }
  };

  std::string name_;
  TextEncoding encoding_;
  std::unique_ptr<std::FILE, Closer> file_;
};

}  // namespace

void ReferenceFileSystem::RequireEncodable(std::string_view file_name, std::string_view text) {
  (void)EncodeOrFail(encoding_, file_name, text);
}

bool ReferenceFileSystem::FileExists(std::string_view file_name) {
  std::error_code error;
  const auto status = std::filesystem::status(MachineName(file_name), error);
  if (status.type() == std::filesystem::file_type::none) Fail(file_name, error.message());
  // A device or a pipe is no file to be replaced: deleting it would take it from the machine.
  return std::filesystem::is_regular_file(status);
}

void ReferenceFileSystem::DeleteFile(std::string_view file_name) {
  const auto name = MachineName(file_name);
  if (IsProtected(name)) Fail(file_name, "it is protected against writing");
  if (!Delete(name)) FailWithErrno(file_name, errno);
}

std::unique_ptr<TextStream> ReferenceFileSystem::CreateTextFile(std::string_view file_name) {
  return std::make_unique<FileStream>(file_name, encoding_);
}

}  // namespace talm_flow::host
