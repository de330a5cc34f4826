#include "platform/qt/display/EnglishOnly.h"

#include <QByteArray>
#include <QGuiApplication>
#include <QLocale>

namespace fldc {

namespace {

// The first of the locale's variables that counts for the category.
QByteArray localeOf(const char* category)
{
    for (const char* name : {"LC_ALL", category, "LANG"}) {
        if (const QByteArray value = qgetenv(name); !value.isEmpty())
            return value;
    }
    return "C.UTF-8";
}

} // namespace

void speakEnglishOnly()
{
    const QByteArray characters = localeOf("LC_CTYPE");
    for (const char* name : {"LC_ALL", "LANGUAGE"})
        qunsetenv(name);
    for (const char* name : {"LANG", "LC_NUMERIC", "LC_TIME", "LC_MESSAGES", "LC_MEASUREMENT"})
        qputenv(name, "C.UTF-8");
    qputenv("LC_CTYPE", characters);
    QLocale::setDefault(QLocale::c());
    QGuiApplication::setLayoutDirection(Qt::LeftToRight);
}

} // namespace fldc
