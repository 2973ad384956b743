// The bytes of an input, taken from the front; zeros when there are no more.
#pragma once

#include <cstddef>
#include <cstdint>

struct INPUT {
    const uint8_t* Data;
    size_t Size;

    uint8_t Byte()
    {
        if (Size == 0) {
            return 0;
        }
        Size--;
        return *Data++;
    }
    uint16_t Word() { return static_cast<uint16_t>(Byte() | Byte() << 8); }
    uint64_t Long()
    {
        uint64_t Value = 0;
        for (int At = 0; At < 8; At++) {
            Value = Value << 8 | Byte();
        }
        return Value;
    }
    bool IsEmpty() const { return Size == 0; }
};
