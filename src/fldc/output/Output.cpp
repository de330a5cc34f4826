#include "fldc/output/Output.h"

#include "certificate/Outcome.h"

#include <unistd.h>

#include <utility>

namespace fldc::cli {

Output::Output(bool json, std::function<void()> onLost)
    : m_json(json), m_standard(STDOUT_FILENO, std::move(onLost)), m_terminal(STDERR_FILENO)
{
}

void Output::tell(const ObjectKind& kind, const QJsonObject& object)
{
    if (m_ended)
        return;
    if (m_json)
        m_standard.write(jsonLine(kind, object));
    if (m_hearer)
        m_hearer(kind, object);
}

void Output::print(const QString& text)
{
    if (!m_json && !m_ended)
        printAlways(printable(text));
}

void Output::printData(const QString& text)
{
    if (!m_json && !m_ended)
        printAlways(text);
}

void Output::printAlways(const QString& text)
{
    m_terminal.endLine();
    m_standard.write(text.toUtf8());
}

void Output::tellResult(const QJsonObject& object, const Outcome& outcome)
{
    tell(kind::result, object);
    if (!outcome.ok())
        m_terminal.complain(outcome.message, outcome.advice);
    else if (!outcome.advice.isEmpty())
        print(outcome.message + u'\n' + outcome.advice + u'\n');
    else if (!outcome.message.isEmpty())
        print(outcome.message + u'\n');
    m_ended = true;
}

bool Output::finish(int wakeDescriptor, bool isEnding)
{
    return m_standard.finish(wakeDescriptor, isEnding) &&
           m_terminal.finish(wakeDescriptor, isEnding);
}

} // namespace fldc::cli
