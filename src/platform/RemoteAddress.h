#pragma once

#include <QString>

#include <cstdint>
#include <optional>

namespace fldc {

/// Where a serial line on another machine is offered over RFC 2217.
struct RemoteAddress {
    QString host; ///< name, IPv4 address, or IPv6 address without its brackets
    std::uint16_t port = 0;
    friend bool operator==(const RemoteAddress&, const RemoteAddress&) = default;
};

/// Whether the text of a port means a remote line, well written or not ("rfc2217:…").
[[nodiscard]] bool isRemote(const QString& text);
/// Reads "rfc2217://HOST:PORT", an IPv6 address in brackets; nothing for any other form: without a
/// port, with a user, a path, a question.
[[nodiscard]] std::optional<RemoteAddress> remoteAddress(const QString& text);

} // namespace fldc
