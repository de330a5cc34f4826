#pragma once

namespace fldc {

class IClock;
class IEvents;
class IFileService;
class IMessageBox;
class IPortListing;
class IProgramInfo;
class ISerialControlFactory;
class ISettingsFile;
class ITimers;

/// Everything that the component needs of the operating system, handed down from start-up.
/// Outlives whatever is given a reference to it.
struct Platform {
    IEvents& events;
    ITimers& timers;
    IClock& clock;
    IFileService& files;
    ISettingsFile& settings;
    IPortListing& ports;
    ISerialControlFactory& serialControls;
    IProgramInfo& program;
    IMessageBox& messages;
};

} // namespace fldc
