#include "automation/ManagerObject.h"
#include "automation/PublishedClasses.h"

#include <tuple>

namespace fldc {

namespace {

// A member that answers at once, also in the middle of an operation.
template <class R, class... A>
auto atOnce(std::function<R(clsDLManager&, A...)> member)
{
    return std::function<R(ManagerObject&, A...)>(
        [member](ManagerObject& object, A... arguments) -> R {
            return member(object.manager(), arguments...);
        });
}

// A member that is refused in the middle of an operation: one itself, or a change of what the
// thread's operation works with (the port, the loaded files, the logs, the last error).
template <class R, class... A>
auto exclusive(std::function<R(clsDLManager&, A...)> member)
{
    return std::function<R(ManagerObject&, Call, A...)>(
        [member](ManagerObject& object, const Call& call, A... arguments) -> R {
            const ManagerObject::ExclusiveCall running(object, call.client);
            return member(object.manager(), arguments...);
        });
}

template <class R, class... A>
auto atOnce(R (clsDLManager::*member)(A...))
{
    return atOnce(std::function<R(clsDLManager&, A...)>(member));
}

template <class R, class... A>
auto atOnce(R (clsDLManager::*member)(A...) const)
{
    return atOnce(std::function<R(clsDLManager&, A...)>(member));
}

template <class R, class... A>
auto exclusive(R (clsDLManager::*member)(A...))
{
    return exclusive(std::function<R(clsDLManager&, A...)>(member));
}

template <class Value>
auto exclusiveWrite(void (clsDLManager::*member)(Value))
{
    return [member](ManagerObject& object, const Call& call, Value value) {
        const ManagerObject::ExclusiveCall running(object, call.client);
        (object.manager().*member)(value);
    };
}

using Manager = clsDLManager;
using ReportResult = std::tuple<std::int16_t, QString>;

// The three members with a text by reference: it comes back after the result, changed or not.

ReportResult reportConfigurations(Manager& manager, QString strFiles)
{
    const std::int16_t result = manager.ReportConfigurations(strFiles);
    return {result, strFiles};
}

ReportResult eraseSelected(Manager& manager, const QString& FilesToErase, QString strFilesToReport)
{
    const std::int16_t result = manager.EraseSelected(FilesToErase, strFilesToReport);
    return {result, strFilesToReport};
}

ReportResult downLoad(Manager& manager, QString strFilesToReport)
{
    const std::int16_t result = manager.DownLoad(strFilesToReport);
    return {result, strFilesToReport};
}

std::tuple<std::int32_t, QString> getLastError(Manager& manager)
{
    std::int32_t lngErrNum = 0;
    QString strErrDescription;
    manager.GetLastError(lngErrNum, strErrDescription);
    return {lngErrNum, strErrDescription};
}

template <class Value>
void addSessionProperty(BoundClass& bound, const char* name)
{
    const auto get = [key = QString::fromLatin1(name)](ManagerObject& object) {
        return object.session().value(key).value<Value>();
    };
    bound.property<ManagerObject, Value>(name, get, nullptr);
}

BoundClass sessionBinding()
{
    auto bound =
        BoundClass::of<ManagerObject>(managerClass, interfaceName(QLatin1StringView("Session")));
    for (const char* text : {"Operation", "State", "LastResultText", "Advice", "Holder"})
        addSessionProperty<QString>(bound, text);
    for (const char* number : {"Percentage", "BytesPerSecond", "SecondsLeft"})
        addSessionProperty<double>(bound, number);
    addSessionProperty<quint32>(bound, "LineSpeed");
    addSessionProperty<std::int32_t>(bound, "LastResult");
    return bound;
}

} // namespace

BoundClass managerClassBinding()
{
    const auto stayConnected = [](ManagerObject& object) {
        return object.manager().StayConnected();
    };
    const auto radioType = [](ManagerObject& object) { return object.manager().RadioType(); };
    const auto setRadioType = [](ManagerObject& object, enmRadioType type) {
        object.manager().setRadioType(type);
        object.tellChanges();
    };
    const auto asyncTaskBusy = [](ManagerObject& object) {
        return object.manager().AsyncTaskBusy();
    };
    const auto asyncTaskProcess = [](ManagerObject& object, const Call& call, enmAsyncTaskID task,
                                     const QString& input) {
        return object.startTask(task, input, call.client);
    };
    return BoundClass::of<ManagerObject>(managerClass,
                                         interfaceName(QLatin1StringView("_clsDLManager")))
        .events(interfaceName(QLatin1StringView("__clsDLManager")))
        .also(sessionBinding())
        .method("ReportConfigurations", exclusive(std::function(reportConfigurations)))
        .method("EraseSelected", exclusive(std::function(eraseSelected)))
        .method("DownLoad", exclusive(std::function(downLoad)))
        .method("SetPort", exclusive(&Manager::SetPort))
        .method("GetLastError", atOnce(std::function(getLastError)))
        .method("LoadFiles", exclusive(&Manager::LoadFiles))
        .method("ValidFile", exclusive(&Manager::ValidFile))
        .method("CreateNewLogFile", exclusive(&Manager::CreateNewLogFile))
        .property<ManagerObject, enmRadioType>("RadioType", radioType, setRadioType)
        .method("SetUIMode", exclusive(&Manager::SetUIMode))
        .method("ShutDownUiLessMode", atOnce(&Manager::ShutDownUiLessMode))
        .method("SetBaudRate", atOnce(&Manager::SetBaudRate))
        .method("FormatMessage", atOnce(&Manager::FormatMessage))
        .property<ManagerObject, bool>("StayConnected", stayConnected,
                                       exclusiveWrite(&Manager::setStayConnected))
        .method("ResetRadio", exclusive(&Manager::ResetRadio))
        .method("AsyncTaskProcess", asyncTaskProcess)
        .property<ManagerObject, bool>("AsyncTaskBusy", asyncTaskBusy, nullptr)
        .method("LoadFilesEx", exclusive(&Manager::LoadFilesEx))
        .property<ManagerObject, enmAccessLevel>("AccessLevel", nullptr,
                                                 exclusiveWrite(&Manager::setAccessLevel))
        .method("FileIsOld", atOnce(&Manager::FileIsOld))
        .method("BackupOldLogFile", atOnce(&Manager::BackupOldLogFile))
        .method("LoadFilesByPath", exclusive(&Manager::LoadFilesByPath));
}

} // namespace fldc
