#pragma once

#include "firmware/Compression.h"

#include <QByteArray>

#include <cstdint>
#include <span>

namespace fldc {

/// SHA-256 of @p bytes, 32 bytes. @p pace is called behind each piece; empty when it gave up.
[[nodiscard]] QByteArray sha256Of(std::span<const std::uint8_t> bytes, const Pace& pace);

/// What a file held when it was read.
struct ContentHash {
    QByteArray sha256; ///< empty when nobody waited for it
    qint64 bytes = 0;
};

} // namespace fldc
