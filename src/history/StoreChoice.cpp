#include "history/StoreChoice.h"

namespace fldc::history {

using namespace Qt::StringLiterals;

ChosenStore chooseStore(const QString& text)
{
    ChosenStore store{dataFolder(), std::nullopt, text, {}};
    if (store.folder.isEmpty()) {
        store.failure = u"there is no history: neither XDG_DATA_HOME nor HOME names a folder."_s;
        return store;
    }
    store.address = text.isEmpty() ? defaultStore(store.folder) : readStoreAddress(text);
    if (!store.address)
        store.failure = u"there is no history: History= names no store, True or False."_s;
    else if (text.isEmpty())
        store.text = u"sqlite:"_s + store.address->path;
    return store;
}

} // namespace fldc::history
