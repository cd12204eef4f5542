#include "host/glide.h"

int32_t grSstQueryBoards(GrHwConfiguration* configuration) {
    configuration->num_sst = 0;
    return 1;
}
