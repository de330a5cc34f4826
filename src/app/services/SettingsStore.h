#pragma once

#include <QString>

namespace fldc {

class ISettingsFile;

// The machine-wide settings.

/// settingOn: every exchange with the radio is logged. Compared exactly.
inline const QString debugSetting = QStringLiteral("Debug");
/// First path of the files that a user loaded last.
inline const QString lastFileSetting = QStringLiteral("LastFile");

/// settingBest: files are loaded with the best compression. Compared exactly.
inline const QString compressionSetting = QStringLiteral("Compression");

/// settingOff: no run is recorded; nothing or settingOn: in the user's data folder; else the
/// address of the store.
inline const QString historySetting = QStringLiteral("History");

inline const QString settingBest = QStringLiteral("Best");
inline const QString settingOn = QStringLiteral("True");
inline const QString settingOff = QStringLiteral("False");

/// The stored text, or @p defaultText when there is none, it can't be read or isn't text.
/// Never throws.
[[nodiscard]] QString ReadSetting(ISettingsFile& settings, const QString& name,
                                  const QString& defaultText);

/// Stores the text. A user without the right to write machine-wide settings just doesn't get it
/// remembered: nothing is reported, and nothing thrown.
void WriteSetting(ISettingsFile& settings, const QString& name, const QString& value);

} // namespace fldc
