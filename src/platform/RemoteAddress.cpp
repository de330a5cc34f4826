#include "platform/RemoteAddress.h"

#include <QUrl>

namespace fldc {

using namespace Qt::StringLiterals;

bool isRemote(const QString& text)
{
    return text.startsWith("rfc2217:"_L1, Qt::CaseInsensitive);
}

std::optional<RemoteAddress> remoteAddress(const QString& text)
{
    const QUrl url(text, QUrl::StrictMode);
    const bool isPlain = url.isValid() && isRemote(text) && url.userInfo().isEmpty() &&
                         (url.path().isEmpty() || url.path() == u"/") && !url.hasQuery() &&
                         !url.hasFragment();
    if (!isPlain || url.host().isEmpty() || url.port() < 1)
        return std::nullopt;
    return RemoteAddress{url.host(), static_cast<std::uint16_t>(url.port())};
}

} // namespace fldc
