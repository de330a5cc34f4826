#pragma once

#include "certificate/ExitCodes.h"
#include "fldc/files/NamedPort.h"
#include "platform/qt/ChildProcess.h"

#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>

namespace fldc::cli {

/// How a unit's download ended, as its own result line says; without one, what is known.
struct UnitResult {
    Exit exit = Exit::Unexpected;
    int code = 0; ///< the component's
    QString message;
    QString advice;
    QString radio;

    [[nodiscard]] bool passed() const { return exit == Exit::Done; }
};

/// What a board shows of a unit that is at work.
struct UnitProgress {
    QString step;
    std::int32_t percent = 0;
    double bytesPerSecond = 0;
    std::optional<double> secondsLeft;
};

/// One radio of a gang at its port: a process of its own writes it, so that neither a crash nor a
/// hang of one touches another.
class Unit {
public:
    struct Surroundings {
        /// Hears every line of the process, with the port's name as its key `port`.
        std::function<void(const QString& type, const QJsonObject& object)> told;
        std::function<void(Unit& unit)> ended;
    };

    Unit(NamedPort port, Surroundings surroundings);

    [[nodiscard]] const NamedPort& port() const { return m_port; }
    [[nodiscard]] const QString& label() const { return m_label; }
    [[nodiscard]] bool isRunning() const { return m_process != nullptr; }
    [[nodiscard]] const UnitProgress& progress() const { return m_progress; }
    /// Of the last download; nothing before its end.
    [[nodiscard]] const std::optional<UnitResult>& result() const { return m_result; }

    /// What a person is to do at its place now that it has ended; empty for nothing.
    [[nodiscard]] const QString& next() const { return m_next; }
    void setNext(const QString& next) { m_next = next; }

    /// @p arguments: of `fldc --json`, the port included. @p label: the radio's name.
    void start(const QStringList& arguments, const QString& label);
    void askToEnd(int signal);
    /// Hears its process no more, which then knows that nobody does: it ends before its first erase
    /// and otherwise completes. Only the process itself knows which.
    void leave();

private:
    void take(const QByteArray& line);
    void follow(const QString& type, const QJsonObject& object);
    void end(const ChildProcess::Ended& ended);
    [[nodiscard]] UnitResult resultWithout(const ChildProcess::Ended& ended) const;

    NamedPort m_port;
    Surroundings m_surroundings;
    QString m_label;
    UnitProgress m_progress;
    QString m_next;
    bool m_mayHaveErased = false;
    bool m_isLeft = false;
    bool m_hasStarted = false; ///< its line may have been opened
    bool m_hasLoggedOn = false;
    std::optional<UnitResult> m_result;
    std::shared_ptr<ChildProcess> m_process;
};

} // namespace fldc::cli
