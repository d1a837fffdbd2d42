#include "support/process.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <stdexcept>

namespace talm_flow::test {

Process::Process(const std::string& program, std::vector<std::string> arguments, bool quiet) {
  arguments.insert(arguments.begin(), program);
  std::vector<char*> words;
  for (auto& argument : arguments) words.push_back(argument.data());
  words.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  if (quiet) posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  const int error = posix_spawn(&id_, program.c_str(), &actions, nullptr, words.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0) {
    id_ = -1;
    throw std::runtime_error("cannot start " + program);
  }
}

Process::~Process() {
  if (id_ < 0) return;
  Kill();
  (void)Wait();
}

void Process::Kill() const {
  if (id_ > 0) kill(id_, SIGKILL);
}

int Process::Wait() {
  int status = 0;
  while (waitpid(id_, &status, 0) < 0) {
    if (errno != EINTR) throw std::runtime_error("the process is lost");
  }
  id_ = -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

std::string NeighbourPath(const std::string& name) {
  return (std::filesystem::read_symlink("/proc/self/exe").parent_path() / name).string();
}

}  // namespace talm_flow::test
