#pragma once

#include "firmware/SRecordReader.h"
#include "platform/PlatformFailure.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>
#include <string>
#include <vector>

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

/// The lines, each with @p lineEnd behind it.
[[nodiscard]] QByteArray joined(const std::vector<std::string>& lines,
                                const char* lineEnd = "\r\n");

/// Every image in a line of its own: key (readFirmware reads a file "f"), tag in quotes, bits,
/// record types, targets, and of every table the address, length, byte count and data, as in
///
///     f 'RV' 16 S1/S9 <RVKB1:2> 4096+2(4)=00010203
[[nodiscard]] std::string describe(const colFiles& images);

/// Number of the PlatformFailure that @p action throws; 0 when it throws none.
template <class Action>
int failureOf(Action action)
{
    try {
        action();
        return 0;
    } catch (const PlatformFailure& failure) {
        return failure.number();
    }
}

} // namespace fldc::test
