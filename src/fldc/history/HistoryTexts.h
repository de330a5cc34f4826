#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVariantMap>

namespace fldc::cli {

/// Rows as columns that fit their longest cell; the first row is the heading. Cells are made
/// printable.
[[nodiscard]] QString tableText(const QList<QStringList>& rows);

/// A line of CSV (RFC 4180, CR LF, UTF-8). A cell that a spreadsheet would take for a formula gets
/// an apostrophe before it.
[[nodiscard]] QString csvLine(const QStringList& cells);

/// Heading and cells of a record in a table, and all of them in CSV.
[[nodiscard]] QStringList recordHeading();
[[nodiscard]] QStringList recordCells(const QVariantMap& record);
[[nodiscard]] QStringList csvHeading();
[[nodiscard]] QStringList csvCells(const QVariantMap& record);

[[nodiscard]] QStringList unitHeading();
[[nodiscard]] QStringList unitCells(const QVariantMap& unit);

/// What an exit code means, in words.
[[nodiscard]] QString exitText(int exit);

/// Milliseconds since 1970, UTC, of a day (local, its beginning; with @p end the beginning of the
/// next) or of a point in time (ISO 8601, local without a zone); nothing for any other text.
[[nodiscard]] std::optional<qint64> readTime(const QString& text, bool end);

} // namespace fldc::cli
