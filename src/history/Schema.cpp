#include "history/Schema.h"

#include <array>

namespace fldc::history {

namespace {

constexpr std::array<const char*, 13> firstTables{
    "CREATE TABLE history_record (id TEXT_KEY PRIMARY KEY, start_ms BIGINT NOT NULL, "
    "end_ms BIGINT NOT NULL, command TEXT NOT NULL, unit TEXT_KEY NOT NULL, job TEXT NOT NULL, "
    "port TEXT NOT NULL, device TEXT NOT NULL, adapter TEXT NOT NULL, host TEXT NOT NULL, "
    "user_name TEXT NOT NULL, version TEXT NOT NULL, identifier TEXT NOT NULL, "
    "exit INTEGER NOT NULL, code INTEGER NOT NULL, radio TEXT NOT NULL, message TEXT NOT NULL, "
    "tags TEXT NOT NULL, certificate TEXT NOT NULL)",
    "CREATE INDEX history_record_start ON history_record (start_ms)",
    "CREATE INDEX history_record_unit ON history_record (unit, start_ms)",
    "CREATE INDEX history_record_exit ON history_record (exit, start_ms)",
    "CREATE INDEX history_record_failed ON history_record (start_ms) WHERE exit <> 0",

    // The start and the exit once more, so that one index answers for a tag.
    "CREATE TABLE history_tag (record_id TEXT_KEY NOT NULL, tag TEXT_KEY NOT NULL, "
    "start_ms BIGINT NOT NULL, exit INTEGER NOT NULL, PRIMARY KEY (record_id, tag))",
    "CREATE INDEX history_tag_start ON history_tag (tag, start_ms)",
    "CREATE INDEX history_tag_exit ON history_tag (tag, exit, start_ms)",
    "CREATE INDEX history_tag_failed ON history_tag (tag, start_ms) WHERE exit <> 0",

    "CREATE TABLE history_unit (name TEXT_KEY PRIMARY KEY, start_ms BIGINT NOT NULL, "
    "record_id TEXT_KEY NOT NULL, exit INTEGER NOT NULL, radio TEXT NOT NULL, "
    "configuration_ms BIGINT NOT NULL)",
    "CREATE TABLE history_product (unit TEXT_KEY NOT NULL, product TEXT_KEY NOT NULL, family "
    "TEXT_KEY NOT NULL, "
    "status INTEGER NOT NULL, network INTEGER NOT NULL, device INTEGER NOT NULL)",
    "CREATE INDEX history_product_unit ON history_product (unit)",
    "CREATE INDEX history_product_family ON history_product (family, product, status, unit)",
};

constexpr std::array allMigrations{Migration{1, firstTables}};

constexpr bool areInOrder()
{
    int version = 0;
    for (const Migration& migration : allMigrations) {
        if (migration.version != ++version)
            return false;
    }
    return true;
}
static_assert(areInOrder());

} // namespace

std::span<const Migration> migrations()
{
    return allMigrations;
}

} // namespace fldc::history
