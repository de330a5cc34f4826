#include "device/Memory.h"

#include <algorithm>

namespace simulator {

Memory::Memory(const Profile& profile)
{
    for (const MemoryDevice& layout : profile.memory)
        devices.emplace_back(layout);
    for (const FittedComponent& fitted : profile.components) {
        components.push_back({std::string(fitted.product), fitted.address, fitted.status,
                              fitted.network, fitted.device});
    }
}

Flash* Memory::find(std::uint8_t network, std::uint8_t device)
{
    const auto found = std::find_if(devices.begin(), devices.end(), [&](const Flash& flash) {
        return flash.layout().network == network && flash.layout().device == device;
    });
    return found == devices.end() ? nullptr : &*found;
}

bool Memory::standsIn(const Component& component, const Flash& flash,
                      const Flash::BlockNumbers& blocks) const
{
    return !component.isHardware() && component.network == flash.layout().network &&
           component.device == flash.layout().device && flash.holds(blocks, component.address);
}

void Memory::markErased(const Flash& flash, const Flash::BlockNumbers& blocks)
{
    for (Component& component : components) {
        if (standsIn(component, flash, blocks))
            component.status = statusNoCode;
    }
}

void Memory::install(Component component, const Flash& flash, const Flash::BlockNumbers& blocks)
{
    const auto isReplaced = [&](const Component& old) {
        return old.status == statusNoCode && standsIn(old, flash, blocks);
    };
    // The newcomer takes the first one's place in the report.
    const auto place = std::find_if(components.begin(), components.end(), isReplaced);
    const auto position = place - components.begin();
    components.insert(place, std::move(component));
    components.erase(
        std::remove_if(components.begin() + position + 1, components.end(), isReplaced),
        components.end());
}

} // namespace simulator
