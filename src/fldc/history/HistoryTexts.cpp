#include "fldc/history/HistoryTexts.h"

#include "certificate/ExitCodes.h"
#include "fldc/output/Terminal.h"
#include "history/Record.h"

#include <QDateTime>

namespace fldc::cli {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype shownOfId = 8;

QString localTime(const QVariant& time)
{
    return QDateTime::fromString(time.toString(), Qt::ISODateWithMs)
        .toLocalTime()
        .toString(u"yyyy-MM-dd HH:mm"_s);
}

QString tagsText(const QVariantMap& record)
{
    QStringList parts = record[u"written"_s].toStringList();
    for (const QString& tag : record[u"incomplete"_s].toStringList())
        parts.append(tag + u" (incomplete)"_s);
    for (const QString& tag : record[u"erased"_s].toStringList())
        parts.append(tag + u" (erased)"_s);
    return parts.join(u' ');
}

QString productsText(const QVariant& products)
{
    QStringList parts;
    for (const QVariantMap& product : products.value<QList<QVariantMap>>()) {
        const int status = product[u"status"_s].toInt();
        parts.append(product[u"product"_s].toString() +
                     (status == 0 ? QString() : u" (status %1)"_s.arg(status)));
    }
    parts.removeDuplicates();
    return parts.join(u' ');
}

} // namespace

QString tableText(const QList<QStringList>& rows)
{
    QList<qsizetype> widths;
    for (const QStringList& row : rows) {
        widths.resize(row.size());
        for (qsizetype i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], oneLine(row[i]).size());
    }
    QString text;
    for (const QStringList& row : rows) {
        QString line;
        for (qsizetype i = 0; i < row.size(); ++i)
            line += oneLine(row[i]).leftJustified(widths[i] + 2);
        text += line.trimmed() + u'\n';
    }
    return text;
}

QString csvLine(const QStringList& cells)
{
    QStringList quoted;
    for (QString cell : cells) {
        if (!cell.isEmpty() && u"=+-@\t\r\n"_s.contains(cell[0]))
            cell.prepend(u'\'');
        const bool isPlain = !cell.contains(u',') && !cell.contains(u'"') &&
                             !cell.contains(u'\n') && !cell.contains(u'\r');
        quoted.append(isPlain ? cell : u'"' + cell.replace(u"\""_s, u"\"\""_s) + u'"');
    }
    return quoted.join(u',') + u"\r\n"_s;
}

QStringList recordHeading()
{
    return {u"Start"_s, u"Unit"_s, u"Command"_s, u"Result"_s, u"Components"_s, u"Record"_s};
}

QStringList recordCells(const QVariantMap& record)
{
    return {localTime(record[u"start"_s]),
            record[u"unit"_s].toString(),
            record[u"command"_s].toString(),
            exitText(record[u"exit"_s].toInt()),
            tagsText(record),
            record[u"id"_s].toString().left(shownOfId)};
}

QStringList csvHeading()
{
    QStringList names;
    for (const history::Column& column : history::columns())
        names.append(QString::fromLatin1(column.key));
    for (const char* list : history::tagLists)
        names.append(QString::fromLatin1(list));
    return names;
}

QStringList csvCells(const QVariantMap& record)
{
    QStringList cells;
    for (const QString& name : csvHeading()) {
        const QVariant& value = record[name];
        cells.append(value.metaType() == QMetaType::fromType<QStringList>()
                         ? value.toStringList().join(u' ')
                         : value.toString());
    }
    return cells;
}

QStringList unitHeading()
{
    return {u"Unit"_s, u"Last run"_s, u"Result"_s, u"Components"_s, u"Record"_s};
}

QStringList unitCells(const QVariantMap& unit)
{
    return {unit[u"unit"_s].toString(), localTime(unit[u"start"_s]),
            exitText(unit[u"exit"_s].toInt()), productsText(unit[u"products"_s]),
            unit[u"record"_s].toString().left(shownOfId)};
}

QString exitText(int exit)
{
    const auto* row = std::ranges::find(exitCodes, static_cast<Exit>(exit), &ExitMeaning::code);
    return row == exitCodes.end() ? u"exit code %1"_s.arg(exit) : row->meaning.toString();
}

std::optional<qint64> readTime(const QString& text, bool end)
{
    const QDate day = QDate::fromString(text, Qt::ISODate);
    if (day.isValid() && text.size() == 10)
        return day.addDays(end ? 1 : 0).startOfDay().toMSecsSinceEpoch();
    const QDateTime time = QDateTime::fromString(text, Qt::ISODateWithMs);
    return time.isValid() ? std::optional(time.toMSecsSinceEpoch()) : std::nullopt;
}

} // namespace fldc::cli
