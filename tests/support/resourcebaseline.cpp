#include "resourcebaseline.h"

#include <gtest/gtest.h>

#include <dirent.h>

#include <chrono>
#include <string>
#include <thread>

namespace {

int countEntries(const char* path, int own)
{
    int count = 0;
    if (DIR* dir = opendir(path)) {
        while (dirent* entry = readdir(dir)) {
            if (entry->d_name[0] != '.')
                ++count;
        }
        closedir(dir);
    }
    return count - own;
}

} // namespace

ResourceBaseline::ResourceBaseline()
{
    // A sanitizer's runtime starts its own helper thread with the first
    // thread the process creates; let it exist before counting.
    std::thread([] {}).join();
    m_descriptors = openDescriptors();
    // A joined thread can still be listed for a moment while the kernel
    // finishes its exit: count until two reads agree.
    m_threads = threads();
    for (int i = 0; i < 100; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        const int now = threads();
        if (now == m_threads)
            break;
        m_threads = now;
    }
}

int ResourceBaseline::openDescriptors()
{
    return countEntries("/proc/self/fd", 1); // the DIR's own descriptor
}

int ResourceBaseline::threads()
{
    return countEntries("/proc/self/task", 0);
}

void ResourceBaseline::expectNothingLeaked() const
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    while ((openDescriptors() != m_descriptors || threads() != m_threads)
           && std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_EQ(m_descriptors, openDescriptors()) << "open descriptors";
    EXPECT_EQ(m_threads, threads()) << "threads";
}
