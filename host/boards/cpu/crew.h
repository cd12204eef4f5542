// Threads that share one piece of work at a time with the thread that hands it out.
#pragma once

#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

class Crew {
public:
    explicit Crew(unsigned helpers);
    ~Crew();
    Crew(const Crew&) = delete;
    Crew& operator=(const Crew&) = delete;

    unsigned Size() const { return static_cast<unsigned>(threads_.size()) + 1; }
    // Calls work(0) .. work(parts - 1), each once, and returns when all are done.
    void Run(int parts, const std::function<void(int)>& work);

private:
    void Help();
    void TakeParts();

    std::vector<std::thread> threads_;
    std::mutex mutex_;
    std::condition_variable wake_, done_;
    const std::function<void(int)>* work_ = nullptr;
    int parts_ = 0;
    std::atomic<int> next_{0};
    unsigned round_ = 0;    // number of the piece of work handed out last
    unsigned helping_ = 0;  // threads that have not finished this round
    bool ends_ = false;
};
