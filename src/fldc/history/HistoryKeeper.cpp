#include "fldc/history/HistoryKeeper.h"

#include "app/services/SettingsStore.h"
#include "fldc/commands/Command.h"
#include "fldc/options/Options.h"
#include "fldc/output/Output.h"
#include "history/Delivery.h"
#include "platform/Platform.h"

#include <QFile>
#include <QProcess>

#include <csignal>

#include <unistd.h>

namespace fldc::cli {

using namespace Qt::StringLiterals;

namespace {

// How long the end of a run waits for the store; milliseconds. The result has been told by then.
constexpr int mostDelay = 2000;

QString storeSetting(Context& context)
{
    return ReadSetting(context.platform.settings, historySetting, {});
}

Outcome wrongStore(const QString& text)
{
    return usageError(u"There is no store %1."_s.arg(oneLine(text)),
                      u"Name postgresql://USER@HOST/DATABASE or sqlite:PATH."_s);
}

// It hears no signal of the terminal.
void deliverBeside(const history::ChosenStore& store)
{
    QProcess process;
    history::prepareDelivery(process, store, {u"history"_s, u"deliver"_s});
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

std::optional<Outcome> chooseStore(Context& context, history::ChosenStore& store)
{
    const auto& option = context.options.store;
    const bool isNamed = option || !qEnvironmentVariableIsEmpty(history::storeVariable);
    const QString text = option    ? QFile::decodeName(QByteArray::fromStdString(*option))
                         : isNamed ? qEnvironmentVariable(history::storeVariable)
                                   : storeSetting(context);
    if (isNamed && !history::readStoreAddress(text))
        return wrongStore(text);
    if (text == settingOff)
        return std::nullopt;
    store = history::chooseStore(text == settingOn ? QString() : text);
    if (!store.address)
        context.output.terminal().note(u"fldc: "_s + store.failure);
    return std::nullopt;
}

Recorder recorderOf(Context& context, const history::ChosenStore& store)
{
    if (!store.address)
        return {};
    Terminal& terminal = context.output.terminal();
    std::function<void()>& afterResult = context.afterResult;
    return [&terminal, &afterResult, store](const QJsonObject& certificate) {
        const history::Kept kept = history::keep(store, certificate);
        for (const QString& remark : kept.remarks)
            terminal.note(u"fldc: "_s + oneLine(remark));
        if (kept.isKept)
            afterResult = [store] { deliverBeside(store); };
    };
}

} // namespace fldc::cli
