#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

namespace fldc {

class BoundClass;

struct PublishedMethod {
    QString in;
    QString out;
    bool operator==(const PublishedMethod&) const = default;
};

struct PublishedProperty {
    QString type;
    bool readable = false;
    bool writable = false;
    bool operator==(const PublishedProperty&) const = default;
};

/// An interface of the type library.
struct PublishedInterface {
    QMap<QString, PublishedMethod> methods;
    QMap<QString, PublishedProperty> properties;
    QString xml; ///< its element
};

/// The published type library, as the program carries it.
class TypeLibrary {
public:
    /// Reads the program's own copy. Throws PlatformFailure (internal) when that can't be read.
    TypeLibrary();

    /// The interface with that full name; nullptr when there is none.
    [[nodiscard]] const PublishedInterface* find(const QString& interface) const;

    /// Compares the class with its interface: a missing, additional or differently typed member
    /// throws PlatformFailure (internal), so that what is published is what is served.
    void verify(const BoundClass& bound) const;

    /// Introspection document of an object with these interfaces and with objects below it.
    [[nodiscard]] QString describe(const QStringList& interfaces,
                                   const QStringList& children) const;

private:
    QMap<QString, PublishedInterface> m_interfaces;
};

} // namespace fldc
