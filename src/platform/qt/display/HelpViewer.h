#pragma once

#include "platform/IHelpViewer.h"

#include <QObject>

namespace fldc {

/// Shows help with xchm, which runs on its own.
///
/// Each start of it opens a window, which shows the contents beside a topic: contents that are
/// followed by a topic of the same file, before events are served again, make one window.
class HelpViewer final : public IHelpViewer {
public:
    void displayContents(const QString& file) override;
    void displayTopic(std::uintptr_t owner, const QString& file, std::int32_t context) override;

private:
    void startLater();

    QObject m_context; ///< ends what is due when the viewer goes
    QString m_program;
    QString m_file; ///< due to be opened; empty: nothing
    std::int32_t m_topic = 0;
};

} // namespace fldc
