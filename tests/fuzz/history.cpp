// What waits in the folder of a store, whoever wrote it there: each file is delivered, kept back or
// set aside, and whatever was delivered can be asked for. The same bytes are taken for a golden
// report.

#include "Fuzzing.h"
#include "fldc/files/Expectation.h"
#include "fldc/files/InputFiles.h"
#include "history/Database.h"
#include "history/Spool.h"

#include <QDir>
#include <QTemporaryDir>

using namespace fldc;
using namespace fldc::history;

namespace {

// A store that does not grow for ever.
struct Store {
    QTemporaryDir folder;
    StoreAddress address = defaultStore(folder.path());
    Database database{address, std::chrono::seconds(2)};
    Spool spool{folder.path(), address};
    int used = 0;
};

struct Content final : IFileContent {
    explicit Content(std::string_view bytes) : all(bytes) {}
    std::span<const std::uint8_t> bytes() const override
    {
        return {reinterpret_cast<const std::uint8_t*>(all.data()), all.size()};
    }
    std::string_view all;
};

void deliver(Store& store, const std::string& bytes)
{
    static_cast<void>(QDir().mkpath(store.spool.folder()));
    QFile file(store.spool.folder() + QStringLiteral("/1.json"));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly) &&
                file.write(bytes.data(), static_cast<qint64>(bytes.size())) >= 0);
    file.close();
    const auto delivery = store.spool.deliver(store.database, [] { return false; });
    const bool setAside = QFile::remove(file.fileName() + QStringLiteral(".bad"));
    EXPECT_EQ(delivery.delivered + delivery.waiting + (setAside ? 1 : 0), 1);
    EXPECT_EQ(delivery.waiting, 0) << qPrintable(delivery.failure);
}

void ask(Store& store, const QString& text)
{
    qint64 rows = 0;
    const auto count = [&](const QVariantMap& row) { return ++rows > 0 && !row.isEmpty(); };
    Question all;
    all.certificates = true;
    EXPECT_TRUE(store.database.records(all, count)) << qPrintable(store.database.failure());
    all.unit = all.tag = storable(text);
    EXPECT_TRUE(store.database.records(all, count)) << qPrintable(store.database.failure());
    EXPECT_TRUE(store.database.units({storable(text)}, 10, count));
}

void expect(const std::string& bytes)
{
    cli::InputFile file;
    file.content = std::make_shared<Content>(bytes);
    if (const auto components = cli::readExpectation(file))
        EXPECT_TRUE(cli::differences(*components, *components).empty());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static auto store = std::make_unique<Store>(); // goes before the library's own statics
    if (++store->used > 200)
        store = std::make_unique<Store>();
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    expect(bytes);
    deliver(*store, bytes);
    EXPECT_TRUE(store->database.open());
    const QString text = QString::fromStdString(bytes.substr(0, 80));
    ask(*store, text);
    if (const auto address = readStoreAddress(text))
        EXPECT_FALSE(address->name().isNull());
    return 0;
}
