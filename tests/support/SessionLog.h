#pragma once

#include "session/Listener.h"
#include "session/Names.h"
#include "session/RadioState.h"

#include <QStringList>

#include <array>
#include <concepts>

namespace fldc {

/// Writes a session record down, a line for each event, and follows the radio's state.
class SessionLog final : public session::IListener {
public:
    QStringList lines;
    QString message; ///< of the last operation that ended
    session::Radio radio;

    void onEvent(const session::Event& event) noexcept override
    {
        radio = fold(radio, event);
        if (const auto* ended = std::get_if<session::OperationEnded>(&event))
            message = ended->text;
        lines.append(std::visit([](const auto& each) { return line(each); }, event));
        // What a listener does to the last error must not reach the operation.
        lastError().set(Code::DataError);
    }
    [[nodiscard]] QString state() const { return textOf(stateOf(radio)).name.toString(); }

private:
    static QString word(const QString& text) { return text; }
    static QString word(QStringView text) { return text.toString(); }
    static QString word(const char* text) { return QString::fromLatin1(text); }
    static QString word(const QByteArray& bytes) { return word(bytes.toHex().constData()); }
    static QString word(std::integral auto number) { return QString::number(number); }
    static QString word(Code code)
    {
        return code == Code::Success ? QString() : word(static_cast<int>(code));
    }
    template <class... Parts>
    static QString words(const Parts&... parts)
    {
        QStringList all{word(parts)...};
        all.removeAll(QString());
        return all.join(u' ');
    }

    static QString line(const session::StepTaken& e)
    {
        constexpr std::array steps{"reset", "unlock", "erase", "data", "lock", "restart"};
        constexpr std::array outcomes{"sent", "done", "refused", "unanswered"};
        return words(steps.at(static_cast<std::size_t>(e.step)),
                     outcomes.at(static_cast<std::size_t>(e.outcome)), e.code);
    }
    static QString line(const session::OperationStarted& e)
    {
        return words("start", session::nameOf(e.operation));
    }
    static QString line(const session::LineOpened& e) { return words("line", e.port, e.baud); }
    static QString line(const session::PowerCycleRequired& e)
    {
        return words("power cycle", e.f1Key ? "F1" : "");
    }
    static QString line(const session::LoggedOn& e)
    {
        return words("radio", e.identifier.value_or(QStringLiteral("(none)")),
                     e.needsBootApplication ? "without boot application" : "");
    }
    static QString line(const session::BootApplicationSent& e)
    {
        return words("boot", e.file, e.bytes);
    }
    static QString line(const session::SpeedAgreed& e) { return words("speed", e.baud); }
    static QString line(const session::ConfigurationsRead& e)
    {
        QString text = words(session::nameOf(e.when));
        for (const auto& each : e.components)
            text = words(text, each.product, each.status, each.network, each.device,
                         each.erasable ? "erasable" : "");
        return text;
    }
    static QString line(const session::TargetBegun& e)
    {
        const QString text = words("target", e.file, e.name, e.tag);
        return e.place ? words(text, "at", e.place->network, e.place->device) : text;
    }
    static QString line(const session::BlocksDone& e)
    {
        QString text = words(session::nameOf(e.action));
        for (const auto block : e.blocks)
            text = words(text, block);
        return text;
    }
    static QString line(const session::TableBegun& e)
    {
        return words("table", e.address, e.bytes, "as", e.wireBytes,
                     e.compressed ? "compressed" : "");
    }
    static QString line(const session::DataProgress& e)
    {
        return words("progress", e.bytes, "of", e.total);
    }
    static QString line(const session::TargetWritten& /*e*/) { return words("all data"); }
    static QString line(const session::CommandRepeated& e)
    {
        return words("again", e.command, e.name, e.attempt, e.reason);
    }
    static QString line(const session::UnexpectedBytes& e)
    {
        return words("unexpected", e.bytes, session::nameOf(e.looksLike));
    }
    static QString line(const session::OperationEnded& e) { return words("end", e.code); }
};

} // namespace fldc
