// Everything that the radio keeps: its flash devices and the list of components that it reports.
#pragma once

#include "device/Flash.h"

namespace simulator {

/// A component as the radio reports it.
struct Component {
    std::string product; // component code and version
    std::uint32_t address;
    std::uint16_t status;
    std::uint8_t network;
    std::uint8_t device;

    bool isHardware() const { return product.starts_with('R'); }
};

/// Statuses of a component.
inline constexpr std::uint16_t statusGood = 0;
inline constexpr std::uint16_t statusNoCode = 1;
inline constexpr std::uint16_t statusChecksumInvalid = 2;
inline constexpr std::uint16_t statusNotValidated = 255;

struct Memory {
    explicit Memory(const Profile& profile);

    /// The flash device of that network and device number, or nullptr.
    Flash* find(std::uint8_t network, std::uint8_t device);
    /// Components that stood in these blocks have no code any more.
    void markErased(const Flash& flash, const Flash::BlockNumbers& blocks);
    /// `component` now stands in flash, in place of those that were erased from these blocks.
    void install(Component component, const Flash& flash, const Flash::BlockNumbers& blocks);

    std::vector<Flash> devices;
    std::vector<Component> components;

private:
    bool standsIn(const Component& component, const Flash& flash,
                  const Flash::BlockNumbers& blocks) const;
};

} // namespace simulator
