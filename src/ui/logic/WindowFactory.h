#pragma once

#include "manager/IDownloadWindow.h"
#include "platform/Platform.h"
#include "ui/logic/DownloadWindow.h"

#include <functional>
#include <memory>
#include <utility>

namespace fldc {

/// Makes the main windows of the program: without widgets until one is shown.
class WindowFactory final : public IDownloadWindowFactory {
public:
    using Watcher = std::function<void(const std::shared_ptr<DownloadWindow>&)>;

    /// @p watch, which may be empty, hears of each window made.
    WindowFactory(const Platform& platform, DownloadWindow::ViewFactory makeView, Watcher watch)
        : m_platform(platform), m_makeView(std::move(makeView)), m_watch(std::move(watch))
    {
    }

    [[nodiscard]] std::shared_ptr<IDownloadWindow> createWindow() override
    {
        auto window = std::make_shared<DownloadWindow>(m_platform, m_makeView);
        if (m_watch)
            m_watch(window);
        return window;
    }

private:
    const Platform& m_platform;
    DownloadWindow::ViewFactory m_makeView;
    Watcher m_watch;
};

} // namespace fldc
