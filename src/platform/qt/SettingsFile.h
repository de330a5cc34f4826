#pragma once

#include "platform/ISettingsFile.h"

#include <QMap>

namespace fldc {

/// The settings as an INI file, for all users of the machine. Every call reads the file afresh.
/// Values that INI syntax makes a list (a bare comma) or that carry a type (`@Variant(…)`) are not
/// plain text.
class SettingsFile final : public ISettingsFile {
public:
    /// /etc/kelvane/RV4100_FLDC.conf, or what the environment variable RV4100_FLDC_SETTINGS names.
    [[nodiscard]] static QString defaultPath();

    explicit SettingsFile(QString path = defaultPath());

    [[nodiscard]] std::optional<QString> readText(const QString& name) override;
    /// Changes the one line, or adds it; everything else in the file stays as it is, comments
    /// included. Creates the file, and its folder, when they are missing.
    void writeText(const QString& name, const QString& value) override;

    /// All plain text values of the section @p section, by name.
    [[nodiscard]] QMap<QString, QString> section(const QString& section) const;

private:
    QString m_path;
};

} // namespace fldc
