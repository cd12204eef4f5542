#include "host/glide.h"

#include <cmath>

float guFogTableIndexToW(int32_t index) {
    return static_cast<float>(std::ldexp(1.0, 3 + (index >> 2)) / (8 - (index & 3)));
}

void guFogGenerateLinear(GrFog_t* table, float nearW, float farW) {
    for (int32_t i = 0; i < GR_FOG_TABLE_SIZE; ++i) {
        const double w = guFogTableIndexToW(i);
        const double share = (w - nearW) / (double{farW} - nearW);
        if (nearW == farW || std::isnan(share))
            table[i] = w >= nearW ? 255 : 0;
        else
            table[i] = static_cast<GrFog_t>(share <= 0 ? 0 : share >= 1 ? 255 : share * 255);
    }
}
