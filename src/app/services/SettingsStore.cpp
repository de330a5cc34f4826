#include "app/services/SettingsStore.h"

#include "platform/ISettingsFile.h"

namespace fldc {

QString ReadSetting(ISettingsFile& settings, const QString& name, const QString& defaultText)
{
    try {
        return settings.readText(name).value_or(defaultText);
    } catch (...) {
        return defaultText;
    }
}

void WriteSetting(ISettingsFile& settings, const QString& name, const QString& value)
{
    try {
        settings.writeText(name, value);
    } catch (...) {
        // Not remembered; the operation that wanted it goes on.
    }
}

} // namespace fldc
