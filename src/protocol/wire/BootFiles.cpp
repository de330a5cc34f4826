#include "protocol/wire/BootFiles.h"

#include <algorithm>
#include <array>

namespace fldc {

namespace {

struct BootFile {
    QStringView identifier;
    const char16_t* fileName;
};

constexpr std::array bootFiles{
    BootFile{u"RVKC4*", u"JHA2U.Srec"}, BootFile{u"RVKC7*", u"JHA4U.Srec"},
    BootFile{u"RVKB2*", u"JVA2U.Srec"}, BootFile{u"RVKB3*", u"JVA3U.Srec"},
    BootFile{u"RHKB1*", u"JWA1U.Srec"},
};

constexpr const char16_t* defaultBootFile = u"JVA2U.Srec";

} // namespace

QString hardwareIdentifier(const QString& text)
{
    const qsizetype star = text.indexOf(u'*');
    if (star < 0)
        return {};
    return star >= 6 ? text.mid(star - 5, 6) : text;
}

QString bootFileFor(QStringView identifier)
{
    const auto* found = std::ranges::find(bootFiles, identifier, &BootFile::identifier);
    return QString::fromUtf16(found == bootFiles.end() ? defaultBootFile : found->fileName);
}

bool isBootFile(QStringView fileName)
{
    return std::ranges::any_of(
        bootFiles, [&](const BootFile& file) { return fileName == QStringView(file.fileName); });
}

} // namespace fldc
