#include "ui/logic/DetailsFile.h"

#include "platform/IFileService.h"
#include "platform/PlatformFailure.h"
#include "shared/LastError.h"
#include "ui/logic/DownloadWindow.h"

namespace fldc {

namespace {

using Fields = std::array<QString, ConfigurationList::columnCount>;

QByteArray lineOf(const Fields& fields)
{
    const QStringList list(fields.begin(), fields.end());
    return list.join(u',').toLatin1() + "\r\n";
}

void writeLines(IOutputFile& file, const ConfigurationList& list)
{
    file.write(lineOf(ConfigurationList::columnTitles()));
    for (const ConfigurationRow& row : list.rows())
        file.write(lineOf(row.texts));
    file.close();
}

} // namespace

bool WriteDetailsFile(IFileService& files, DownloadWindow& window, const QString& strFileName)
{
    try {
        writeLines(*files.openForWriting(strFileName), window.configurations());
        return true;
    } catch (...) {
        const PlatformFailure failure = currentFailure();
        lastError().setRuntimeError(failure);
        window.setPassingStatus(failure.text(QStringLiteral(" - ")));
        return false;
    }
}

} // namespace fldc
