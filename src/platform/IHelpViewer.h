#pragma once

#include <QString>

#include <cstdint>

namespace fldc {

/// The viewer of compiled HTML help. Each request returns at once; a file that is missing or can't
/// be read is reported by the viewer. Throws PlatformFailure, FileNotFound (53) when the machine
/// has nothing to show it with.
class IHelpViewer {
public:
    virtual ~IHelpViewer() = default;

    /// Opens @p file at its table of contents, in a window that belongs to no other.
    virtual void displayContents(const QString& file) = 0;
    /// Shows the topic of @p file that has the number @p context, on behalf of the window with the
    /// system's identifier @p owner.
    virtual void displayTopic(std::uintptr_t owner, const QString& file, std::int32_t context) = 0;
};

} // namespace fldc
