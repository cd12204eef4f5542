// A winding: the corners of a convex polygon, counter-clockwise as seen from the front of its plane.
#pragma once

#include "mapc/geometry.h"

#include <vector>

using Winding = std::vector<Vec3>;

constexpr double MAP_EXTENT = 32768;    // largest coordinate a map may use
constexpr double SPLIT_EPSILON = 0.01;  // points nearer than this to a plane count as lying in it

enum class PlaneSide { Front, Back, On, Both };

Winding BaseWinding(const Plane& plane);  // a square on the plane that reaches beyond every map
// On which side the points lie. Points nearer than epsilon count for neither side.
PlaneSide ClassifyWinding(const Winding& winding, const Plane& plane, double epsilon = SPLIT_EPSILON);
// The parts in front of and behind the plane, empty when there is none. A winding in the plane is in neither.
void SplitWinding(const Winding& winding, const Plane& plane, Winding& front, Winding& back,
                  double epsilon = SPLIT_EPSILON);
void KeepBack(Winding& winding, const Plane& plane, double epsilon = SPLIT_EPSILON);

Vec3 WindingNormal(const Winding& winding);  // length = twice the area
Vec3 WindingCentre(const Winding& winding);  // mean of the corners
Box WindingBox(const Winding& winding);
double WindingArea(const Winding& winding);
double WindingWidth(const Winding& winding);   // across its narrowest side: of the thinnest strip that holds it
void RemoveStraightCorners(Winding& winding);  // corners on the line between their neighbours, and repeated ones
