#pragma once

#include "certificate/Outcome.h"
#include "fldc/radio/RadioPlatform.h"
#include "fldc/radio/RunRecord.h"
#include "manager/IDownloadWindow.h"
#include "manager/clsDLManager.h"
#include "platform/IEvents.h"
#include "protocol/IWaitDialog.h"

#include <QHash>
#include <QString>

#include <memory>
#include <optional>

namespace fldc::cli {

struct Context;

/// The events of a run: behind each wait it is looked whether the run is to end.
class WatchedEvents final : public IEvents {
public:
    WatchedEvents(IEvents& events, std::function<void()> look)
        : m_events(events), m_look(std::move(look))
    {
    }
    void processPending() override
    {
        m_events.processPending();
        m_look();
    }
    void waitForEvents() override
    {
        m_events.waitForEvents();
        m_look();
    }
    void pause(std::chrono::milliseconds duration) override
    {
        m_events.pause(duration);
        m_look();
    }

private:
    IEvents& m_events;
    std::function<void()> m_look;
};

/// One manager on one named port, listened to by a record. A signal or a lost standard output ends
/// its operation as a user's cancel does.
class RadioRun final : private IDownloadWindowFactory, private IWaitDialogFactory {
public:
    /// @p device: path of the port's device. @p fileOfImage: as in RunRecord.
    RadioRun(Context& context, const QString& device,
             QHash<QString, std::int32_t> fileOfImage = {});
    ~RadioRun() override;

    /// The outcome that ends the run before it begins: --log names a file that can't be written.
    [[nodiscard]] std::optional<Outcome> openLog();

    [[nodiscard]] clsDLManager& manager() { return *m_manager; }
    [[nodiscard]] const RunFacts& record() const { return m_record.facts(); }

private:
    [[nodiscard]] std::shared_ptr<IDownloadWindow> createWindow() override;
    /// Never asked for one: without a screen nobody sees it.
    [[nodiscard]] std::unique_ptr<IWaitDialog> createWaitDialog() override { return nullptr; }
    void endIfWanted();

    Context& m_context;
    WatchedEvents m_events;
    RadioPlatform m_radioPlatform;
    RunRecord m_record;
    std::unique_ptr<clsDLManager> m_manager;
};

} // namespace fldc::cli
