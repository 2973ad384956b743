// Compiled for SSE4.1, and run where the processor has it: no inline function may come out of here that others call, too.
#include "graphics/VectorKernels.h"

const KERNELS gSse41Kernels = gVectorKernels;
