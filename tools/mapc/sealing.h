// Finds where the player can get to. The space around the solid brushes is divided into leaves, portals join the empty
// ones, and a flood from the player's start finds those that belong to the level. A level is sealed: a flood that gets
// out of it is a leak.
#pragma once

#include "mapc/bsp_tree.h"

class SealedSpace {
public:
    // sealing: Surface::sealing of the brushes. start must not lie in a solid brush. scale: engine units per map unit.
    // Slits narrower than 0.2 engine units, as brushes off the grid leave between them, are no leaks.
    SealedSpace(std::vector<Face> sealing, Brushes& brushes, const Vec3& start, double scale);

    // Ways from the start to the outside, one through each hole, the widest first; empty when the level is sealed.
    const std::vector<std::vector<Vec3>>& LeakPaths() const { return leakPaths_; }
    bool Reaches(const Vec3& p) const { return leaves_[LeafAt(tree_, planes_, p)].flooded; }
    bool IsSeen(const Face& face) const;  // whether some of its front borders on the flooded space

private:
    struct Portal {
        int leaf[2];  // in front of and behind its plane
        Vec3 centre;
        double area;
        Box box;
        bool isSlit;
    };
    struct LeafSpace {
        bool solid = false;
        bool flooded = false;
        bool outside = false;  // borders on the end of the map
        std::vector<int> portals;
        Vec3 centreSum;  // sum of the centres of all portals, solid or not
        int centreCount = 0;
        int cameFrom = -1;  // portal
    };

    void MakePortals(int child, std::vector<Plane>& hull);
    void MakeOuterPortals(const Box& bounds);
    void FilterDown(int child, Winding winding, std::vector<std::pair<int, Winding>>& pieces) const;
    void Join(int front, int back, const Winding& winding);
    void MarkSolid(const Brushes& brushes);
    int Flood(const Vec3& start, bool throughSlits, const std::vector<char>& closed = {});
    void FindLeaks(const Vec3& start, int firstOutside);
    std::vector<Vec3> PathTo(int leaf, const Vec3& start) const;
    std::vector<Vec3> Straightened(const std::vector<Vec3>& path) const;
    bool IsOpen(int child, const Vec3& from, const Vec3& to) const;  // no solid leaf between two points
    bool SeesFlood(int child, const Winding& winding, int plane, double areaMin) const;

    const std::string& file_;
    const double slit_;  // map units
    PlaneTable& planes_;
    Tree tree_;
    std::vector<LeafSpace> leaves_;
    std::vector<Portal> portals_;
    std::vector<std::vector<Vec3>> leakPaths_;
};
