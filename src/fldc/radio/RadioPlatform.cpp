#include "fldc/radio/RadioPlatform.h"

#include "app/services/SettingsStore.h"
#include "fldc/options/Options.h"

#include <QDir>
#include <QFile>

#include <utility>

namespace fldc::cli {

RadioPlatform::RadioPlatform(const Platform& base, IEvents& events, const Options& options,
                             const QString& device,
                             std::function<void(const QString& why)> complaint)
    : m_port(device), m_controls(m_port, events, std::move(complaint)), m_settings(base.settings),
      m_program(base.program, options),
      m_messages(base.messages, options), m_platform{events,     base.timers, base.clock,
                                                     base.files, m_settings,  m_port,
                                                     m_controls, m_program,   m_messages}
{
}

std::optional<QString> RadioPlatform::Settings::readText(const QString& name)
{
    return name == debugSetting ? QString(settingOff) : m_settings.readText(name);
}

QStringList RadioPlatform::Program::bootFolders() const
{
    if (!m_options.bootFiles)
        return m_program.bootFolders();
    return {
        QDir(QFile::decodeName(QByteArray::fromStdString(*m_options.bootFiles))).absolutePath()};
}

std::chrono::milliseconds RadioPlatform::Program::powerCycleLimit() const
{
    return m_options.powerCycleWait ? std::chrono::seconds(*m_options.powerCycleWait)
                                    : m_program.powerCycleLimit();
}

bool RadioPlatform::Messages::askYesNo(const QString& text)
{
    return m_options.allowFpga || m_messages.askYesNo(text);
}

} // namespace fldc::cli
