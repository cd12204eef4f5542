// The map compiler on generated maps of about 800 and 3,300 brushes. What to look at: the larger one's time, and how
// many times the smaller one's it is. With the name of a file it only writes the smaller map there, for
// bench/watch_loop.sh.
#include "formats/files.h"
#include "generated_map.h"
#include "rounds.h"

#include <cstdio>

namespace {

size_t AddMap(Rounds& rounds, const MapBuilder& builder) {
    const int brushes = BrushCount(builder);
    const std::string text = builder.Text();
    return rounds.Add(std::to_string(brushes) + " brushes", 1, [text] {
        CompileMap(ParseMap(text, "generated"), {TestMaterials()}, 0, {LightQuality::None, 1, {}});
    });
}

}  // namespace

int main(int argc, char** argv) {
    constexpr int SMALL = 5;  // rooms a side
    if (argc == 2) {
        const std::string text = GeneratedRooms(SMALL).Text();
        WriteWholeFile(argv[1], {text.begin(), text.end()});
        return 0;
    }
    Rounds rounds;
    const size_t small = AddMap(rounds, GeneratedRooms(SMALL).Key("subdivide", "0"));
    const size_t large = AddMap(rounds, GeneratedRooms(10).Key("subdivide", "0"));
    rounds.Run(7);
    rounds.Print(small);
    rounds.Print(large);
    std::printf("%.0f ms and %.0f ms: %.1f times as long\n", rounds.Median(small) / 1e6, rounds.Median(large) / 1e6,
                rounds.Median(large) / rounds.Median(small));
    return 0;
}
