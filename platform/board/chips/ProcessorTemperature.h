// The processor's own sensor: Intel's digital one by model registers, AMD's (families 17h to 1Ah) through the first PCI
// device. Nothing is read that CPUID, or the device's own vendor word, doesn't promise.
#pragma once

#include "platform/board/chips/Ports.h"

enum PROCESSOR_SENSOR : UINT8 { PROCESSOR_NONE, PROCESSOR_INTEL_PACKAGE, PROCESSOR_INTEL_CORE, PROCESSOR_AMD };

struct PROCESSOR {
    PORTS* Ports;
    PROCESSOR_SENSOR Sensor;
    INT32 Limit;  // Intel: degrees from which its readout counts down
    INT32 Offset; // AMD: degrees by which its control value lies above the temperature
};

// PROCESSOR_NONE in a virtual machine, too: what it promises needn't be there.
PROCESSOR FindProcessor(PORTS* Ports);
// Thousandths of a degree; false without a valid reading.
bool ReadProcessor(const PROCESSOR& Processor, INT32* MilliDegrees);
