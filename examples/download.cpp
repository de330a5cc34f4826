// Downloads firmware with the download manager inside this process: no bus, no window.
//
//   download_in_process PORT FILE...        for example: download_in_process COM1: radio.srec
//
// Exit code 0 when every file was written.

#include "manager/clsDLManager.h"
#include "platform/qt/QtPlatform.h"
#include "platform/qt/TerminalMessages.h"
#include "protocol/IWaitDialog.h"
#include "ui/logic/WindowFactory.h"

#include <QCoreApplication>
#include <QTextStream>

namespace {

// The dialog that asks for a power cycle; only made when a user is present.
class NoWaitDialogs final : public fldc::IWaitDialogFactory {
public:
    [[nodiscard]] std::unique_ptr<fldc::IWaitDialog> createWaitDialog() override { return nullptr; }
};

int download(const QString& port, const QStringList& files)
{
    QTextStream out(stdout);
    fldc::TerminalMessages messages;
    fldc::QtPlatform platform(messages);
    fldc::WindowFactory windows(platform.platform(), {}, {});
    NoWaitDialogs dialogs;
    fldc::clsDLManager manager(platform.platform(), windows, dialogs);

    QObject::connect(&manager, &fldc::clsDLManager::DownloadProgressUpdate,
                     [&out](int percentage, const QString& fileName, int index) {
                         out << index << ": " << fileName << ' ' << percentage << " %" << Qt::endl;
                     });
    QObject::connect(&manager, &fldc::clsDLManager::PowerCycleRequired,
                     [&out] { out << "Power-cycle the radio." << Qt::endl; });

    QString report;
    std::int16_t code = manager.SetPort(port, false);
    if (code == 0)
        code = manager.LoadFilesEx(files.join(u'|'), QStringLiteral("\n"));
    if (code == 0)
        code = manager.DownLoad(report);
    out << report.replace(u'\t', u'\n') << Qt::endl;
    if (code != 0)
        out << "Error " << code << ": " << manager.FormatMessage(code) << Qt::endl;
    return code == 0 ? 0 : 1;
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() < 3) {
        QTextStream(stderr) << "usage: download_in_process PORT FILE..." << Qt::endl;
        return 2;
    }
    return download(arguments.at(1), arguments.sliced(2));
}
