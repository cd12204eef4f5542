#include "mapc/hidden_leaves.h"

namespace {

constexpr double FAR_BELOW = 2048;  // engine units from the lowest corner to the plane that parts the leaves

// Everything lies in front of it, so nothing of the character is drawn with the leaf behind it.
int PlaneBelow(const Tree& tree, const std::vector<LeafFace>& hidden, Brushes& brushes, double scale) {
    Box box;
    for (const std::vector<Face>& leaf : tree.leaves) {
        for (const Face& face : leaf)
            box.Add(face.box);
    }
    for (const LeafFace& face : hidden)
        box.Add(face.face.box);
    return brushes.planes.Find({0, 0, 1}, box.min.z - FAR_BELOW / scale);
}

class LeafParter {
public:
    explicit LeafParter(Tree& tree) : tree_(tree), leaves_(tree.leaves.size()), beside_(leaves_) {}

    void Part(std::vector<LeafFace>& hidden) {
        const auto isHidden = [](const Face& face) { return face.hidden; };
        for (size_t leaf = 0; leaf < leaves_; ++leaf) {
            const std::vector<Face> faces = std::move(tree_.leaves[leaf]);
            tree_.leaves[leaf].clear();
            const bool isMixed = !std::all_of(faces.begin(), faces.end(), isHidden);
            for (const Face& face : faces)
                tree_.leaves[isMixed && face.hidden ? Beside(leaf) : leaf].push_back(face);
        }
        for (LeafFace& face : hidden) {
            const std::vector<Face>& faces = tree_.leaves[face.leaf];
            if (!std::all_of(faces.begin(), faces.end(), isHidden)) face.leaf = Beside(face.leaf);
        }
    }

    void HangLeaves(int plane) {
        const size_t nodes = tree_.nodes.size();
        for (size_t i = 0; i < nodes; ++i) {
            for (int TreeNode::*side : {&TreeNode::front, &TreeNode::back}) {
                const int child = tree_.nodes[i].*side;
                const size_t beside = child < 0 ? beside_[static_cast<size_t>(~child)] : 0;
                if (beside == 0) continue;
                tree_.nodes[i].*side = static_cast<int>(tree_.nodes.size());
                tree_.nodes.push_back({plane, child, ~static_cast<int>(beside)});
            }
        }
        if (tree_.nodes.size() > nodes) ++tree_.depth;  // at most
    }

private:
    size_t Beside(size_t leaf) {
        if (beside_[leaf] == 0) {
            beside_[leaf] = tree_.leaves.size();
            tree_.leaves.emplace_back();
        }
        return beside_[leaf];
    }

    Tree& tree_;
    size_t leaves_;
    std::vector<size_t> beside_;  // for each leaf the one of its hidden faces; 0: none
};

}  // namespace

void SetHiddenApart(Tree& tree, std::vector<LeafFace>& hidden, Brushes& brushes, double scale) {
    const int plane = PlaneBelow(tree, hidden, brushes, scale);
    LeafParter parter(tree);
    parter.Part(hidden);
    parter.HangLeaves(plane);
}
