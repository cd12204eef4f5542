// Timing of several pieces of work against each other: in interleaved rounds, so that a change of the machine's
// speed reaches all of them, and by medians.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

class Rounds {
public:
    // The clock: time of this thread, so that other programs cost only what they push out of the caches; or of the
    // wall, for work that several threads do.
    enum class Clock { Thread, Wall };
    explicit Rounds(Clock measuredBy = Clock::Thread) : clock(measuredBy) {}

    // Adds work that treats `units` things (pixels, bytes, polygons) in a call. Returns the number of the work.
    size_t Add(std::string name, double units, std::function<void()> work);

    void Run(int rounds);

    double Median(size_t work) const;  // nanoseconds a unit
    double Spread(size_t work) const;  // width of the middle half of the rounds, as a part of the median
    const std::string& Name(size_t work) const { return works[work].name; }

    // One line: nanoseconds and spread; how many times the floor's time it takes; whether that keeps the target.
    void Print(size_t work) const;
    void PrintAgainst(size_t work, size_t floor) const;
    void PrintAgainst(size_t work, size_t floor, double target) const;

private:
    double Ratio(size_t work, size_t floor) const { return Median(work) / Median(floor); }
    double Seconds(const std::function<void()>& work, int repeats) const;
    void PrintTime(size_t work) const;

    struct Work {
        std::string name;
        double units;
        std::function<void()> run;
        int repeats;
        std::vector<double> samples;
    };
    Clock clock;
    std::vector<Work> works;
};
