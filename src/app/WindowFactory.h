#pragma once

#include "manager/IDownloadWindow.h"
#include "platform/Platform.h"
#include "ui/logic/DownloadWindow.h"

#include <functional>
#include <memory>

namespace fldc {

/// Makes the main windows of the program: without widgets until one is shown.
class WindowFactory final : public IDownloadWindowFactory {
public:
    using Watcher = std::function<void(std::shared_ptr<DownloadWindow>)>;

    /// @p watch, which may be empty, hears of each window made.
    WindowFactory(const Platform& platform, DownloadWindow::ViewFactory makeView, Watcher watch) :
        m_platform(platform), m_makeView(std::move(makeView)), m_watch(std::move(watch))
    {
    }

    [[nodiscard]] std::shared_ptr<IDownloadWindow> createWindow() override
    {
        auto window = std::make_shared<DownloadWindow>(m_platform, m_makeView);
        m_latest = window;
        if (m_watch)
            m_watch(window);
        return window;
    }

    /// True when the window made last is on the screen.
    [[nodiscard]] bool windowVisible() const
    {
        const auto window = m_latest.lock();
        return window && window->isVisible();
    }

private:
    const Platform& m_platform;
    DownloadWindow::ViewFactory m_makeView;
    Watcher m_watch;
    std::weak_ptr<DownloadWindow> m_latest;
};

} // namespace fldc
