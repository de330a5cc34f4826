#pragma once

#include "history/Record.h"
#include "history/StoreAddress.h"

#include <QSqlDatabase>
#include <QSqlQuery>

#include <chrono>
#include <functional>
#include <optional>

namespace fldc::history {

/// Which records, newest first. Empty texts and missing values ask for nothing.
struct Question {
    QString id; ///< begins with this
    QString unit;
    QString tag;
    std::optional<qint64> since; ///< milliseconds since 1970, UTC; included
    std::optional<qint64> until; ///< likewise; excluded
    std::optional<int> exit;
    bool failed = false; ///< any exit code but 0
    qint64 limit = 0;    ///< at most that many; 0 for all
    bool certificates = false;
};

/// A store that is open. Steps return false when they fail; failure() says why.
class Database {
public:
    /// @p patience: how long a step waits for other programs' locks, and (at least 2 s) for the
    /// server.
    Database(StoreAddress address, std::chrono::milliseconds patience);
    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    /// Connects, and makes or renews the tables. Fails for tables of a newer version.
    [[nodiscard]] bool open();
    /// Adds a record, whole or not at all; one that is there already stays as it is.
    [[nodiscard]] bool insert(const Record& record);

    /// Called with each row: keys of columns() and tagLists, times as texts, and "certificate"
    /// when asked for. Ends when it returns false.
    using Row = std::function<bool(const QVariantMap& row)>;
    [[nodiscard]] bool records(const Question& question, const Row& row);
    /// Units by name, each as it was left last: "unit", "start", "record", "exit", "radio" and
    /// "products", as they were read last. With @p outdated only those that have a component of
    /// such a tag's family in another version or with a status, or were left incomplete.
    [[nodiscard]] bool units(const QStringList& outdated, qint64 limit, const Row& row);

    [[nodiscard]] const QString& failure() const { return m_failure; }

private:
    [[nodiscard]] bool isPostgreSql() const;
    void describeServer();
    [[nodiscard]] bool prepareConnection();
    [[nodiscard]] bool migrate();
    [[nodiscard]] bool applyMigrations();
    [[nodiscard]] bool insertSteps(const Record& record);
    [[nodiscard]] bool insertTags(const Record& record, const QJsonObject& tags);
    [[nodiscard]] bool followUnit(const Record& record);
    [[nodiscard]] bool replaceProducts(const Record& record, const QJsonArray& components);
    [[nodiscard]] bool inTransaction(const std::function<bool()>& steps);
    [[nodiscard]] bool execute(const QString& statement, const QVariantList& values = {},
                               QSqlQuery* answered = nullptr);

    StoreAddress m_address;
    std::chrono::milliseconds m_patience;
    QString m_connection;
    QSqlDatabase m_database;
    QString m_failure;
};

} // namespace fldc::history
