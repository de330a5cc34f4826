#pragma once

#include "certificate/ExitCodes.h"
#include "shared/ErrorCodes.h"

#include <QString>
#include <QStringList>

#include <cstdint>
#include <optional>

namespace fldc {

/// What the result of a download tells besides.
struct DownloadOutcome {
    QStringList written;    ///< tags whose begun targets are all locked
    QStringList notMatched; ///< tags written nowhere by a run that reached its end
    QStringList confirmed;  ///< tags shown afterwards at every target written
    std::int32_t baud = 0;
    std::int32_t retries = 0;
    std::int64_t wireBytes = 0;
};

/// How a command ended; its result line is made from it.
struct Outcome {
    Exit exit = Exit::Done;
    Code code = Code::Success;                   ///< the component's
    QString message;                             ///< what happened, one sentence
    QString advice;                              ///< what to do next; empty: nothing is left to do
    QString radio = QStringLiteral("untouched"); ///< the session's name of the radio's state
    std::optional<DownloadOutcome> download;
    /// Of a test of the line: the highest speed without a fault, if there is one.
    std::optional<std::optional<std::uint32_t>> best;

    [[nodiscard]] bool ok() const { return exit == Exit::Done; }
};

[[nodiscard]] inline Outcome done(const QString& message)
{
    Outcome outcome;
    outcome.message = message;
    return outcome;
}

[[nodiscard]] inline Outcome failure(Exit exit, Code code, const QString& message,
                                     const QString& advice)
{
    Outcome outcome;
    outcome.exit = exit;
    outcome.code = code;
    outcome.message = message;
    outcome.advice = advice;
    return outcome;
}

[[nodiscard]] inline Outcome usageError(const QString& message, const QString& advice)
{
    return failure(Exit::Usage, Code::Success, message, advice);
}

} // namespace fldc
