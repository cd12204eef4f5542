// What the game takes for granted of a level's palette. The game takes these numbers from here, and so do the tools
// that choose palettes. Data only.
#pragma once

constexpr int GROUND_COLOUR = 254;  // entry that fills the lower half of the software's frame before the world is drawn

// How far apart two colours are: the sum of the squares of weight x difference, over the channels. Weights in tenths.
constexpr int RED_TENTHS = 8;
constexpr int GREEN_TENTHS = 12;
constexpr int BLUE_TENTHS = 11;
