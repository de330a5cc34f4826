#pragma once

#include "certificate/Outcome.h"
#include "platform/IProgramInfo.h"

#include <QByteArray>
#include <QJsonArray>
#include <QJsonObject>
#include <QString>

#include <optional>

namespace fldc {

/// A file as "started" names it.
struct NamedFile {
    QString path;
    QByteArray sha256;           ///< 32 bytes; empty when it is not known
    std::optional<qint64> bytes; ///< nothing likewise
};
[[nodiscard]] QJsonObject namedFileObject(const NamedFile& file);

/// What is told at the start of a run.
struct RunStart {
    QString command;
    QString port; ///< as it was named; empty for none
    QString device;
    QJsonArray files; ///< namedFileObject() of each
    ProgramVersion version;
};
[[nodiscard]] QJsonObject startedObject(const RunStart& start);

/// @p seconds: that the whole run took.
[[nodiscard]] QJsonObject resultObject(const QString& command, const Outcome& outcome,
                                       double seconds);

/// A time in seconds, to the millisecond.
[[nodiscard]] double secondsBetween(std::chrono::steady_clock::time_point begin,
                                    std::chrono::steady_clock::time_point end);

/// What is known of the adapter behind a port without opening it; null for no device.
[[nodiscard]] QJsonValue adapterObject(const QString& device);

/// Whether a run with that result belongs into certificates and the history: no radio has seen one
/// that ended with exit code 1 or 3.
[[nodiscard]] bool concernsARadio(const QJsonObject& result);

} // namespace fldc
