#pragma once

#include "automation/BusValue.h"

#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariantList>

#include <algorithm>
#include <functional>
#include <memory>
#include <tuple>
#include <type_traits>
#include <typeindex>
#include <utility>
#include <vector>

namespace fldc {

/// A member as the bus calls it: type signatures, and the code behind them.
struct BoundMethod {
    QString in;
    QString out;
    std::function<QVariantList(void* object, const Call& call, const QVariantList& arguments)>
        invoke;
};

struct BoundProperty {
    QString type;
    std::function<QVariant(void* object, const Call& call)> get; ///< may be empty
    std::function<void(void* object, const Call& call, const QVariant& value)>
        set; ///< may be empty
};

/// Two things are written down about each class: the type library says what clients may call, the
/// binding says what runs. They are compared at every start (TypeLibrary::verify), because a
/// difference would otherwise be found by a client.
///
/// The code behind one interface of the type library: C++ members, or functions whose first
/// argument is the object, under the names of the interface. Signatures come from the C++ types.
class BoundClass {
public:
    /// @p interface: full name of the interface with the members. @p T: class of the objects.
    template <class T>
    static BoundClass of(QLatin1StringView name, const QString& interface)
    {
        return BoundClass(name, typeid(T), interface);
    }

    [[nodiscard]] QLatin1StringView name() const { return m_name; }
    [[nodiscard]] std::type_index type() const { return m_type; }
    [[nodiscard]] const QString& interface() const { return m_interface; }
    [[nodiscard]] const QMap<QString, BoundMethod>& methods() const { return m_methods; }
    [[nodiscard]] const QMap<QString, BoundProperty>& properties() const { return m_properties; }
    /// Interfaces of its signals.
    [[nodiscard]] const QStringList& eventInterfaces() const { return m_eventInterfaces; }
    [[nodiscard]] const std::vector<BoundClass>& further() const { return m_further; }
    /// The binding of one of its interfaces with members, "" for the first; nullptr for another.
    [[nodiscard]] const BoundClass* at(const QString& interface) const
    {
        if (interface.isEmpty() || interface == m_interface)
            return this;
        const auto found = std::ranges::find(m_further, interface, &BoundClass::m_interface);
        return found == m_further.end() ? nullptr : &*found;
    }
    /// Every interface, those of signals too.
    [[nodiscard]] QStringList interfaces() const
    {
        QStringList all(m_interface);
        for (const BoundClass& each : m_further)
            all.append(each.m_interface);
        return all + m_eventInterfaces;
    }
    /// Values of the properties of @p object that can be read, by interface; without those that
    /// are objects, which reading would hand out.
    [[nodiscard]] InterfaceValues values(void* object, const Call& call) const
    {
        InterfaceValues all;
        for (const QString& each : interfaces())
            all.insert(each, {});
        const auto insert = [&](const BoundClass& bound) {
            for (auto each = bound.m_properties.begin(); each != bound.m_properties.end(); ++each) {
                if (each->get && each->type != QLatin1String("o"))
                    all[bound.m_interface].insert(each.key(), each->get(object, call));
            }
        };
        insert(*this);
        std::ranges::for_each(m_further, insert);
        return all;
    }
    /// Makes an object for a client; empty for a class that clients can't create.
    [[nodiscard]] const std::function<std::shared_ptr<void>()>& create() const { return m_create; }

    BoundClass& events(const QString& interface)
    {
        m_eventInterfaces.append(interface);
        return *this;
    }
    /// A further interface of the same objects.
    BoundClass& also(BoundClass further)
    {
        m_further.push_back(std::move(further));
        return *this;
    }
    BoundClass& creatable(std::function<std::shared_ptr<void>()> create)
    {
        m_create = std::move(create);
        return *this;
    }

    template <class T, class R, class... A>
    BoundClass& method(const char* name, std::function<R(T&, A...)> function)
    {
        m_methods.insert(QString::fromLatin1(name),
                         {argumentSignatures<A...>(), resultSignature<R>(),
                          [function = std::move(function)](void* object, const Call& call,
                                                           const QVariantList& arguments) {
                              return invoke(function, *static_cast<T*>(object), call, arguments);
                          }});
        return *this;
    }
    template <class Function>
    BoundClass& method(const char* name, Function function)
    {
        return method(name, std::function(std::move(function)));
    }
    template <class T, class R, class... A>
    BoundClass& method(const char* name, R (T::*member)(A...))
    {
        return method(name, std::function<R(T&, A...)>(member));
    }
    template <class T, class R, class... A>
    BoundClass& method(const char* name, R (T::*member)(A...) const)
    {
        return method(name, std::function<R(T&, A...)>(member));
    }

    /// A property; @p get and @p set are members or functions, nullptr for a side that is not
    /// offered.
    template <class T, class Value, class Get, class Set>
    BoundClass& property(const char* name, Get get, Set set)
    {
        BoundProperty bound{BusType<Value>::signature, {}, {}};
        if constexpr (!std::is_null_pointer_v<Get>) {
            bound.get = [get](void* object, const Call& call) {
                return BusType<Value>::toBus(std::invoke(get, *static_cast<T*>(object)), call);
            };
        }
        if constexpr (std::is_invocable_v<Set, T&, const Call&, Value>) {
            bound.set = [set](void* object, const Call& call, const QVariant& value) {
                std::invoke(set, *static_cast<T*>(object), call,
                            BusType<Value>::fromBus(value, call));
            };
        } else if constexpr (!std::is_null_pointer_v<Set>) {
            bound.set = [set](void* object, const Call& call, const QVariant& value) {
                std::invoke(set, *static_cast<T*>(object), BusType<Value>::fromBus(value, call));
            };
        }
        m_properties.insert(QString::fromLatin1(name), bound);
        return *this;
    }
    template <class T, class Value, class Argument>
    BoundClass& property(const char* name, Value (T::*get)() const, void (T::*set)(Argument))
    {
        return property<T, Value, Value (T::*)() const, void (T::*)(Argument)>(name, get, set);
    }
    template <class T, class Value>
    BoundClass& property(const char* name, Value (T::*get)() const)
    {
        return property<T, Value>(name, get, nullptr);
    }

private:
    BoundClass(QLatin1StringView name, std::type_index type, QString interface)
        : m_name(name), m_type(type), m_interface(std::move(interface))
    {
    }

    template <class T>
    static constexpr bool isCall = std::is_same_v<std::decay_t<T>, Call>;

    template <class... A>
    static QString argumentSignatures()
    {
        QString all;
        [[maybe_unused]] const auto append = [&all]<class T>(std::type_identity<T>) {
            if constexpr (!isCall<T>)
                all += BusType<T>::signature;
        };
        (append(std::type_identity<std::decay_t<A>>{}), ...);
        return all;
    }

    template <class R>
    static QString resultSignature()
    {
        if constexpr (std::is_void_v<R>) {
            return {};
        } else if constexpr (requires { std::tuple_size<R>::value; }) {
            return []<class... T>(std::type_identity<std::tuple<T...>>) {
                return argumentSignatures<T...>();
            }(std::type_identity<R>{});
        } else {
            return BusType<R>::signature;
        }
    }

    // Takes the arguments from the message one after the other.
    struct ArgumentReader {
        const Call& call;
        const QVariantList& arguments;
        qsizetype next = 0;

        template <class T>
        decltype(auto) read()
        {
            if constexpr (isCall<T>)
                return (call);
            else
                return BusType<T>::fromBus(arguments.at(next++), call);
        }
    };

    template <class T, class R, class... A>
    static QVariantList invoke(const std::function<R(T&, A...)>& function, T& object,
                               const Call& call, const QVariantList& arguments)
    {
        [[maybe_unused]] ArgumentReader reader{call, arguments};
        // Braces: read in the order of the arguments.
        const std::tuple<std::decay_t<A>...> values{reader.template read<std::decay_t<A>>()...};
        const auto run = [&] {
            return std::apply([&](const auto&... value) { return function(object, value...); },
                              values);
        };
        if constexpr (std::is_void_v<R>) {
            run();
            return {};
        } else if constexpr (requires { std::tuple_size<R>::value; }) {
            return std::apply(
                [&](const auto&... result) {
                    return QVariantList{
                        BusType<std::decay_t<decltype(result)>>::toBus(result, call)...};
                },
                run());
        } else {
            return {BusType<R>::toBus(run(), call)};
        }
    }

    QLatin1StringView m_name;
    std::type_index m_type;
    QString m_interface;
    QStringList m_eventInterfaces;
    QMap<QString, BoundMethod> m_methods;
    QMap<QString, BoundProperty> m_properties;
    std::vector<BoundClass> m_further;
    std::function<std::shared_ptr<void>()> m_create;
};

} // namespace fldc
