#pragma once

#include <QStringView>

namespace fldc {

/// Whether firmware for the hardware @p hardware is for the component @p product of a radio: its
/// product identifier begins with the hardware's, which has five characters.
[[nodiscard]] inline bool matchesHardware(QStringView product, QStringView hardware)
{
    return product.left(5) == hardware;
}

} // namespace fldc
