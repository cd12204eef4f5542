#include "texc/page_packing.h"

#include "formats/error.h"

#include <fmt/format.h>

#include <algorithm>
#include <numeric>

std::vector<TextureSlot> PackPages(const std::vector<TextureSize>& sizes, const std::string& file) {
    std::vector<size_t> order(sizes.size());
    std::iota(order.begin(), order.end(), size_t{0});
    const auto key = [&](size_t i) { return std::pair(-sizes[i].height, -sizes[i].width); };
    std::stable_sort(order.begin(), order.end(), [&](size_t a, size_t b) { return key(a) < key(b); });
    std::vector<TextureSlot> slots(sizes.size());
    int page = 0, x = 0, y = 0, shelf = 0;
    for (const size_t i : order) {
        const TextureSize& size = sizes[i];
        if (x + size.width > TEXTURE_PAGE_SIDE) {
            x = 0;
            y += shelf;
            shelf = 0;
        }
        if (y + size.height > TEXTURE_PAGE_SIDE) {
            ++page;
            x = y = shelf = 0;
        }
        if (page >= static_cast<int>(TEXTURE_PAGES_MAX)) {
            Refuse(file, 0, fmt::format("the pictures need more than {} pages", TEXTURE_PAGES_MAX),
                   "use fewer materials, or smaller ones");
        }
        shelf = std::max(shelf, size.height);
        slots[i] = {static_cast<uint8_t>(page), static_cast<uint8_t>(x), static_cast<uint8_t>(y),
                    static_cast<uint8_t>(size.width), static_cast<uint8_t>(size.height)};
        x += size.width;
    }
    return slots;
}
