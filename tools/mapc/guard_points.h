// Hidden faces at points that the map names, where the explorer found a fault that no guard ends.
//
// info_footing: a small level floor. A player who hangs between steep faces lands on it, and can jump again. It lies as
// far above where he hung as it must for him to stand on it clear of all that slopes: nothing that he touches after it
// takes the landing back, or keeps him from jumping.
//
// info_lid: a small level ceiling. A player whom the corner of a ledge would throw up stays where he is. It lies so
// high that he steps onto the ledge below it.
//
// info_skirt: skirts (mapc/skirts.h) behind the walls that the player touches there, for 192 units to each side. He
// does not creep through them.
//
// The origin of each is the player's position as the explorer prints it.
#pragma once

#include "mapc/hidden_faces.h"
#include "mapc/map_file.h"

// hidden: the other faces of movement alone. clip: the material to paint these with; null: the level has none.
// ContentError for a point without an origin, and for one in a level without clip.
std::vector<Face> FacesAtGuardPoints(const MapFile& map, const Tree& tree, const std::vector<LeafFace>& hidden,
                                     Brushes& brushes, const Material* clip, const MoveOptions& options);

// The places of the info_skirt entities. ContentError as above.
std::vector<Vec3> SkirtPoints(const MapFile& map, const Material* clip);
