#pragma once

#include "fldc/files/FirmwareFile.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QString>

namespace fldc::cli {

// Firmware as it is shown: "file" objects with their images, and the same for people.

[[nodiscard]] QJsonObject fileObject(const FirmwareFile& file);
[[nodiscard]] QString fileText(const FirmwareFile& file);

/// The parts that objects of images have in common, of kind::image or kind::planImage.
struct ImageParts {
    QString tag;
    std::int32_t unitBits = 0;
    bool bootApplication = false;
    QJsonArray targets;
    QJsonArray tables;
};

/// @p isFirst: the image is the first of its file; the component sends no other as a boot
/// application.
[[nodiscard]] ImageParts imageParts(const clsFile& image, bool isFirst);
/// "JHA2F-2.03, 16-bit units, for RVKC4 device 0; ..."
[[nodiscard]] QString imageTitle(const clsFile& image);

} // namespace fldc::cli
