#include "history/Record.h"

#include <QDateTime>
#include <QJsonArray>
#include <QUuid>

#include <algorithm>

namespace fldc::history {

using namespace Qt::StringLiterals;

namespace {

QVariant textAt(const Record& record, QLatin1StringView key)
{
    return storable(record.certificate[key].toString());
}

QVariant textIn(const Record& record, QLatin1StringView object, QLatin1StringView key)
{
    return storable(record.certificate[object][key].toString());
}

QVariant timeAt(const Record& record, QLatin1StringView key)
{
    return QDateTime::fromString(record.certificate[key].toString(), Qt::ISODateWithMs)
        .toMSecsSinceEpoch();
}

constexpr std::array<Column, columnCount> table{{
    {"id", "id", [](const Record& r) -> QVariant { return r.id; }},
    {"start_ms", "start", [](const Record& r) { return timeAt(r, "start"_L1); }},
    {"end_ms", "end", [](const Record& r) { return timeAt(r, "end"_L1); }},
    {"command", "command", [](const Record& r) { return textIn(r, "started"_L1, "command"_L1); }},
    {"unit", "unit", [](const Record& r) { return textAt(r, "unit"_L1); }},
    {"job", "job", [](const Record& r) { return textAt(r, "job"_L1); }},
    {"port", "port", [](const Record& r) { return textIn(r, "started"_L1, "port"_L1); }},
    {"device", "device", [](const Record& r) { return textIn(r, "started"_L1, "device"_L1); }},
    {"adapter", "adapter", [](const Record& r) { return textIn(r, "adapter"_L1, "serial"_L1); }},
    {"host", "host", [](const Record& r) { return textAt(r, "host"_L1); }},
    {"user_name", "user", [](const Record& r) { return textAt(r, "user"_L1); }},
    {"version", "version", [](const Record& r) { return textAt(r, "version"_L1); }},
    {"identifier", "identifier",
     [](const Record& r) { return textIn(r, "radio"_L1, "identifier"_L1); }},
    {"exit", "exit",
     [](const Record& r) -> QVariant { return r.certificate["result"_L1]["exit"_L1].toInt(); }},
    {"code", "code",
     [](const Record& r) -> QVariant { return r.certificate["result"_L1]["code"_L1].toInt(); }},
    {"radio", "radio", [](const Record& r) { return textIn(r, "result"_L1, "radio"_L1); }},
    {"message", "message", [](const Record& r) { return textIn(r, "result"_L1, "message"_L1); }},
}};

QStringList texts(const QJsonValue& array)
{
    QStringList list;
    for (const auto& each : array.toArray())
        list.append(storable(each.toString()));
    return list;
}

QStringList goodProducts(const QJsonValue& components)
{
    QStringList list;
    for (const auto& each : components.toArray()) {
        if (each["status"_L1].toInt() == 0)
            list.append(storable(each["product"_L1].toString()));
    }
    return list;
}

} // namespace

Record newRecord(const QJsonObject& certificate)
{
    return {QUuid::createUuid().toString(QUuid::WithoutBraces), certificate};
}

const std::array<Column, columnCount>& columns()
{
    return table;
}

QJsonObject tagsOf(const QJsonObject& certificate)
{
    const QJsonValue result = certificate["result"_L1];
    const QStringList written = texts(result["written"_L1]);
    QStringList incomplete;
    for (const auto& target : certificate["targets"_L1].toArray()) {
        const QString tag = storable(target["tag"_L1].toString());
        if (!target["locked"_L1].toBool() && !written.contains(tag))
            incomplete.append(tag);
    }
    QStringList erased;
    const QStringList added = goodProducts(certificate["difference"_L1]["added"_L1]);
    for (const QString& gone : goodProducts(certificate["difference"_L1]["removed"_L1])) {
        const auto replaces = [&](const QString& by) { return familyOf(by) == familyOf(gone); };
        if (std::ranges::none_of(added, replaces))
            erased.append(gone);
    }
    const std::array lists{written, texts(result["confirmed"_L1]), texts(result["not_matched"_L1]),
                           incomplete, erased};
    QJsonObject tags;
    for (std::size_t i = 0; i < lists.size(); ++i) {
        QStringList list = lists[i];
        list.sort();
        list.removeDuplicates();
        tags.insert(QLatin1StringView(tagLists[i]), QJsonArray::fromStringList(list));
    }
    return tags;
}

QString familyOf(const QString& tag)
{
    const qsizetype dash = tag.lastIndexOf(u'-');
    return dash < 0 ? tag : tag.left(dash);
}

std::optional<QJsonArray> lastConfiguration(const QJsonObject& certificate)
{
    for (const auto key : {"configuration_after"_L1, "configuration_before"_L1}) {
        if (certificate[key].isArray())
            return certificate[key].toArray();
    }
    return std::nullopt;
}

QString storable(QString text)
{
    return text.isNull() ? u""_s : text.replace(QChar::Null, QChar::ReplacementCharacter);
}

} // namespace fldc::history
