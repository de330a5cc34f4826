#include "protocol/HardwareStrings.h"

#include "radio/colConfigurations.h"

#include <QHash>

namespace fldc {

void AssignHardwareStrings(colConfigurations& configurations)
{
    QHash<int, QString> hardwareOfNetwork;
    for (const auto& configuration : configurations.items()) {
        if (configuration->ProductID().startsWith(QStringLiteral("RVK")))
            hardwareOfNetwork.insert(configuration->NetWorkID(), configuration->ProductID());
    }
    for (const auto& configuration : configurations.items())
        configuration->setHardwareString(hardwareOfNetwork.value(configuration->NetWorkID()));
}

} // namespace fldc
