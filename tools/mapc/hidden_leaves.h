// Hidden faces in leaves of their own. When the game draws a leaf that the player is in, it draws the leaf over him if
// he is behind the plane that is nearest to him among the leaf's faces whose front the eye sees. To that rule hidden
// faces are faces like any others: beside a skirt whose plane is nearer to him than the ground's, the ground would hide
// his legs.
#pragma once

#include "mapc/hidden_faces.h"

// hidden: the faces that are not in the tree yet; their leaves change. scale: engine units per map unit.
void SetHiddenApart(Tree& tree, std::vector<LeafFace>& hidden, Brushes& brushes, double scale);
