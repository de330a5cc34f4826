#include "history/StoreAddress.h"

#include <QDir>
#include <QFile>

namespace fldc::history {

using namespace Qt::StringLiterals;

namespace {

QString folderOf(const char* variable)
{
    const QString folder = QFile::decodeName(qgetenv(variable));
    return QDir::isAbsolutePath(folder) ? folder : QString();
}

} // namespace

QString StoreAddress::name() const
{
    if (kind == Kind::Sqlite)
        return path;
    QUrl shown = url;
    shown.setPassword({});
    if (shown.query().contains(u"password"_s))
        shown.setQuery(QString());
    return shown.toString();
}

std::optional<StoreAddress> readStoreAddress(const QString& text)
{
    StoreAddress address;
    if (text.contains(QChar(0))) // no path has one; the rest would be lost without a word
        return std::nullopt;
    if (text.startsWith(u"postgresql://"_s) || text.startsWith(u"postgres://"_s)) {
        address.kind = StoreAddress::Kind::PostgreSql;
        address.url = QUrl(text, QUrl::StrictMode);
        return address.url.isValid() ? std::optional(address) : std::nullopt;
    }
    const QString path = text.startsWith(u"sqlite:"_s) ? text.sliced(7) : text;
    if (path.isEmpty() || (path == text && !QDir::isAbsolutePath(path)))
        return std::nullopt;
    address.path = QDir(path).absolutePath();
    return address;
}

QString dataFolder()
{
    const QString given = folderOf("XDG_DATA_HOME");
    const QString home = folderOf("HOME");
    if (given.isEmpty() && home.isEmpty())
        return {};
    return (given.isEmpty() ? home + u"/.local/share"_s : given) + u"/kelvane/fldc"_s;
}

StoreAddress defaultStore(const QString& folder)
{
    StoreAddress address;
    address.path = folder + u"/history.sqlite"_s;
    return address;
}

} // namespace fldc::history
