#pragma once

#include "session/Events.h"
#include "session/Listener.h"
#include "session/Narrator.h"
#include "session/RadioState.h"

#include <QObject>
#include <QString>
#include <QStringList>

#include <chrono>
#include <functional>
#include <optional>
#include <vector>

namespace fldc {

class DownloadWindow;
class clsDLManager;
struct Platform;

/// What a run is at.
enum class Phase : std::uint8_t {
    Idle,
    ReadingFiles,
    OpeningPort,
    Resetting,
    WaitingForPower,
    SendingBootApplication,
    SearchingSpeed,
    ReadingConfiguration,
    Unlocking,
    Erasing,
    Writing,
    Locking,
    Restarting,
};

/// One image of a download.
struct ImageNote {
    QString name; ///< its key among the loaded files
    QString file; ///< name of the file that it was read from, without folder
    QString tag;
    int begun = 0;  ///< places of the radio that it was begun at
    int locked = 0; ///< those that were locked again
};

/// What is known of a run: of a load of files, or of an operation with a radio.
struct Run {
    std::optional<session::Operation> operation; ///< none: files were only loaded
    Phase phase = Phase::Idle;
    int percentRead = 0;               ///< of the files that are loaded
    std::chrono::microseconds begun{}; ///< on the platform's monotonic clock
    std::chrono::microseconds phaseBegun{};
    std::chrono::microseconds ended{};
    session::Radio radio;
    std::vector<ImageNote> images; ///< of a download, in its order
    std::size_t image = 0;         ///< the one at work, from 1; 0 before the first
    QStringList refused;           ///< "a.srec: line 12: ..." of the load before
    QStringList marked;            ///< what is to be erased
    std::optional<std::vector<session::Component>> before; ///< also those of a report
    std::optional<std::vector<session::Component>> after;
    QString identifier; ///< the radio's; empty when it did not tell one
    std::uint32_t baud = 0;
    int retries = 0;
    int unexpected = 0; ///< times that bytes came that nobody had asked for
    std::int32_t code = 0;
    QString message;
    QString portObstacle; ///< behind a run that failed: "COM1: in use by picocom (process 7)"
    QString portRemedy;
    QStringList remarks; ///< what else went wrong, not with the radio

    [[nodiscard]] session::State state() const { return stateOf(radio); }
    [[nodiscard]] std::chrono::seconds seconds() const
    {
        return std::chrono::round<std::chrono::seconds>(ended - begun);
    }
    /// Something was erased, and not everything is written, locked and restarted.
    [[nodiscard]] bool flashAtRisk() const;
};

/// Listens to the operations of a window's manager for whoever shows them.
class RunNotes final : private session::IListener {
public:
    struct Listeners {
        std::function<void()> changed; ///< inside an operation: shows, and returns
        std::function<void()> ended;   ///< behind it, with the thread free
    };
    /// @p window must have a manager, and outlive the object or be let go with detach().
    RunNotes(DownloadWindow& window, const Platform& platform, Listeners listeners);
    ~RunNotes() override;
    RunNotes(const RunNotes&) = delete;
    RunNotes& operator=(const RunNotes&) = delete;

    void detach();
    /// An operation was refused before it began; the last error says why.
    void refuse(session::Operation operation);
    /// Something else went wrong in the present or behind the last run.
    void remark(const QString& text) { m_run.remarks.append(text); }

    [[nodiscard]] bool running() const { return m_run.phase != Phase::Idle; }
    /// The running or else the last run.
    [[nodiscard]] const Run& run() const { return m_run; }
    /// Files that the last load did not read, with the reasons.
    [[nodiscard]] const QStringList& refused() const { return m_refused; }
    /// How far the run is in what it is at, in percent; nothing where that has no measure.
    [[nodiscard]] std::optional<int> percent() const;
    /// "42 % · 96 of 230 kB · 11.3 kB/s · 1 min 05 s left", or what is done and for how long.
    [[nodiscard]] QString progressText() const;
    /// "File 2 of 5: a.srec, JHA2F-2.03"; empty while none is written.
    [[nodiscard]] QString fileText() const;

private:
    void onEvent(const session::Event& event) noexcept override;
    void begin(std::optional<session::Operation> operation);
    void enter(Phase phase);
    void complete(std::int32_t code, const QString& message);
    [[nodiscard]] std::vector<ImageNote> loadedImages() const;
    [[nodiscard]] QStringList markedComponents() const;

    template <class Event>
    void on(const Event& /*event*/)
    {
    }
    void on(const session::OperationStarted& event);
    void on(const session::StepTaken& event);
    void on(const session::PowerCycleRequired& event);
    void on(const session::LoggedOn& event);
    void on(const session::BootApplicationSent& event);
    void on(const session::SpeedAgreed& event);
    void on(const session::ConfigurationsRead& event);
    void on(const session::TargetBegun& event);
    void on(const session::BlocksDone& event);
    void on(const session::TableBegun& event);
    void on(const session::CommandRepeated& event);
    void on(const session::UnexpectedBytes& event);

    DownloadWindow* m_window;
    const Platform& m_platform;
    Listeners m_listeners;
    clsDLManager* m_manager; ///< null once detached
    QObject m_connections;   ///< to the manager
    Run m_run;
    QStringList m_refused; ///< by the last load
    session::Narrator m_narrator;
};

/// "1 min 05 s", "8 s".
[[nodiscard]] QString durationText(std::chrono::seconds duration);

} // namespace fldc
