#include "FlashFile.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace simulator {

namespace {

void writeWhole(const std::string& path, const std::string& contents)
{
    const std::string fresh = path + ".new";
    std::ofstream file(fresh, std::ios::binary | std::ios::trunc);
    file << contents;
    file.close();
    if (!file || std::rename(fresh.c_str(), path.c_str()) != 0)
        throw std::runtime_error("cannot write " + path + ": " + std::strerror(errno));
}

/// The value of "key=value" in a line of the map; a product is the last and may hold blanks.
std::string field(const std::string& line, const std::string& key)
{
    const auto begin = line.find(" " + key + "=");
    if (begin == line.npos)
        throw std::runtime_error("no " + key + " in \"" + line + "\"");
    const auto value = begin + key.size() + 2;
    return line.substr(value, key == "product" ? line.npos : line.find(' ', value) - value);
}

std::uint32_t number(const std::string& line, const std::string& key, int base)
{
    return static_cast<std::uint32_t>(std::stoul(field(line, key), nullptr, base));
}

} // namespace

void saveFlash(const std::string& path, const Memory& memory)
{
    std::string contents;
    std::ostringstream map;
    for (const Flash& flash : memory.devices) {
        const MemoryDevice& layout = flash.layout();
        map << "device network=" << int{layout.network} << " device=" << int{layout.device}
            << " unit=" << int{layout.unitBytes}
            << " start=" << hex(layout.regions.front().start, 8) << " units="
            << hex(static_cast<std::uint32_t>(flash.bytes().size() / layout.unitBytes), 8)
            << " offset=" << contents.size() << " bytes=" << flash.bytes().size() << '\n';
        contents.append(flash.bytes().begin(), flash.bytes().end());
    }
    for (const Component& component : memory.components) {
        map << "component network=" << int{component.network} << " device=" << int{component.device}
            << " status=" << component.status << " address=" << hex(component.address, 8)
            << " product=" << component.product << '\n';
    }
    writeWhole(path, contents);
    writeWhole(path + ".map", map.str());
}

void loadFlash(const std::string& path, Memory& memory)
{
    std::ifstream file(path, std::ios::binary);
    std::ifstream map(path + ".map");
    if (!file || !map)
        throw std::runtime_error("cannot read " + path + " and " + path +
                                 ".map: " + std::strerror(errno));
    for (Flash& flash : memory.devices)
        file.read(reinterpret_cast<char*>(flash.bytes().data()), std::ssize(flash.bytes()));
    if (!file || file.peek() != std::ifstream::traits_type::eof())
        throw std::runtime_error(path + " is not the flash of such a radio: its size differs");
    memory.components.clear();
    try {
        for (std::string line; std::getline(map, line);) {
            if (!line.starts_with("component"))
                continue;
            memory.components.push_back(
                {.product = field(line, "product"),
                 .address = number(line, "address", 16),
                 .status = static_cast<std::uint16_t>(number(line, "status", 10)),
                 .network = static_cast<std::uint8_t>(number(line, "network", 10)),
                 .device = static_cast<std::uint8_t>(number(line, "device", 10))});
        }
    } catch (const std::exception& error) {
        throw std::runtime_error(path + ".map: " + error.what());
    }
}

} // namespace simulator
