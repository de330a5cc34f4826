#pragma once

#include "platform/IMessageBox.h"

#include <QString>

namespace fldc::cli {

class Output;

/// The component's message boxes as lines on standard error. A question is answered with No unless
/// somebody sits at a terminal (standard input and standard error) and --json was not given.
class Messages final : public IMessageBox {
public:
    explicit Messages(Output& output) : m_output(output) {}

    void show(const QString& text, MessageKind kind) override;
    [[nodiscard]] bool askYesNo(const QString& text) override;

private:
    Output& m_output;
};

/// Message boxes that nobody needs to see one by one: how many there were, and the first.
class CountedMessages final : public IMessageBox {
public:
    void show(const QString& text, MessageKind kind) override;
    [[nodiscard]] bool askYesNo(const QString& /*text*/) override { return false; }

    [[nodiscard]] int count() const { return m_count; }
    [[nodiscard]] const QString& first() const { return m_first; }

private:
    int m_count = 0;
    QString m_first;
};

} // namespace fldc::cli
