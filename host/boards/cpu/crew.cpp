#include "boards/cpu/crew.h"

Crew::Crew(unsigned helpers) {
    for (unsigned i = 0; i < helpers; ++i)
        threads_.emplace_back([this] { Help(); });
}

Crew::~Crew() {
    {
        const std::lock_guard lock(mutex_);
        ends_ = true;
    }
    wake_.notify_all();
    for (std::thread& thread : threads_)
        thread.join();
}

void Crew::Run(int parts, const std::function<void(int)>& work) {
    {
        const std::lock_guard lock(mutex_);
        work_ = &work;
        parts_ = parts;
        next_ = 0;
        helping_ = static_cast<unsigned>(threads_.size());
        ++round_;
    }
    wake_.notify_all();
    TakeParts();
    std::unique_lock lock(mutex_);
    done_.wait(lock, [this] { return helping_ == 0; });
}

void Crew::Help() {
    unsigned helped = 0;
    std::unique_lock lock(mutex_);
    while (true) {
        wake_.wait(lock, [&] { return ends_ || round_ != helped; });
        if (ends_) return;
        helped = round_;
        lock.unlock();
        TakeParts();
        lock.lock();
        if (--helping_ == 0) done_.notify_one();
    }
}

void Crew::TakeParts() {
    for (int part = next_++; part < parts_; part = next_++)
        (*work_)(part);
}
