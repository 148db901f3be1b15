#ifndef TEST_EVENTUALLY_H
#define TEST_EVENTUALLY_H

#include <chrono>
#include <functional>
#include <thread>

// Polls the condition until it holds, for ten seconds at most.
inline bool eventually(const std::function<bool()>& condition)
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}

#endif
