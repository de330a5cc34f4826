#include "firmware/check/ContentHash.h"

#include <QCryptographicHash>

#include <algorithm>

namespace fldc {

namespace {

constexpr std::size_t hashedAtOnce = std::size_t{1} << 20;

} // namespace

QByteArray sha256Of(std::span<const std::uint8_t> bytes, const Pace& pace)
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    while (!bytes.empty()) {
        const auto piece = bytes.first(std::min(bytes.size(), hashedAtOnce));
        hash.addData(QByteArrayView(piece.data(), static_cast<qsizetype>(piece.size())));
        bytes = bytes.subspan(piece.size());
        if (!goesOn(pace, 0))
            return {};
    }
    return hash.result();
}

} // namespace fldc
