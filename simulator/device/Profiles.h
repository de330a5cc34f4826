// The radios that can be simulated: what each is, understands and carries. Invented for this
// simulator; only their manner of answering is that of the radio family.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <span>
#include <string>
#include <string_view>

namespace simulator {

/// A run of equal flash blocks. Start and size count units of the memory device.
struct Region {
    std::uint32_t start;
    std::uint32_t blockSize; // a multiple of 256
    std::uint16_t blocks;
};

/// A flash device. Its addresses and block lengths count units of `unitBytes` bytes: 2 in a device
/// that holds 16-bit firmware, where an address step of one is a 16-bit word, 1 in one for 8-bit
/// firmware. The block table that a host is given is in the same units, so that a firmware file's
/// addresses and lengths compare with it directly.
struct MemoryDevice {
    std::uint8_t network;
    std::uint8_t device;
    std::uint8_t unitBytes;
    std::span<const Region> regions; // one after the other, without gaps
    std::string_view name;
};

/// A component that the radio leaves the factory with. One that begins with 'R' is hardware: it
/// names what the components of its network run on and occupies no flash.
struct FittedComponent {
    std::string_view product;
    std::uint32_t address;
    std::uint16_t status;
    std::uint8_t network;
    std::uint8_t device;
};

/// One type of radio.
struct Profile {
    std::string_view name;
    std::string_view radioType;
    std::string_view greeting; // the answer to a log-on, up to its '*'
    bool needsBootApplication;
    std::span<const int> speeds;                   // bit/s
    std::span<const std::uint8_t> unknownCommands; // answered with "not recognised"
    bool reportsNetworks;                          // configuration records carry network and device
    bool knowsNetworks;                            // authorises a component for a network's device
    bool wantsAuthorisation;                       // touches no flash without it
    std::span<const MemoryDevice> memory;          // the first is the one selected after a restart
    std::span<const FittedComponent> components;
};

std::span<const Profile> profiles();
/// The profile of that name, or nullptr.
const Profile* findProfile(std::string_view name);
/// For --list-profiles.
void listProfiles(std::ostream& out);

} // namespace simulator
