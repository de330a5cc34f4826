#include "app/RunHistory.h"

#include "app/RunRecorder.h"
#include "app/services/SettingsStore.h"
#include "history/Delivery.h"
#include "platform/Platform.h"

#include <unistd.h>

namespace fldc {

using namespace Qt::StringLiterals;

namespace {

// How long a delivery waits for other programs and the server, and for all of it (seconds).
constexpr std::chrono::seconds patience{10};
constexpr unsigned mostDelivery = 120;

} // namespace

std::unique_ptr<session::IListener> RunHistory::listenerFor(clsDLManager& manager)
{
    choose();
    if (!m_store.address)
        return nullptr;
    return std::make_unique<RunRecorder>(
        manager, m_platform, [this](const QJsonObject& certificate) { record(certificate); });
}

void RunHistory::choose()
{
    if (std::exchange(m_isChosen, true))
        return;
    const QString text = ReadSetting(m_platform.settings, historySetting, settingOff);
    if (text.isEmpty() || text == settingOff)
        return;
    m_store = history::chooseStore(text == settingOn ? QString() : text);
    if (!m_store.address)
        m_complain(m_store.failure);
    else if (history::Spool(m_store.folder, *m_store.address).waiting() > 0)
        startDelivery();
}

void RunHistory::record(const QJsonObject& certificate) const
{
    const history::Kept kept = history::keep(m_store, certificate);
    for (const QString& remark : kept.remarks)
        m_complain(remark);
    if (kept.isKept)
        startDelivery();
}

void RunHistory::startDelivery() const
{
    QProcess process;
    history::prepareDelivery(process, m_store, {deliveryArgument.toString()});
    if (!process.startDetached())
        m_complain(u"the history's records wait: "_s + process.errorString());
}

int RunHistory::deliver()
{
    const history::ChosenStore store =
        history::chooseStore(qEnvironmentVariable(history::storeVariable));
    if (!store.address)
        return 1;
    ::alarm(mostDelivery); // a server that hangs in the middle; what it has not confirmed waits on
    return history::deliver(store, patience, [] { return false; }).waiting == 0 ? 0 : 1;
}

} // namespace fldc
