// What is wrong with the data: one line a broken rule, "file: place: what is wrong: what to do about it".
#pragma once

#include <map>
#include <string>
#include <vector>

class Report {
public:
    // The place may be empty. A text that comes more than a handful of times for one file, whatever its numbers, is
    // only counted.
    void Problem(const std::string& file, const std::string& place, const std::string& wrong,
                 const std::string& remedy);
    // Tells of something that is worth a look, though the game works with it.
    void Note(const std::string& file, const std::string& place, const std::string& wrong, const std::string& remedy);
    void Problem(const std::string& line);  // a ready line, such as a ContentError's text

    bool HasProblems() const { return problems_ > 0; }
    std::vector<std::string> Lines() const;

private:
    void Add(const std::string& file, const std::string& wrong, const std::string& line);

    std::vector<std::string> lines_;
    std::map<std::string, int>
        repeats_;  // how often a file broke a rule; the key is the file and the text without its numbers
    int problems_ = 0;
};
