#pragma once

#include "platform/Platform.h"
#include "platform/qt/FileService.h"
#include "platform/qt/ProgramInfo.h"
#include "platform/qt/QtClock.h"
#include "platform/qt/QtEvents.h"
#include "platform/qt/QtTimers.h"
#include "platform/qt/SettingsFile.h"
#include "platform/qt/serial/PortListing.h"
#include "platform/qt/serial/SerialControl.h"

namespace fldc {

/// The platform of this machine, without a display: the message boxes come from outside. Made
/// after the QCoreApplication, on the thread that will use it.
class QtPlatform {
public:
    explicit QtPlatform(IMessageBox& messages)
        : m_ports(m_settings),
          m_serialControls(m_ports, m_events), m_platform{m_events,         m_timers,   m_clock,
                                                          m_files,          m_settings, m_ports,
                                                          m_serialControls, m_program,  messages}
    {
    }
    QtPlatform(const QtPlatform&) = delete;
    QtPlatform& operator=(const QtPlatform&) = delete;

    [[nodiscard]] Platform& platform() { return m_platform; }

private:
    QtEvents m_events;
    QtTimers m_timers;
    QtClock m_clock;
    FileService m_files;
    SettingsFile m_settings;
    PortListing m_ports;
    SerialControlFactory m_serialControls;
    ProgramInfo m_program;
    Platform m_platform;
};

} // namespace fldc
