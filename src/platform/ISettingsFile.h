#pragma once

#include <QString>

#include <optional>

namespace fldc {

/// The machine-wide settings, as named text values.
class ISettingsFile {
public:
    virtual ~ISettingsFile() = default;

    /// The value; nothing when it is missing, can't be read or isn't plain text.
    [[nodiscard]] virtual std::optional<QString> readText(const QString& name) = 0;
    /// Stores the value. Throws PlatformFailure when it can't be stored.
    virtual void writeText(const QString& name, const QString& value) = 0;
};

} // namespace fldc
