#include "rounds.h"

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <utility>

namespace {

constexpr double SAMPLE_SECONDS = 0.004;

double Now(clockid_t clock) {
    timespec now;
    clock_gettime(clock, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

double Quantile(std::vector<double> samples, double part) {
    const auto at = samples.begin() + static_cast<ptrdiff_t>(part * static_cast<double>(samples.size() - 1));
    std::nth_element(samples.begin(), at, samples.end());
    return *at;
}

}  // namespace

double Rounds::Seconds(const std::function<void()>& work, int repeats) const {
    const clockid_t id = clock == Clock::Thread ? CLOCK_THREAD_CPUTIME_ID : CLOCK_MONOTONIC;
    const double start = Now(id);
    for (int i = 0; i < repeats; ++i)
        work();
    return Now(id) - start;
}

size_t Rounds::Add(std::string name, double units, std::function<void()> work) {
    int repeats = 1;
    while (Seconds(work, repeats) < SAMPLE_SECONDS / 2)
        repeats *= 2;
    works.push_back({std::move(name), units, std::move(work), repeats, {}});
    return works.size() - 1;
}

void Rounds::Run(int rounds) {
    for (int i = 0; i < rounds; ++i) {
        for (Work& work : works)
            work.samples.push_back(Seconds(work.run, work.repeats) * 1e9 / (work.units * work.repeats));
    }
}

double Rounds::Median(size_t work) const {
    return Quantile(works[work].samples, 0.5);
}

double Rounds::Spread(size_t work) const {
    return (Quantile(works[work].samples, 0.75) - Quantile(works[work].samples, 0.25)) / Median(work);
}

void Rounds::PrintTime(size_t work) const {
    std::printf("%-40s %8.3f ns  spread %4.1f %%", Name(work).c_str(), Median(work), 100 * Spread(work));
}

void Rounds::Print(size_t work) const {
    PrintTime(work);
    std::printf("\n");
}

void Rounds::PrintAgainst(size_t work, size_t floor) const {
    PrintTime(work);
    std::printf("  %5.2f x %s\n", Ratio(work, floor), Name(floor).c_str());
}

void Rounds::PrintAgainst(size_t work, size_t floor, double target) const {
    PrintTime(work);
    std::printf("  %5.2f x %s (target %.2f%s)\n", Ratio(work, floor), Name(floor).c_str(), target,
                Ratio(work, floor) <= target ? "" : ", MISSED");
}
