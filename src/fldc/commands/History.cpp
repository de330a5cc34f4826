#include "fldc/commands/CertificateView.h"
#include "fldc/commands/CommandTable.h"
#include "fldc/history/HistoryKeeper.h"
#include "fldc/history/HistoryTexts.h"
#include "fldc/options/Options.h"
#include "fldc/output/Output.h"
#include "history/Database.h"
#include "history/Delivery.h"
#include "shared/NumberText.h"

#include <algorithm>

namespace fldc::cli {

using namespace Qt::StringLiterals;

namespace {

constexpr auto patience = std::chrono::seconds(10);
constexpr int rowsBetweenPauses = 256;

/// A store that is open, and what was asked.
struct Asking {
    Context& context;
    history::Database& database;
    history::Question question;
};

std::optional<Outcome> readTimes(const Options& options, history::Question& question)
{
    const std::array ends{std::pair{&options.since, &question.since},
                          std::pair{&options.until, &question.until}};
    for (const auto& [text, time] : ends) {
        if (text->empty())
            continue;
        *time = readTime(QString::fromStdString(*text), text == &options.until);
        if (!*time)
            return usageError(
                u"\"%1\" is no time."_s.arg(oneLine(QString::fromStdString(*text))),
                u"Write 2026-11-23 or 2026-11-23T15:30; a Z behind the time for UTC."_s);
    }
    return std::nullopt;
}

std::optional<Outcome> readQuestion(const Options& options, history::Question& question)
{
    question.unit = QString::fromStdString(options.unit);
    question.tag = QString::fromStdString(options.tag);
    question.limit = options.limit;
    question.failed = options.result == "failed";
    if (options.result == "ok")
        question.exit = 0;
    else if (!options.result.empty() && !question.failed) {
        bool isNumber = false;
        question.exit = QString::fromStdString(options.result).toInt(&isNumber);
        if (!isNumber)
            return usageError(u"There is no such result."_s,
                              u"--result takes ok, failed or an exit code."_s);
    }
    return readTimes(options, question);
}

Outcome ended(Asking& asking, bool isDone, const QString& message)
{
    if (isDone)
        return done(message);
    return failure(Exit::File, Code::Success,
                   u"The history can't be read: "_s + asking.database.failure(),
                   u"Try again; if it happens again, restore the store from a copy."_s);
}

// Prints the rows below their heading, and says how many there are. @p which: of all those that the
// limit has left.
Outcome listed(Asking& asking, bool isDone, const QList<QStringList>& rows, QStringView which,
               QStringView noun)
{
    const qsizetype count = rows.size() - 1;
    if (isDone && count > 0)
        asking.context.output.print(tableText(rows));
    const bool isCut = asking.question.limit > 0 && count == asking.question.limit;
    return ended(asking, isDone,
                 isCut ? u"The %1 %2; --limit 0 shows all."_s.arg(which, counted(count, noun))
                       : counted(count, noun) + u'.');
}

Outcome runList(Asking& asking)
{
    QList<QStringList> rows{recordHeading()};
    const bool isDone = asking.database.records(asking.question, [&](const QVariantMap& record) {
        asking.context.output.tell(kind::record, makeObject(kind::record, record));
        rows.append(recordCells(record));
        return !asking.context.wantsEnd();
    });
    return listed(asking, isDone, rows, u"newest", u"record");
}

Outcome runShow(Asking& asking)
{
    QList<QVariantMap> found;
    asking.question.certificates = true;
    asking.question.limit = 2;
    if (!asking.database.records(asking.question, [&](const QVariantMap& record) {
            found.append(record);
            return true;
        }))
        return ended(asking, false, {});
    if (found.size() != 1)
        return failure(Exit::NothingToDo, Code::Success,
                       found.isEmpty() ? u"There is no such record."_s
                                       : u"More than one record begins with that."_s,
                       u"Name a record as `fldc history list` shows it."_s);
    asking.context.output.tell(kind::record, makeObject(kind::record, found.first()));
    asking.context.output.print(certificateText(found.first()[u"certificate"_s].toJsonObject()));
    return done(exitText(found.first()[u"exit"_s].toInt()));
}

Outcome runExport(Asking& asking)
{
    Context& context = asking.context;
    asking.question.certificates = context.output.isJson();
    asking.question.limit = context.options.limitWasGiven ? asking.question.limit : 0;
    qint64 count = 0;
    if (!context.output.isJson())
        context.output.printData(csvLine(csvHeading()));
    const bool isDone = asking.database.records(asking.question, [&](const QVariantMap& record) {
        context.output.tell(kind::record, makeObject(kind::record, record));
        if (!context.output.isJson())
            context.output.printData(csvLine(csvCells(record)));
        if (++count % rowsBetweenPauses == 0)
            context.catchUp();
        return !context.wantsEnd();
    });
    // Standard output is the table and nothing else.
    return ended(asking, isDone,
                 context.output.isJson() ? counted(count, u"record") + u'.' : QString());
}

Outcome runUnits(Asking& asking)
{
    QStringList outdated;
    for (const std::string& tag : asking.context.options.outdated)
        outdated.append(QString::fromStdString(tag));
    QList<QStringList> rows{unitHeading()};
    const bool isDone =
        asking.database.units(outdated, asking.question.limit, [&](const QVariantMap& unit) {
            asking.context.output.tell(kind::unit, makeObject(kind::unit, unit));
            rows.append(unitCells(unit));
            return !asking.context.wantsEnd();
        });
    return listed(asking, isDone, rows, u"first", u"unit");
}

struct Action {
    std::string_view name;
    Outcome (*run)(Asking& asking);
};

constexpr std::array actions{Action{"list", runList}, Action{"show", runShow},
                             Action{"export", runExport}, Action{"units", runUnits}};

Outcome deliver(Context& context, const history::ChosenStore& store)
{
    const auto delivery = history::deliver(store, patience, context.wantsEnd);
    if (delivery.waiting == 0)
        return done(u"Delivered: %1."_s.arg(counted(delivery.delivered, u"record")));
    return failure(
        Exit::File, Code::Success,
        u"%1 still in %2: %3"_s.arg(counted(delivery.waiting, u"record"),
                                    oneLine(history::Spool(store.folder, *store.address).folder()),
                                    oneLine(delivery.failure)),
        u"They are delivered when the store can be used again."_s);
}

} // namespace

Outcome runHistory(Context& context)
{
    const Options& options = context.options;
    history::Question question;
    if (auto wrong = readQuestion(options, question))
        return *wrong;
    const auto* action = std::ranges::find(actions, options.action, &Action::name);
    question.id = QString::fromStdString(options.record).toLower();
    if (options.action == "show" && question.id.isEmpty())
        return usageError(u"No record was named."_s,
                          u"Name one as `fldc history list` shows it."_s);

    history::ChosenStore store;
    if (auto wrong = chooseStore(context, store))
        return *wrong;
    if (!store.address)
        return failure(Exit::File, Code::Success, u"There is no history."_s,
                       u"Name a store with --store."_s);

    const Outcome delivered = deliver(context, store);
    if (action == actions.end())
        return delivered;
    if (!delivered.ok())
        context.output.terminal().note(u"fldc: "_s + delivered.message);
    history::Database database(*store.address, patience);
    if (!database.open())
        return failure(Exit::File, Code::Success,
                       u"%1 can't be used: %2"_s.arg(oneLine(store.address->name()),
                                                     oneLine(database.failure())),
                       u"Check its name, that it runs, and that you may use it."_s);
    Asking asking{context, database, question};
    return action->run(asking);
}

} // namespace fldc::cli
