// Skin weights: which points follow which bone.
#pragma once

void* LoadWeights(const char* path);  // the file's image in the pool
