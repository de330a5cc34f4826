#pragma once

#include "platform/IHelpViewer.h"
#include "platform/qt/FileDescriptor.h"

#include <QDesktopServices>
#include <QObject>
#include <QUrl>

#include <functional>

namespace fldc {

/// Shows help with xchm, which runs on its own. Without it, the pages that the book was made of,
/// which lie in a folder of the book's name beside it, open in the desktop's browser.
///
/// While the viewer that was started last lives, nothing is started.
///
/// Each start of it opens a window, which shows the contents beside a topic: contents that are
/// followed by a topic of the same file, before events are served again, make one window.
class HelpViewer final : public IHelpViewer {
public:
    using OpenPage = std::function<bool(const QUrl&)>;

    /// @p openPage: false when the desktop has nothing that shows the page.
    explicit HelpViewer(OpenPage openPage = QDesktopServices::openUrl);

    void displayContents(const QString& file) override;
    void displayTopic(std::uintptr_t owner, const QString& file, std::int32_t context) override;

private:
    void startLater();
    void start();
    [[nodiscard]] bool viewerLives() const;

    OpenPage m_openPage;
    FileDescriptor m_viewer; ///< of the process; -1 when none was started

    QObject m_context; ///< ends what is due when the viewer goes
    QString m_program; ///< empty: the pages
    QString m_file;    ///< due to be opened; empty: nothing
    std::int32_t m_topic = 0;
};

} // namespace fldc
