#include "app/CommandLine.h"

#include "platform/PlatformFailure.h"
#include "shared/NumberText.h"

#include <QStringList>

#include <algorithm>
#include <array>

namespace fldc {

namespace {

enum class Value { Argument, ArgumentWithoutQuotes, Letter };

struct Switch {
    char16_t letter;
    Value value;
};

constexpr std::array switches{
    Switch{u'?', Value::Letter},   Switch{u'f', Value::ArgumentWithoutQuotes},
    Switch{u'g', Value::Letter},   Switch{u'p', Value::Argument},
    Switch{u'r', Value::Argument},
};

QString valueOf(const Switch& known, const QString& argument)
{
    switch (known.value) {
    case Value::Letter:
        return QString(QChar(known.letter));
    case Value::ArgumentWithoutQuotes:
        return QString(argument).remove(u'"');
    case Value::Argument:
        break;
    }
    return argument;
}

} // namespace

SwitchTable ParseCommandLine(const QString& text)
{
    SwitchTable table;
    for (const QString& untrimmed : text.split(u'/')) {
        const QString piece = untrimmed.trimmed();
        if (piece.isEmpty())
            continue;
        const QChar letter = piece.front();
        const auto* known = std::ranges::find(switches, letter.unicode(), &Switch::letter);
        if (known == switches.end())
            continue;
        if (table.contains(letter))
            throw PlatformFailure(FailureNumber::DuplicateKey,
                                  QStringLiteral("The switch /%1 is given twice").arg(letter));
        table.insert(letter, valueOf(*known, piece.sliced(1).trimmed()));
        if (letter == u'?')
            break;
    }
    return table;
}

bool SwitchPresent(const SwitchTable& table, QChar letter)
{
    return !table.value(letter).isEmpty();
}

std::int16_t switchNumber(const SwitchTable& table, QChar letter)
{
    try {
        return toInt16(table.value(letter));
    } catch (const PlatformFailure& failure) {
        const QString text = failure.number() == static_cast<int>(FailureNumber::Overflow)
                                 ? QStringLiteral("The number %2 of the switch /%1 is out of range")
                                 : QStringLiteral("The switch /%1 takes a number, not \"%2\"");
        throw PlatformFailure(failure.number(), text.arg(letter, table.value(letter)));
    }
}

QString usageText()
{
    static const QStringList lines{
        QStringLiteral("RV4100_FLDC Usage"),
        QString(),
        QStringLiteral("No arguments:"),
        QStringLiteral("     Start the application in GUI mode"),
        QString(),
        QStringLiteral("/?:"),
        QStringLiteral("     Show this usage information"),
        QString(),
        QStringLiteral("/f <file1,file2,file3...>:"),
        QStringLiteral("     The files to upload"),
        QString(),
        QStringLiteral("/g:"),
        QStringLiteral("     Show the GUI"),
        QString(),
        QStringLiteral("/p <COMPORT>:"),
        QStringLiteral("     The COM port to use e.g. '/p 1'"),
        QString(),
        QStringLiteral("/r <RADIOTYPE>:"),
        QStringLiteral("     The radio type e.g. '/r 1' where"),
        QStringLiteral("        1 = RV4100"),
        QStringLiteral("        2 = RV4200"),
        QStringLiteral("        3 = RV6100"),
        QStringLiteral("        4 = RH6100"),
    };
    return lines.join(QStringLiteral("\r\n"));
}

} // namespace fldc
