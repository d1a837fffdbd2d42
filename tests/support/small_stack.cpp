#include "support/small_stack.h"

#include <pthread.h>

#include <cstddef>
#include <exception>
#include <system_error>

namespace talm_flow::test {

namespace {

constexpr std::size_t kStackSize = std::size_t{256} * 1024;

struct Job {
  const std::function<void()>& work;
  std::exception_ptr thrown;
};

void* RunJob(void* argument) {
  auto& job = *static_cast<Job*>(argument);
  try {
    job.work();
  } catch (...) {
    job.thrown = std::current_exception();
  }
  return nullptr;
}

void Require(int result) {
  if (result != 0) throw std::system_error(result, std::generic_category());
}

}  // namespace

void RunOnSmallStack(const std::function<void()>& work) {
  pthread_attr_t attributes;
  Require(pthread_attr_init(&attributes));
  Require(pthread_attr_setstacksize(&attributes, kStackSize));
  Job job{work, nullptr};
  pthread_t thread{};
  const int created = pthread_create(&thread, &attributes, RunJob, &job);
  pthread_attr_destroy(&attributes);
  Require(created);
  Require(pthread_join(thread, nullptr));
  if (job.thrown) std::rethrow_exception(job.thrown);
}

}  // namespace talm_flow::test
