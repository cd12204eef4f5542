#include "interfaces/glide_frame.h"

#include "boards/boards.h"
#include "input/session_hooks.h"

GlideState Glide;

namespace {

constexpr size_t VERTICES_MAX = size_t{1} << 18;  // vertices that a collected frame holds at most

BoardFrame frame;
bool stateIsNew = true;

void UpdateState() {
    if (!stateIsNew) return;
    stateIsNew = false;
    Glide.state.testsDepth = Glide.hasDepthBuffer && Glide.depthFunctionIsLess;
    Glide.state.writesDepth = Glide.hasDepthBuffer && Glide.depthMask;
    if (frame.states.empty() || frame.states.back() != Glide.state) frame.states.push_back(Glide.state);
}

}  // namespace

void AddVertices(BoardAction action, std::initializer_list<BoardVertex> vertices) {
    UpdateState();
    const auto state = static_cast<uint32_t>(frame.states.size()) - 1;
    if (frame.runs.empty() || frame.runs.back().action != action || frame.runs.back().state != state)
        frame.runs.push_back({action, static_cast<uint32_t>(frame.vertices.size()), 0, state, 0});
    frame.vertices.insert(frame.vertices.end(), vertices);
    frame.runs.back().count += static_cast<uint32_t>(vertices.size());
    if (frame.vertices.size() >= VERTICES_MAX) FlushFrame();
}

void AddClear(BoardAction action, uint32_t value) {
    frame.runs.push_back({action, 0, 0, 0, value});
}

void StateChanged() {
    stateIsNew = true;
}

void FlushFrame() {
    if (!frame.runs.empty() && Session.wantsPicture()) CurrentBoard->draw(frame);
    frame.vertices.clear();
    frame.states.clear();
    frame.runs.clear();
    StateChanged();
}
