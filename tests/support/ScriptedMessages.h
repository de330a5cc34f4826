#pragma once

#include "platform/IMessageBox.h"

#include <QStringList>

#include <deque>

namespace fldc {

/// Message boxes that a test announces. One that it did not announce, and one announced that did
/// not come, fails the test.
class ScriptedMessages final : public IMessageBox {
public:
    ~ScriptedMessages() override;
    /// A box with this text, or with any text that begins so when it ends in "...".
    void expectBox(const QString& text) { m_boxes.push_back(text); }
    void expectQuestion(bool answer) { m_answers.push_back(answer); }
    [[nodiscard]] const QStringList& questions() const { return m_questions; }

    void show(const QString& text, MessageKind kind) override;
    [[nodiscard]] bool askYesNo(const QString& text) override;

private:
    std::deque<QString> m_boxes;
    std::deque<bool> m_answers;
    QStringList m_questions;
};

} // namespace fldc
