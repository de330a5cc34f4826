#include "history/Database.h"

#include "history/Schema.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QSqlError>
#include <QUrlQuery>
#include <QUuid>

#include <algorithm>

namespace fldc::history {

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 migrationLock = 0x666c6463; // any number that programs of one database share

QString oneLine(QString text)
{
    return text.simplified().remove(u"QPSQL: "_s);
}

// As libpq reads values of connection options; Qt splits them at semicolons before.
QString optionText(const QString& key, QString value)
{
    value.replace(u"\\"_s, u"\\\\"_s).replace(u"'"_s, u"\\'"_s).remove(u';');
    return key + u"='"_s + value + u'\'';
}

qint64 startOf(const Record& record)
{
    return columns()[1].value(record).toLongLong();
}

} // namespace

Database::Database(StoreAddress address, std::chrono::milliseconds patience)
    : m_address(std::move(address)), m_patience(patience),
      m_connection(QUuid::createUuid().toString()),
      m_database(
          QSqlDatabase::addDatabase(isPostgreSql() ? u"QPSQL"_s : u"QSQLITE"_s, m_connection))
{
}

Database::~Database()
{
    m_database.close();
    m_database = {};
    QSqlDatabase::removeDatabase(m_connection);
}

bool Database::isPostgreSql() const
{
    return m_address.kind == StoreAddress::Kind::PostgreSql;
}

void Database::describeServer()
{
    const QUrl& url = m_address.url;
    const qint64 seconds = std::max<qint64>(2, m_patience.count() / 1000);
    QStringList options{optionText(u"connect_timeout"_s, QString::number(seconds)),
                        optionText(u"application_name"_s, u"fldc"_s),
                        optionText(u"tcp_user_timeout"_s, u"10000"_s)};
    m_database.setHostName(url.host(QUrl::FullyDecoded));
    m_database.setPort(url.port());
    m_database.setUserName(url.userName(QUrl::FullyDecoded));
    m_database.setPassword(url.password(QUrl::FullyDecoded));
    m_database.setDatabaseName(url.path(QUrl::FullyDecoded).mid(1));
    for (const auto& [key, value] : QUrlQuery(url).queryItems(QUrl::FullyDecoded))
        options.append(optionText(key, value));
    m_database.setConnectOptions(options.join(u';'));
}

bool Database::open()
{
    if (!m_database.isValid()) {
        m_failure = u"Qt's driver is missing: install %1."_s.arg(
            isPostgreSql() ? u"libqt6sql6-psql"_s : u"libqt6sql6-sqlite"_s);
        return false;
    }
    if (isPostgreSql()) {
        describeServer();
    } else {
        m_database.setDatabaseName(m_address.path);
        m_database.setConnectOptions(u"QSQLITE_BUSY_TIMEOUT=%1"_s.arg(m_patience.count()));
    }
    if (!m_database.open()) {
        m_failure = oneLine(m_database.lastError().text());
        return false;
    }
    return prepareConnection() && migrate();
}

bool Database::prepareConnection()
{
    if (isPostgreSql())
        return execute(u"SET client_min_messages = warning"_s) &&
               execute(u"SET lock_timeout = %1"_s.arg(m_patience.count()));
    // A record that was told delivered must outlive a loss of power.
    return execute(u"PRAGMA journal_mode = WAL"_s) && execute(u"PRAGMA synchronous = FULL"_s);
}

bool Database::migrate()
{
    QSqlQuery answer(m_database);
    const int newest = migrations().back().version;
    const bool known =
        execute(u"SELECT version FROM history_schema"_s, {}, &answer) && answer.next();
    const int version = known ? answer.value(0).toInt() : 0;
    answer.finish();
    m_failure.clear();
    if (version > newest) {
        m_failure = u"Its tables have version %1; this program knows %2. Use a newer program."_s
                        .arg(version)
                        .arg(newest);
        return false;
    }
    return version == newest || inTransaction([this] { return applyMigrations(); });
}

// Under a lock that all programs share, so that two at once don't both make the tables.
bool Database::applyMigrations()
{
    if (isPostgreSql() && !execute(u"SELECT pg_advisory_xact_lock(%1)"_s.arg(migrationLock)))
        return false;
    QSqlQuery answer(m_database);
    if (!execute(u"CREATE TABLE IF NOT EXISTS history_schema (version INTEGER NOT NULL)"_s) ||
        !execute(u"SELECT version FROM history_schema"_s, {}, &answer))
        return false;
    const bool isNew = !answer.next();
    const int version = isNew ? 0 : answer.value(0).toInt();
    answer.finish();
    if (isNew && !execute(u"INSERT INTO history_schema VALUES (0)"_s))
        return false;
    const QString keyType = isPostgreSql() ? u"TEXT COLLATE \"C\""_s : u"TEXT"_s;
    for (const Migration& migration : migrations()) {
        if (migration.version <= version)
            continue;
        for (const char* statement : migration.statements) {
            if (!execute(QString::fromLatin1(statement).replace(u"TEXT_KEY"_s, keyType)))
                return false;
        }
        if (!execute(u"UPDATE history_schema SET version = ?"_s, {migration.version}))
            return false;
    }
    return true;
}

bool Database::insert(const Record& record)
{
    return inTransaction([&] { return insertSteps(record); });
}

bool Database::insertSteps(const Record& record)
{
    const QJsonObject tags = tagsOf(record.certificate);
    QStringList names;
    QStringList places;
    QVariantList values;
    for (const Column& column : columns()) {
        names.append(QString::fromLatin1(column.name));
        values.append(column.value(record));
    }
    names += {u"tags"_s, u"certificate"_s};
    for (const QJsonObject& object : {tags, record.certificate})
        values.append(QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact)));
    places.fill(u"?"_s, names.size());
    QSqlQuery inserted(m_database);
    if (!execute(u"INSERT INTO history_record ("_s + names.join(u", ") + u") VALUES ("_s +
                     places.join(u", ") + u") ON CONFLICT DO NOTHING"_s,
                 values, &inserted))
        return false;
    if (inserted.numRowsAffected() == 0)
        return true; // it was delivered before
    return insertTags(record, tags) && followUnit(record);
}

bool Database::insertTags(const Record& record, const QJsonObject& tags)
{
    QStringList concerned;
    for (const auto key : {"written"_L1, "incomplete"_L1, "erased"_L1}) {
        for (const auto& tag : tags[key].toArray())
            concerned.append(tag.toString());
    }
    concerned.removeDuplicates();
    return std::ranges::all_of(concerned, [&](const QString& tag) {
        return execute(
            u"INSERT INTO history_tag VALUES (?, ?, ?, ?)"_s,
            {record.id, tag, startOf(record), record.certificate["result"_L1]["exit"_L1].toInt()});
    });
}

// Records may come in any order: what is older than what is known of the unit changes nothing.
bool Database::followUnit(const Record& record)
{
    const QString unit = storable(record.certificate["unit"_L1].toString());
    if (unit.isEmpty())
        return true;
    const QJsonValue result = record.certificate["result"_L1];
    if (!execute(u"INSERT INTO history_unit VALUES (?, ?, ?, ?, ?, -1) ON CONFLICT (name) DO "
                 "UPDATE SET start_ms = excluded.start_ms, record_id = excluded.record_id, "
                 "exit = excluded.exit, radio = excluded.radio "
                 "WHERE history_unit.start_ms <= excluded.start_ms"_s,
                 {unit, startOf(record), record.id, result["exit"_L1].toInt(),
                  storable(result["radio"_L1].toString())}))
        return false;
    const auto components = lastConfiguration(record.certificate);
    if (!components)
        return true;
    QSqlQuery updated(m_database);
    if (!execute(u"UPDATE history_unit SET configuration_ms = ? "
                 "WHERE name = ? AND configuration_ms <= ?"_s,
                 {startOf(record), unit, startOf(record)}, &updated))
        return false;
    return updated.numRowsAffected() == 0 || replaceProducts(record, *components);
}

bool Database::replaceProducts(const Record& record, const QJsonArray& components)
{
    const QString unit = storable(record.certificate["unit"_L1].toString());
    if (!execute(u"DELETE FROM history_product WHERE unit = ?"_s, {unit}))
        return false;
    return std::ranges::all_of(components, [&](const auto& component) {
        const QString product = storable(component["product"_L1].toString());
        return execute(u"INSERT INTO history_product VALUES (?, ?, ?, ?, ?, ?)"_s,
                       {unit, product, familyOf(product), component["status"_L1].toInt(),
                        component["network"_L1].toInt(), component["device"_L1].toInt()});
    });
}

// SQLite would refuse a transaction that reads first and then finds another one writing.
bool Database::inTransaction(const std::function<bool()>& steps)
{
    if (!execute(isPostgreSql() ? u"BEGIN"_s : u"BEGIN IMMEDIATE"_s))
        return false;
    if (steps() && execute(u"COMMIT"_s))
        return true;
    const QString failure = m_failure;
    (void)execute(u"ROLLBACK"_s);
    m_failure = failure;
    return false;
}

bool Database::execute(const QString& statement, const QVariantList& values, QSqlQuery* answered)
{
    QSqlQuery own(m_database);
    QSqlQuery& query = answered != nullptr ? *answered : own;
    query.setForwardOnly(true);
    bool isDone = false;
    if (values.isEmpty()) {
        isDone = query.exec(statement); // some statements can't be prepared
    } else if (query.prepare(statement)) {
        for (const QVariant& value : values)
            query.addBindValue(value);
        isDone = query.exec();
    }
    if (!isDone)
        m_failure = oneLine(query.lastError().text());
    return isDone;
}

} // namespace fldc::history
