#include "session/benchmark.h"

#include "host/probe.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <utility>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

constexpr const char* STAGE_NAMES[] = {"character", "lights", "sky", "world", "present"};
constexpr size_t STAGE_COUNT = std::size(STAGE_NAMES);

bool isRunning = false;
std::vector<double> stageTimes[STAGE_COUNT];  // ms, a frame each
double frameTimes[STAGE_COUNT];               // times of the frame under way
size_t stage = STAGE_COUNT;                   // the one under way; STAGE_COUNT: none
Clock::time_point stageStart, firstFrame, lastFrame;

double Milliseconds(Clock::time_point from, Clock::time_point to) {
    return std::chrono::duration<double, std::milli>(to - from).count();
}

void EndStage(Clock::time_point now) {
    if (stage < STAGE_COUNT) frameTimes[stage] += Milliseconds(stageStart, now);
    stageStart = now;
}

double Percentile(std::vector<double>& times, size_t percent) {
    const auto place = times.begin() + static_cast<std::ptrdiff_t>((times.size() - 1) * percent / 100);
    std::nth_element(times.begin(), place, times.end());
    return *place;
}

}  // namespace

void StartBenchmark() {
    isRunning = true;
    for (std::vector<double>& times : stageTimes)
        times.clear();
}

bool Benchmarking() {
    return isRunning;
}

void HostStage(HostStageName begun) {
    if (!isRunning) return;
    const Clock::time_point now = Clock::now();
    if (stageTimes[0].empty() && begun == HostStageName::Character) firstFrame = now;
    EndStage(now);
    stage = static_cast<size_t>(begun);
}

void EndBenchmarkFrame() {
    if (!isRunning) return;
    lastFrame = Clock::now();
    EndStage(lastFrame);
    stage = STAGE_COUNT;
    for (size_t i = 0; i < STAGE_COUNT; ++i)
        stageTimes[i].push_back(std::exchange(frameTimes[i], 0.0));
}

void FinishBenchmark() {
    if (!isRunning || stageTimes[0].empty()) return;
    isRunning = false;
    const size_t frames = stageTimes[0].size();
    std::fprintf(stderr, "%zu frames, %.1f frames/s\n", frames,
                 static_cast<double>(frames) * 1000 / Milliseconds(firstFrame, lastFrame));
    std::fprintf(stderr, "%-10s %10s %10s\n", "stage", "median ms", "99 % ms");
    for (size_t i = 0; i < STAGE_COUNT; ++i)
        std::fprintf(stderr, "%-10s %10.3f %10.3f\n", STAGE_NAMES[i], Percentile(stageTimes[i], 50),
                     Percentile(stageTimes[i], 99));
}
