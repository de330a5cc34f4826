#include "history/Delivery.h"

#include "history/Database.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace fldc::history {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype manyWaiting = 10;

QString notKept(const QString& why)
{
    return u"this run is not in the history: "_s + why;
}

} // namespace

Kept keep(const ChosenStore& store, const QJsonObject& certificate) noexcept
{
    Kept kept;
    try {
        const Spool spool(store.folder, *store.address);
        if (const qsizetype waiting = spool.waiting(); waiting >= manyWaiting)
            kept.remarks.append(
                u"%1 records wait for %2; see `fldc history deliver`."_s.arg(waiting).arg(
                    store.address->name()));
        const QString failure = spool.put(newRecord(certificate));
        kept.isKept = failure.isEmpty();
        if (!kept.isKept)
            kept.remarks.append(notKept(failure));
    } catch (const std::exception& failure) {
        kept.remarks.append(notKept(QString::fromLocal8Bit(failure.what())));
    }
    return kept;
}

void prepareDelivery(QProcess& process, const ChosenStore& store, const QStringList& arguments)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QString::fromLatin1(storeVariable), store.text);
    process.setProcessEnvironment(environment);
    process.setProgram(QCoreApplication::applicationFilePath());
    process.setArguments(arguments);
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
}

Spool::Delivery deliver(const ChosenStore& store, std::chrono::milliseconds patience,
                        const std::function<bool()>& wantsEnd)
{
    if (store.address->kind == StoreAddress::Kind::Sqlite)
        (void)QDir().mkpath(QFileInfo(store.address->path).path());
    Database database(*store.address, patience);
    return Spool(store.folder, *store.address).deliver(database, wantsEnd);
}

} // namespace fldc::history
