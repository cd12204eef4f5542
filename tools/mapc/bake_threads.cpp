#include "mapc/bake_threads.h"

#include <algorithm>
#include <atomic>
#include <thread>
#include <vector>

int ThreadCount() {
    return static_cast<int>(std::max(1U, std::thread::hardware_concurrency()));
}

void ForAll(size_t count, int threads, const std::function<void(size_t)>& work,
            const std::function<void(double)>& progress) {
    constexpr size_t PORTION = 32;
    std::atomic<size_t> next{0};
    const auto takePortions = [&](bool tells) {
        for (size_t begin = next.fetch_add(PORTION); begin < count; begin = next.fetch_add(PORTION)) {
            for (size_t i = begin; i < std::min(begin + PORTION, count); ++i)
                work(i);
            if (tells && progress) progress(static_cast<double>(begin) / static_cast<double>(count));
        }
    };
    std::vector<std::jthread> others;
    for (int i = 1; i < threads; ++i)
        others.emplace_back(takePortions, false);
    takePortions(true);
    others.clear();  // waits for them
    if (progress) progress(1);
}
