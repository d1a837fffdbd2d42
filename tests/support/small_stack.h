#pragma once

#include <functional>

namespace talm_flow::test {

/// Runs `work` on a thread with a stack of 256 KiB and waits for it. What it throws is thrown here.
void RunOnSmallStack(const std::function<void()>& work);

}  // namespace talm_flow::test
