#include "device/Profiles.h"

#include "Bytes.h"

#include <algorithm>
#include <array>
#include <ostream>

namespace simulator {

namespace {

// --- flash layouts, in units of their devices
constexpr std::array<Region, 2> mainFlash16{{{0x000000, 0x1000, 8}, {0x008000, 0x8000, 15}}};
constexpr std::array<Region, 1> smallFlash16{{{0x000000, 0x2000, 16}}};
constexpr std::array<Region, 2> oldFlash16{{{0x000000, 0x1000, 8}, {0x008000, 0x8000, 3}}};
constexpr std::array<Region, 1> mainFlash8{{{0x010000, 0x10000, 8}}};
constexpr std::array<Region, 1> smallFlash8{{{0x000000, 0x4000, 8}}};

constexpr std::array<int, 4> allSpeeds{9600, 19200, 57600, 115200};
constexpr std::array<int, 3> slowSpeeds{9600, 19200, 57600};

// --- RV4100: a torso on network 0 and a head on network 1, always ready for an upgrade
constexpr std::array<MemoryDevice, 3> rv4100Memory{{{0, 0, 2, mainFlash16, "torso"},
                                                    {0, 1, 2, smallFlash16, "torso FPGA"},
                                                    {1, 0, 2, mainFlash16, "head"}}};
constexpr std::array<FittedComponent, 9> rv4100Components{{{"RVKB1-03", 0, 0, 0, 0},
                                                           {"JVA1B-1.01", 0x000000, 0, 0, 0},
                                                           {"JVA1F-1.08", 0x008000, 0, 0, 0},
                                                           {"JVA1G-1.06", 0x000000, 0, 0, 1},
                                                           {"JVA1G-1.05", 0x010000, 255, 0, 1},
                                                           {"RVKC7-01", 0, 0, 1, 0},
                                                           {"JHA4B-1.00", 0x000000, 0, 1, 0},
                                                           {"JHA4F-1.08", 0x008000, 0, 1, 0},
                                                           {"SHA4A-1.00", 0x007000, 0, 1, 0}}};

// --- RV4200: a head alone
constexpr std::array<MemoryDevice, 2> rv4200Memory{
    {{0, 0, 2, mainFlash16, "head"}, {0, 1, 2, smallFlash16, "head DSP"}}};
constexpr std::array<FittedComponent, 5> rv4200Components{{{"RVKC4-02", 0, 0, 0, 0},
                                                           {"JHA2B-1.04", 0x000000, 0, 0, 0},
                                                           {"JHA2F-1.20", 0x008000, 0, 0, 0},
                                                           {"SHA2A-1.00", 0x007000, 0, 0, 0},
                                                           {"JHA2A-1.02", 0x000000, 0, 0, 1}}};

// --- RV6100: the oldest, before compression, regions and authorisation
constexpr std::array<MemoryDevice, 1> rv6100Memory{{{0, 0, 2, oldFlash16, "radio"}}};
constexpr std::array<FittedComponent, 4> rv6100Components{{{"RVKB2-01", 0, 0, 0, 0},
                                                           {"JVA2B-0.90", 0x000000, 0, 0, 0},
                                                           {"JVA2F-1.00", 0x008000, 0, 0, 0},
                                                           {"JVA2A-1.00", 0x018000, 0, 0, 0}}};
constexpr std::array<std::uint8_t, 5> rv6100Unknown{0x3C, 0x3D, 0x3E, 0x40, 0x42};

// --- RH6100: a portable with 8-bit memory
constexpr std::array<MemoryDevice, 2> rh6100Memory{
    {{0, 0, 1, mainFlash8, "portable"}, {0, 1, 1, smallFlash8, "portable DSP"}}};
constexpr std::array<FittedComponent, 4> rh6100Components{{{"RHKB1-01", 0, 0, 0, 0},
                                                           {"JWA2B-1.00", 0x010000, 0, 0, 0},
                                                           {"JWA2F-1.04", 0x020000, 0, 0, 0},
                                                           {"JWA2A-1.00", 0x000000, 0, 0, 1}}};

constexpr std::array<Profile, 4> allProfiles{
    {{"rv4100",
      "RV4100",
      "RV4100 1.08 RVKB3*",
      false,
      allSpeeds,
      {},
      true,
      true,
      true,
      rv4100Memory,
      rv4100Components},
     {"rv4200",
      "RV4200",
      "RVKC4*",
      true,
      allSpeeds,
      {},
      true,
      true,
      true,
      rv4200Memory,
      rv4200Components},
     {"rv6100", "RV6100", "V*", true, slowSpeeds, rv6100Unknown, false, false, false, rv6100Memory,
      rv6100Components},
     {"rh6100",
      "RH6100",
      "RHKB1*",
      true,
      allSpeeds,
      {},
      true,
      false,
      true,
      rh6100Memory,
      rh6100Components}}};

constexpr bool isSound(const Profile& profile)
{
    for (const MemoryDevice& memory : profile.memory) {
        std::uint32_t next = memory.regions.front().start;
        for (const Region& region : memory.regions) {
            if (region.start != next || region.blockSize % 256 != 0 || region.blocks == 0)
                return false;
            next += region.blockSize * region.blocks;
        }
    }
    return std::all_of(
        profile.components.begin(), profile.components.end(), [&](const auto& component) {
            return std::any_of(
                profile.memory.begin(), profile.memory.end(), [&](const auto& memory) {
                    return memory.network == component.network && memory.device == component.device;
                });
        });
}
static_assert(std::all_of(allProfiles.begin(), allProfiles.end(), isSound),
              "regions without gaps, every component in a memory device of its radio");

} // namespace

std::span<const Profile> profiles()
{
    return allProfiles;
}

const Profile* findProfile(std::string_view name)
{
    const auto found = std::find_if(allProfiles.begin(), allProfiles.end(),
                                    [&](const Profile& profile) { return profile.name == name; });
    return found == allProfiles.end() ? nullptr : &*found;
}

void listProfiles(std::ostream& out)
{
    for (const Profile& profile : allProfiles) {
        out << profile.name << ": radio " << profile.radioType << ", answers a log-on with \""
            << profile.greeting << "\", "
            << (profile.needsBootApplication ? "needs" : "does not need")
            << " a boot application, up to " << profile.speeds.back() << " bit/s\n";
        if (!profile.unknownCommands.empty())
            out << "  does not know the commands " << hexText(profile.unknownCommands) << '\n';
        for (const MemoryDevice& memory : profile.memory) {
            out << "  network " << int{memory.network} << " device " << int{memory.device} << ": "
                << memory.name << ", " << memory.unitBytes * 8 << "-bit, blocks";
            for (const Region& region : memory.regions)
                out << "  " << region.blocks << " x " << hex(region.blockSize, 4) << " from "
                    << hex(region.start, 8);
            out << '\n';
            for (const FittedComponent& component : profile.components) {
                if (component.network == memory.network && component.device == memory.device)
                    out << "    " << component.product << " at " << hex(component.address, 8)
                        << '\n';
            }
        }
    }
}

} // namespace simulator
