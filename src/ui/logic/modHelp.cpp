#include "ui/logic/modHelp.h"

#include "platform/IHelpViewer.h"
#include "platform/IProgramInfo.h"
#include "platform/PlatformFailure.h"

#include <utility>

namespace fldc {

QString HelpFilePath(const IProgramInfo& program)
{
    return program.folder() + QStringLiteral("\\rv4kd_en.chm");
}

modHelp::modHelp(IHelpViewer& viewer, std::function<void(const QString&)> showMessage)
    : m_viewer(viewer), m_showMessage(std::move(showMessage))
{
}

void modHelp::HHDisplayContents(std::uintptr_t window, std::int32_t lngContext,
                                const QString& strHelpFile)
{
    if (!strHelpFile.isEmpty())
        m_helpFile = strHelpFile;
    if (!step([&] { m_viewer.displayContents(m_helpFile); }) || lngContext == 0)
        return;
    (void)step([&] { m_viewer.displayTopic(window, m_programHelpFile, lngContext); });
}

// False when the request ends here, because there is no viewer.
bool modHelp::step(const std::function<void()>& request) const
{
    try {
        request();
    } catch (...) {
        if (currentFailure().number() == static_cast<int>(FailureNumber::FileNotFound)) {
            m_showMessage(QStringLiteral("HTML Help is not installed."));
            return false;
        }
    }
    return true;
}

} // namespace fldc
