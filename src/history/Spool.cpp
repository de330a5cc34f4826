#include "history/Spool.h"

#include "history/Database.h"

#include <QCryptographicHash>
#include <QDir>
#include <QJsonDocument>
#include <QSaveFile>

namespace fldc::history {

using namespace Qt::StringLiterals;

namespace {

constexpr int mostRefused = 3;

QString folderName(const StoreAddress& address)
{
    const QByteArray hash =
        QCryptographicHash::hash(address.name().toUtf8(), QCryptographicHash::Sha256);
    return QString::fromLatin1(hash.toHex().left(16));
}

QStringList namesIn(const QString& folder)
{
    return QDir(folder).entryList({u"*.json"_s}, QDir::Files, QDir::Name);
}

enum class Reading { Record, Gone, Bad };

Reading read(const QString& path, Record& record)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return Reading::Gone; // another program has delivered it
    const QJsonObject object = QJsonDocument::fromJson(file.readAll()).object();
    record = {object["id"_L1].toString(), object["certificate"_L1].toObject()};
    return record.id.isEmpty() || record.certificate.isEmpty() ? Reading::Bad : Reading::Record;
}

} // namespace

Spool::Spool(const QString& folder, const StoreAddress& address)
    : m_folder(folder + u"/spool/"_s + folderName(address))
{
}

QString Spool::put(const Record& record) const
{
    if (!QDir().mkpath(m_folder))
        return u"The folder %1 can't be made."_s.arg(m_folder);
    QSaveFile file(m_folder + u'/' + record.id + u".json"_s);
    const QJsonObject object{{"id"_L1, record.id}, {"certificate"_L1, record.certificate}};
    const QByteArray content = QJsonDocument(object).toJson(QJsonDocument::Compact);
    // QSaveFile's own flush does not see a disk that is full.
    const bool isWritten =
        file.open(QIODevice::WriteOnly) && file.write(content) == content.size() && file.flush();
    if (!isWritten)
        file.cancelWriting();
    if (!file.commit() || !isWritten)
        return m_folder + u": "_s + file.errorString();
    return {};
}

Spool::Delivery Spool::deliver(Database& database, const std::function<bool()>& wantsEnd) const
{
    Delivery delivery;
    const QStringList names = namesIn(m_folder);
    if (names.isEmpty())
        return delivery;
    int refused = 0;
    const bool isOpen = database.open();
    for (const QString& name : names) {
        if (!isOpen || refused == mostRefused || wantsEnd())
            break;
        const QString path = m_folder + u'/' + name;
        Record record;
        const Reading reading = read(path, record);
        if (reading == Reading::Bad)
            (void)QFile::rename(path, path + u".bad"_s);
        if (reading != Reading::Record)
            continue;
        if (!database.insert(record)) {
            ++refused;
            continue;
        }
        ++delivery.delivered;
        (void)QFile::remove(path);
    }
    delivery.waiting = waiting();
    if (delivery.waiting > 0)
        delivery.failure = database.failure();
    return delivery;
}

qsizetype Spool::waiting() const
{
    return namesIn(m_folder).size();
}

} // namespace fldc::history
