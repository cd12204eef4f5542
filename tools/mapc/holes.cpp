#include "mapc/holes.h"

#include <numeric>

namespace {

constexpr double TOUCH = 0.1;  // map units between the boxes of openings of one hole

class MinimumCut {
public:
    MinimumCut(const std::vector<Opening>& openings, const std::vector<char>& isOutside, int start)
        : openings_(openings), isOutside_(isOutside), start_(start), edges_(isOutside.size()) {
        for (const Opening& opening : openings) {
            for (const int side : {0, 1}) {
                edges_[static_cast<size_t>(opening.space[side])].push_back(static_cast<int>(room_.size()));
                room_.push_back(opening.area * opening.area);
            }
        }
        while (FindLevels() >= 0)
            Fill();
    }

    // Whether the start's side of the cut has the space.
    bool IsInside(int space) const { return level_[static_cast<size_t>(space)] >= 0; }

private:
    // An edge 2n leads through opening n from its first space, 2n + 1 from its second; what flows through one makes
    // room in the other.
    int TargetOf(int edge) const { return openings_[static_cast<size_t>(edge / 2)].space[edge % 2 == 0 ? 1 : 0]; }
    bool HasRoom(int edge) const { return room_[static_cast<size_t>(edge)] > 0; }

    // The number of steps to each space through edges with room. Returns a space outside that is reached, or -1.
    int FindLevels() {
        level_.assign(edges_.size(), -1);
        next_.assign(edges_.size(), 0);
        level_[static_cast<size_t>(start_)] = 0;
        std::vector<int> queue{start_};
        int outside = -1;
        for (size_t at = 0; at < queue.size(); ++at) {
            const auto space = static_cast<size_t>(queue[at]);
            if (isOutside_[space] && outside < 0) outside = queue[at];
            for (const int edge : edges_[space]) {
                const auto target = static_cast<size_t>(TargetOf(edge));
                if (level_[target] >= 0 || !HasRoom(edge)) continue;
                level_[target] = level_[space] + 1;
                queue.push_back(static_cast<int>(target));
            }
        }
        return outside;
    }

    // Sends as much as possible outside along ways on which each step leads to the next level.
    void Fill() {
        std::vector<int> way;
        for (int space = start_;;) {
            if (isOutside_[static_cast<size_t>(space)]) {
                Send(way);
                way.clear();
                space = start_;
                continue;
            }
            const int edge = EdgeOn(space);
            if (edge >= 0) {
                way.push_back(edge);
                space = TargetOf(edge);
                continue;
            }
            if (way.empty()) return;
            space = TargetOf(way.back() ^ 1);
            ++next_[static_cast<size_t>(space)];
            way.pop_back();
        }
    }

    int EdgeOn(int space) {
        const std::vector<int>& edges = edges_[static_cast<size_t>(space)];
        for (size_t& at = next_[static_cast<size_t>(space)]; at < edges.size(); ++at) {
            const auto target = static_cast<size_t>(TargetOf(edges[at]));
            if (HasRoom(edges[at]) && level_[target] == level_[static_cast<size_t>(space)] + 1) return edges[at];
        }
        return -1;
    }

    void Send(const std::vector<int>& way) {
        double least = room_[static_cast<size_t>(way[0])];
        for (const int edge : way)
            least = std::min(least, room_[static_cast<size_t>(edge)]);
        for (const int edge : way) {
            room_[static_cast<size_t>(edge)] -= least;
            room_[static_cast<size_t>(edge ^ 1)] += least;
        }
    }

    const std::vector<Opening>& openings_;
    const std::vector<char>& isOutside_;
    const int start_;
    std::vector<std::vector<int>> edges_;  // by the space from which they lead
    std::vector<double> room_;             // for each edge, what may still flow through it
    std::vector<int> level_;               // of each space; -1: not reached
    std::vector<size_t> next_;             // of each space: the first of its edges that may still lead on
};

// Openings whose boxes touch, directly or through others, together.
std::vector<std::vector<int>> Grouped(const std::vector<Opening>& openings, const std::vector<int>& cut) {
    std::vector<std::vector<int>> groups;
    for (const int number : cut) {
        std::vector<int> joined{number};
        std::erase_if(groups, [&](const std::vector<int>& group) {
            const bool touches = std::any_of(group.begin(), group.end(), [&](int other) {
                return openings[static_cast<size_t>(number)].box.Touches(openings[static_cast<size_t>(other)].box,
                                                                         TOUCH);
            });
            if (touches) joined.insert(joined.end(), group.begin(), group.end());
            return touches;
        });
        groups.push_back(joined);
    }
    return groups;
}

}  // namespace

std::vector<std::vector<int>> FindHoles(const std::vector<Opening>& openings, const std::vector<char>& isOutside,
                                        int start) {
    if (isOutside[static_cast<size_t>(start)]) return {};
    const MinimumCut minimum(openings, isOutside, start);
    std::vector<int> cut;
    for (size_t i = 0; i < openings.size(); ++i) {
        if (minimum.IsInside(openings[i].space[0]) != minimum.IsInside(openings[i].space[1]))
            cut.push_back(static_cast<int>(i));
    }
    std::vector<std::vector<int>> holes = Grouped(openings, cut);
    const auto areaOf = [&](const std::vector<int>& hole) {
        return std::accumulate(hole.begin(), hole.end(), 0.0, [&](double sum, int number) {
            return sum + openings[static_cast<size_t>(number)].area;
        });
    };
    std::stable_sort(holes.begin(), holes.end(), [&](const auto& a, const auto& b) { return areaOf(a) > areaOf(b); });
    return holes;
}
