#pragma once

#include "certificate/ObjectKinds.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QMap>
#include <QString>

#include <memory>
#include <vector>

namespace fldc {

class clsFile;
class colDataBlocks;

/// An image, and the number of its file, from 1 in the order in which the files were named.
struct FileImage {
    std::int32_t file = 0;
    std::shared_ptr<const clsFile> image;
};

/// What belongs to a download besides what it tells.
struct CertificateFacts {
    QString unit;
    QString job;
    QString start;       ///< as a line's "time"
    QJsonObject started; ///< the line
    QJsonValue adapter;  ///< a kind::certificateAdapter, or null
};

/// The certificate of one download, put together from the same objects that --json prints.
class Certificate {
public:
    /// @p images: for the checksums of their tables; these are made when the result is known, so
    /// that no radio waits for them.
    explicit Certificate(CertificateFacts facts, std::vector<FileImage> images);

    /// Takes what it needs of the objects told. An erase makes the tables of the present target
    /// void that were written before it.
    void hear(const ObjectKind& kind, const QJsonObject& object);

    /// The whole, now that the result is known.
    [[nodiscard]] QJsonObject toJson(const QJsonObject& result) const;

private:
    /// An image's table, by file (from 1), tag and address.
    [[nodiscard]] static QString tableKey(int file, const QString& tag, qint64 address);

    /// Of all tables of the files, by tableKey().
    [[nodiscard]] QMap<QString, QString> checksums() const;

    void hearConfiguration(const QJsonObject& object);
    void hearTable(const QJsonObject& object);
    void hearBlocks(const QJsonObject& object);

    struct Target {
        QJsonObject object;
        QJsonArray tables;
        bool locked = false;
    };

    CertificateFacts m_facts;
    std::vector<FileImage> m_images;
    QJsonValue m_radio{QJsonValue::Null};
    QJsonValue m_bootApplication{QJsonValue::Null};
    QJsonValue m_speed{QJsonValue::Null};
    QJsonValue m_before{QJsonValue::Null};
    QJsonValue m_after{QJsonValue::Null};
    std::vector<Target> m_targets;
    QJsonArray m_retries;
};

/// CRC-32 of the plain bytes of a table, 8 hex digits in lower case.
[[nodiscard]] QString crc32Text(const colDataBlocks& data);

/// Which components the second configuration has and the first has not, and the other way round; a
/// component that changed stands in both. Null when one of them was not read.
[[nodiscard]] QJsonValue configurationDifference(const QJsonValue& before, const QJsonValue& after);

} // namespace fldc
