#pragma once

#include <QString>
#include <QWidget>
#include <functional>
#include <memory>
#include <tl/expected.hpp>

/// Why an interface description could not be loaded.
struct InterfaceError
{
    QString file; ///< the description's resource path
    QString text; ///< what is wrong, with line and column where the reader knows them
};

using LoadedInterface = tl::expected<std::unique_ptr<QWidget>, InterfaceError>;

/// Makes windows, pages and sheets from the interface description that bears their class's name
/// (":/interface/<ClassName>.ui"). The application holds one, tells it the program's own widget
/// classes, and hands it to the code that loads an interface. Main thread only.
///
/// A description that names a class which is neither the toolkit's nor registered is an error: the
/// toolkit alone would quietly put the base class in its place.
class InterfaceLoader final
{
public:
    using Factory = std::function<QWidget *(QWidget *parent)>;

    explicit InterfaceLoader(QString folder = QStringLiteral(":/interface"));
    ~InterfaceLoader();
    InterfaceLoader(const InterfaceLoader &) = delete;
    InterfaceLoader &operator=(const InterfaceLoader &) = delete;

    /// Lets descriptions use a widget class of the program, by its own name. The class needs
    /// Q_OBJECT and a constructor that takes the parent.
    template <typename Widget> void registerClass()
    {
        registerClass(QString::fromLatin1(Widget::staticMetaObject.className()),
                      [](QWidget *parent) -> QWidget * { return new Widget(parent); });
    }
    void registerClass(const QString &className, const Factory &factory);

    /// A new interface from the description of this class. Slots named on_<object>_<signal> of the
    /// root widget are connected.
    LoadedInterface load(const QString &className) const;

private:
    class Reader;

    QString m_folder;
    std::unique_ptr<Reader> m_reader;
};

/// The object of this name and type inside a loaded interface (or its root itself). An object that
/// is missing or of another type is a mistake in the program: the program stops with a message that
/// names the object.
template <typename Outlet> Outlet *outlet(QWidget &interface, const char *name);

/// As above, for a type that is known at run time only.
QObject *outletNamed(QWidget &interface, const char *name, const QMetaObject &type);

template <typename Outlet> Outlet *outlet(QWidget &interface, const char *name)
{
    return static_cast<Outlet *>(outletNamed(interface, name, Outlet::staticMetaObject));
}
