#pragma once

#include "session/Events.h"
#include "session/Rate.h"

#include <QLatin1StringView>
#include <QString>
#include <QVariantMap>

#include <chrono>
#include <functional>
#include <optional>

namespace fldc::session {

/// What programs are told of an event: the one mapping of events to keys and values, for lines of
/// JSON as for signals of the bus.
///
/// Values are text, whole numbers (qint64), other numbers (double), truth values, QList<qint64>,
/// QList<QVariantMap>, or nullptr for what is not known.
struct Telling {
    QLatin1StringView kind;
    QVariantMap fields;
};

/// How far the writing of the present target is, on the wire.
struct Transfer {
    std::int32_t file = 0; ///< from 1; 0 for an unknown one
    QString tag;
    std::int64_t bytes = 0;
    std::int64_t total = 0;
    double bytesPerSecond = 0;
    std::optional<double> secondsLeft;

    /// 100 only when all bytes are answered.
    [[nodiscard]] double percent() const;
};

/// Turns the events of operations, in their order, into what is told of them. Start and end of an
/// operation and the measurements of a line are left to who tells of whole runs.
class Narrator {
public:
    using milliseconds = std::chrono::milliseconds;
    /// Least time between two tellings of the same target's progress, but for its last.
    static constexpr milliseconds progressInterval{100};

    /// @p fileOf: number of the file, from 1, that the image of a target was read from.
    explicit Narrator(std::function<std::int32_t(const TargetBegun&)> fileOf);

    /// What is told of @p event, which came at @p now of any monotonic clock; nothing for one that
    /// nobody is told of.
    [[nodiscard]] std::optional<Telling> tell(const Event& event, milliseconds now);
    [[nodiscard]] const Transfer& transfer() const { return m_transfer; }

private:
    using Told = std::optional<Telling>;

    [[nodiscard]] static Told on(const StepTaken& event);
    [[nodiscard]] static Told on(const PowerCycleRequired& event);
    [[nodiscard]] static Told on(const LoggedOn& event);
    [[nodiscard]] static Told on(const BootApplicationSent& event);
    [[nodiscard]] static Told on(const SpeedAgreed& event);
    [[nodiscard]] static Told on(const ConfigurationsRead& event);
    [[nodiscard]] Told on(const TargetBegun& event);
    [[nodiscard]] static Told on(const BlocksDone& event);
    [[nodiscard]] static Told on(const TableBegun& event);
    [[nodiscard]] Told on(const DataProgress& event);
    [[nodiscard]] static Told on(const CommandRepeated& event);
    [[nodiscard]] static Told on(const UnexpectedBytes& event);

    std::function<std::int32_t(const TargetBegun&)> m_fileOf;
    Transfer m_transfer;
    Rate m_rate;
    milliseconds m_now{};
    std::optional<milliseconds> m_lastTold; ///< of the present target's progress
};

/// Text of a component's status number.
[[nodiscard]] QString StatusText(std::int32_t status);
/// @p text without the control characters (but line ends) that a file name, a tag or an adapter's
/// description may hold: a terminal would obey them.
[[nodiscard]] QString printable(const QString& text);

} // namespace fldc::session
