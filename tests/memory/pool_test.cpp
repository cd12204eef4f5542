#include "memory/pool.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <map>
#include <random>
#include <vector>

namespace {

constexpr uint32_t HEADER = 32;

class Pool : public ::testing::Test {
protected:
    void SetUp() override { PoolInit(memory, memory + sizeof(memory)); }
    void TearDown() override { PoolForget(); }

    alignas(32) uint8_t memory[64 * 1024];
    // The last 31 bytes are given up to the rounding of the end, and one header is taken.
    static constexpr uint32_t WHOLE = sizeof(memory) - 32 - HEADER;
};

// The same allocator written down plainly: blocks by offset, first fit by walking all of them.
class ReferencePool {
public:
    explicit ReferencePool(uint32_t bytes) { blocks[HEADER] = {bytes, false}; }

    // The data offset, or -1. From the low end, or from the high end of the last block that fits.
    int64_t Allocate(uint32_t bytes, bool high) {
        const uint32_t size = (bytes + 31) / 32 * 32;
        const auto fits = [size](const auto& entry) {
            return !entry.second.used && entry.second.size >= size + HEADER;
        };
        const auto last = std::find_if(blocks.rbegin(), blocks.rend(), fits);
        if (last == blocks.rend()) return -1;
        auto& [offset, block] = high ? *last : *std::find_if(blocks.begin(), blocks.end(), fits);
        const uint32_t rest = block.size - size - HEADER;
        block = high ? Block{rest, false} : Block{size, true};
        const uint32_t next = offset + block.size + HEADER;
        blocks[next] = high ? Block{size, true} : Block{rest, false};
        return high ? next : offset;
    }

    uint32_t Free(uint32_t offset) {
        const uint32_t size = blocks.at(offset).size;
        blocks[offset].used = false;
        for (auto it = blocks.begin(); std::next(it) != blocks.end();) {
            const auto next = std::next(it);
            if (it->second.used || next->second.used) {
                it = next;
                continue;
            }
            it->second.size += next->second.size + HEADER;
            blocks.erase(next);
        }
        return size;
    }

    uint32_t FreeTotal(uint32_t& largest) const {
        uint32_t total = 0;
        largest = 0;
        for (const auto& [offset, block] : blocks) {
            if (block.used) continue;
            total += block.size;
            largest = std::max(largest, block.size);
        }
        return total;
    }

private:
    struct Block {
        uint32_t size;
        bool used;
    };
    std::map<uint32_t, Block> blocks;
};

}  // namespace

TEST_F(Pool, BehavesAsTheReferenceModel) {
    std::mt19937 random(11);
    ReferencePool model(WHOLE);
    std::vector<std::pair<uint8_t*, uint32_t>> held;  // blocks, with the bytes asked for
    for (int step = 0; step < 20000; ++step) {
        const bool allocate = held.empty() || random() % 100 < (step / 500 % 2 ? 40 : 60);
        if (allocate) {
            const auto bytes = static_cast<uint32_t>(random() % 4 ? random() % 400 : random() % 9000);
            const bool high = random() % 8 == 0;
            auto* data = static_cast<uint8_t*>(high ? PoolMallocHigh(bytes) : PoolMalloc(bytes));
            const int64_t expected = model.Allocate(bytes, high);
            ASSERT_EQ(data ? data - memory : -1, expected) << "step " << step;
            if (!data) continue;
            std::memset(data, static_cast<int>(held.size()), bytes);  // this must hit no header
            held.emplace_back(data, bytes);
        } else {
            const size_t index = random() % held.size();
            const auto offset = static_cast<uint32_t>(held[index].first - memory);
            ASSERT_EQ(PoolFree(held[index].first), model.Free(offset)) << "step " << step;
            held[index] = held.back();
            held.pop_back();
        }
        uint32_t largest;
        ASSERT_EQ(PoolFreeTotal(), model.FreeTotal(largest)) << "step " << step;
        ASSERT_EQ(PoolLargestFree, largest);
    }
    for (const auto& [data, bytes] : held)
        PoolFree(data);
    EXPECT_EQ(PoolFreeTotal(), WHOLE);
    EXPECT_EQ(PoolLargestFree, WHOLE);
}

TEST_F(Pool, RequestsThatFitExactlyOrNotAtAllAreRefused) {
    for (const uint32_t bytes : {WHOLE, WHOLE - 31, 0x7FFFFFC1u, 0x80000000u, 0xFFFFFFE0u, 0xFFFFFFE1u, 0xFFFFFFFFu}) {
        EXPECT_EQ(PoolMalloc(bytes), nullptr) << bytes;
        EXPECT_EQ(PoolMallocHigh(bytes), nullptr) << bytes;
    }
    EXPECT_NE(PoolMalloc(WHOLE - 32), nullptr);
    EXPECT_EQ(PoolFreeTotal(), 0u);  // the remainder block holds no data
    EXPECT_EQ(PoolMalloc(0), nullptr);
}

TEST(PoolRange, UnalignedRangesAreCutInwards) {
    alignas(32) static uint8_t memory[1024];
    std::memset(memory, 0xEE, sizeof(memory));
    PoolInit(memory + 1, memory + 1000);  // 32 .. 960
    EXPECT_EQ(PoolFreeTotal(), 960u - 32 - HEADER);
    EXPECT_EQ(PoolMalloc(1), memory + 64);
    EXPECT_TRUE(std::all_of(memory, memory + 32, [](uint8_t byte) { return byte == 0xEE; }));
    PoolForget();
    EXPECT_EQ(PoolFreeTotal(), 0u);
    EXPECT_EQ(PoolMalloc(1), nullptr);
}
