#include "platform/qt/display/HelpViewer.h"

#include "platform/PlatformFailure.h"

#include <QProcess>
#include <QStandardPaths>
#include <QTimer>

#include <utility>

namespace fldc {

namespace {

const auto viewerName = QStringLiteral("xchm");

QString installedViewer()
{
    const QString program = QStandardPaths::findExecutable(viewerName);
    if (program.isEmpty())
        throw PlatformFailure(FailureNumber::FileNotFound, viewerName);
    return program;
}

} // namespace

void HelpViewer::displayContents(const QString& file)
{
    m_program = installedViewer();
    m_file = QString(file).replace(u'\\', u'/');
    m_topic = 0;
    startLater();
}

void HelpViewer::displayTopic(std::uintptr_t /*owner*/, const QString& file, std::int32_t context)
{
    displayContents(file);
    m_topic = context;
}

void HelpViewer::startLater()
{
    QTimer::singleShot(0, &m_context, [this] {
        const QString file = std::exchange(m_file, {});
        if (file.isEmpty())
            return;
        QStringList arguments{file};
        if (m_topic != 0)
            arguments = {QStringLiteral("-c"), QString::number(m_topic), file};
        QProcess::startDetached(m_program, arguments);
    });
}

} // namespace fldc
