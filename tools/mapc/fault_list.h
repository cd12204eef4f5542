// The faults of a map, collected so that one run tells all of them.
#pragma once

#include "formats/error.h"

#include <string>
#include <vector>

class FaultList {
public:
    static constexpr int AT_THE_END = 1 << 30;  // the line of a fault of the map as a whole

    void Add(int line, const std::string& text) { list_.push_back({line, text}); }
    bool Any() const { return !list_.empty(); }
    // In the order of their lines, one a line of text. More than 20 that differ in numbers and names only are counted.
    std::string Text() const;
    void Throw() const;  // ContentError with the text, if there is any fault

private:
    struct Fault {
        int line;
        std::string text;
    };
    std::vector<Fault> list_;
};

// Runs the action; what it refuses is added to the faults. Without faults it is thrown at once.
template <class Action>
void Collect(FaultList* faults, int line, Action action) {
    try {
        action();
    } catch (const ContentError& error) {
        if (!faults) throw;
        faults->Add(line, error.what());
    }
}
