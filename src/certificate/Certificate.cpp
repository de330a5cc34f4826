#include "certificate/Certificate.h"

#include "certificate/JsonObject.h"

#include "firmware/clsFile.h"
#include "firmware/colDataBlocks.h"
#include "shared/HexText.h"

#include <QSysInfo>

#include <zlib.h>

#include <algorithm>

#include <pwd.h>
#include <unistd.h>

namespace fldc {

using namespace Qt::StringLiterals;

namespace {

QString userName()
{
    const uid_t user = ::geteuid();
    const passwd* entry = ::getpwuid(user); // there is one thread
    return entry != nullptr ? QString::fromLocal8Bit(entry->pw_name) : QString::number(user);
}

QJsonArray without(QJsonArray components, const QJsonArray& others)
{
    for (const auto& other : others) {
        const auto found = std::find(components.begin(), components.end(), other);
        if (found != components.end())
            components.erase(found);
    }
    return components;
}

} // namespace

QString crc32Text(const colDataBlocks& data)
{
    const auto bytes = data.bytes().first(static_cast<std::size_t>(data.Count()));
    const auto value = static_cast<std::uint32_t>(::crc32_z(0, bytes.data(), bytes.size()));
    return hexNumber(value, 8).toLower();
}

QJsonValue configurationDifference(const QJsonValue& before, const QJsonValue& after)
{
    if (!before.isArray() || !after.isArray())
        return {};
    return makeObject(kind::certificateDifference,
                      {{"added"_L1, without(after.toArray(), before.toArray())},
                       {"removed"_L1, without(before.toArray(), after.toArray())}});
}

Certificate::Certificate(CertificateFacts facts, std::vector<FileImage> images)
    : m_facts(std::move(facts)), m_images(std::move(images))
{
}

QMap<QString, QString> Certificate::checksums() const
{
    QMap<QString, QString> checksums;
    for (const FileImage& each : m_images) {
        const QString tag = validText(each.image->TagName());
        const auto tables = each.image->Definitiontables();
        for (std::int32_t i = 0; i < tables->Count(); ++i) {
            const DataDefinition& table = tables->Item(i);
            const auto address = static_cast<std::uint32_t>(table.Address.toInt());
            checksums.insert(tableKey(each.file, tag, qint64{address}),
                             crc32Text(*table.Datablocks));
        }
    }
    return checksums;
}

QString Certificate::tableKey(int file, const QString& tag, qint64 address)
{
    return QString::number(file) + u'/' + QString::number(address) + u'/' + tag;
}

void Certificate::hear(const ObjectKind& kind, const QJsonObject& object)
{
    if (kind.name == kind::radio.name)
        m_radio = object;
    else if (kind.name == kind::bootApplication.name)
        m_bootApplication = object;
    else if (kind.name == kind::speed.name)
        m_speed = object;
    else if (kind.name == kind::configuration.name)
        hearConfiguration(object);
    else if (kind.name == kind::target.name)
        m_targets.push_back({object, {}, false});
    else if (kind.name == kind::table.name)
        hearTable(object);
    else if (kind.name == kind::blocks.name)
        hearBlocks(object);
    else if (kind.name == kind::retry.name)
        m_retries.append(object);
}

void Certificate::hearConfiguration(const QJsonObject& object)
{
    // What an erasure reads first is a report.
    const bool after = object["when"_L1].toString() == "after"_L1;
    (after ? m_after : m_before) = object["components"_L1];
}

void Certificate::hearTable(const QJsonObject& object)
{
    if (m_targets.empty())
        return;
    Target& target = m_targets.back();
    target.tables.append(
        makeObject(kind::certificateTable, {{"address"_L1, object["address"_L1]},
                                            {"bytes"_L1, object["bytes"_L1]},
                                            {"wire_bytes"_L1, object["wire_bytes"_L1]},
                                            {"compressed"_L1, object["compressed"_L1]},
                                            {"crc32"_L1, QJsonValue()}}));
}

void Certificate::hearBlocks(const QJsonObject& object)
{
    if (m_targets.empty())
        return;
    Target& target = m_targets.back();
    const QString action = object["action"_L1].toString();
    if (action == "erased"_L1)
        target.tables = {};
    target.locked = action == "locked"_L1;
}

QJsonObject Certificate::toJson(const QJsonObject& result) const
{
    QJsonArray targets;
    const auto checksums = m_targets.empty() ? QMap<QString, QString>() : this->checksums();
    for (Target target : m_targets) {
        for (auto&& table : target.tables) {
            // A run that had to be put together anew for the radio's flash is none of the file's.
            const auto checksum = checksums.constFind(
                tableKey(target.object["file"_L1].toInt(), target.object["tag"_L1].toString(),
                         table.toObject()["address"_L1].toInteger()));
            if (checksum == checksums.constEnd())
                continue;
            QJsonObject known = table.toObject();
            known["crc32"_L1] = *checksum;
            table = known;
        }
        targets.append(
            makeObject(kind::certificateTarget, {{"file"_L1, target.object["file"_L1]},
                                                 {"tag"_L1, target.object["tag"_L1]},
                                                 {"network"_L1, target.object["network"_L1]},
                                                 {"device"_L1, target.object["device"_L1]},
                                                 {"tables"_L1, target.tables},
                                                 {"locked"_L1, target.locked}}));
    }
    QJsonObject certificate = makeObject(
        kind::certificate, {{"schema"_L1, schema},
                            {"started"_L1, m_facts.started},
                            {"radio"_L1, m_radio},
                            {"boot_application"_L1, m_bootApplication},
                            {"speed"_L1, m_speed},
                            {"configuration_before"_L1, m_before},
                            {"configuration_after"_L1, m_after},
                            {"difference"_L1, configurationDifference(m_before, m_after)},
                            {"targets"_L1, targets},
                            {"retries"_L1, m_retries},
                            {"result"_L1, result},
                            {"host"_L1, QSysInfo::machineHostName()},
                            {"user"_L1, userName()},
                            {"version"_L1, m_facts.started["version"_L1]},
                            {"adapter"_L1, m_facts.adapter},
                            {"unit"_L1, m_facts.unit},
                            {"job"_L1, m_facts.job},
                            {"start"_L1, m_facts.start},
                            {"end"_L1, utcNow()}});
    certificate.insert("type"_L1, QString(kind::certificate.name));
    return certificate;
}

} // namespace fldc
