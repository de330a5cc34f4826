#include "automation/root/ClientMessages.h"

#include <cstdio>

namespace fldc {

void ClientMessages::show(const QString& text, MessageKind kind)
{
    if (m_userWaits())
        m_box.show(text, kind);
    else
        std::fprintf(stderr, "rv4100_fldc: %s\n", qUtf8Printable(text));
}

} // namespace fldc
