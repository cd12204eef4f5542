// Texture files (.3df).
//   header       lines of text: "3df v1.1", any number of "#" comments, a format name, "lod range: S L", "aspect
//                ratio: W H"; S and L are the longer sides of the smallest and the largest level
//   table        yiq422, ayiq8422: 40 signed 16-bit words; p8, ap88: 256 words 0x..RRGGBB of 32 bits
//   texels       largest level first, rows top to bottom, 1 or 2 bytes each
// Everything binary is big-endian.
#pragma once

#include "host/glide.h"

#include <cstdio>

// False: not a texture file. Otherwise the next read of `file` gives the table.
bool ReadTextureHeader(std::FILE* file, Gu3dfInfo& info);
// Reads into info.table and info.data; 16-bit texels in host byte order. False: the file is too short.
bool ReadTexels(std::FILE* file, Gu3dfInfo& info);
