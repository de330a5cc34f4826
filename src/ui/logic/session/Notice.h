#pragma once

#include <QString>
#include <QStringList>

#include <cstdint>

namespace fldc {

struct Run;

/// What a person is told of a run that has ended.
struct Notice {
    enum class Kind : std::uint8_t { Good, Attention, Failed };
    Kind kind = Kind::Good;
    QString headline;    ///< one line: how it ended, and when
    QString next;        ///< one sentence: what to do, or what the radio is in
    QStringList details; ///< every image, every refused file, the radio's state, the advice

    /// All of it, line by line.
    [[nodiscard]] QString text() const;
};

[[nodiscard]] Notice noticeOf(const Run& run);

/// The notice with what a support desk asks for first. @p program: name and version; @p port: the
/// port and what is known of its adapter; @p time: date and time.
[[nodiscard]] QString supportText(const Run& run, const QString& program, const QString& port,
                                  const QString& time);

} // namespace fldc
