#include "graphics/VectorKernels.h"

const KERNELS gSse2Kernels = gVectorKernels;
