#pragma once

#include "ui/logic/DownloadWindow.h"

#include <QString>

namespace fldc {

/// Shows the window's status line and progress bar on a terminal: one line per status, the bar
/// behind the present one.
class TerminalProgress final : public IWindowObserver {
public:
    /// @p fileDescriptor: a terminal to write to.
    explicit TerminalProgress(int fileDescriptor);
    ~TerminalProgress() override;
    TerminalProgress(const TerminalProgress&) = delete;
    TerminalProgress& operator=(const TerminalProgress&) = delete;

    /// The window to show; nullptr lets go of it.
    void watch(std::shared_ptr<DownloadWindow> window);
    /// Ends the present line, and writes @p text on one of its own.
    void say(const QString& text);
    /// Ends the present line, for text of another writer.
    void endLine();

    void windowChanged(WindowPart part) override;

private:
    void redraw();
    void write(const QString& text) const;

    int m_fileDescriptor;
    std::shared_ptr<DownloadWindow> m_window;
    QString m_status;
    int m_progress = 0;
    bool m_lineOpen = false;
};

} // namespace fldc
