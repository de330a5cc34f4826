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
///
/// Everything here belongs to one thread and is called on that thread alone. Tests hand down twins
/// that live in memory and in a time of their own (tests/support); a program that uses the
/// libraries in its own process makes the real ones with platform/qt/QtPlatform.h.
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
