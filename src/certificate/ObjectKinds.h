#pragma once

#include <QLatin1StringView>

#include <array>

namespace fldc {

/// A kind of JSON object that the program prints or writes, with its keys: the name before the dot
/// is a line's "type", what stands behind it is a part of such a line. A key with "?" may be left
/// out. Lines have "type" and "time" besides. docs/fldc.md explains each key.
struct ObjectKind {
    consteval ObjectKind(const char* kindName, const char* kindKeys)
        : name(kindName), keys(kindKeys)
    {
    }
    QLatin1StringView name;
    QLatin1StringView keys;
};

/// Number of this list of keys; another one when a key changes its meaning or goes.
inline constexpr int schema = 1;

namespace kind {

inline constexpr ObjectKind started{"started", "schema command port device files version"};
inline constexpr ObjectKind startedFile{"started.files", "path sha256 bytes"};
inline constexpr ObjectKind port{"port", "name device stable description vendor product "
                                         "serial state pid program"};
inline constexpr ObjectKind radio{"radio", "identifier needs_boot_application"};
inline constexpr ObjectKind bootApplication{"boot-application", "file bytes"};
inline constexpr ObjectKind speed{"speed", "baud"};
inline constexpr ObjectKind configuration{"configuration", "when components"};
inline constexpr ObjectKind component{"configuration.components",
                                      "product status status_text network device erasable"};
inline constexpr ObjectKind target{"target", "file tag network device"};
inline constexpr ObjectKind blocks{"blocks", "action blocks"};
inline constexpr ObjectKind table{"table", "address bytes wire_bytes compressed"};
inline constexpr ObjectKind progress{"progress",
                                     "file tag percent bytes total bytes_per_second seconds_left"};
inline constexpr ObjectKind retry{"retry", "command attempt reason"};
inline constexpr ObjectKind unexpected{"unexpected", "hex looks_like text"};
inline constexpr ObjectKind powerCycleRequired{"power-cycle-required", "f1_key"};
inline constexpr ObjectKind restarted{"restarted", ""};
inline constexpr ObjectKind result{
    "result", "command ok exit code message advice radio seconds written? not_matched? "
              "confirmed? baud? retries? wire_bytes? best?"};

inline constexpr ObjectKind unitResult{
    "unit-result", "port command ok exit code message advice radio seconds written? not_matched? "
                   "confirmed? baud? retries? wire_bytes?"};

inline constexpr ObjectKind file{"file", "path sha256 bytes valid errors images"};
inline constexpr ObjectKind fileError{"file.errors", "line reason expected? found?"};
inline constexpr ObjectKind image{"file.images", "tag unit_bits boot_application targets tables"};
inline constexpr ObjectKind imageTarget{"file.images.targets", "hardware device"};
inline constexpr ObjectKind imageTable{"file.images.tables",
                                       "address bytes compressed_bytes crc32"};

inline constexpr ObjectKind plan{"plan", "images seconds matches? not_matched?"};
inline constexpr ObjectKind planImage{
    "plan.images", "tag unit_bits boot_application targets tables frames wire_bytes"};
inline constexpr ObjectKind planMatch{"plan.matches", "tag product network device"};

inline constexpr ObjectKind link{"link", "baud rounds lost corrupt median_ms p99_ms agreed"};

inline constexpr ObjectKind check{"check", "subject ok finding hint"};

inline constexpr ObjectKind difference{
    "difference", "network device expected expected_status found found_status"};

inline constexpr ObjectKind certificate{
    "certificate", "schema started radio boot_application speed configuration_before "
                   "configuration_after difference targets retries result host user version "
                   "adapter unit job start end"};
inline constexpr ObjectKind certificateDifference{"certificate.difference", "added removed"};
inline constexpr ObjectKind certificateTarget{"certificate.targets",
                                              "file tag network device tables locked"};
inline constexpr ObjectKind certificateTable{"certificate.targets.tables",
                                             "address bytes wire_bytes compressed crc32"};
inline constexpr ObjectKind certificateAdapter{"certificate.adapter",
                                               "device stable description vendor product serial"};

inline constexpr ObjectKind record{
    "record", "id start end command unit job port device adapter host user version identifier exit "
              "code radio message written confirmed not_matched incomplete erased certificate?"};
inline constexpr ObjectKind unit{"unit", "unit start record exit radio products"};
inline constexpr ObjectKind unitProduct{"unit.products", "product status network device"};

} // namespace kind

inline constexpr std::array objectKinds{
    kind::started,
    kind::startedFile,
    kind::port,
    kind::radio,
    kind::bootApplication,
    kind::speed,
    kind::configuration,
    kind::component,
    kind::target,
    kind::blocks,
    kind::table,
    kind::progress,
    kind::retry,
    kind::unexpected,
    kind::powerCycleRequired,
    kind::restarted,
    kind::result,
    kind::unitResult,
    kind::file,
    kind::fileError,
    kind::image,
    kind::imageTarget,
    kind::imageTable,
    kind::plan,
    kind::planImage,
    kind::planMatch,
    kind::link,
    kind::check,
    kind::difference,
    kind::certificate,
    kind::certificateDifference,
    kind::certificateTarget,
    kind::certificateTable,
    kind::certificateAdapter,
    kind::record,
    kind::unit,
    kind::unitProduct,
};

} // namespace fldc
