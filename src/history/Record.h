#pragma once

#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <array>
#include <optional>

namespace fldc::history {

/// What is kept of one run: its certificate, under a number that no other run has (a UUID, lower
/// case), by which a record that is delivered twice is known.
struct Record {
    QString id;
    QJsonObject certificate;
};

/// A record of a run that has just ended.
[[nodiscard]] Record newRecord(const QJsonObject& certificate);

/// A column of the table of records, in the order in which rows are shown, and the key under which
/// programs get it.
struct Column {
    const char* name;
    const char* key;
    /// Its value: text, whole number, or (columns that end in _ms) milliseconds since 1970, UTC.
    QVariant (*value)(const Record& record);
};

inline constexpr std::size_t columnCount = 17;
[[nodiscard]] const std::array<Column, columnCount>& columns();

/// What became of images and components, each list sorted.
inline constexpr std::array<const char*, 5> tagLists{"written", "confirmed", "not_matched",
                                                     "incomplete", "erased"};
/// An object with the lists above: written, confirmed and not_matched as the result has them;
/// incomplete: begun and not locked; erased: shown as good before and, in no version,
/// afterwards.
[[nodiscard]] QJsonObject tagsOf(const QJsonObject& certificate);

/// What stands before the version: "JHA2A" of "JHA2A-1.10".
[[nodiscard]] QString familyOf(const QString& tag);

/// The radio's components as they were read last; nothing when they were not.
[[nodiscard]] std::optional<QJsonArray> lastConfiguration(const QJsonObject& certificate);

/// @p text as any database takes it: U+FFFD for the character 0, and never null.
[[nodiscard]] QString storable(QString text);

} // namespace fldc::history
