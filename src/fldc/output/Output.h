#pragma once

#include "certificate/JsonObject.h"
#include "fldc/output/Terminal.h"
#include "fldc/process/OutputStream.h"

#include <QString>

#include <functional>

namespace fldc {
struct Outcome;
}

namespace fldc::cli {

/// Everything that a run tells, in the form that was asked for. A command tells both forms and
/// leaves the choice to this class:
///
///     output.tell(kind::file, object);   // a line of JSON; nothing without --json
///     output.print(text);                // standard output for people; nothing with --json
///     output.terminal().note(text);      // standard error, in both
///
/// With --json standard output carries JSON lines and nothing else, each written at once, the
/// result last.
class Output {
public:
    /// @p onLost: standard output can't be written (once).
    Output(bool json, std::function<void()> onLost);

    void tell(const ObjectKind& kind, const QJsonObject& object);
    void print(const QString& text);
    /// The same for what programs read: not a character of it is replaced.
    void printData(const QString& text);
    /// Text that was asked for in every form: --help, --version.
    void printAlways(const QString& text);
    /// The result: in JSON the last line; for people message and advice, on standard error when
    /// the run failed. Nothing that is told afterwards is printed.
    void tellResult(const QJsonObject& object, const Outcome& outcome);
    /// Notices a reader of standard output that has gone while a run has nothing to tell.
    void checkReader() { m_standard.checkReader(); }
    /// Waits until everything is written; false when @p wakeDescriptor became readable first.
    bool finish(int wakeDescriptor, bool isEnding);

    /// Hears every object that is told, also without --json: the certificate.
    using Hearer = std::function<void(const ObjectKind&, const QJsonObject&)>;
    void setHearer(Hearer hearer) { m_hearer = std::move(hearer); }

    [[nodiscard]] bool isJson() const { return m_json; }
    [[nodiscard]] Terminal& terminal() { return m_terminal; }
    /// Why standard output can't be written, an errno; 0 while it can.
    [[nodiscard]] int error() const { return m_standard.error(); }

private:
    bool m_json;
    bool m_ended = false;
    OutputStream m_standard;
    Terminal m_terminal;
    Hearer m_hearer;
};

} // namespace fldc::cli
