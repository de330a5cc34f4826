#include "fldc/history/HistoryKeeper.h"

#include "app/services/SettingsStore.h"
#include "fldc/commands/Command.h"
#include "fldc/options/Options.h"
#include "fldc/output/Output.h"
#include "history/Spool.h"
#include "platform/Platform.h"
#include "platform/PlatformFailure.h"

#include <QCoreApplication>
#include <QFile>
#include <QProcess>

#include <csignal>

#include <unistd.h>

namespace fldc::cli {

using namespace Qt::StringLiterals;

namespace {

// How long the end of a run waits for the store; milliseconds. The result has been told by then.
constexpr int mostDelay = 2000;
constexpr qsizetype manyWaiting = 10;

QString storeSetting(Context& context)
{
    return ReadSetting(context.platform.settings, historySetting, {});
}

Outcome wrongStore(const QString& text)
{
    return usageError(u"There is no store %1."_s.arg(oneLine(text)),
                      u"Name postgresql://USER@HOST/DATABASE or sqlite:PATH."_s);
}

// A process of its own, so that nothing that a database does or fails to do reaches a download. It
// hears no signal of the terminal, and is given no secret that other users could read.
void deliverBeside(const QString& store)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"FLDC_STORE"_s, store);
    process.setProcessEnvironment(environment);
    process.setProgram(QCoreApplication::applicationFilePath());
    process.setArguments({u"history"_s, u"deliver"_s});
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    process.setChildProcessModifier([] {
        sigset_t none{};
        sigemptyset(&none);
        ::sigprocmask(SIG_SETMASK, &none, nullptr);
        ::setsid();
    });
    process.start(QIODevice::NotOpen);
    if (!process.waitForFinished(mostDelay)) {
        process.kill();
        (void)process.waitForFinished(mostDelay);
    }
}

} // namespace

std::optional<Outcome> chooseStore(Context& context, ChosenStore& store)
{
    const auto& option = context.options.store;
    const bool isNamed = option || !qEnvironmentVariableIsEmpty("FLDC_STORE");
    store.text = option    ? QFile::decodeName(QByteArray::fromStdString(*option))
                 : isNamed ? qEnvironmentVariable("FLDC_STORE")
                           : storeSetting(context);
    const auto address = history::readStoreAddress(store.text);
    if (isNamed && !address)
        return wrongStore(store.text);
    if (store.text == settingOff)
        return std::nullopt;
    store.folder = history::dataFolder();
    if (store.folder.isEmpty()) {
        context.output.terminal().note(
            u"fldc: there is no history: neither XDG_DATA_HOME nor HOME names a folder."_s);
        return std::nullopt;
    }
    const bool isDefault = store.text.isEmpty() || store.text == settingOn;
    if (address)
        store.address = address;
    else if (isDefault)
        store.address = history::defaultStore(store.folder);
    else
        context.output.terminal().note(
            u"fldc: there is no history: the setting History names no store."_s);
    if (isDefault && store.address)
        store.text = u"sqlite:"_s + store.address->path;
    return std::nullopt;
}

Recorder recorderOf(Context& context, const ChosenStore& store)
{
    if (!store.address)
        return {};
    Terminal& terminal = context.output.terminal();
    std::function<void()>& afterResult = context.afterResult;
    return [&terminal, &afterResult, store](const QJsonObject& certificate) {
        try {
            const history::Spool spool(store.folder, *store.address);
            if (const qsizetype waiting = spool.waiting(); waiting >= manyWaiting)
                terminal.note(
                    u"fldc: %1 records wait for %2; see `fldc history deliver`."_s.arg(waiting).arg(
                        oneLine(store.address->name())));
            const QString failure = spool.put(history::newRecord(certificate));
            if (failure.isEmpty())
                afterResult = [text = store.text] { deliverBeside(text); };
            else
                terminal.note(u"fldc: this run is not in the history: "_s + oneLine(failure));
        } catch (...) {
            terminal.note(u"fldc: this run is not in the history: "_s +
                          oneLine(currentFailure().description()));
        }
    };
}

} // namespace fldc::cli
