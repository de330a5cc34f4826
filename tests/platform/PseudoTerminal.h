#pragma once

#include "platform/qt/FileDescriptor.h"

#include <QByteArray>
#include <QString>

#include <cstdlib>

#include <asm/termbits.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>

namespace fldc {

/// A pseudo-terminal; the object is the far end of the line.
class PseudoTerminal {
public:
    PseudoTerminal() : m_master(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC))
    {
        if (::grantpt(m_master.get()) == -1 || ::unlockpt(m_master.get()) == -1)
            std::abort();
    }

    [[nodiscard]] QString path() const
    {
        char name[64] = {};
        ::ptsname_r(m_master.get(), name, sizeof name);
        return QString::fromLocal8Bit(name);
    }
    /// Line settings as the far end sees them, with the kernel's own flags.
    [[nodiscard]] termios2 state() const
    {
        termios2 settings{};
        ::ioctl(m_master.get(), TCGETS2, &settings);
        return settings;
    }
    void write(const QByteArray& bytes) const
    {
        if (writeAll(m_master.get(), {bytes.constData(), std::size_t(bytes.size())}) != 0)
            std::abort();
    }
    /// Up to @p count bytes; fewer when nothing arrives for @p patience milliseconds.
    [[nodiscard]] QByteArray read(qsizetype count, int patience = 5000) const
    {
        QByteArray bytes;
        char byte = 0;
        pollfd line{m_master.get(), POLLIN, 0};
        while (bytes.size() < count && ::poll(&line, 1, patience) == 1 &&
               ::read(m_master.get(), &byte, 1) == 1)
            bytes += byte;
        return bytes;
    }
    void hangUp() { m_master.close(); }
    /// Opens the near end without changing its settings.
    [[nodiscard]] FileDescriptor openNearEnd() const
    {
        return FileDescriptor(
            ::open(path().toLocal8Bit().constData(), O_RDWR | O_NOCTTY | O_CLOEXEC));
    }

private:
    FileDescriptor m_master;
};

} // namespace fldc
