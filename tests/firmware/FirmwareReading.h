#pragma once

#include "firmware/SRecordReader.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>
#include <string>

namespace fldc::test {

struct Outcome {
    std::optional<NotValid> problem;
    std::int32_t lastError = 0;
    std::shared_ptr<colFiles> images = std::make_shared<colFiles>();
};

/// Reads @p text as the content of a file, during which exactly the error boxes @p boxes are shown.
[[nodiscard]] Outcome readFirmware(const QByteArray& text,
                                   Compression compression = Compression::Zlib,
                                   const QStringList& boxes = {});

/// @p text with a blank behind every data record that is as long as its count says, which keeps it
/// from the fast way of reading.
[[nodiscard]] QByteArray madeSlow(const QByteArray& text);

/// What the compressed data give when they are sent in chunks and inflated; empty when they are
/// not as long as announced, or have more behind the stream than the byte that makes them even.
[[nodiscard]] QByteArray inflated(colDataBlocks& blocks);

/// Every image in a line of its own: key (readFirmware reads a file "f"), tag in quotes, bits,
/// record types, targets, and of every table the address, length, byte count and data, as in
///
///     f 'RV' 16 S1/S9 <RVKB1:2> 4096+2(4)=00010203
[[nodiscard]] std::string describe(const colFiles& images);

} // namespace fldc::test
