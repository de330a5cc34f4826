#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

#include <functional>

namespace fldc {

/// Device paths by port number; iterates in the order of the numbers.
using PortMap = QMap<int, QString>;

/// "COM3:" for 3.
[[nodiscard]] QString portName(int number);
/// The number in "COM3" or "COM3:", 1 to 32767; 0 when @p name is not of that form.
[[nodiscard]] int portNumber(QStringView name);

/// Reads "COM1=/dev/ttyUSB0;COM7=/dev/ttyS0". An entry of another form is left out; of two entries
/// with one number the later counts.
[[nodiscard]] PortMap parsePortList(const QString& text);

/// Numbers the serial ports: first @p pinned, then every other of @p devices, in natural order of
/// the path ("ttyUSB2" before "ttyUSB10"), each with the lowest number that is free. @p realPath
/// follows links, so that a device pinned by another name is not numbered twice. Numbers that were
/// @p given to paths before stay theirs, also where the device is missing, unless they are pinned.
[[nodiscard]] PortMap numberPorts(const PortMap& pinned, QStringList devices,
                                  const std::function<QString(const QString& path)>& realPath,
                                  const PortMap& given = {});

} // namespace fldc
