#pragma once

#include <QString>

#include <cstdint>

namespace fldc {

/// One software or hardware component of the radio.
class clsConfiguration {
public:
    /// Status word, 0 to 65535; 0 is good.
    [[nodiscard]] std::int32_t Status() const { return m_status; }
    void setStatus(std::int32_t status) { m_status = status; }
    /// Memory address in the radio, as 32-bit two's complement.
    [[nodiscard]] std::int32_t ConfigurationAddress() const { return m_configurationAddress; }
    void setConfigurationAddress(std::int32_t address) { m_configurationAddress = address; }
    /// Component code and version.
    [[nodiscard]] QString ProductID() const { return m_productId; }
    void setProductID(const QString& productId) { m_productId = productId; }
    /// 0 to 255; 0 when the radio reports none.
    [[nodiscard]] std::int16_t NetWorkID() const { return m_networkId; }
    void setNetWorkID(std::int16_t id) { m_networkId = id; }
    /// 0 to 255; 0 when the radio reports none.
    [[nodiscard]] std::int16_t DeviceID() const { return m_deviceId; }
    void setDeviceID(std::int16_t id) { m_deviceId = id; }
    [[nodiscard]] QString MemoryDeviceID() const { return m_memoryDeviceId; }
    void setMemoryDeviceID(const QString& id) { m_memoryDeviceId = id; }
    /// Whether the user may erase it.
    [[nodiscard]] bool blnCanBeErased() const { return m_canBeErased; }
    void setBlnCanBeErased(bool canBeErased) { m_canBeErased = canBeErased; }
    /// The kind of component, as shown to the user.
    [[nodiscard]] QString ComponentType() const { return m_componentType; }
    void setComponentType(const QString& type) { m_componentType = type; }
    /// Product identifier of the hardware on the same network.
    [[nodiscard]] QString HardwareString() const { return m_hardwareString; }
    void setHardwareString(const QString& hardware) { m_hardwareString = hardware; }

private:
    std::int32_t m_status = 0;
    std::int32_t m_configurationAddress = 0;
    QString m_productId;
    std::int16_t m_networkId = 0;
    std::int16_t m_deviceId = 0;
    QString m_memoryDeviceId;
    bool m_canBeErased = false;
    QString m_componentType;
    QString m_hardwareString;
};

} // namespace fldc
