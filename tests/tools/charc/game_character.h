// A compiled character as the game holds it: its files, loaded, posed and skinned by the game itself.
#pragma once

#include "support/pool_fixture.h"
#include "support/tiny_world.h"

#include "records/actor_record.h"
#include "records/character_records.h"

class GameCharacter : public PoolFixture {
protected:
    GameCharacter();

    void Load(const std::filesystem::path& folder);  // the folder of the character's files
    // Places in the frame of the actor's position; `time` as keys have it.
    std::vector<Vec3> PointsAt(const std::string& clip, uint32_t time);

    std::filesystem::path folder_;
    MeshRecord mesh_{};

private:
    TinyWorld world_;
    Actor actor_{};
    StateRecord state_{};
    AnimRecord animation_{};
    AnimFileEntry entry_{"", &animation_};
};
