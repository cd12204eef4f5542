// A map from elsewhere, converted as far as it goes, or, where the first byte is a W, a file of its textures.
#include "formats/error.h"
#include "mapconvert/convert.h"

namespace {

void ReadPictures(const uint8_t* data, size_t size) {
    const WadFile wad = ReadWad({data, data + size}, "input.wad");
    for (const WadEntry& entry : wad.pictures) {
        try {
            DecodeWadPicture(wad, entry, GreyPalette());
        } catch (const ContentError&) {
        }
    }
}

void Convert(const std::string& text) {
    static const ForeignRules rules = [] {
        ForeignRules some;
        some.starts = {"info_player_start"};
        some.world = {"worldspawn"};
        some.sky = {"sky*"};
        some.clip = {"clip*"};
        some.unseen = {"skip"};
        some.leftOutFaces = {"hint"};
        some.liquid = {"**"};
        some.lamps = {"light*"};
        some.suns = {"sun"};
        return some;
    }();
    std::vector<std::string> notes;
    ConvertMapText(text, "input.map", rules, 3, Pictures({}, GreyPalette(), notes));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    try {
        if (size > 0 && data[0] == 'W')
            ReadPictures(data, size);
        else
            Convert({data, data + size});
    } catch (const ContentError&) {
    }
    return 0;
}
