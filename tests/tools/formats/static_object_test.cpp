#include "formats/error.h"
#include "formats/static_object_file.h"

#include <gtest/gtest.h>

TEST(StaticObjectFormat, ReadsBackWhatItWroteAndRefusesWhatTheGameHasNoRoomFor) {
    StaticObjectFile sky;
    sky.points = {{-1, -1, 10}, {1, -1, 10}, {0, 1, 10}};
    sky.polygons = {{17, {{0, 0, 1}, -10}, {{0, 128, -256}, {1, 0, 0.5F}, {2, 1.5F, 2}}}};
    const std::vector<uint8_t> bytes = EncodeStaticObject(sky, "file");
    ASSERT_EQ(bytes.size(), 20U + 3 * 12 + 36 + 3 * 10);
    EXPECT_EQ(EncodeStaticObject(DecodeStaticObject(bytes, "file"), "file"), bytes);

    const std::pair<size_t, uint8_t> damages[] = {{0, 'e'},          {7, 8},           {8, 1}, {12, 1},
                                                  {20 + 36 + 36, 3}, {20 + 36 + 35, 2}};
    for (const auto& [offset, value] : damages) {
        std::vector<uint8_t> damaged = bytes;
        damaged[offset] = value;
        EXPECT_THROW(DecodeStaticObject(damaged, "file"), ContentError) << offset;
    }
    EXPECT_THROW(DecodeStaticObject({bytes.begin(), bytes.end() - 1}, "file"), ContentError);
    sky.polygons[0].corners.resize(13);
    EXPECT_THROW(EncodeStaticObject(sky, "file"), ContentError);
}
