#include "component/class_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <optional>
#include <system_error>
#include <utility>

namespace talm_flow::component {
namespace {

constexpr std::string_view kHead = "talm_flow class 1\n";
constexpr std::size_t kMostName = 200;
constexpr std::size_t kMostBytes = 16384;

[[noreturn]] void Fail(TalmResult code, const std::filesystem::path& path, std::string_view reason) {
  throw RegistrationError{code, "the registration \"" + path.string() + "\": " + std::string(reason)};
}

[[noreturn]] void FailWithErrno(TalmResult code, const std::filesystem::path& path, int error) {
  Fail(code, path, std::generic_category().message(error));
}

class File {
 public:
  explicit File(int descriptor) : descriptor_(descriptor) {}
  File(const File&) = delete;
  File& operator=(const File&) = delete;
  ~File() {
    if (descriptor_ >= 0) (void)::close(descriptor_);
  }
  [[nodiscard]] int get() const { return descriptor_; }
  /// @returns whether all that was written is stored.
  [[nodiscard]] bool Finish() { return ::fsync(descriptor_) == 0 && ::close(std::exchange(descriptor_, -1)) == 0; }

 private:
  int descriptor_;
};

std::filesystem::path PathOf(const std::filesystem::path& folder, std::string_view name) {
  return folder / (std::string(name) + ".class");
}

/// An absolute path of the environment; anything else counts as not set.
std::optional<std::filesystem::path> AbsolutePath(const char* variable) {
  const char* const value = std::getenv(variable);
  if (value == nullptr || value[0] != '/') return std::nullopt;
  return value;
}

std::string ReadAll(const File& file, const std::filesystem::path& path) {
  std::string bytes;
  std::array<char, 4096> buffer{};
  for (;;) {
    const auto count = ::read(file.get(), buffer.data(), buffer.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) FailWithErrno(TALM_CANNOT_READ_REGISTRATION, path, errno);
    if (count == 0) return bytes;
    bytes.append(buffer.data(), static_cast<std::size_t>(count));
    if (bytes.size() > kMostBytes) Fail(TALM_BAD_REGISTRATION, path, "it is too large");
  }
}

void RequireTrusted(const File& file, const std::filesystem::path& path) {
  struct stat status {};
  if (::fstat(file.get(), &status) != 0) FailWithErrno(TALM_CANNOT_READ_REGISTRATION, path, errno);
  if (!S_ISREG(status.st_mode)) Fail(TALM_BAD_REGISTRATION, path, "it is no regular file");
  if (status.st_uid != ::geteuid() && status.st_uid != 0) {
    Fail(TALM_BAD_REGISTRATION, path, "it belongs to another user");
  }
  if ((status.st_mode & (S_IWGRP | S_IWOTH)) != 0) Fail(TALM_BAD_REGISTRATION, path, "others may write it");
}

/// Takes "key=value" and its line break from the front.
std::optional<std::string_view> TakeLine(std::string_view& rest, std::string_view key) {
  const auto end = rest.find('\n');
  if (end == std::string_view::npos || !rest.starts_with(key)) return std::nullopt;
  const auto value = rest.substr(key.size(), end - key.size());
  rest.remove_prefix(end + 1);
  return value;
}

std::optional<ClassFile> Parse(std::string_view bytes) {
  if (!bytes.starts_with(kHead) || bytes.find('\0') != std::string_view::npos) return std::nullopt;
  bytes.remove_prefix(kHead.size());
  const auto name = TakeLine(bytes, "name=");
  const auto number = name ? TakeLine(bytes, "class=") : std::nullopt;
  const auto library = number ? TakeLine(bytes, "library=") : std::nullopt;
  const auto id = number ? ParseGuid(*number) : std::nullopt;
  if (!library || !library->starts_with('/') || !id || !bytes.empty()) return std::nullopt;
  return ClassFile{.name = std::string(*name), .id = *id, .library = std::string(*library)};
}

bool WriteAll(int descriptor, std::string_view bytes) {
  while (!bytes.empty()) {
    const auto count = ::write(descriptor, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

/// The names in a folder are stored with the folder.
void StoreFolder(const std::filesystem::path& folder) {
  const File file(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (file.get() < 0 || ::fsync(file.get()) != 0) FailWithErrno(TALM_CANNOT_WRITE_REGISTRATION, folder, errno);
}

}  // namespace

bool IsClassName(std::string_view name) {
  const auto is_letter = [](char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); };
  if (name.empty() || name.size() > kMostName || !is_letter(name.front())) return false;
  for (const char c : name) {
    if (!is_letter(c) && !(c >= '0' && c <= '9') && c != '_' && c != '-' && c != '.') return false;
  }
  return true;
}

std::filesystem::path ClassFolder(TalmResult failure) {
  auto data = AbsolutePath("XDG_DATA_HOME");
  if (!data) {
    const auto home = AbsolutePath("HOME");
    if (!home) {
      throw RegistrationError{failure,
                              "there is no folder for registrations: neither XDG_DATA_HOME nor HOME is an "
                              "absolute path"};
    }
    data = *home / ".local/share";
  }
  return *data / "talm_flow/classes";
}

ClassFile ReadClassFile(const std::filesystem::path& folder, std::string_view name) {
  const auto path = PathOf(folder, name);
  // A pipe must not keep the caller waiting for a writer.
  const File file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  if (file.get() < 0 && (errno == ENOENT || errno == ENOTDIR)) {
    throw RegistrationError{TALM_CLASS_NOT_REGISTERED,
                            "the class " + std::string(name) + " is not registered: there is no " + path.string()};
  }
  if (file.get() < 0) FailWithErrno(TALM_CANNOT_READ_REGISTRATION, path, errno);
  RequireTrusted(file, path);
  auto parsed = Parse(ReadAll(file, path));
  if (!parsed) Fail(TALM_BAD_REGISTRATION, path, "it is no registration file of version 1");
  if (parsed->name != name) Fail(TALM_BAD_REGISTRATION, path, "it is that of another class");
  return *std::move(parsed);
}

void WriteClassFile(const std::filesystem::path& folder, const ClassFile& file) {
  constexpr auto kFailure = TALM_CANNOT_WRITE_REGISTRATION;
  const auto path = PathOf(folder, file.name);
  if (file.library.find_first_of("\r\n") != std::string::npos)
    Fail(kFailure, path, "the library's path has line breaks");
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  if (error) Fail(kFailure, folder, error.message());
  std::string bytes(kHead);
  bytes += "name=" + file.name + "\nclass=" + GuidText(file.id) + "\nlibrary=" + file.library + '\n';
  std::string temporary = path.string() + ".XXXXXX";
  File written(::mkostemp(temporary.data(), O_CLOEXEC));
  if (written.get() < 0) FailWithErrno(kFailure, path, errno);
  const bool stored = ::fchmod(written.get(), S_IRUSR | S_IWUSR | S_IRGRP | S_IROTH) == 0 &&
                      WriteAll(written.get(), bytes) && written.Finish() &&
                      ::rename(temporary.c_str(), path.c_str()) == 0;
  if (!stored) {
    const int reason = errno;
    (void)::unlink(temporary.c_str());
    FailWithErrno(kFailure, path, reason);
  }
  StoreFolder(folder);
}

void RemoveClassFile(const std::filesystem::path& folder, std::string_view name) {
  const auto path = PathOf(folder, name);
  if (::unlink(path.c_str()) != 0) FailWithErrno(TALM_CANNOT_WRITE_REGISTRATION, path, errno);
  StoreFolder(folder);
}

}  // namespace talm_flow::component
