#include "support/ScriptedMessages.h"

#include <gtest/gtest.h>

namespace fldc {

ScriptedMessages::~ScriptedMessages()
{
    EXPECT_TRUE(m_boxes.empty()) << "missing box: " << qPrintable(m_boxes.front());
    EXPECT_TRUE(m_answers.empty()) << "a question was not asked";
}

void ScriptedMessages::show(const QString& text, MessageKind /*kind*/)
{
    const QString expected = m_boxes.empty() ? QString() : m_boxes.front();
    const bool matches = expected.endsWith(QStringLiteral("..."))
                             ? text.startsWith(expected.chopped(3))
                             : text == expected && !m_boxes.empty();
    if (!matches)
        ADD_FAILURE() << "unexpected box: " << qPrintable(text);
    if (!m_boxes.empty())
        m_boxes.pop_front();
}

bool ScriptedMessages::askYesNo(const QString& text)
{
    m_questions.append(text);
    if (m_answers.empty()) {
        ADD_FAILURE() << "unexpected question: " << qPrintable(text);
        return false;
    }
    const bool answer = m_answers.front();
    m_answers.pop_front();
    return answer;
}

} // namespace fldc
