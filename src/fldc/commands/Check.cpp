#include "certificate/Verdict.h"
#include "fldc/commands/CommandTable.h"
#include "fldc/files/Expectation.h"
#include "fldc/files/InputFiles.h"
#include "fldc/files/NamedPort.h"
#include "fldc/output/Output.h"
#include "fldc/radio/RadioRun.h"
#include "shared/NumberText.h"

#include <utility>

namespace fldc::cli {

using namespace Qt::StringLiterals;

namespace {

QString textOf(const std::optional<session::Component>& component)
{
    return component ? component->product + u" ("_s + session::StatusText(component->status) + u')'
                     : u"nothing"_s;
}

void tell(Output& output, const Difference& difference)
{
    const auto& [expected, found] = difference;
    const session::Component& place = expected ? *expected : *found;
    const auto product = [](const auto& each) {
        return each ? QJsonValue(each->product) : QJsonValue();
    };
    const auto status = [](const auto& each) {
        return each ? QJsonValue(each->status) : QJsonValue();
    };
    output.tell(kind::difference,
                makeObject(kind::difference, {{"network"_L1, place.network},
                                              {"device"_L1, place.device},
                                              {"expected"_L1, product(expected)},
                                              {"expected_status"_L1, status(expected)},
                                              {"found"_L1, product(found)},
                                              {"found_status"_L1, status(found)}}));
    output.print(u"network %1, device %2: expected %3, found %4\n"_s.arg(place.network)
                     .arg(place.device)
                     .arg(textOf(expected), textOf(found)));
}

Outcome notAReport(const InputFile& file)
{
    if (!file.content)
        return failure(Exit::File, file.missing ? Code::FileDoesNotExist : Code::FileFormatNotValid,
                       oneLine(file.path) + u": "_s + file.failure,
                       u"Check the file's name and folder."_s);
    return failure(Exit::File, Code::FileFormatNotValid,
                   oneLine(file.path) + u": not the configuration of a radio"_s,
                   u"Name a file that `fldc report --json` has written for a radio as it should "
                   "be."_s);
}

} // namespace

Outcome runCheck(Context& context)
{
    const InputFile& file = context.files.items().front();
    const auto expected = file.content ? readExpectation(file) : std::nullopt;
    if (!expected)
        return notAReport(file);
    RadioRun run(context, context.port.device);
    if (auto ended = run.openLog())
        return *ended;
    QString unused;
    (void)run.manager().ReportConfigurations(unused);
    Outcome outcome = verdictOfReport(run.record());
    const auto& found = run.record().components(session::Reading::Report);
    if (!outcome.ok() || !found)
        return outcome;
    const auto different = differences(*expected, *found);
    for (const Difference& each : different)
        tell(context.output, each);
    if (different.empty()) {
        outcome.message = u"As expected: %1."_s.arg(counted(std::ssize(*found), u"component"));
        return outcome;
    }
    outcome.exit = Exit::NothingToDo;
    outcome.message = u"Not as expected: %1."_s.arg(counted(std::ssize(different), u"component"));
    outcome.advice = u"Download the firmware that it should have, or write the expectation anew."_s;
    return outcome;
}

} // namespace fldc::cli
