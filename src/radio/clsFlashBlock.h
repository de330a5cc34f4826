#pragma once

#include <cstdint>

namespace fldc {

/// One block of the radio's flash memory.
class clsFlashBlock {
public:
    /// Size in bytes, as the radio reports it.
    [[nodiscard]] std::int32_t Length() const { return m_length; }
    void setLength(std::int32_t length) { m_length = length; }
    /// First address, as 32-bit two's complement.
    [[nodiscard]] std::int32_t StartAddress() const { return m_startAddress; }
    void setStartAddress(std::int32_t address) { m_startAddress = address; }
    /// Block number in erase and write commands, from 0 in the order of the radio's reply.
    [[nodiscard]] std::int16_t ID() const { return m_id; }
    void setID(std::int16_t id) { m_id = id; }

private:
    std::int32_t m_length = 0;
    std::int32_t m_startAddress = 0;
    std::int16_t m_id = 0;
};

} // namespace fldc
