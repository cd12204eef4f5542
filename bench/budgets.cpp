// budgets [LEVEL] [ROUNDS]: what a player feels besides whole frames, compared with the floor of one full frame.
// Measures how long a level loads, the memory of the process, the character's share of a frame, and a move among many
// contacts.

#include "app/app_tables.h"
#include "app/host_game.h"
#include "camera/camera.h"
#include "character/actor.h"
#include "game_picture/game_picture.h"
#include "math/vector_operators.h"
#include "player/player.h"
#include "raster_floor.h"
#include "records/character_records.h"
#include "render/render_tables.h"
#include "rounds.h"
#include "world/collision.h"
#include "world/world_tables.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <unistd.h>

namespace {

constexpr double LOAD_BUDGET_MS = 300;
constexpr double MEMORY_BUDGET_MIB = 64;
constexpr double CHARACTER_BUDGET_US = 300;
constexpr double MOVE_BUDGET_US = 50;  // most microseconds of a move among 150 contacts
constexpr int MOVE_CONTACTS = 150;

int32_t Level = 3;
int RoundCount = 15;

double ResidentMib() {
    long pages = 0, resident = 0;
    std::ifstream("/proc/self/statm") >> pages >> resident;
    return static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE)) / (1 << 20);
}

void StartAndTime() {
    const auto start = std::chrono::steady_clock::now();
    StartLevel(Level, false);
    const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - start;
    std::printf("Level %d: game started and level loaded in %.1f ms (budget %.0f), %.1f MiB resident (budget %.0f)\n",
                Level, took.count(), LOAD_BUDGET_MS, ResidentMib(), MEMORY_BUDGET_MIB);
}

// The place where a sphere as large as a move's query touches the most polygons.
IntVec3 BusiestPlace(int32_t radius) {
    IntVec3 best{};
    int16_t most = -1;
    for (uint32_t leaf = 0; leaf < WorldGeometry.leafCount; ++leaf) {
        const Vec3 centre = WorldGeometry.leaves[leaf].centre;
        const IntVec3 place = {static_cast<int32_t>(centre.x), static_cast<int32_t>(centre.y),
                               static_cast<int32_t>(centre.z)};
        if (WorldSphereContacts(place.x, place.y, place.z, radius) > most) {
            most = ContactCount;
            best = place;
        }
    }
    return best;
}

int Measure(HINSTANCE, HINSTANCE, char*, int) {
    StartAndTime();
    for (int i = 0; i < 100; ++i)
        UpdateCamera();  // brings the camera behind the player
    Rounds rounds;
    const uint8_t* texels = TextureImage + TextureRecords()[0].texelOffset;
    const size_t floor = rounds.Add("floor, a frame of rows", 1, [texels] { raster_floor::FloorFrame(texels, 320); });
    const size_t world = rounds.Add("frame without the character", 1, [] { DrawFrame(false); });
    const size_t both = rounds.Add("frame with the character", 1, [] { DrawFrame(true); });
    const IntVec3 place = BusiestPlace(150);
    WorldSphereContacts(place.x, place.y, place.z, 150);
    const int contacts = ContactCount;
    static Actor mover;
    static StateRecord state{};
    state.slideFactor = 0.5f;
    mover.states = &state;
    const size_t move = rounds.Add("move among " + std::to_string(contacts) + " contacts", 1, [place] {
        mover.position = {static_cast<float>(place.x), static_cast<float>(place.y) + 93.0f,
                          static_cast<float>(place.z)};
        mover.velocity = {5.0f, -6.0f, 8.0f};
        MoveAgainstWorld(mover);
    });
    rounds.Run(RoundCount);
    rounds.Print(floor);
    for (const size_t work : {world, both, move})
        rounds.PrintAgainst(work, floor);
    std::printf("character's share: %.0f us (budget %.0f)\n", (rounds.Median(both) - rounds.Median(world)) / 1000,
                CHARACTER_BUDGET_US);
    std::printf("move, scaled to %d contacts: %.1f us (budget %.0f)\n", MOVE_CONTACTS,
                rounds.Median(move) / 1000 * MOVE_CONTACTS / std::max(1, contacts), MOVE_BUDGET_US);
    return 0;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    static char headless[] = "--headless";
    char* hostArguments[] = {arguments[0], headless};
    if (argumentCount > 1) Level = std::atoi(arguments[1]);
    if (argumentCount > 2) RoundCount = std::atoi(arguments[2]);
    return HostMain(2, hostArguments, GameForHost, Measure);
}
