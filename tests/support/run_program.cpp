#include "support/run_program.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace talm_flow::test {
namespace {

/// In the child: standard streams from and to files, then the program in the child's place.
[[noreturn]] void BecomeProgram(const TemporaryFolder& folder, const TemporaryFolder& streams, char* const* arguments,
                                char* const* environment) {
  const auto redirect = [&](const char* name, int flags, int to) {
    const int file = open(streams.File(name).c_str(), flags, 0600);
    if (file < 0 || dup2(file, to) < 0) _exit(127);
  };
  redirect("in", O_RDONLY, STDIN_FILENO);
  redirect("out", O_WRONLY | O_CREAT, STDOUT_FILENO);
  redirect("err", O_WRONLY | O_CREAT, STDERR_FILENO);
  if (chdir(folder.path().c_str()) != 0) _exit(127);
  execve(arguments[0], arguments, environment);
  _exit(127);
}

std::vector<char*> Pointers(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (auto& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

std::vector<std::string> Environment(const std::vector<std::string>& changes) {
  std::vector<std::string> result = changes;
  for (char** entry = environ; *entry != nullptr; ++entry) {
    const std::string_view text = *entry;
    const auto name = text.substr(0, text.find('=') + 1);
    bool replaced = false;
    for (const auto& change : changes) replaced = replaced || std::string_view(change).starts_with(name);
    if (!replaced) result.emplace_back(text);
  }
  return result;
}

}  // namespace

ProgramResult RunProgram(const std::string& program, const std::vector<std::string>& arguments,
                         const TemporaryFolder& folder, std::string_view input,
                         const std::vector<std::string>& environment) {
  const TemporaryFolder streams;
  WriteFile(streams.File("in"), input);
  std::vector<std::string> words = {program};
  words.insert(words.end(), arguments.begin(), arguments.end());
  auto variables = Environment(environment);
  const auto word_pointers = Pointers(words);
  const auto variable_pointers = Pointers(variables);
  const pid_t child = fork();
  if (child < 0) throw std::runtime_error("no process can be made");
  if (child == 0) BecomeProgram(folder, streams, word_pointers.data(), variable_pointers.data());
  int status = 0;
  while (waitpid(child, &status, 0) < 0) {
    if (errno != EINTR) throw std::runtime_error("the process is lost");
  }
  return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status), ReadFile(streams.File("out")),
          ReadFile(streams.File("err"))};
}

std::string ReadFile(const std::filesystem::path& path) {
  std::ifstream stream(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

void WriteFile(const std::filesystem::path& path, std::string_view bytes) {
  std::ofstream stream(path, std::ios::binary);
  stream << bytes;
  stream.close();
  if (!stream) throw std::runtime_error("cannot write " + path.string());
}

}  // namespace talm_flow::test
