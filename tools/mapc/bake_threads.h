// Work spread over several threads.
#pragma once

#include <cstddef>
#include <functional>

int ThreadCount();  // the number of threads that the machine runs at once

// Calls work(i) for each i below count, in any order, from `threads` threads. progress is told now and then, by the
// calling thread only, which part of it is done. work must not throw.
void ForAll(size_t count, int threads, const std::function<void(size_t)>& work,
            const std::function<void(double)>& progress = {});
