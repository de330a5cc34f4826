#include "history/Database.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>

namespace fldc::history {

using namespace Qt::StringLiterals;

namespace {

/// A statement as it grows, and the values of its places.
struct Statement {
    QString text;
    QVariantList values;
    QStringList conditions;

    void require(const QString& condition, const QVariant& value)
    {
        conditions.append(condition);
        values.append(value);
    }
    void end(const QString& order, qint64 limit)
    {
        if (!conditions.isEmpty())
            text += u" WHERE "_s + conditions.join(u" AND ");
        text += order;
        if (limit > 0)
            text += u" LIMIT %1"_s.arg(limit);
    }
};

QString textOfTime(qint64 milliseconds)
{
    return QDateTime::fromMSecsSinceEpoch(milliseconds, Qt::UTC).toString(Qt::ISODateWithMs);
}

QJsonObject jsonOf(const QVariant& text)
{
    return QJsonDocument::fromJson(text.toString().toUtf8()).object();
}

// Without a unit the table of tags leads, and its indexes answer for exit and time; a unit has so
// few records that its own index is the better start.
Statement statementOf(const Question& asked)
{
    const bool byTag = !asked.tag.isEmpty() && asked.unit.isEmpty() && asked.id.isEmpty();
    const QString lead = byTag ? u"t."_s : u"r."_s;
    Statement statement;
    QStringList names;
    for (const Column& column : columns())
        names.append(u"r."_s + QString::fromLatin1(column.name));
    statement.text = u"SELECT "_s + names.join(u", ") + u", r.tags"_s +
                     (asked.certificates ? u", r.certificate"_s : u""_s) +
                     (byTag ? u" FROM history_tag t JOIN history_record r ON r.id = t.record_id"_s
                            : u" FROM history_record r"_s);
    if (byTag)
        statement.require(u"t.tag = ?"_s, asked.tag);
    else if (!asked.tag.isEmpty())
        statement.require(u"EXISTS (SELECT 1 FROM history_tag t WHERE t.record_id = r.id "
                          "AND t.tag = ?)"_s,
                          asked.tag);
    if (!asked.id.isEmpty()) {
        statement.require(u"r.id >= ?"_s, asked.id);
        statement.require(u"r.id < ?"_s,
                          QString(asked.id + u'g')); // behind every hexadecimal digit
    }
    if (!asked.unit.isEmpty())
        statement.require(u"r.unit = ?"_s, asked.unit);
    if (asked.since)
        statement.require(lead + u"start_ms >= ?"_s, *asked.since);
    if (asked.until)
        statement.require(lead + u"start_ms < ?"_s, *asked.until);
    if (asked.exit)
        statement.require(lead + u"exit = ?"_s, *asked.exit);
    if (asked.failed)
        statement.conditions.append(lead + u"exit <> 0"_s); // as the partial indexes have it
    statement.end(u" ORDER BY "_s + lead + u"start_ms DESC"_s, asked.limit);
    return statement;
}

QVariantMap rowOf(const QSqlQuery& answer, bool certificates)
{
    QVariantMap row;
    int place = 0;
    for (const Column& column : columns()) {
        const QVariant value = answer.value(place++);
        row.insert(QString::fromLatin1(column.key),
                   QLatin1StringView(column.name).endsWith("_ms"_L1)
                       ? QVariant(textOfTime(value.toLongLong()))
                       : value);
    }
    const QJsonObject tags = jsonOf(answer.value(place++));
    for (const char* list : tagLists)
        row.insert(QString::fromLatin1(list),
                   tags[QLatin1StringView(list)].toVariant().toStringList());
    if (certificates)
        row.insert(u"certificate"_s, jsonOf(answer.value(place)));
    return row;
}

} // namespace

bool Database::records(const Question& question, const Row& row)
{
    const Statement statement = statementOf(question);
    QSqlQuery answer(m_database);
    if (!execute(statement.text, statement.values, &answer))
        return false;
    while (answer.next()) {
        if (!row(rowOf(answer, question.certificates)))
            return true;
    }
    return true;
}

bool Database::units(const QStringList& outdated, qint64 limit, const Row& row)
{
    Statement chosen;
    chosen.text = u"SELECT name, start_ms, record_id, exit, radio FROM history_unit u"_s;
    QStringList reasons;
    for (const QString& tag : outdated) {
        reasons.append(u"u.name IN (SELECT p.unit FROM history_product p WHERE p.family = ? "
                       "AND (p.product <> ? OR p.status <> 0)) OR (u.exit = 7 AND EXISTS (SELECT 1 "
                       "FROM history_product p WHERE p.unit = u.name AND p.family = ?))"_s);
        chosen.values += {familyOf(tag), tag, familyOf(tag)};
    }
    if (!reasons.isEmpty())
        chosen.conditions.append(u"(%1)"_s.arg(reasons.join(u" OR ")));
    chosen.end(u" ORDER BY name"_s, limit);

    QSqlQuery answer(m_database);
    if (!execute(u"SELECT c.name, c.start_ms, c.record_id, c.exit, c.radio, p.product, p.status, "
                 "p.network, p.device FROM (%1) c LEFT JOIN history_product p ON p.unit = c.name "
                 "ORDER BY c.name, p.network, p.device, p.product"_s.arg(chosen.text),
                 chosen.values, &answer))
        return false;
    QVariantMap unit;
    QList<QVariantMap> products;
    const auto tell = [&] {
        unit.insert(u"products"_s, QVariant::fromValue(products));
        products.clear();
        return row(unit);
    };
    while (answer.next()) {
        const QString name = answer.value(0).toString();
        if (!unit.isEmpty() && unit[u"unit"_s] != name && !tell())
            return true;
        unit = {{u"unit"_s, name},
                {u"start"_s, textOfTime(answer.value(1).toLongLong())},
                {u"record"_s, answer.value(2)},
                {u"exit"_s, answer.value(3)},
                {u"radio"_s, answer.value(4)}};
        if (!answer.isNull(5))
            products.append({{u"product"_s, answer.value(5)},
                             {u"status"_s, answer.value(6)},
                             {u"network"_s, answer.value(7)},
                             {u"device"_s, answer.value(8)}});
    }
    if (!unit.isEmpty())
        (void)tell();
    return true;
}

} // namespace fldc::history
